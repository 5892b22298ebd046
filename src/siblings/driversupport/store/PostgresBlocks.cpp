#include "siblings/driversupport/store/PostgresBlocks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cstdio>
#include <limits>

namespace zr {

namespace {

constexpr std::int64_t kRising = 1;
constexpr std::int64_t kFinite = 2;

bool IsSame(double left, double right)
{
    return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

bool IsSame(const LoggerSummary& left, const LoggerSummary& right)
{
    if (left.firstTime != right.firstTime || left.lastTime != right.lastTime || left.count != right.count ||
        left.isFinite != right.isFinite) {
        return false;
    }
    // Of values that are not finite only the flag tells.
    return !left.isFinite || (left.isRising == right.isRising && IsSame(left.minimum, right.minimum) &&
                              IsSame(left.maximum, right.maximum) && IsSame(left.sum, right.sum) &&
                              IsSame(left.first, right.first) && IsSame(left.last, right.last));
}

}  // namespace

PostgresBlock ReadPostgresBlock(const PostgresResult& result, int row)
{
    PostgresBlock block;
    block.series = result.Integer(row, 0);
    block.hour = result.Integer(row, 1);
    block.summary.count = static_cast<std::size_t>(std::max<std::int64_t>(result.Integer(row, 2), 0));
    block.summary.firstTime = result.Integer(row, 3);
    block.summary.lastTime = result.Integer(row, 4);
    block.summary.minimum = result.Double(row, 5);
    block.summary.maximum = result.Double(row, 6);
    block.summary.sum = result.Double(row, 7);
    block.summary.first = result.Double(row, 8);
    block.summary.last = result.Double(row, 9);
    block.summary.isRising = (result.Integer(row, 10) & kRising) != 0;
    block.summary.isFinite = (result.Integer(row, 10) & kFinite) != 0;
    block.codec = result.Integer(row, 11);
    block.check = result.Integer(row, 12);
    block.payload = result.Bytes(row, 13);
    return block;
}

bool UnpackPostgresBlock(const PostgresBlock& block, std::vector<std::int64_t>& times, std::vector<double>& values)
{
    return UnpackBlock(block.series, block.hour, block.codec, block.check, block.payload, times, values) &&
           times.size() == block.summary.count;
}

std::string FaultOf(const PostgresBlock& block, std::vector<std::int64_t>& times, std::vector<double>& values)
{
    if (!UnpackPostgresBlock(block, times, values)) {
        return "is damaged";
    }
    return IsSame(SummariseBlock(times, values).summary, block.summary) ? "" : "tells other sums than it holds";
}

PostgresStatement WritePostgresBlock(std::int64_t series, std::int64_t hour, std::span<const std::int64_t> times,
                                     std::span<const double> values)
{
    constexpr const char* kSql =
        "insert into block (series, hour, samples, first_time, last_time, minimum, maximum, total, first_value,"
        " last_value, flags, codec, checksum, payload)"
        " values ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, $13, $14)"
        " on conflict (series, hour) do update set samples = excluded.samples, first_time = excluded.first_time,"
        " last_time = excluded.last_time, minimum = excluded.minimum, maximum = excluded.maximum,"
        " total = excluded.total, first_value = excluded.first_value, last_value = excluded.last_value,"
        " flags = excluded.flags, codec = excluded.codec, checksum = excluded.checksum, payload = excluded.payload";
    const PackedBlock packed = PackBlock(series, hour, times, values);
    const LoggerSummary& summary = packed.stored.summary;
    PostgresStatement statement{kSql, {}};
    statement.values.Integer(series)
        .Integer(hour)
        .Integer(static_cast<std::int64_t>(summary.count))
        .Integer(summary.firstTime)
        .Integer(summary.lastTime)
        .Double(summary.minimum)
        .Double(summary.maximum)
        .Double(summary.sum)
        .Double(summary.first)
        .Double(summary.last)
        .Integer((summary.isRising ? kRising : 0) | (summary.isFinite ? kFinite : 0))
        .Integer(packed.codec)
        .Integer(packed.check)
        .Bytes(packed.payload);
    return statement;
}

std::int64_t FirstTimeOf(std::int64_t hour)
{
    constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();
    return hour <= HourOf(kFirst) ? kFirst : StartOfHour(hour);
}

std::int64_t LastTimeOf(std::int64_t hour)
{
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
    return hour >= HourOf(kLast) ? kLast : StartOfHour(hour) + (kHourMicros - 1);
}

std::string PostgresBlockName(const std::string& variable, std::int64_t hour)
{
    const std::chrono::sys_time<std::chrono::hours> start{std::chrono::hours(hour)};
    const auto day = std::chrono::floor<std::chrono::days>(start);
    const std::chrono::year_month_day date(day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:00 UTC", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>((start - day).count()));
    return "block of " + variable + " at " + text.data();
}

}  // namespace zr
