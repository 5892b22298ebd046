// How the user writes numbers and dates, as the operating system tells it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zr {

// Texts are UTF-8. The defaults are those of a user who has set nothing: C for numbers, English for dates.
struct SystemLocale {
    std::string decimalSeparator = ".";
    std::string thousandsSeparator;
    // Digits in a group, counted from the decimal mark to the left; the last that isn't 0 repeats. All 0: no groups.
    std::array<std::uint8_t, 4> digitGroups{};
    std::string timeSeparator = ":";
    std::string dateSeparator = "/";
    std::array<std::string, 12> monthNames = {"January", "February", "March",     "April",   "May",      "June",
                                              "July",    "August",   "September", "October", "November", "December"};
    // Sunday first.
    std::array<std::string, 7> dayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                           "Thursday", "Friday", "Saturday"};
    int shortDateOrder = 0;  // 0 month, day, year; 1 day, month, year; 2 year, month, day
    int longDateOrder = 0;   // likewise
    int firstDayOfWeek = 1;  // 1 is Sunday
    int weekNumbering = 2;   // 1: ISO 8601; 2: plain count from 1 January
};

// The user's settings: LC_ALL, LC_NUMERIC, LC_TIME and LANG on POSIX, the regional settings on Windows. What the system
// doesn't know keeps its default. Any thread.
SystemLocale ReadSystemLocale();
// Likewise for a locale by its name there, such as "de_DE.UTF-8" or "de-DE". An unknown name gives the defaults.
SystemLocale ReadSystemLocale(const char* name);

// What a date pattern says, as strftime takes it.
struct DatePattern {
    int order = 0;          // as SystemLocale::shortDateOrder
    std::string separator;  // between the first part and the second; empty when that is no plain mark
};
// The default order for a pattern without day, month or year.
DatePattern ReadDatePattern(std::string_view pattern);
// The text between hour and minute of a pattern of strftime; empty when that is no plain mark.
std::string ReadTimeSeparator(std::string_view pattern);

}  // namespace zr
