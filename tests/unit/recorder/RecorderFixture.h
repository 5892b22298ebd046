// What the tests of the recorder share: a clock that stands still, stores in memory, and what they hold.
#pragma once

#include "siblings/driversupport/recorder/RecorderFigures.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "support/ManualClock.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace zr::test {

constexpr std::int64_t kSecond = 1000000;
// Where ManualClock begins: 1 January 2024 UTC.
constexpr std::int64_t kMidnight = 1704067200 * kSecond;

using Samples = std::vector<std::pair<std::int64_t, double>>;

// All that a store has of a variable, times in seconds since kMidnight.
inline Samples SamplesOf(LoggerStore& store, const wchar* variable)
{
    class Collector final : public LoggerBlockVisitor {
    public:
        bool OnBlock(LoggerBlock& block) override
        {
            std::span<const std::int64_t> times;
            std::span<const double> values;
            EXPECT_TRUE(block.Samples(times, values));
            for (std::size_t i = 0; i < times.size(); ++i) {
                samples.emplace_back((times[i] - kMidnight) / kSecond, values[i]);
            }
            return true;
        }
        Samples samples;
    };
    Collector collector;
    const auto reader = store.OpenReader();
    EXPECT_TRUE(reader != nullptr &&
                reader->ReadBlocks(variable, std::numeric_limits<std::int64_t>::min(),
                                   std::numeric_limits<std::int64_t>::max(), LoggerNeed::Samples, collector))
        << store.Error();
    return collector.samples;
}

inline std::size_t CountKind(const std::vector<RecorderNotice>& notices, RecorderNotice::Kind kind)
{
    return static_cast<std::size_t>(std::count_if(
        notices.begin(), notices.end(), [kind](const RecorderNotice& notice) { return notice.kind == kind; }));
}

}  // namespace zr::test
