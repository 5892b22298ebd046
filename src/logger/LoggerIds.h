// Fixed names and numbers of the exploration of logged data.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <array>
#include <cstdint>

namespace zr::logger {

// A unit of the window of time, by the command of its menu entry.
inline constexpr int kGroupByDay = 31895;
inline constexpr int kGroupByWeek = 31896;
inline constexpr int kGroupByMonth = 31897;
inline constexpr int kGroupByQuarter = 31898;
inline constexpr int kGroupByYear = 31899;

struct GroupUnit {
    int id = 0;
    const wchar* registryText = nullptr;
    unsigned menuText = 0;
};
inline constexpr std::array<GroupUnit, 5> kGroupUnits = {{{kGroupByDay, u"DAY", 754},
                                                          {kGroupByWeek, u"WEEK", 755},
                                                          {kGroupByMonth, u"MONTH", 756},
                                                          {kGroupByQuarter, u"3MONTH", 842},
                                                          {kGroupByYear, u"YEAR", 432}}};

// Sample periods, by the commands of their menu entries.
inline constexpr unsigned kPeriodAutomatic = 31820;

struct PeriodEntry {
    unsigned id = 0;
    const wchar* registryText = nullptr;
    // As ZRDateTimeSpan::SetDateTimeSpan takes them.
    int days = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    unsigned menuText = 0;
    int menuNumber = 0;  // for the placeholder of the text, if it has one
};
inline constexpr std::array<PeriodEntry, 10> kPeriods = {{{kPeriodAutomatic, u"AUTO", -1, -1, -1, -1, 753, 0},
                                                          {31821, u"FILE", 0, 0, 0, 0, 791, 0},
                                                          {31822, u"5", 0, 0, 5, 0, 757, 5},
                                                          {31823, u"10", 0, 0, 10, 0, 757, 10},
                                                          {31824, u"15", 0, 0, 15, 0, 757, 15},
                                                          {31825, u"20", 0, 0, 20, 0, 757, 20},
                                                          {31826, u"30", 0, 0, 30, 0, 757, 30},
                                                          {31827, u"60", 0, 0, 60, 0, 762, 0},
                                                          {31828, u"1440", 0, 24, 0, 0, 763, 24},
                                                          {31829, u"44640", 31, 0, 0, 0, 764, 0}}};

// Values below the suite's registry key of the user.
inline constexpr const wchar* kLastGroupValue = u"LastLoggerGroup";
inline constexpr const wchar* kLastPeriodValue = u"LastLoggerPeriod";

// The period is too long for the unit.
inline constexpr unsigned kMessageBadCombination = 513;

}  // namespace zr::logger
