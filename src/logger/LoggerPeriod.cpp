#include "logger/LoggerPeriod.h"

#include "siblings/driversupport/VariableStore.h"

#include <algorithm>
#include <limits>

namespace zr::logger {

namespace {

constexpr std::int32_t kSecondsPerDay = 86400;
constexpr std::int32_t kSecondsOfLongMonth = 31 * kSecondsPerDay;
constexpr std::int32_t kCounter = static_cast<std::int32_t>(VariableClass::Counter);

struct Calendar {
    int day = 0;
    int month = 0;
    int year = 0;
};

Calendar CalendarOf(const ZRDateTime& date)
{
    Calendar calendar;
    ZRDateTime::DateTime2DMY(date.seconds, calendar.day, calendar.month, calendar.year, true);
    calendar.year += 1999;
    return calendar;
}

ZRDateTime FirstOf(int year, int month)
{
    ZRDateTime date;
    date.SetDateTime(year, month, 1, 0, 0, 0, 0, 0);
    return date;
}

// Day 1 of the month that is so many months away, at most a year.
ZRDateTime FirstOfMonthAway(const ZRDateTime& date, int months)
{
    const Calendar calendar = CalendarOf(date);
    const int month = calendar.month + months;
    if (month < 1) {
        return FirstOf(calendar.year - 1, month + 12);
    }
    if (month > 12) {
        return FirstOf(calendar.year + 1, month - 12);
    }
    return FirstOf(calendar.year, month);
}

ZRDateTime DaysAway(const ZRDateTime& date, int days)
{
    return date + ZRDateTimeSpan(days * kSecondsPerDay, 0);
}

ZRDateTime MidnightOf(const ZRDateTime& date)
{
    return {date.seconds - date.seconds % kSecondsPerDay, 0};
}

// The unit without its direction; 0, which is none, for what has no opposite.
int UnitOf(int groupBy)
{
    if (groupBy == std::numeric_limits<int>::min()) {
        return 0;
    }
    return groupBy < 0 ? -groupBy : groupBy;
}

bool HasOtherThanCounters(ZRLoggerInfo& info)
{
    return std::any_of(info.variables.begin(), info.variables.end(), [](const ZRDriverVariable* variable) {
        ZRDeviceDriver::tagSVariableInfo told;
        return variable->Info(told) && told.infoCode != kCounter;
    });
}

}  // namespace

ZRDateTime AdjustToGroupBy(const ZRDateTime& date, int groupBy, int firstDayOfWeek)
{
    if (!date.IsValid()) {
        return date;
    }
    switch (groupBy) {
        case kGroupByDay:
            return MidnightOf(date);
        case kGroupByWeek: {
            const int days = date.DayOfWeek() - firstDayOfWeek;
            return DaysAway(MidnightOf(date), -(days < 0 ? days + 7 : days));
        }
        case kGroupByMonth:
            return FirstOfMonthAway(date, 0);
        case kGroupByQuarter:
            return FirstOfMonthAway(date, -((CalendarOf(date).month - 1) % 3));
        case kGroupByYear:
            return FirstOf(CalendarOf(date).year, 1);
        default:
            return date;
    }
}

ZRDateTime AddGroupByUnit(const ZRDateTime& date, int groupBy, int firstDayOfWeek)
{
    const int unit = UnitOf(groupBy);
    const ZRDateTime start = AdjustToGroupBy(date, unit, firstDayOfWeek);
    if (start != date) {
        return start;
    }
    return AdjustToGoTo(date, groupBy);
}

ZRDateTime AdjustToGoTo(const ZRDateTime& date, int groupBy)
{
    if (!date.IsValid()) {
        return date;
    }
    const int direction = groupBy < 0 ? -1 : 1;
    switch (UnitOf(groupBy)) {
        case kGroupByDay:
            return DaysAway(date, direction);
        case kGroupByWeek:
            return DaysAway(date, 7 * direction);
        case kGroupByMonth:
            return FirstOfMonthAway(date, direction);
        case kGroupByQuarter:
            return FirstOfMonthAway(date, 3 * direction);
        case kGroupByYear:
            return FirstOf(CalendarOf(date).year + direction, 1);
        default:
            return date;
    }
}

bool IsBadCombination(unsigned groupBy, int seconds)
{
    switch (groupBy) {
        case kGroupByDay:
            return seconds >= kSecondsPerDay;
        case kGroupByWeek:
        case kGroupByMonth:
            return seconds >= kSecondsOfLongMonth;
        default:
            return false;
    }
}

ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy, const ZRLoggerInfo& info)
{
    ZRLoggerInfo copy(info);
    copy.Lock();
    const bool hasOthers = HasOtherThanCounters(copy);
    ZRDateTimeSpan period;
    switch (groupBy) {
        case kGroupByDay:
            period.SetDateTimeSpan(0, hasOthers ? 0 : 1, 0, 0, 0, 0);
            break;
        case kGroupByWeek:
            period.SetDateTimeSpan(hasOthers ? 0 : 1, 0, hasOthers ? 30 : 0, 0, 0, 0);
            break;
        case kGroupByMonth:
            period.SetDateTimeSpan(hasOthers ? 0 : 1, hasOthers ? 1 : 0, 0, 0, 0, 0);
            break;
        case kGroupByQuarter:
            period.SetDateTimeSpan(hasOthers ? 0 : 31, hasOthers ? 1 : 0, 0, 0, 0, 0);
            break;
        case kGroupByYear:
            period.SetDateTimeSpan(hasOthers ? 1 : 31, 0, 0, 0, 0, 0);
            break;
        default:
            break;
    }
    return period;
}

ZRDateTimeSpan AutomaticPeriod()
{
    ZRDateTimeSpan span;
    span.SetDateTimeSpan(-1, -1, -1, -1, 0, 0);
    return span;
}

ZRDateTimeSpan SpanOf(const PeriodEntry& entry)
{
    ZRDateTimeSpan span;
    span.SetDateTimeSpan(entry.days, entry.hours, entry.minutes, entry.seconds, 0, 0);
    return span;
}

const PeriodEntry* FindPeriod(unsigned id)
{
    const auto* const found =
        std::find_if(kPeriods.begin(), kPeriods.end(), [id](const PeriodEntry& entry) { return entry.id == id; });
    return found != kPeriods.end() ? found : nullptr;
}

const GroupUnit* FindGroupUnit(unsigned id)
{
    const auto* const found = std::find_if(kGroupUnits.begin(), kGroupUnits.end(), [id](const GroupUnit& unit) {
        return static_cast<unsigned>(unit.id) == id;
    });
    return found != kGroupUnits.end() ? found : nullptr;
}

unsigned PeriodMenuId(const ZRDateTimeSpan& period)
{
    const auto* const found = std::find_if(kPeriods.begin(), kPeriods.end(), [&](const PeriodEntry& entry) {
        return SpanOf(entry).seconds == period.seconds;
    });
    return found != kPeriods.end() ? found->id : kPeriodAutomatic;
}

}  // namespace zr::logger
