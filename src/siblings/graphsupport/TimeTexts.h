// Times of a graph as texts.
#pragma once

#include "siblings/graphsupport/CalendarStep.h"
#include "siblings/graphsupport/DateText.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstdint>

namespace zr::graph {

// Bits of the flags that a DateText is asked with, as the logger's FormatDateTime has them.
inline constexpr unsigned kPadded = 0x0001;
inline constexpr unsigned kYear = 0x0004;
inline constexpr unsigned kMonthNumber = 0x0008;
inline constexpr unsigned kMonthName = 0x0010;
inline constexpr unsigned kDayOfMonth = 0x0020;
inline constexpr unsigned kHours = 0x0080;
inline constexpr unsigned kMinutes = 0x0100;
inline constexpr unsigned kSeconds = 0x0200;
inline constexpr unsigned kDateFlags = kYear | kMonthNumber | kDayOfMonth;
inline constexpr unsigned kClockFlags = kHours | kMinutes | kSeconds;
inline constexpr unsigned kLegendFlags = kDateFlags | kClockFlags;  // 30-12-2002 23:58:07, without padding

// Writes times of one zone, UTC in microseconds since 1970, in local time and in the form of the language in force.
class TimeTexts {
public:
    // Null: as YYYY-MM-DD HH:MM:SS. The zone must outlive this.
    TimeTexts(DateText text, const TimeZone& zone) : m_text(text), m_zone(zone) {}

    // By the flags above. Empty for years that a ZRDateTime doesn't hold.
    [[nodiscard]] ZRBasicString Write(std::int64_t time, unsigned flags) const;
    // Date and clock; with as many decimals of the second as tell two times so far apart.
    [[nodiscard]] ZRBasicString Moment(std::int64_t time, std::int64_t apart) const;
    // What stands at a tick: of the clock hours and minutes, seconds and their fraction as the step needs them; day and
    // month; the name of the month; the year.
    [[nodiscard]] ZRBasicString Label(std::int64_t time, const CalendarStep& step) const;
    // What the labels leave open, and so stands below them where it changes: the date of a clock, the year of days and
    // months. Empty for years.
    [[nodiscard]] ZRBasicString Context(std::int64_t time, const CalendarStep& step) const;
    // A length of time: "1 d 02:03:04", "00:00:07.250". Without a sign.
    [[nodiscard]] static ZRBasicString Length(std::int64_t micros);

private:
    DateText m_text;
    const TimeZone& m_zone;
};

}  // namespace zr::graph
