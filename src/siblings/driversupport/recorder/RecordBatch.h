// Samples on their way from the sampling thread to a store or a spool.
#pragma once

#include <cstdint>
#include <vector>

namespace zr {

struct RecordedValue {
    int variable = 0;  // of RecordNames
    double value = 0.0;

    friend bool operator==(const RecordedValue&, const RecordedValue&) = default;
};

// The samples of one data set at one time, as far as they belong to one node.
struct RecordBatch {
    std::int64_t time = 0;   // microseconds UTC
    int dataSet = 0;         // of RecordNames
    bool isEarlier = false;  // spooled before this program began to record
    std::vector<RecordedValue> values;

    friend bool operator==(const RecordBatch&, const RecordBatch&) = default;
};

}  // namespace zr
