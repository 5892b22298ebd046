// Calendars without rhyme or reason, for tests that must hold for any.
#pragma once

#include "siblings/driversupport/hours/HourCalendar.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace zr::test {

inline HourCalendar::Day RandomDay(std::mt19937& random, std::size_t hourTypes)
{
    std::set<int> minutes = {0};
    for (std::size_t i = random() % 8; i > 0; --i) {
        minutes.insert(static_cast<int>(random() % 1440));
    }
    HourCalendar::Day day;
    for (const int minute : minutes) {
        day.push_back({minute, random() % hourTypes});
    }
    return day;
}

// With seasons, holidays of all three forms and days that change at any minute.
inline HourCalendar RandomCalendar(std::mt19937& random, std::size_t hourTypes)
{
    HourCalendar::Parts parts;
    const std::size_t seasons = 1 + random() % 4;
    for (std::size_t i = 0; i < kYearDays; ++i) {
        const bool isChange = i == 0 || random() % 40 == 0;
        parts.seasons[i] = isChange ? static_cast<std::uint16_t>(random() % seasons) : parts.seasons[i - 1];
    }
    for (std::size_t i = 0; i < random() % 12; ++i) {
        parts.yearlyHolidays.set(random() % kYearDays);
        parts.easterHolidays.push_back(static_cast<int>(random() % 330) - 80);
        parts.holidays.push_back(10957 + static_cast<std::int64_t>(random() % 14000));
    }
    for (std::size_t i = 0; i < 6; ++i) {
        parts.days.push_back(RandomDay(random, hourTypes));
    }
    for (std::size_t i = 0; i < HourCalendar::KindOf(seasons, 0, false); ++i) {
        parts.dayOfKinds.push_back(random() % parts.days.size());
    }
    return HourCalendar(std::move(parts));
}

}  // namespace zr::test
