// A clock that stands still until the test turns it.
#pragma once

#include "platform/Clock.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <set>
#include <thread>

namespace zr::test {

// Threads that sleep on it block until the test has moved it past their wake time. In force from construction to
// destruction, both while no other thread of the library runs. Any thread.
class ManualClock final : public Clock {
public:
    // Midnight of 1 January 2024 UTC, unless told otherwise.
    explicit ManualClock(std::chrono::system_clock::time_point utc = std::chrono::sys_days(std::chrono::year(2024) /
                                                                                           std::chrono::January / 1))
        : m_utc(utc)
    {
        SetClock(this);
    }
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;
    ~ManualClock() override { SetClock(nullptr); }

    [[nodiscard]] std::chrono::steady_clock::time_point Steady() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_steady;
    }

    [[nodiscard]] std::chrono::system_clock::time_point Utc() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_utc;
    }

    void Sleep(std::chrono::milliseconds duration) override
    {
        std::unique_lock lock(m_mutex);
        if (duration.count() <= 0 || m_isFree) {
            lock.unlock();
            std::this_thread::yield();
            return;
        }
        const auto wake = m_steady + duration;
        m_sleepers.insert(wake);
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return m_steady >= wake || m_isFree; });
    }

    // Moves both times on and wakes whoever's time has come; those no longer count as sleepers when it returns.
    void Advance(std::chrono::milliseconds duration)
    {
        const std::lock_guard lock(m_mutex);
        m_steady += duration;
        m_utc += duration;
        m_sleepers.erase(m_sleepers.begin(), m_sleepers.upper_bound(m_steady));
        m_changed.notify_all();
    }

    // Sets the wall clock alone, as a person or a time server would.
    void SetUtc(std::chrono::system_clock::time_point utc)
    {
        const std::lock_guard lock(m_mutex);
        m_utc = utc;
    }

    // Waits until at least that many threads sleep. False after ten seconds of real time.
    bool WaitForSleepers(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10), [&] { return m_sleepers.size() >= count; });
    }

    // Wakes all sleepers, and lets every later sleep return at once; for the end of a test.
    void ReleaseAll()
    {
        const std::lock_guard lock(m_mutex);
        m_isFree = true;
        m_sleepers.clear();
        m_changed.notify_all();
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    // Not zero, so that nobody takes its zero for a meaning.
    std::chrono::steady_clock::time_point m_steady{std::chrono::hours(1)};
    std::chrono::system_clock::time_point m_utc;
    std::multiset<std::chrono::steady_clock::time_point> m_sleepers;  // by wake time
    bool m_isFree = false;
};

}  // namespace zr::test
