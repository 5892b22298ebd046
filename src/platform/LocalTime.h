// Local calendar time, by the time zone that the process runs in.
#pragma once

#include <chrono>

namespace zr {

struct LocalTime {
    int year = 0;   // full calendar year
    int month = 0;  // 1 to 12
    int day = 0;    // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;  // 0 to 59; a leap second counts as 59
};

// False, with out unchanged, when the system can't tell. Any thread.
bool ToLocalTime(std::chrono::system_clock::time_point utc, LocalTime& out);

}  // namespace zr
