// The samples of the blocks that a store shows.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <map>

namespace zr::test {

// By time. Ends the reading at a block that can't be unpacked.
class SampleMap final : public LoggerBlockVisitor {
public:
    bool OnBlock(LoggerBlock& block) override
    {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        if (!block.Samples(times, values)) {
            return false;
        }
        for (std::size_t i = 0; i < times.size(); ++i) {
            samples[times[i]] = values[i];
        }
        return true;
    }

    std::map<std::int64_t, double> samples;
};

}  // namespace zr::test
