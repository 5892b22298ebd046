#include "platform/LocalTime.h"

#include <algorithm>
#include <ctime>

namespace zr {

bool ToLocalTime(std::chrono::system_clock::time_point utc, LocalTime& out)
{
    const auto whole = std::chrono::floor<std::chrono::seconds>(utc);
    const std::time_t seconds = std::chrono::system_clock::to_time_t(whole);
    std::tm parts{};
    if (localtime_s(&parts, &seconds) != 0) {
        return false;
    }
    out = {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
           parts.tm_hour,        parts.tm_min,     std::min(parts.tm_sec, 59)};
    return true;
}

}  // namespace zr
