#include "siblings/driversupport/hours/CalendarText.h"

#include "siblings/driversupport/hours/HourCalendar.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace zr {

namespace {

constexpr std::array<std::u16string_view, 7> kWeekdays = {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"};
constexpr std::u16string_view kBetween = u" ,";

// Of digits alone; none otherwise.
std::optional<int> Digits(std::u16string_view text)
{
    int number = 0;
    for (const char16_t digit : text) {
        if (digit < u'0' || digit > u'9') {
            return std::nullopt;
        }
        number = number * 10 + (digit - u'0');
    }
    return number;
}

// Two digits, the mark and two digits.
bool ParsePair(std::u16string_view text, char16_t mark, int& left, int& right)
{
    if (text.size() != 5 || text[2] != mark) {
        return false;
    }
    const auto first = Digits(text.substr(0, 2));
    const auto second = Digits(text.substr(3));
    left = first.value_or(-1);
    right = second.value_or(-1);
    return first && second;
}

std::chrono::year_month_day DateOf(int year, int month, int day)
{
    return {std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
            std::chrono::day(static_cast<unsigned>(day))};
}

std::optional<std::size_t> Weekday(std::u16string_view name)
{
    const auto found = std::find(kWeekdays.begin(), kWeekdays.end(), name);
    if (found == kWeekdays.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - kWeekdays.begin());
}

// One name, or a stretch from name to name.
bool AddDays(std::u16string_view word, DaysText& days)
{
    if (word == u"holiday") {
        days.holidays = true;
        return true;
    }
    const std::size_t dash = word.find(u'-');
    const auto first = Weekday(word.substr(0, dash));
    const auto last = dash == std::u16string_view::npos ? first : Weekday(word.substr(dash + 1));
    if (!first || !last) {
        return false;
    }
    for (std::size_t day = *first;; day = (day + 1) % kWeekdays.size()) {
        days.weekdays |= 1u << day;
        if (day == *last) {
            return true;
        }
    }
}

}  // namespace

std::optional<std::size_t> ParseYearDay(std::u16string_view text)
{
    constexpr int kLeapYear = 2000;
    int month = 0;
    int day = 0;
    if (!ParsePair(text, u'-', month, day) || !DateOf(kLeapYear, month, day).ok()) {
        return std::nullopt;
    }
    return YearDay(static_cast<unsigned>(month), static_cast<unsigned>(day));
}

std::optional<std::int64_t> ParseDate(std::u16string_view text)
{
    constexpr int kFirstYear = 2000;
    constexpr int kLastYear = 2135;
    int month = 0;
    int day = 0;
    if (text.size() != 10 || text[4] != u'-' || !ParsePair(text.substr(5), u'-', month, day)) {
        return std::nullopt;
    }
    const int year = Digits(text.substr(0, 4)).value_or(0);
    const std::chrono::year_month_day date = DateOf(year, month, day);
    if (year < kFirstYear || year > kLastYear || !date.ok()) {
        return std::nullopt;
    }
    return std::chrono::sys_days(date).time_since_epoch().count();
}

std::optional<int> ParseTimeOfDay(std::u16string_view text)
{
    int hour = 0;
    int minute = 0;
    if (!ParsePair(text, u':', hour, minute) || minute > 59 || hour * 60 + minute > 24 * 60) {
        return std::nullopt;
    }
    return hour * 60 + minute;
}

std::optional<DaysText> ParseDays(std::u16string_view text)
{
    DaysText days;
    for (std::size_t at = text.find_first_not_of(kBetween); at != std::u16string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(kBetween, at), text.size());
        if (!AddDays(text.substr(at, end - at), days)) {
            return std::nullopt;
        }
        at = text.find_first_not_of(kBetween, end);
    }
    if (days.weekdays == 0 && !days.holidays) {
        return std::nullopt;
    }
    return days;
}

}  // namespace zr
