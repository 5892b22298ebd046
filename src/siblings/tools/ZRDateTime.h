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
    explicit COleDateTime(double date);
    COleDateTime(int year, int month, int day, int hour, int minute, int second);

    [[nodiscard]] Status GetStatus() const { return m_status; }
    // The day number, meaningful only while Valid.
    [[nodiscard]] double Date() const { return m_date; }
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

// An instant in whole seconds since 1 January 2000 00:00:00 and microseconds. Which clock it counts (the plant's
// local time, or UTC in OneHzCall) is told by whoever hands it over.
class ZRDateTime {
public:
    static constexpr std::uint32_t kNoDate = 0xFFFFFFFFu;

    std::uint32_t seconds = kNoDate;  // all ones: no date
    std::uint32_t microseconds = 0;   // 0 to 999999

    constexpr ZRDateTime() = default;  // no date
    constexpr ZRDateTime(std::uint32_t wholeSeconds, std::uint32_t micros) : seconds(wholeSeconds), microseconds(micros)
    {
    }
    // No date when the argument isn't Valid or lies outside 2000 to 2135. Rounded to the nearest second.
    explicit ZRDateTime(const COleDateTime& date);

    // The present local date and time.
    static ZRDateTime LTC();
    // The present date and time in UTC.
    static ZRDateTime UTC();

    [[nodiscard]] constexpr bool IsValid() const { return seconds != kNoDate; }

    // Full calendar year, month 1 to 12, day 1 to 31. No date when a part is out of range.
    void SetDateTime(int year, int month, int day, int hour, int minute, int second, int milliseconds, int micros);
    [[nodiscard]] int Year() const;  // full calendar year
    // 1 is Sunday, 7 is Saturday.
    [[nodiscard]] int DayOfWeek() const;
    // Day and month of a count of seconds; the year as offset to 1999 (2000 gives 1) when withYear is set, else
    // year is left alone.
    static void DateTime2DMY(std::uint32_t wholeSeconds, int& day, int& month, int& year, bool withYear);
    [[nodiscard]] COleDateTime ToOleDateTime() const;

    ZRDateTime& operator+=(const ZRDateTimeSpan& span);
    ZRDateTime& operator-=(const ZRDateTimeSpan& span);
    friend ZRDateTime operator+(ZRDateTime date, const ZRDateTimeSpan& span) { return date += span; }
    friend ZRDateTime operator-(ZRDateTime date, const ZRDateTimeSpan& span) { return date -= span; }
    friend ZRDateTimeSpan operator-(const ZRDateTime& left, const ZRDateTime& right);
    friend constexpr auto operator<=>(const ZRDateTime&, const ZRDateTime&) = default;
};

// A signed length of time in whole seconds and microseconds (0 to 999999, counted upwards from the seconds).
class ZRDateTimeSpan {
public:
    std::int32_t seconds = 0;
    std::uint32_t microseconds = 0;

    constexpr ZRDateTimeSpan() = default;
    constexpr ZRDateTimeSpan(std::int32_t wholeSeconds, std::uint32_t micros)
        : seconds(wholeSeconds), microseconds(micros)
    {
    }

    // The sum of the parts, each of which may be negative.
    void SetDateTimeSpan(int days, int hours, int minutes, int wholeSeconds, int milliseconds, int micros);
    friend constexpr auto operator<=>(const ZRDateTimeSpan&, const ZRDateTimeSpan&) = default;
};
