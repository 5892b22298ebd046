// How numbers, dates and times are written for the user.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <array>
#include <cstdint>

// A plain record over the string type S: ZRBasicString, or ZRBasicString8 holding UTF-8.
template <typename S>
struct ZRLocaleInformation {
    S decimalSeparator;
    S thousandsSeparator;  // empty: digits aren't grouped
    // Digits in a group, counted from the decimal mark to the left; the last that isn't 0 repeats. All 0: no groups.
    std::array<std::uint8_t, 4> digitGroups{};
    S timeSeparator;  // between hours, minutes and seconds
    S dateSeparator;  // between the parts of a date in numbers
    std::array<S, 12> monthNames;
    std::array<S, 7> dayNames;  // Sunday first: the day that ZRDateTime::DayOfWeek() calls 1 is element 0
    // Order of the parts of a date: 0 month, day, year; 1 day, month, year; 2 year, month, day.
    int shortDateOrder = 0;  // in numbers
    int longDateOrder = 0;   // with a name
    int firstDayOfWeek = 1;  // as ZRDateTime::DayOfWeek()
    int weekNumbering = 2;   // 1: ISO 8601; 2: plain count from 1 January
    int longestDayName = 0;  // in characters of S
};

// The user's record, read from the operating system at the first call; never changes after that. Any thread.
const ZRLocaleInformation<ZRBasicString>& LocaleInformationWide();
const ZRLocaleInformation<ZRBasicString8>& LocaleInformation();

// The same by name. Bound before main() starts; what runs earlier calls the functions.
inline const ZRLocaleInformation<ZRBasicString>& localeInformationWide = LocaleInformationWide();
inline const ZRLocaleInformation<ZRBasicString8>& localeInformation = LocaleInformation();

namespace zr {

struct SystemLocale;

// The record for what a system tells.
ZRLocaleInformation<ZRBasicString> WideLocaleInformation(const SystemLocale& system);
ZRLocaleInformation<ZRBasicString8> NarrowLocaleInformation(const SystemLocale& system);

}  // namespace zr
