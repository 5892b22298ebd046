// The requests to end or to begin anew that the system sends to a program.
#pragma once

#include <chrono>
#include <memory>

namespace zr {

enum class StopSignal {
    None,
    Interrupt,  // SIGINT; on Windows Ctrl+C
    Terminate,  // SIGTERM; on Windows the closing of the console, the end of the session
    HangUp,     // SIGHUP; on Windows Ctrl+Break
};

// Catches the signals while it lives; one object a program. After that they do again what they did before.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // Waits for the next signal; None when the time is over. Those that came before the call count, in their order. One
    // thread at a time.
    StopSignal WaitForSignal(std::chrono::milliseconds timeout);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace zr
