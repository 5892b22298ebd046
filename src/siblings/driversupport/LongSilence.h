// Whether a line has been without any reply for so long that its devices may be looked for elsewhere.
#pragma once

#include <chrono>

namespace zr {

// Knows no clock: time comes as an argument. One thread.
class LongSilence {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Counted from `now`, when the line has opened.
    LongSilence(Time::duration limit, Time now) : m_limit(limit), m_since(now) {}

    // Anybody on the line.
    void Replied(Time now) { m_since = now; }
    // A request had no answer. True when it is time to look for the devices; then again after as long.
    bool TimedOut(Time now)
    {
        const bool isLong = now - m_since >= m_limit;
        if (isLong) {
            m_since = now;
        }
        return isLong;
    }

private:
    Time::duration m_limit;
    Time m_since;
};

}  // namespace zr
