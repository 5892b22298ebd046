#include "siblings/driversupport/RecordArena.h"

#include <gtest/gtest.h>
#include <iterator>
#include <vector>

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

TEST(RecordArena, WhatIsAppendedFollowsWhatThereIs)
{
    RecordArena arena(2);
    std::vector<LoggedRecord*> records;
    std::vector<RecordIterator> places;
    for (const std::size_t size : {3u, 0u, 1u, 5000u, 2u, 40000u}) {
        const RecordChunk chunk = arena.Append(size);
        EXPECT_EQ(chunk.first, records.size());
        for (std::size_t i = 0; i < size; ++i) {
            chunk.times[i] = static_cast<std::int64_t>(10 * records.size());
            records.push_back(chunk.records + i);
            places.emplace_back(chunk.nodes + i);
            EXPECT_EQ(chunk.records[i].values, chunk.values + 2 * i);
        }
    }
    ASSERT_EQ(arena.Size(), records.size());
    std::size_t index = 0;
    for (RecordIterator record = arena.At(0); record != arena.At(arena.Size()); ++record, ++index) {
        ASSERT_EQ(*record, records[index]);
        ASSERT_EQ(record, places[index]);
        ASSERT_EQ(arena.At(index), record);
    }
    for (RecordIterator record = arena.At(arena.Size()); record != arena.At(0);) {
        --record;
        --index;
        ASSERT_EQ(*record, records[index]);
    }
}

TEST(RecordArena, FindsTheFirstRecordAtATimeOrAfterIt)
{
    RecordArena arena(1);
    EXPECT_EQ(arena.LowerBound(0), 0u);
    std::int64_t time = 0;
    for (const std::size_t size : {2u, 3u}) {
        const RecordChunk chunk = arena.Append(size);
        for (std::size_t i = 0; i < size; ++i) {
            chunk.times[i] = time += 10;
        }
    }
    EXPECT_EQ(arena.LowerBound(-1), 0u);
    EXPECT_EQ(arena.LowerBound(10), 0u);
    EXPECT_EQ(arena.LowerBound(11), 1u);
    EXPECT_EQ(arena.LowerBound(20), 1u);
    EXPECT_EQ(arena.LowerBound(21), 2u);
    EXPECT_EQ(arena.LowerBound(50), 4u);
    EXPECT_EQ(arena.LowerBound(51), 5u);
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
