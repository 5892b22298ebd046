#include "siblings/driversupport/hours/HourCalendar.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace zr {

namespace {

constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kMinute = 60;
constexpr std::size_t kKindsOfSeason = 14;  // a weekday each, as a holiday and not

std::int64_t DayOf(std::int64_t local)
{
    return local / kDay - (local % kDay < 0 ? 1 : 0);
}

std::size_t HourTypeOf(const HourCalendar::Day& day, std::int64_t secondOfDay)
{
    std::size_t hourType = 0;
    for (const HourCalendar::Change& change : day) {
        if (change.minute * kMinute > secondOfDay) {
            break;
        }
        hourType = change.hourType;
    }
    return hourType;
}

void AddRun(std::vector<HourCalendar::Run>& runs, std::int64_t from, std::int64_t to, std::size_t hourType)
{
    if (from >= to) {
        return;
    }
    if (!runs.empty() && runs.back().hourType == hourType) {
        runs.back().to = to;
    } else {
        runs.push_back({from, to, hourType});
    }
}

}  // namespace

std::size_t YearDay(unsigned month, unsigned day)
{
    constexpr std::array<std::size_t, 12> kBefore = {0, 31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335};
    return kBefore[month - 1] + day - 1;
}

std::int64_t EasterSunday(int year)
{
    const int golden = year % 19;
    const int century = year / 100;
    const int ofCentury = year % 100;
    const int corrected = century - (century + 8) / 25 + 1;
    const int epact = (19 * golden + century - century / 4 - corrected / 3 + 15) % 30;
    const int toSunday = (32 + 2 * (century % 4) + 2 * (ofCentury / 4) - epact - ofCentury % 4) % 7;
    const int late = (golden + 11 * epact + 22 * toSunday) / 451;
    const int count = epact + toSunday - 7 * late + 114;
    const std::chrono::sys_days date = std::chrono::year(year) / (count / 31) / (count % 31 + 1);
    return date.time_since_epoch().count();
}

HourCalendar::HourCalendar()
{
    m_parts.days = {{{0, 0}}};
    m_parts.dayOfKinds.assign(kKindsOfSeason, 0);
}

HourCalendar::HourCalendar(Parts parts) : m_parts(std::move(parts))
{
    std::sort(m_parts.holidays.begin(), m_parts.holidays.end());
}

std::size_t HourCalendar::KindOf(std::size_t season, unsigned weekday, bool isHoliday)
{
    return season * kKindsOfSeason + weekday * 2 + (isHoliday ? 1 : 0);
}

std::size_t HourCalendar::HourTypeAt(std::int64_t local) const
{
    const std::int64_t day = DayOf(local);
    return HourTypeOf(DayAt(day), local - day * kDay);
}

std::vector<HourCalendar::Run> HourCalendar::Runs(const TimeZone& zone, std::int64_t from, std::int64_t to) const
{
    std::vector<Run> runs;
    for (std::int64_t utc = from; utc < to;) {
        const TimeZone::Span span = zone.SpanAt(utc);
        const std::int64_t end = std::min(span.end, to);
        AddRuns(utc, end, span.offset, runs);
        utc = end;
    }
    return runs;
}

const HourCalendar::Day& HourCalendar::DayAt(std::int64_t day) const
{
    const std::chrono::sys_days date{std::chrono::days(day)};
    const std::chrono::year_month_day ymd(date);
    const std::size_t yearDay = YearDay(unsigned{ymd.month()}, unsigned{ymd.day()});
    const bool isHoliday = IsHoliday(day, static_cast<int>(ymd.year()), yearDay);
    const unsigned weekday = std::chrono::weekday(date).c_encoding();
    return m_parts.days[m_parts.dayOfKinds[KindOf(m_parts.seasons[yearDay], weekday, isHoliday)]];
}

bool HourCalendar::IsHoliday(std::int64_t day, int year, std::size_t yearDay) const
{
    if (m_parts.yearlyHolidays[yearDay] || std::binary_search(m_parts.holidays.begin(), m_parts.holidays.end(), day)) {
        return true;
    }
    if (m_parts.easterHolidays.empty()) {
        return false;
    }
    const std::int64_t easter = EasterSunday(year);
    return std::any_of(m_parts.easterHolidays.begin(), m_parts.easterHolidays.end(),
                       [&](int after) { return easter + after == day; });
}

void HourCalendar::AddRuns(std::int64_t from, std::int64_t to, std::int32_t offset, std::vector<Run>& runs) const
{
    for (std::int64_t day = DayOf(from + offset); day * kDay - offset < to; ++day) {
        const std::int64_t midnight = day * kDay - offset;  // as it is counted with this offset
        const Day& changes = DayAt(day);
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const std::int64_t end =
                i + 1 < changes.size() ? midnight + changes[i + 1].minute * kMinute : midnight + kDay;
            AddRun(runs, std::max(midnight + changes[i].minute * kMinute, from), std::min(end, to),
                   changes[i].hourType);
        }
    }
}

}  // namespace zr
