// Whose turn it is on a line.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zr {

// The devices of one line, taken round robin, a request at a time, among those that have one due. What a device calls
// for goes ahead of that. Knows no clock: time comes as an argument. One thread.
//
// A cycle of a period of a second or more begins on a tick; the first one, and those of a period of zero, at once;
// those of other periods by time, without catching up on what was missed.
class PollSchedule {
public:
    using Time = std::chrono::steady_clock::time_point;

    enum class Task {
        None,      // nothing before Turn::notBefore, unless a tick or a call comes first
        Call,      // ask the driver for what it called for
        Probe,     // ask a parked device whether it is there
        Begin,     // begin a cycle; the caller then calls Begun
        Continue,  // the next request of its cycle
    };
    struct Turn {
        Task task = Task::None;
        std::size_t member = 0;
        Time notBefore = Time::max();
    };

    // The next member, numbered from zero, which is asked as that unit of the line.
    void Add(std::uint8_t unit);
    void Tick(std::uint64_t tick) { m_tick = tick; }

    [[nodiscard]] Turn Next(Time now);

    void Begun(std::size_t member, std::chrono::milliseconds period, Time now);
    // The cycle is over. One without a single request isn't begun again before the next tick, whatever the period.
    void Over(std::size_t member);
    // A request of the cycle was sent.
    void Worked(std::size_t member) { m_members[member].worked = true; }
    [[nodiscard]] bool IsInCycle(std::size_t member) const { return m_members[member].inCycle; }

    void Call(std::size_t member) { m_members[member].calls = true; }
    void CallServed(std::size_t member) { m_members[member].calls = false; }

    // Leaves all members of that unit alone until then.
    void Hold(std::uint8_t unit, Time until);
    // Gives up the cycle; the member's only turn is a probe, then.
    void Park(std::size_t member, Time probeAt);
    // A cycle is due at once.
    void Unpark(std::size_t member);
    // Gives up all cycles; new ones are due at once.
    void LineLost();

private:
    struct Member {
        std::uint8_t unit = 0;
        bool inCycle = false;
        bool worked = false;
        bool calls = false;
        bool parked = false;
        bool byTick = true;
        std::uint64_t dueTick = 0;  // byTick
        Time dueAt = Time::min();   // otherwise, or when parked
        Time heldUntil = Time::min();
    };
    Task TaskOf(const Member& member, Time now, Time& notBefore) const;

    std::vector<Member> m_members;
    std::size_t m_last = 0;
    std::uint64_t m_tick = 0;
};

}  // namespace zr
