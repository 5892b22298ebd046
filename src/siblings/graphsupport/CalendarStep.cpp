#include "siblings/graphsupport/CalendarStep.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>

namespace zr::graph {

namespace {

using Unit = CalendarStep::Unit;

constexpr std::int64_t kSecondsOfDay = 86400;
constexpr std::int64_t kMicrosOfMinute = 60 * kMicrosOfSecond;
constexpr std::int64_t kMicrosOfHour = 60 * kMicrosOfMinute;
constexpr std::int64_t kDaysOfShortestMonth = 28;
constexpr std::int64_t kDaysOfShortestYear = 365;

constexpr std::array kSteps = {
    CalendarStep{Unit::Microsecond, 1},
    CalendarStep{Unit::Microsecond, 2},
    CalendarStep{Unit::Microsecond, 5},
    CalendarStep{Unit::Microsecond, 10},
    CalendarStep{Unit::Microsecond, 20},
    CalendarStep{Unit::Microsecond, 50},
    CalendarStep{Unit::Microsecond, 100},
    CalendarStep{Unit::Microsecond, 200},
    CalendarStep{Unit::Microsecond, 500},
    CalendarStep{Unit::Microsecond, 1000},
    CalendarStep{Unit::Microsecond, 2000},
    CalendarStep{Unit::Microsecond, 5000},
    CalendarStep{Unit::Microsecond, 10000},
    CalendarStep{Unit::Microsecond, 20000},
    CalendarStep{Unit::Microsecond, 50000},
    CalendarStep{Unit::Microsecond, 100000},
    CalendarStep{Unit::Microsecond, 200000},
    CalendarStep{Unit::Microsecond, 500000},
    CalendarStep{Unit::Microsecond, kMicrosOfSecond},
    CalendarStep{Unit::Microsecond, 2 * kMicrosOfSecond},
    CalendarStep{Unit::Microsecond, 5 * kMicrosOfSecond},
    CalendarStep{Unit::Microsecond, 10 * kMicrosOfSecond},
    CalendarStep{Unit::Microsecond, 15 * kMicrosOfSecond},
    CalendarStep{Unit::Microsecond, 30 * kMicrosOfSecond},
    CalendarStep{Unit::Microsecond, kMicrosOfMinute},
    CalendarStep{Unit::Microsecond, 2 * kMicrosOfMinute},
    CalendarStep{Unit::Microsecond, 5 * kMicrosOfMinute},
    CalendarStep{Unit::Microsecond, 10 * kMicrosOfMinute},
    CalendarStep{Unit::Microsecond, 15 * kMicrosOfMinute},
    CalendarStep{Unit::Microsecond, 30 * kMicrosOfMinute},
    CalendarStep{Unit::Microsecond, kMicrosOfHour},
    CalendarStep{Unit::Microsecond, 2 * kMicrosOfHour},
    CalendarStep{Unit::Microsecond, 3 * kMicrosOfHour},
    CalendarStep{Unit::Microsecond, 6 * kMicrosOfHour},
    CalendarStep{Unit::Microsecond, 12 * kMicrosOfHour},
    CalendarStep{Unit::Day, 1},
    CalendarStep{Unit::Week, 1},
    CalendarStep{Unit::Month, 1},
    CalendarStep{Unit::Month, 3},
    CalendarStep{Unit::Month, 6},
    CalendarStep{Unit::Month, 12},
    CalendarStep{Unit::Month, 24},
    CalendarStep{Unit::Month, 60},
    CalendarStep{Unit::Month, 120},
    CalendarStep{Unit::Month, 240},
    CalendarStep{Unit::Month, 600},
    CalendarStep{Unit::Month, 1200},
    CalendarStep{Unit::Month, 2400},
    CalendarStep{Unit::Month, 6000},
    CalendarStep{Unit::Month, 12000},
};

std::int64_t FloorDivide(std::int64_t value, std::int64_t by)
{
    return value / by - (value % by < 0 ? 1 : 0);
}

std::int64_t CeilDivide(std::int64_t value, std::int64_t by)
{
    return -FloorDivide(-value, by);
}

void AppendByClock(std::int64_t count, Zoom stretch, const TimeZone& zone, std::vector<std::int64_t>& out)
{
    std::int64_t from = stretch.from;
    while (from <= stretch.to) {
        const TimeZone::Span span = zone.SpanAt(FloorDivide(from, kMicrosOfSecond));
        const bool endsWithin = span.end <= FloorDivide(stretch.to, kMicrosOfSecond);
        const std::int64_t last = endsWithin ? span.end * kMicrosOfSecond - 1 : stretch.to;
        const std::int64_t offset = span.offset * kMicrosOfSecond;
        for (std::int64_t local = CeilDivide(from + offset, count) * count; local - offset <= last; local += count) {
            out.push_back(local - offset);
        }
        if (!endsWithin) {
            return;
        }
        from = last + 1;
    }
}

// The place of a step at a day or before it, and the one that follows it.
std::int64_t PlaceBefore(const CalendarStep& step, std::int64_t day, int firstDayOfWeek)
{
    if (step.unit == Unit::Day) {
        return day;
    }
    if (step.unit == Unit::Week) {
        constexpr std::int64_t kWeekdayOfFirst = 4;  // 1 January 1970 was a Thursday
        const std::int64_t since = day + kWeekdayOfFirst - (firstDayOfWeek - 1);
        return day - (since - FloorDivide(since, 7) * 7);
    }
    const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(day))};
    const std::int64_t months = int{date.year()} * std::int64_t{12} + unsigned{date.month()} - 1;
    const std::int64_t first = FloorDivide(months, step.count) * step.count;
    const std::chrono::sys_days begin =
        std::chrono::year(static_cast<int>(FloorDivide(first, 12))) /
        std::chrono::month(static_cast<unsigned>(first - FloorDivide(first, 12) * 12) + 1) / std::chrono::day(1);
    return begin.time_since_epoch().count();
}

std::int64_t PlaceAfter(const CalendarStep& step, std::int64_t place)
{
    if (step.unit == Unit::Day) {
        return place + 1;
    }
    if (step.unit == Unit::Week) {
        return place + 7;
    }
    const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(place))};
    const std::chrono::sys_days next = date + std::chrono::months(step.count);
    return next.time_since_epoch().count();
}

}  // namespace

std::int64_t CalendarStep::Shortest() const
{
    switch (unit) {
        case Unit::Microsecond:
            return count;
        case Unit::Day:
            return count * kMicrosOfDay;
        case Unit::Week:
            return count * 7 * kMicrosOfDay;
        case Unit::Month:
            break;
    }
    constexpr std::int64_t kMonthsOfYear = 12;
    return (count / kMonthsOfYear * kDaysOfShortestYear + count % kMonthsOfYear * kDaysOfShortestMonth) * kMicrosOfDay;
}

bool CalendarStep::IsMultipleOf(const CalendarStep& finer) const
{
    if (unit == finer.unit) {
        return count % finer.count == 0;
    }
    // Of a microsecond's multiples all divide the day; months begin on any day of the week.
    return unit != Unit::Microsecond && (finer.unit == Unit::Microsecond || finer.unit == Unit::Day);
}

std::span<const CalendarStep> CalendarSteps()
{
    return kSteps;
}

void AppendPlaces(const CalendarStep& step, Zoom stretch, const TimeZone& zone, int firstDayOfWeek,
                  std::vector<std::int64_t>& out)
{
    if (stretch.from > stretch.to) {
        return;
    }
    if (step.unit == Unit::Microsecond) {
        AppendByClock(step.count, stretch, zone, out);
        return;
    }
    // A day that is skipped as a whole would begin when the next does.
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
    std::int64_t place = PlaceBefore(step, LocalDay(stretch.from, zone), firstDayOfWeek);
    for (;; place = PlaceAfter(step, place)) {
        const std::int64_t time = zone.ToUtc(place * kSecondsOfDay) * kMicrosOfSecond;
        if (time > stretch.to) {
            return;
        }
        if (time >= stretch.from && time > last) {
            out.push_back(time);
            last = time;
        }
    }
}

std::int64_t LocalMicros(std::int64_t time, const TimeZone& zone)
{
    return time + zone.SpanAt(FloorDivide(time, kMicrosOfSecond)).offset * kMicrosOfSecond;
}

std::int64_t LocalDay(std::int64_t time, const TimeZone& zone)
{
    return FloorDivide(LocalMicros(time, zone), kMicrosOfDay);
}

}  // namespace zr::graph
