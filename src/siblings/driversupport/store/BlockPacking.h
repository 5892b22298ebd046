// Blocks and summaries in the form in which a store keeps them. docs/formats/logger-store.md tells the format.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/WholeNumbers.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zr {

inline constexpr std::int64_t kHourMicros = 3600 * std::int64_t{1000000};

// Hours since 1 January 1970 UTC; those before count down.
std::int64_t HourOf(std::int64_t time);
// The time at which an hour begins.
std::int64_t StartOfHour(std::int64_t hour);

// A summary, and whether its numbers are whole ones at so many decimals.
struct StoredSummary {
    LoggerSummary summary;
    int decimals = -1;  // 0 to 15; -1: its numbers are doubles
};

// As Summarise, but that the sum of values that are decimals is that of their whole numbers, which no rounding blurs.
StoredSummary SummariseBlock(std::span<const std::int64_t> times, std::span<const double> values);

struct PackedBlock {
    std::int64_t codec = 0;  // the unit of the payload's times
    std::int64_t check = 0;  // of its place and its payload
    std::vector<std::uint8_t> payload;
    StoredSummary stored;
};

// Samples of one hour in order of time, at least one, at most kMaxBlockSamples.
PackedBlock PackBlock(std::int64_t series, std::int64_t hour, std::span<const std::int64_t> times,
                      std::span<const double> values);
// False for what PackBlock didn't write for that place; what it gives is in order of time and within the hour.
bool UnpackBlock(std::int64_t series, std::int64_t hour, std::int64_t codec, std::int64_t check,
                 std::span<const std::uint8_t> payload, std::vector<std::int64_t>& times, std::vector<double>& values);

// Puts samples between others, both in order of time; of two at the same time the one of `later` stays.
void MergeSamples(std::span<const LoggerSample> later, std::vector<std::int64_t>& times, std::vector<double>& values);

// A checksum of bytes and of the place that they belong to, as a signed number of 32 bits.
std::int64_t CheckOf(std::int64_t series, std::int64_t place, std::int64_t kind, std::span<const std::uint8_t> bytes);

}  // namespace zr
