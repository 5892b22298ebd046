// When a line whose replies don't name their request may be used again after one that failed.
#pragma once

#include "siblings/driversupport/ServiceTimes.h"

#include <chrono>
#include <cstdint>
#include <vector>

namespace zr {

// A reply that comes late can only be told from the right one by the unit that sends it. So, after a request without
// an answer, the line rests for longer than the slowest reply that was ever seen on it, and the unit is left alone for
// longer still. Knows no clock: time comes as an argument. One thread.
class QuietLine {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = Time::duration;

    QuietLine(Duration timeOut, Duration leastQuiet);

    // An accepted reply, so long after its request.
    void Replied(Duration took);
    // A request to that unit, sent then, had no answer.
    void TimedOut(std::uint8_t unit, Time sentAt, Time now);
    // Something was received that nobody waits for: perhaps the answer to the request that failed.
    void Strayed(Time now);
    // Devices need to see a pause of that length between two frames.
    void Pause(Duration pause, Time now);

    [[nodiscard]] Time LineFreeAt() const { return m_lineFreeAt; }
    // In the past if the unit may be asked.
    [[nodiscard]] Time UnitFreeAt(std::uint8_t unit) const;
    [[nodiscard]] Duration SlowestReply() const { return m_slowest; }
    // How long the line rests after a request without an answer.
    [[nodiscard]] Duration Quiet() const;

private:
    // A reply later than so many time-outs is held for impossible.
    static constexpr int kUnitRest = 3;
    struct Rest {
        std::uint8_t unit;
        Time until;
    };

    Duration m_timeOut;
    Duration m_leastQuiet;
    Duration m_slowest{};
    Time m_lineFreeAt = Time::min();
    Time m_failedSentAt = Time::min();
    Time m_restsEnd = Time::min();  // of the last unit that rests
    std::vector<Rest> m_rests;
};

}  // namespace zr
