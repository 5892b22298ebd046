// A clock that stands still until the test steps it; the worker under test sleeps on it.
#pragma once

#include "platform/Clock.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace zr::test {

// In force from construction to destruction. A sleep longer than 0 ends when the time has come. A sleep of 0, by which
// the core waits for its worker, lets a millisecond pass until the worker's sleep ends, and no more.
class StepClock : public Clock {
public:
    using Milliseconds = std::chrono::milliseconds;

    // tickCount: what GetTickCount gives at the start.
    explicit StepClock(std::uint32_t tickCount = 5000) : m_steady(tickCount) { SetClock(this); }
    ~StepClock() override { SetClock(nullptr); }
    StepClock(const StepClock&) = delete;
    StepClock& operator=(const StepClock&) = delete;

    std::chrono::steady_clock::time_point Steady() const override
    {
        const std::lock_guard lock(m_guard);
        return std::chrono::steady_clock::time_point(m_steady);
    }
    std::chrono::system_clock::time_point Utc() const override
    {
        const std::lock_guard lock(m_guard);
        return m_start + (m_steady - m_startSteady);
    }
    void Sleep(Milliseconds duration) override
    {
        std::unique_lock lock(m_guard);
        if (duration == Milliseconds(0)) {
            if (m_sleeping > 0 && m_steady < m_wake) {
                m_steady += Milliseconds(1);
                m_changed.notify_all();
            }
            const auto hook = OnSleepZero;
            lock.unlock();
            if (hook) {
                hook();
            }
            std::this_thread::yield();
            return;
        }
        const auto until = m_steady + duration;
        m_wake = std::max(m_wake, until);
        ++m_sleeps;
        ++m_sleeping;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_steady >= until; });
        --m_sleeping;
    }

    // Waits until the worker sleeps, and returns after it has begun its next sleep that time later.
    void Step(Milliseconds time)
    {
        std::unique_lock lock(m_guard);
        m_changed.wait(lock, [this] { return m_sleeping > 0; });
        const std::uint64_t before = m_sleeps;
        m_steady += time;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_sleeps > before; });
    }
    // As many looks of the worker as fit into the time.
    void Run(Milliseconds time)
    {
        for (; time >= Milliseconds(100); time -= Milliseconds(100)) {
            Step(Milliseconds(100));
        }
    }

    // Sets the time of day; call it before the worker starts.
    void SetUtc(std::chrono::system_clock::time_point utc)
    {
        const std::lock_guard lock(m_guard);
        m_start = utc;
        m_startSteady = m_steady;
    }

    // Called by each sleep of 0. Set it while nobody sleeps.
    std::function<void()> OnSleepZero;

private:
    mutable std::mutex m_guard;
    std::condition_variable m_changed;
    Milliseconds m_steady;
    Milliseconds m_startSteady = m_steady;
    std::chrono::system_clock::time_point m_start{std::chrono::hours(24 * 365 * 55)};
    std::uint64_t m_sleeps = 0;  // begun, but for those of 0
    int m_sleeping = 0;
    Milliseconds m_wake{0};  // of the last of them
};

}  // namespace zr::test
