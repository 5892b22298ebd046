// What a store holds of a variable.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <gtest/gtest.h>
#include <limits>
#include <utility>
#include <vector>

namespace zr::test {

using TimedValues = std::vector<std::pair<std::int64_t, double>>;

inline TimedValues Stored(LoggerStore& store, const ZRBasicString& variable)
{
    class Collector final : public LoggerBlockVisitor {
    public:
        bool OnBlock(LoggerBlock& block) override
        {
            std::span<const std::int64_t> times;
            std::span<const double> blockValues;
            if (!block.Samples(times, blockValues)) {
                return false;
            }
            for (std::size_t i = 0; i < times.size(); ++i) {
                values.emplace_back(times[i], blockValues[i]);
            }
            return true;
        }
        TimedValues values;
    } collector;
    const std::unique_ptr<LoggerReader> reader = store.OpenReader();
    // A date far off on both sides, in microseconds.
    constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max() / 4;
    EXPECT_NE(reader, nullptr);
    EXPECT_TRUE(reader->ReadBlocks(variable, -kFar, kFar, LoggerNeed::Samples, collector)) << reader->Error();
    return collector.values;
}

}  // namespace zr::test
