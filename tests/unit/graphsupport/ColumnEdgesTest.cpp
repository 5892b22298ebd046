#include "siblings/graphsupport/ColumnEdges.h"

#include <gtest/gtest.h>
#include <cstdint>
#include <limits>
#include <random>

namespace zr::graph {
namespace {

__extension__ using Wide = __int128;

// The column of a time, by its definition.
std::int64_t ColumnOf(std::int64_t time, std::int64_t from, std::int64_t to, std::int64_t columns)
{
    return static_cast<std::int64_t>((Wide{time} - from) * columns / (Wide{to} - from));
}

TEST(ColumnEdgesTest, AnEdgeIsTheFirstTimeOfItsColumn)
{
    std::mt19937_64 random(1);
    for (int round = 0; round < 2000; ++round) {
        const auto from = static_cast<std::int64_t>(random() % 4000000000000000) - 1000000000000000;
        const std::int64_t to =
            from + 1 + static_cast<std::int64_t>(random() % (round % 2 == 0 ? 100 : 3200000000000000));
        const auto columns = static_cast<std::int64_t>(1 + random() % 20000);
        const ColumnEdges edges(from, to, static_cast<std::size_t>(columns));
        ASSERT_EQ(edges.At(0), from);
        ASSERT_EQ(edges.At(static_cast<std::size_t>(columns)), to);
        const auto column = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(columns));
        const std::int64_t edge = edges.At(static_cast<std::size_t>(column));
        ASSERT_GE(ColumnOf(edge, from, to, columns), column);
        if (edge > from) {
            ASSERT_LT(ColumnOf(edge - 1, from, to, columns), column);
        }
    }
}

TEST(ColumnEdgesTest, AMicrosecondHasAllTimesInTheFirstColumn)
{
    const ColumnEdges edges(7, 8, 5);
    EXPECT_EQ(edges.At(0), 7);
    EXPECT_EQ(edges.At(1), 8);
    EXPECT_EQ(edges.At(5), 8);
}

TEST(ColumnEdgesTest, AllOfTimeDoesNotOverflow)
{
    constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    const ColumnEdges edges(kLeast, kMost, 20000);
    EXPECT_EQ(edges.At(0), kLeast);
    EXPECT_EQ(edges.At(10000), 0);
    EXPECT_EQ(edges.At(20000), kMost);
}

}  // namespace
}  // namespace zr::graph
