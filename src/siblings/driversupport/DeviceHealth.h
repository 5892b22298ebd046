// Whether a device answers, and when a silent one is asked again.
#pragma once

#include "siblings/driversupport/ServiceTimes.h"

#include <chrono>

namespace zr {

// Decides from the outcomes of one device's requests. Knows no clock: time comes as an argument. One thread.
class DeviceHealth {
public:
    using Time = std::chrono::steady_clock::time_point;

    enum class Change {
        None,
        Online,   // answers for the first time since the start or since the line came back: nothing to tell
        Back,     // answers again after its silence was announced
        Silent,   // to be announced as silent
        Damaged,  // to be announced as one whose answers are all damaged; silent otherwise
    };
    // What came instead of an answer until the time was over.
    enum class Heard { Nothing, Damage };

    explicit DeviceHealth(const ServiceTimes& times) : m_times(times) {}

    // Any answer at all, a refusal of the request included.
    Change Answered();
    // A request had no answer. The cost is how long it held up the other devices of the line; zero if there are none.
    Change TimedOut(Time now, Time::duration cost, Heard heard);
    // The line went, which says nothing about the device.
    void LineLost();

    [[nodiscard]] bool IsOnline() const { return m_state == State::Online; }
    // Parked: asked again at ProbeAt and not before.
    [[nodiscard]] bool IsSilent() const { return m_state == State::Silent; }
    [[nodiscard]] Time ProbeAt() const { return m_probeAt; }

private:
    enum class State { Unknown, Online, Silent };
    void PlanProbe(Time now, Time::duration cost);

    ServiceTimes m_times;
    State m_state = State::Unknown;
    bool m_announced = false;  // as silent, and not yet as back
    int m_timeouts = 0;        // in a row
    bool m_onlyDamage = true;  // in each of them
    Time::duration m_interval{};
    Time m_probeAt{};
};

}  // namespace zr
