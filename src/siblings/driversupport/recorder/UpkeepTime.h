// The time by which a store drops what is too old.
#pragma once

#include <chrono>
#include <cstdint>

namespace zr {

// Follows the clock, but not at once when it is set forward by more than a day: a clock that is wrong for a while would
// cost all that was recorded. After a day it is believed. One thread at a time.
class UpkeepTime {
public:
    // utc: microseconds since 1970; so is the result.
    std::int64_t Take(std::int64_t utc, std::chrono::steady_clock::time_point steady);

private:
    bool m_hasBegun = false;
    std::int64_t m_time = 0;  // the last that was given
    std::chrono::steady_clock::time_point m_steady;
    std::chrono::steady_clock::time_point m_doubtSince;
    bool m_isInDoubt = false;
};

}  // namespace zr
