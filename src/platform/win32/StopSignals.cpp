#include "platform/StopSignals.h"

#include "platform/win32/ConsoleEvent.h"

#include <condition_variable>
#include <deque>
#include <mutex>

namespace zr {

struct StopSignals::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<StopSignal> pending;

    void Post(StopSignal signal)
    {
        const std::lock_guard lock(mutex);
        pending.push_back(signal);
        changed.notify_all();
    }

    // The system calls the handler on a thread of its own; the guard is held while it uses the state.
    static inline std::mutex s_guard;
    static inline State* s_current = nullptr;

    static BOOL WINAPI OnControl(DWORD event)
    {
        const std::lock_guard lock(s_guard);
        if (s_current == nullptr) {
            return FALSE;
        }
        s_current->Post(SignalOfConsoleEvent(event));
        return TRUE;
    }
};

StopSignals::StopSignals() : m_state(std::make_unique<State>())
{
    const std::lock_guard lock(State::s_guard);
    State::s_current = m_state.get();
    ::SetConsoleCtrlHandler(&State::OnControl, TRUE);
}

StopSignals::~StopSignals()
{
    ::SetConsoleCtrlHandler(&State::OnControl, FALSE);
    const std::lock_guard lock(State::s_guard);
    State::s_current = nullptr;
}

StopSignal StopSignals::WaitForSignal(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_state->mutex);
    if (!m_state->changed.wait_for(lock, timeout, [this] { return !m_state->pending.empty(); })) {
        return StopSignal::None;
    }
    const StopSignal signal = m_state->pending.front();
    m_state->pending.pop_front();
    return signal;
}

}  // namespace zr
