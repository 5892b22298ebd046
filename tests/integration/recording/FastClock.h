// A clock on which a second takes a few milliseconds.
#pragma once

#include "platform/Clock.h"

#include <chrono>
#include <thread>

namespace zr::test {

// All processes of a machine that use it agree on the time, and it never goes back. Any thread.
class FastClock final : public Clock {
public:
    explicit FastClock(int factor) : m_factor(factor) {}

    [[nodiscard]] std::chrono::steady_clock::time_point Steady() const override
    {
        return std::chrono::steady_clock::time_point(std::chrono::steady_clock::now().time_since_epoch() * m_factor);
    }
    [[nodiscard]] std::chrono::system_clock::time_point Utc() const override
    {
        constexpr auto kBegin = std::chrono::sys_days(std::chrono::year(2024) / std::chrono::January / 1);
        return kBegin + std::chrono::duration_cast<std::chrono::system_clock::duration>(Steady().time_since_epoch());
    }
    void Sleep(std::chrono::milliseconds duration) override
    {
        std::this_thread::sleep_for(std::chrono::nanoseconds(duration) / m_factor);
    }

private:
    const int m_factor;
};

}  // namespace zr::test
