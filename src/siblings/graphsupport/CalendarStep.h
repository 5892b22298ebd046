// Steps of a time axis and the places in the calendar where they stand.
#pragma once

#include "siblings/graphsupport/GraphZoom.h"
#include "siblings/tools/TimeZone.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zr::graph {

inline constexpr std::int64_t kMicrosOfSecond = 1000000;
inline constexpr std::int64_t kMicrosOfDay = 86400 * kMicrosOfSecond;

// From one tick to the next. A plain value.
struct CalendarStep {
    enum class Unit { Microsecond, Day, Week, Month };

    Unit unit = Unit::Microsecond;
    std::int64_t count = 1;  // of microseconds a divisor of a day; of days and weeks 1; of months a divisor of a year,
                             // or whole years

    // Microseconds, but for changes of the clock.
    [[nodiscard]] std::int64_t Shortest() const;
    // Whether each place of this step is one of the finer one.
    [[nodiscard]] bool IsMultipleOf(const CalendarStep& finer) const;
    friend bool operator==(const CalendarStep&, const CalendarStep&) = default;
};

// All there are, fine to coarse: 1, 2 and 5 times powers of ten of a microsecond, of a second and of a minute 1, 2, 5,
// 10, 15 and 30, of an hour 1, 2, 3, 6 and 12, a day, a week, 1, 3 and 6 months, 1, 2 and 5 times powers of ten of a
// year.
std::span<const CalendarStep> CalendarSteps();

// Appends the places of a step in a stretch of time, both ends included: where the local clock shows a multiple of the
// step, and of days and more where the day begins. An hour that occurs twice has its places twice, one that is skipped
// none. Strictly ascending; UTC, microseconds since 1970. A week begins on firstDayOfWeek, 1 being Sunday.
void AppendPlaces(const CalendarStep& step, Zoom stretch, const TimeZone& zone, int firstDayOfWeek,
                  std::vector<std::int64_t>& out);

// The local clock at a time, microseconds since 1970, likewise.
std::int64_t LocalMicros(std::int64_t time, const TimeZone& zone);
// The local day at a time, counted from 1 January 1970.
std::int64_t LocalDay(std::int64_t time, const TimeZone& zone);

}  // namespace zr::graph
