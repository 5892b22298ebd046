// Blocks of logged samples as rows of a table.
#pragma once

#include "siblings/driversupport/store/BlockPacking.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/PostgresPipeline.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zr {

// A row of the table block. What it points to lives as long as the result.
struct PostgresBlock {
    std::int64_t series = 0;
    std::int64_t hour = 0;  // since 1970
    LoggerSummary summary;
    std::int64_t codec = 0;
    std::int64_t check = 0;
    std::span<const std::uint8_t> payload;
};

// Of a row whose columns are series, hour, samples, first_time, last_time, minimum, maximum, total, first_value,
// last_value, flags, codec, checksum and, if it was asked for, payload.
PostgresBlock ReadPostgresBlock(const PostgresResult& result, int row);

// False when the block is damaged.
bool UnpackPostgresBlock(const PostgresBlock& block, std::vector<std::int64_t>& times, std::vector<double>& values);

// What is wrong with a block, empty when nothing is. The vectors are used for unpacking.
std::string FaultOf(const PostgresBlock& block, std::vector<std::int64_t>& times, std::vector<double>& values);

// Enters a block or replaces it. Samples in order of time, at least one.
PostgresStatement WritePostgresBlock(std::int64_t series, std::int64_t hour, std::span<const std::int64_t> times,
                                     std::span<const double> values);

// The times that an hour has; of the first and the last hour that there is, no more than there are.
std::int64_t FirstTimeOf(std::int64_t hour);
std::int64_t LastTimeOf(std::int64_t hour);

// "block of Meter 1.U1 at 2024-01-31 15:00 UTC", for messages.
std::string PostgresBlockName(const std::string& variable, std::int64_t hour);

}  // namespace zr
