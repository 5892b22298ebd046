#include "siblings/driversupport/RecordArena.h"

#include <gtest/gtest.h>
#include <iterator>

namespace zr {
namespace {

TEST(RecordArena, LinksTheRecordsBothWays)
{
    RecordArena arena(3, 2);
    std::size_t index = 0;
    for (RecordIterator record = arena.At(0); record != arena.At(3); ++record, ++index) {
        EXPECT_EQ(*record, &arena.Record(index));
    }
    EXPECT_EQ(index, 3u);
    for (RecordIterator record = arena.At(3); record != arena.At(0);) {
        --record;
        --index;
        EXPECT_EQ(*record, &arena.Record(index));
    }
    RecordIterator record = arena.At(1);
    EXPECT_EQ(*record++, &arena.Record(1));
    EXPECT_EQ(*record--, &arena.Record(2));
    EXPECT_EQ(*record, &arena.Record(1));
}

TEST(RecordArena, EveryRecordHasItsOwnValues)
{
    RecordArena arena(3, 2);
    EXPECT_EQ(arena.Record(1).values, arena.Record(0).values + 2);
    EXPECT_EQ(arena.Record(2).values, arena.Record(0).values + 4);
}

TEST(RecordArena, OfNothingItsBeginIsItsEnd)
{
    RecordArena arena;
    EXPECT_EQ(arena.Size(), 0u);
    EXPECT_EQ(arena.At(0), arena.At(arena.Size()));
}

TEST(RecordArena, PlacesStayWhenItIsMoved)
{
    RecordArena arena(2, 1);
    const RecordIterator first = arena.At(0);
    RecordArena moved(std::move(arena));
    EXPECT_EQ(moved.At(0), first);
    EXPECT_EQ(std::distance(first, moved.At(2)), 2);
}

}  // namespace
}  // namespace zr
