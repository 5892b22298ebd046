// Time zones whose clock changes every year by a rule, through the years 2000 to 2100: the same on every system.
#pragma once

#include "siblings/tools/TimeZone.h"

#include <chrono>
#include <cstdint>
#include <ostream>
#include <utility>
#include <vector>

namespace zr::test {

// On so many a Sunday of a month, 5 being the last, at a time of the clock in force: minutes from midnight.
struct RuleChange {
    unsigned sunday = 1;
    unsigned month = 1;
    int minute = 0;
};

struct RuleZone {
    const char* name;  // of a place whose clock changed like that for some years
    int standard;      // offsets, minutes
    int summer;
    RuleChange toSummer;
    RuleChange toStandard;
};

inline void PrintTo(const RuleZone& zone, std::ostream* out)
{
    *out << zone.name;
}

inline std::int64_t LocalMinute(int year, const RuleChange& change)
{
    const std::chrono::year_month month = std::chrono::year(year) / std::chrono::month(change.month);
    const std::chrono::sys_days day = change.sunday == 5
                                          ? std::chrono::sys_days(month / std::chrono::Sunday[std::chrono::last])
                                          : std::chrono::sys_days(month / std::chrono::Sunday[change.sunday]);
    return day.time_since_epoch().count() * std::int64_t{1440} + change.minute;
}

// The moments of its changes with the offset from then on, both in minutes, UTC, in order.
inline std::vector<std::pair<std::int64_t, int>> ChangesOf(const RuleZone& zone)
{
    std::vector<std::pair<std::int64_t, int>> changes;
    for (int year = 2000; year <= 2100; ++year) {
        const std::pair summer(LocalMinute(year, zone.toSummer) - zone.standard, zone.summer);
        const std::pair standard(LocalMinute(year, zone.toStandard) - zone.summer, zone.standard);
        const bool isNorth = summer.first < standard.first;
        changes.push_back(isNorth ? summer : standard);
        changes.push_back(isNorth ? standard : summer);
    }
    return changes;
}

// What holds before the first change.
inline int FirstOffset(const RuleZone& zone)
{
    return zone.toSummer.month < zone.toStandard.month ? zone.standard : zone.summer;
}

inline TimeZone ZoneOf(const RuleZone& zone)
{
    std::vector<std::pair<std::int64_t, std::int32_t>> changes;
    for (const auto& [minute, offset] : ChangesOf(zone)) {
        changes.emplace_back(minute * 60, offset * 60);
    }
    return {FirstOffset(zone) * 60, std::move(changes)};
}

// Changes in the night, at half hours, by half an hour, and over midnight in both directions.
inline constexpr RuleZone kRuleZones[] = {
    {"Paris", 60, 120, {5, 3, 120}, {5, 10, 180}},     {"Adelaide", 570, 630, {1, 10, 120}, {1, 4, 180}},
    {"LordHowe", 630, 660, {1, 10, 120}, {1, 4, 120}}, {"Tehran", 210, 270, {3, 3, 0}, {3, 9, 0}},
    {"Havana", -300, -240, {2, 3, 0}, {1, 11, 60}},    {"StJohns", -210, -150, {2, 3, 1}, {1, 11, 1}},
    {"Chatham", 765, 825, {5, 9, 165}, {1, 4, 225}},
};

}  // namespace zr::test
