// The dates, times and lists of days that a calendar is written with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zr {

// Each takes the whole text; none when it isn't one.

// "MM-DD", 02-29 included: its number in a leap year (see YearDay).
std::optional<std::size_t> ParseYearDay(std::u16string_view text);
// "YYYY-MM-DD" of the years 2000 to 2135: days since 1970.
std::optional<std::int64_t> ParseDate(std::u16string_view text);
// "HH:MM" from 00:00 to 24:00: minutes of the day.
std::optional<int> ParseTimeOfDay(std::u16string_view text);

struct DaysText {
    unsigned weekdays = 0;  // a bit each, Sunday the lowest
    bool holidays = false;
};
// Names of days ("Sun" to "Sat"), stretches of them ("Mon-Fri", "Sat-Mon") and "holiday", at least one, between blanks
// or commas.
std::optional<DaysText> ParseDays(std::u16string_view text);

}  // namespace zr
