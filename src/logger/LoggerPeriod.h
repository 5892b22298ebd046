// Units of time and sample periods of logged data: pure calculation.
#pragma once

#include "logger/LoggerIds.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/ZRDateTime.h"

namespace zr::logger {

// All: any thread. A date that is none stays none; a result outside the range of ZRDateTime is no date. The first day
// of the week is counted as by ZRDateTime::DayOfWeek(): 1 is Sunday.

// The start of the unit that holds the date. For what is no unit the date as it is, with its time of day.
ZRDateTime AdjustToGroupBy(const ZRDateTime& date, int groupBy, int firstDayOfWeek);

// One unit on, or back for a negative groupBy. Meant: a date inside a unit is only moved to the start of that unit, in
// either direction, so that a step forward from there doesn't reach the next one.
ZRDateTime AddGroupByUnit(const ZRDateTime& date, int groupBy, int firstDayOfWeek);

// One unit on, or back for a negative groupBy, without cutting the date first: a day or a week keeps the time of day, a
// month or a quarter gives day 1 of the month that is 1 or 3 away, a year 1 January.
ZRDateTime AdjustToGoTo(const ZRDateTime& date, int groupBy);

// Whether a period doesn't fit several times into the unit.
bool IsBadCombination(unsigned groupBy, int seconds);

// What the automatic period stands for: by the unit, and longer when the data set holds nothing but counters. The
// variables are asked in order until one tells that it is no counter. Locks a copy of the list.
ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy, const ZRLoggerInfo& info);

// The value that stands for the automatic state. Only the sign is tested, see IsAutomatic().
ZRDateTimeSpan AutomaticPeriod();
inline bool IsAutomatic(const ZRDateTimeSpan& period)
{
    return period.seconds < 0;
}

// The span of a menu entry.
ZRDateTimeSpan SpanOf(const PeriodEntry& entry);
// Null for what is no entry.
const PeriodEntry* FindPeriod(unsigned id);
const GroupUnit* FindGroupUnit(unsigned id);
// The menu entry to tick for a period; that of the automatic one for what is none of theirs.
unsigned PeriodMenuId(const ZRDateTimeSpan& period);

}  // namespace zr::logger
