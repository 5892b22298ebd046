// Days of the go-to-date calendar and the date that the caller sees.
#pragma once

#include "siblings/tools/ZRDateTime.h"

#include <optional>

namespace zr::dialogs {

struct CalendarDay {
    int year = 0;   // full calendar year
    int month = 0;  // 1 to 12
    int day = 0;    // 1 to 31

    friend constexpr bool operator==(const CalendarDay&, const CalendarDay&) = default;
};

// What can be picked. Inclusive, the last day to its last second.
inline constexpr CalendarDay kFirstDay{2000, 1, 1};
inline constexpr CalendarDay kLastDay{2133, 12, 31};

// From the form of COleDateTime; no date for what that can't hold, or a ZRDateTime can't.
ZRDateTime DateFromOle(double date);
// Empty when there is no date.
std::optional<CalendarDay> DayOf(const ZRDateTime& date);
// Midnight of that day; no date for none.
ZRDateTime DateOf(const std::optional<CalendarDay>& day);

}  // namespace zr::dialogs
