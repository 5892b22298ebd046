#include "logger/RowSelection.h"

#include <gtest/gtest.h>
#include <limits>

namespace zr::logger {
namespace {

std::vector<int> RowsOf(const RowSelection& selection, int count)
{
    std::vector<int> rows;
    for (int row = selection.NextFrom(0, count); row >= 0; row = selection.NextFrom(row + 1, count)) {
        rows.push_back(row);
    }
    EXPECT_EQ(selection.CountOf(count), static_cast<int>(rows.size()));
    return rows;
}

TEST(RowSelectionTest, MeansAllRowsWhenNoneIsSelected)
{
    EXPECT_FALSE(RowSelection().IsSome());
    EXPECT_EQ(RowsOf(RowSelection(), 4), (std::vector{0, 1, 2, 3}));
    EXPECT_EQ(RowsOf(RowSelection(), 0), std::vector<int>());
}

TEST(RowSelectionTest, GoesThroughTheSelectedRowsInAscendingOrder)
{
    const RowSelection selection({{7, 7}, {3, 3}, {5, 6}});
    EXPECT_TRUE(selection.IsSome());
    EXPECT_EQ(RowsOf(selection, 100), (std::vector{3, 5, 6, 7}));
}

TEST(RowSelectionTest, TakesARowThatIsSelectedTwiceOnce)
{
    EXPECT_EQ(RowsOf(RowSelection({{2, 5}, {4, 8}, {4, 4}}), 100), (std::vector{2, 3, 4, 5, 6, 7, 8}));
}

TEST(RowSelectionTest, EndsWithTheRowsThatThereAre)
{
    EXPECT_EQ(RowsOf(RowSelection({{1, std::numeric_limits<int>::max()}}), 3), (std::vector{1, 2}));
    EXPECT_EQ(RowsOf(RowSelection({{5, 9}}), 3), std::vector<int>());
}

TEST(RowSelectionTest, LeavesOutWhatIsNoRange)
{
    EXPECT_EQ(RowsOf(RowSelection({{-5, 1}, {4, 3}}), 10), (std::vector{0, 1}));
    EXPECT_FALSE(RowSelection({{4, 3}}).IsSome());
}

}  // namespace
}  // namespace zr::logger
