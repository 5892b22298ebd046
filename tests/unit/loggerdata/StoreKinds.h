// The stores that a test program holds against the contract of LoggerStoreTest.cpp, and what reads them.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <gtest/gtest.h>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zr::test {

struct StoreKind {
    std::string name;
    std::function<std::unique_ptr<LoggerStore>()> make;  // an empty one
};

// Each program has its own.
std::vector<StoreKind> StoreKinds();

// Keeps all that it is shown.
class BlockCollector final : public LoggerBlockVisitor {
public:
    bool OnBlock(LoggerBlock& block) override
    {
        std::span<const std::int64_t> blockTimes;
        std::span<const double> blockValues;
        EXPECT_TRUE(block.Samples(blockTimes, blockValues));
        EXPECT_EQ(blockTimes.size(), blockValues.size());
        EXPECT_EQ(block.summary.count, blockTimes.size());
        times.insert(times.end(), blockTimes.begin(), blockTimes.end());
        values.insert(values.end(), blockValues.begin(), blockValues.end());
        summaries.push_back(block.summary);
        return summaries.size() < limit;
    }

    std::size_t limit = std::numeric_limits<std::size_t>::max();
    std::vector<std::int64_t> times;
    std::vector<double> values;
    std::vector<LoggerSummary> summaries;
};

}  // namespace zr::test
