#include "siblings/tools/TimeZone.h"

#include "platform/LocalTime.h"

#include <algorithm>
#include <chrono>

namespace zr {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

std::int32_t SystemOffset(std::int64_t utc)
{
    LocalTime local;
    if (!ToLocalTime(std::chrono::system_clock::time_point(std::chrono::seconds(utc)), local)) {
        return 0;
    }
    const std::chrono::sys_days day = std::chrono::year(local.year) /
                                      std::chrono::month(static_cast<unsigned>(local.month)) /
                                      std::chrono::day(static_cast<unsigned>(local.day));
    const std::int64_t ofDay = (local.hour * 60 + local.minute) * 60 + local.second;
    return static_cast<std::int32_t>(day.time_since_epoch().count() * kSecondsPerDay + ofDay - utc);
}

// The first second that has the offset of `after`; the one of `before` is another.
std::int64_t ChangeBetween(std::int64_t before, std::int64_t after)
{
    const std::int32_t offset = SystemOffset(after);
    while (after - before > 1) {
        const std::int64_t middle = before + (after - before) / 2;
        (SystemOffset(middle) == offset ? after : before) = middle;
    }
    return after;
}

TimeZone& ZoneInForce()
{
    static TimeZone zone = TimeZone::System();
    return zone;
}

}  // namespace

TimeZone::TimeZone(std::int32_t firstOffset, std::vector<std::pair<std::int64_t, std::int32_t>> changes)
    : m_firstOffset(firstOffset), m_changes(std::move(changes))
{
}

TimeZone TimeZone::System()
{
    std::vector<std::pair<std::int64_t, std::int32_t>> changes;
    const std::int32_t firstOffset = SystemOffset(kFirstZoneSecond);
    std::int32_t offset = firstOffset;
    // No zone changes twice within a day.
    for (std::int64_t utc = kFirstZoneSecond; utc < kLastZoneSecond; utc += kSecondsPerDay) {
        const std::int32_t next = SystemOffset(utc + kSecondsPerDay);
        if (next != offset) {
            changes.emplace_back(ChangeBetween(utc, utc + kSecondsPerDay), next);
            offset = next;
        }
    }
    return {firstOffset, std::move(changes)};
}

TimeZone::Span TimeZone::SpanAt(std::int64_t utc) const
{
    const auto next = std::upper_bound(m_changes.begin(), m_changes.end(), utc,
                                       [](std::int64_t moment, const auto& change) { return moment < change.first; });
    Span span;
    span.offset = m_firstOffset;
    if (next != m_changes.begin()) {
        span.begin = std::prev(next)->first;
        span.offset = std::prev(next)->second;
    }
    if (next != m_changes.end()) {
        span.end = next->first;
    }
    return span;
}

std::int64_t TimeZone::ToUtc(std::int64_t local) const
{
    // No offset is longer than a day, so that the span a day before isn't a later one.
    Span span = SpanAt(local - 2 * kSecondsPerDay);
    while (local - span.offset >= span.end) {
        span = SpanAt(span.end);
    }
    return std::max(local - span.offset, span.begin);
}

const TimeZone& PlantZone()
{
    return ZoneInForce();
}

void SetPlantZone(TimeZone zone)
{
    ZoneInForce() = std::move(zone);
}

}  // namespace zr
