// What the tests of stores on servers share: times, reading, comparing with what should be there.
#pragma once

#include "integration/postgres/PostgresServers.h"
#include "siblings/driversupport/store/PostgresLoggerStore.h"
#include "unit/loggerdata/StoreKinds.h"

#include <gtest/gtest.h>
#include <bit>
#include <limits>
#include <map>
#include <vector>

namespace zr::test {

inline constexpr std::int64_t kSecond = 1000000;
inline constexpr std::int64_t kHour = 3600 * kSecond;
inline constexpr std::int64_t kDay = 24 * kHour;
inline constexpr std::int64_t kStart = 1040000000 * kSecond / kHour * kHour;
inline constexpr std::int64_t kEver = std::numeric_limits<std::int64_t>::max();

// What a variable should hold: values by time.
using Expected = std::map<std::int64_t, double>;

// Until there is nothing left to do.
inline void Maintain(LoggerStore& store, std::int64_t now)
{
    LoggerStore::Upkeep upkeep = LoggerStore::Upkeep::More;
    while (upkeep == LoggerStore::Upkeep::More) {
        upkeep = store.Maintain(now);
    }
    EXPECT_EQ(upkeep, LoggerStore::Upkeep::Done) << store.Error();
}

inline BlockCollector Read(LoggerStore& store, const ZRBasicString& variable, std::int64_t from = 0,
                           std::int64_t to = kEver)
{
    BlockCollector collector;
    const auto reader = store.OpenReader();
    EXPECT_TRUE(reader->ReadBlocks(variable, from, to, LoggerNeed::Samples, collector)) << reader->Error();
    return collector;
}

// All of it, each once and bit for bit, and nothing else.
inline void ExpectHolds(LoggerStore& store, const ZRBasicString& variable, const Expected& expected)
{
    const BlockCollector read = Read(store, variable, std::numeric_limits<std::int64_t>::min());
    ASSERT_EQ(read.times.size(), expected.size());
    std::size_t i = 0;
    for (const auto& [time, value] : expected) {
        ASSERT_EQ(read.times[i], time) << i;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(read.values[i]), std::bit_cast<std::uint64_t>(value)) << i;
        ++i;
    }
}

inline bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

}  // namespace zr::test
