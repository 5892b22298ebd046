// Dates and spans of time in two words, and their conversions.
#pragma once

#include <compare>
#include <cstdint>

class ZRDateTimeSpan;

// Days since 30 December 1899 with the time of day as fraction; negative dates count their fraction away from
// zero, as in the OLE automation date. Valid from 1 January 100 to 31 December 9999.
class COleDateTime {
public:
    enum class Status { Valid, Invalid, Null };

    COleDateTime() = default;  // Null
    // Invalid outside the years 100 to 9999, and for what is no number.
    explicit COleDateTime(double date);
    // Full calendar year, month 1 to 12, day 1 to 31, 24 hours. Invalid when a part is out of range.
    COleDateTime(int year, int month, int day, int hour, int minute, int second);

    [[nodiscard]] Status GetStatus() const { return m_status; }
    // The day number, meaningful only while Valid.
    [[nodiscard]] double Date() const { return m_date; }
    // The parts, rounded to the nearest second; -1 unless Valid.
    [[nodiscard]] int GetYear() const;
    [[nodiscard]] int GetMonth() const;
    [[nodiscard]] int GetDay() const;
    [[nodiscard]] int GetHour() const;
    [[nodiscard]] int GetMinute() const;
    [[nodiscard]] int GetSecond() const;
    // 1 is Sunday, 7 is Saturday; -1 unless Valid.
    [[nodiscard]] int GetDayOfWeek() const;

private:
    double m_date = 0.0;
    Status m_status = Status::Null;
};

// An instant in whole seconds since 1 January 2000 00:00:00 and microseconds, up to 7 February 2136 06:28:14.
// Which clock it counts (the plant's local time, or UTC in OneHzCall) is told by whoever hands it over. The operations
// on the calendar want a date: test IsValid() first.
class ZRDateTime {
public:
    static constexpr std::uint32_t kNoDate = 0xFFFFFFFFu;

    std::uint32_t seconds = kNoDate;  // all ones: no date
    std::uint32_t microseconds = 0;   // 0 to 999999

    constexpr ZRDateTime() = default;  // no date
    constexpr ZRDateTime(std::uint32_t wholeSeconds, std::uint32_t micros) : seconds(wholeSeconds), microseconds(micros)
    {
    }
    // No date when the argument isn't Valid or lies outside the range above. Rounded to the nearest second.
    explicit ZRDateTime(const COleDateTime& date);

    // The present local date and time, by the clock in force. No date outside the range above. Any thread.
    static ZRDateTime LTC();
    // The present date and time in UTC, likewise.
    static ZRDateTime UTC();

    [[nodiscard]] constexpr bool IsValid() const { return seconds != kNoDate; }

    // Full calendar year, month 1 to 12, day 1 to 31. No date when a part is out of range.
    void SetDateTime(int year, int month, int day, int hour, int minute, int second, int milliseconds, int micros);
    [[nodiscard]] int Year() const;  // full calendar year
    // 1 is Sunday, 7 is Saturday.
    [[nodiscard]] int DayOfWeek() const;
    // 1 to 366.
    [[nodiscard]] int DayOfYear() const;
    // 1 to 53; a week starts on Monday and belongs to the year that holds its Thursday (ISO 8601).
    [[nodiscard]] int WeekOfYearISO8601() const;
    // Day and month of a count of seconds; the year as offset to 1999 (2000 gives 1) when withYear is set, else
    // year is left alone.
    static void DateTime2DMY(std::uint32_t wholeSeconds, int& day, int& month, int& year, bool withYear);
    // Without the microseconds. Null when there is no date.
    [[nodiscard]] COleDateTime ToOleDateTime() const;

    // No date when there was none, or when the result lies outside the range above.
    ZRDateTime& operator+=(const ZRDateTimeSpan& span);
    ZRDateTime& operator-=(const ZRDateTimeSpan& span);
    friend ZRDateTime operator+(ZRDateTime date, const ZRDateTimeSpan& span) { return date += span; }
    friend ZRDateTime operator-(ZRDateTime date, const ZRDateTimeSpan& span) { return date -= span; }
    // Held at the limits of a span (68 years); the span of zero when one of them is no date.
    friend ZRDateTimeSpan operator-(const ZRDateTime& left, const ZRDateTime& right);
    friend constexpr bool operator==(const ZRDateTime&, const ZRDateTime&) = default;
    friend constexpr std::strong_ordering operator<=>(const ZRDateTime& left, const ZRDateTime& right)
    {
        const std::strong_ordering order = left.seconds <=> right.seconds;
        return std::is_eq(order) ? left.microseconds <=> right.microseconds : order;
    }
};

// A signed length of time in whole seconds and microseconds (0 to 999999, counted upwards from the seconds, so that
// half a second back is -1 s and 500000 us).
class ZRDateTimeSpan {
public:
    std::int32_t seconds = 0;
    std::uint32_t microseconds = 0;

    constexpr ZRDateTimeSpan() = default;
    constexpr ZRDateTimeSpan(std::int32_t wholeSeconds, std::uint32_t micros)
        : seconds(wholeSeconds), microseconds(micros)
    {
    }

    // The sum of the parts, each of which may be negative. Held at the limits of a span (68 years).
    void SetDateTimeSpan(int days, int hours, int minutes, int wholeSeconds, int milliseconds, int micros);
    friend constexpr bool operator==(const ZRDateTimeSpan&, const ZRDateTimeSpan&) = default;
    friend constexpr std::strong_ordering operator<=>(const ZRDateTimeSpan& left, const ZRDateTimeSpan& right)
    {
        const std::strong_ordering order = left.seconds <=> right.seconds;
        return std::is_eq(order) ? left.microseconds <=> right.microseconds : order;
    }
};
