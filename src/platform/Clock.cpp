#include "platform/Clock.h"

#include <atomic>
#include <thread>

namespace zr {
namespace {

class SystemClock final : public Clock {
public:
    [[nodiscard]] std::chrono::steady_clock::time_point Steady() const override
    {
        return std::chrono::steady_clock::now();
    }

    [[nodiscard]] std::chrono::system_clock::time_point Utc() const override
    {
        return std::chrono::system_clock::now();
    }

    void Sleep(std::chrono::milliseconds duration) override
    {
        if (duration.count() <= 0) {
            std::this_thread::yield();
            return;
        }
        std::this_thread::sleep_for(duration);
    }
};

std::atomic<Clock*> g_clock = nullptr;

}  // namespace

Clock& CurrentClock()
{
    static SystemClock systemClock;
    Clock* const clock = g_clock.load(std::memory_order_acquire);
    return clock != nullptr ? *clock : systemClock;
}

void SetClock(Clock* clock)
{
    g_clock.store(clock, std::memory_order_release);
}

std::uint32_t GetTickCount()
{
    const auto sinceZero = CurrentClock().Steady().time_since_epoch();
    // Wrapping is meant; callers compare differences.
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceZero).count());
}

void Sleep(std::uint32_t milliseconds)
{
    CurrentClock().Sleep(std::chrono::milliseconds(milliseconds));
}

}  // namespace zr
