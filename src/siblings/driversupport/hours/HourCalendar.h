// Which hour type holds at a local time: seasons, weekdays, holidays and hours of the day.
#pragma once

#include "siblings/tools/TimeZone.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zr {

// The days of a leap year, by which dates of every year are numbered: 0 is 1 January, 59 is 29 February.
inline constexpr std::size_t kYearDays = 366;
// Zero-based number in a leap year. The month and the day must be ones.
std::size_t YearDay(unsigned month, unsigned day);
// Days since 1970 of Easter Sunday, by the Gregorian calendar (the algorithm of Meeus, Jones and Butcher).
std::int64_t EasterSunday(int year);

// Gives every local time exactly one hour type, by number. A date has a season, a weekday, and is a holiday or not;
// these three say how the day goes. Immutable. Any thread.
class HourCalendar {
public:
    // From a minute of the local day on.
    struct Change {
        int minute = 0;
        std::size_t hourType = 0;
    };
    using Day = std::vector<Change>;  // ascending, the first at minute 0
    // A stretch of UTC with one hour type, seconds since 1970.
    struct Run {
        std::int64_t from = 0;
        std::int64_t to = 0;  // Exclusive.
        std::size_t hourType = 0;

        friend bool operator==(const Run&, const Run&) = default;
    };
    struct Parts {
        std::array<std::uint16_t, kYearDays> seasons{};  // of each day of the year
        std::bitset<kYearDays> yearlyHolidays;
        std::vector<int> easterHolidays;      // days after Easter Sunday; within its year
        std::vector<std::int64_t> holidays;   // days since 1970
        std::vector<Day> days;                // the ways in which a day may go
        std::vector<std::size_t> dayOfKinds;  // by KindOf(): which of them
    };

    // Hour type 0 always.
    HourCalendar();
    explicit HourCalendar(Parts parts);

    // Zero-based. The weekday counts from Sunday.
    static std::size_t KindOf(std::size_t season, unsigned weekday, bool isHoliday);

    // Local time in seconds since 1970.
    [[nodiscard]] std::size_t HourTypeAt(std::int64_t local) const;
    // The runs that make up a stretch of UTC, each as long as it goes, in order and without a gap. By the local clock:
    // an hour that occurs twice counts both times as it reads, a skipped one not at all. None unless from lies before
    // to.
    [[nodiscard]] std::vector<Run> Runs(const TimeZone& zone, std::int64_t from, std::int64_t to) const;

private:
    // Of a day since 1970.
    [[nodiscard]] const Day& DayAt(std::int64_t day) const;
    [[nodiscard]] bool IsHoliday(std::int64_t day, int year, std::size_t yearDay) const;
    // Adds the runs of a stretch with one offset.
    void AddRuns(std::int64_t from, std::int64_t to, std::int32_t offset, std::vector<Run>& runs) const;

    Parts m_parts;
};

}  // namespace zr
