// Time of the system, in the form that tests can turn.
#pragma once

#include <chrono>
#include <cstdint>

namespace zr {

// What the library asks for time. Any thread.
class Clock {
public:
    virtual ~Clock() = default;
    // Never goes back; its zero means nothing.
    [[nodiscard]] virtual std::chrono::steady_clock::time_point Steady() const = 0;
    [[nodiscard]] virtual std::chrono::system_clock::time_point Utc() const = 0;
    // Blocks the calling thread for that long on this clock; 0 lets other threads run.
    virtual void Sleep(std::chrono::milliseconds duration) = 0;
};

// The clock in force: the system's, unless a test has set its own.
Clock& CurrentClock();
// Sets the clock in force; null sets the system's again. Not owned; must outlive its use. Call it only while no
// other thread of the library runs.
void SetClock(Clock* clock);

// Milliseconds of the steady clock, wrapping at 2^32.
std::uint32_t GetTickCount();
void Sleep(std::uint32_t milliseconds);

}  // namespace zr
