// How numbers, dates and times are written for the user.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <array>
#include <cstdint>
#include <string_view>

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

// The record in force: that of the language that the host has set, else what the operating system tells at the first
// call. A record never changes and lives for ever, so that a reference taken stays good while another comes into force.
// Any thread.
const ZRLocaleInformation<ZRBasicString>& LocaleInformationWide();
const ZRLocaleInformation<ZRBasicString8>& LocaleInformation();
// What the operating system tells, whichever language is in force: for what other programs read. Any thread.
const ZRLocaleInformation<ZRBasicString>& SystemLocaleInformationWide();

namespace zr {

// Stands for the record in force, whichever it is when it is read.
template <typename S, const ZRLocaleInformation<S>& (*kInForce)()>
struct LocaleInformationInForce {
    operator const ZRLocaleInformation<S>&() const { return kInForce(); }
    const ZRLocaleInformation<S>* operator->() const { return &kInForce(); }
};

}  // namespace zr

// The same by name: localeInformation->weekNumbering.
inline constexpr zr::LocaleInformationInForce<ZRBasicString, LocaleInformationWide> localeInformationWide{};
inline constexpr zr::LocaleInformationInForce<ZRBasicString8, LocaleInformation> localeInformation{};

namespace zr {

struct SystemLocale;

// The language whose record is in force, such as "de"; empty for the system's. Lives for ever. Any thread.
std::string_view LocaleInformationLanguage();
// Numbers and dates from now on as the language has them, given by the title of its file, such as "de"; empty: as the
// system has them, as at the start. False, and nothing changed, for a language that isn't in LanguageLocale.h. Any
// thread; meant for the one that shows the windows, which then asks them to paint anew.
bool SetLocaleInformation(std::string_view language);

// The record for what a system tells.
ZRLocaleInformation<ZRBasicString> WideLocaleInformation(const SystemLocale& system);
ZRLocaleInformation<ZRBasicString8> NarrowLocaleInformation(const SystemLocale& system);

}  // namespace zr
