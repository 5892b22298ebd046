#include "siblings/driversupport/store/BlockPacking.h"

#include "siblings/driversupport/store/BlockCodec.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace zr {

namespace {

// Microseconds of the unit of times, by codec less one.
constexpr std::array<std::int64_t, 3> kUnits = {1, 1000, 1000000};

std::int64_t Wrapped(std::uint64_t value)
{
    return static_cast<std::int64_t>(value);
}

// False when it isn't within 2^53.
bool WholeSum(std::span<const double> values, int decimals, std::int64_t& sum)
{
    double rough = 0.0;
    sum = 0;
    for (const double value : values) {
        std::int64_t whole = 0;
        if (!WholeOf(value, decimals, whole) || std::fabs(rough += static_cast<double>(whole)) > kMaxWhole) {
            return false;
        }
        sum += whole;
    }
    return true;
}

// Up to eight bytes, the first lowest.
std::uint64_t WordOf(std::span<const std::uint8_t> bytes)
{
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        word |= std::uint64_t{bytes[i]} << (8 * i);
    }
    return word;
}

bool AreTimesOfHour(std::span<const std::int64_t> times, std::int64_t hour)
{
    return !times.empty() && HourOf(times.front()) == hour && HourOf(times.back()) == hour &&
           std::adjacent_find(times.begin(), times.end(), std::greater_equal<>()) == times.end();
}

}  // namespace

std::int64_t HourOf(std::int64_t time)
{
    return time / kHourMicros - (time % kHourMicros < 0 ? 1 : 0);
}

std::int64_t StartOfHour(std::int64_t hour)
{
    return Wrapped(static_cast<std::uint64_t>(hour) * static_cast<std::uint64_t>(kHourMicros));
}

StoredSummary SummariseBlock(std::span<const std::int64_t> times, std::span<const double> values)
{
    StoredSummary stored{Summarise(times, values), -1};
    const int decimals = stored.summary.isFinite ? DecimalsOf(values) : -1;
    std::int64_t sum = 0;
    std::int64_t same = 0;
    if (decimals >= 0 && WholeSum(values, decimals, sum)) {
        const double value = ValueOf(sum, decimals);
        if (WholeOf(value, decimals, same) && same == sum) {
            stored.summary.sum = value;
            stored.decimals = decimals;
        }
    }
    return stored;
}

PackedBlock PackBlock(std::int64_t series, std::int64_t hour, std::span<const std::int64_t> times,
                      std::span<const double> values)
{
    const std::int64_t start = StartOfHour(hour);
    std::size_t unit = kUnits.size() - 1;
    std::vector<std::int64_t> within(times.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        within[i] = Wrapped(static_cast<std::uint64_t>(times[i]) - static_cast<std::uint64_t>(start));
        while (within[i] % kUnits[unit] != 0) {
            --unit;
        }
    }
    std::for_each(within.begin(), within.end(), [&](std::int64_t& time) { time /= kUnits[unit]; });
    PackedBlock block;
    block.codec = static_cast<std::int64_t>(unit) + 1;
    block.payload = EncodeBlock(within, values);
    block.check = CheckOf(series, hour, block.codec, block.payload);
    block.stored = SummariseBlock(times, values);
    return block;
}

bool UnpackBlock(std::int64_t series, std::int64_t hour, std::int64_t codec, std::int64_t check,
                 std::span<const std::uint8_t> payload, std::vector<std::int64_t>& times, std::vector<double>& values)
{
    return codec >= 1 && static_cast<std::size_t>(codec) <= kUnits.size() &&
           CheckOf(series, hour, codec, payload) == check &&
           DecodeBlock(payload, times, values, StartOfHour(hour), kUnits[static_cast<std::size_t>(codec - 1)]) &&
           times.size() == values.size() && AreTimesOfHour(times, hour);
}

void MergeSamples(std::span<const LoggerSample> later, std::vector<std::int64_t>& times, std::vector<double>& values)
{
    std::vector<std::int64_t> mergedTimes;
    std::vector<double> mergedValues;
    mergedTimes.reserve(times.size() + later.size());
    mergedValues.reserve(times.size() + later.size());
    std::size_t old = 0;
    const auto takeOldBefore = [&](std::int64_t time) {
        for (; old < times.size() && times[old] < time; ++old) {
            mergedTimes.push_back(times[old]);
            mergedValues.push_back(values[old]);
        }
    };
    for (const LoggerSample& sample : later) {
        takeOldBefore(sample.time);
        old += old < times.size() && times[old] == sample.time ? 1u : 0u;
        mergedTimes.push_back(sample.time);
        mergedValues.push_back(sample.value);
    }
    mergedTimes.insert(mergedTimes.end(), times.begin() + static_cast<std::ptrdiff_t>(old), times.end());
    mergedValues.insert(mergedValues.end(), values.begin() + static_cast<std::ptrdiff_t>(old), values.end());
    times = std::move(mergedTimes);
    values = std::move(mergedValues);
}

std::int64_t CheckOf(std::int64_t series, std::int64_t place, std::int64_t kind, std::span<const std::uint8_t> bytes)
{
    std::uint64_t hash = bytes.size();
    const auto mix = [&hash](std::uint64_t word) {
        hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 32;
    };
    mix(static_cast<std::uint64_t>(series));
    mix(static_cast<std::uint64_t>(place));
    mix(static_cast<std::uint64_t>(kind));
    for (; bytes.size() >= 8; bytes = bytes.subspan(8)) {
        mix(WordOf(bytes.first(8)));
    }
    if (!bytes.empty()) {
        mix(WordOf(bytes));
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(hash));
}

}  // namespace zr
