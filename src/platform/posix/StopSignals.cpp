#include "platform/StopSignals.h"

#include "platform/posix/FileDescriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

namespace zr {
namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// The end of the pipe that the handler writes to; -1 while nobody waits.
std::atomic<int> g_writeEnd = -1;

extern "C" void OnStopSignal(int number)
{
    const int error = errno;
    const auto byte = static_cast<unsigned char>(number);
    // A full pipe holds signals enough.
    [[maybe_unused]] const ssize_t written = ::write(g_writeEnd.load(), &byte, 1);
    errno = error;
}

StopSignal SignalOf(unsigned char number)
{
    switch (number) {
        case SIGINT:
            return StopSignal::Interrupt;
        case SIGTERM:
            return StopSignal::Terminate;
        case SIGHUP:
            return StopSignal::HangUp;
        default:
            return StopSignal::None;
    }
}

}  // namespace

struct StopSignals::State {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
    std::array<struct sigaction, kSignals.size()> before{};
};

StopSignals::StopSignals() : m_state(std::make_unique<State>())
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;  // The signals then end the program, as they do without this.
    }
    m_state->readEnd = FileDescriptor(ends[0]);
    m_state->writeEnd = FileDescriptor(ends[1]);
    g_writeEnd = ends[1];
    struct sigaction action = {};
    action.sa_handler = &OnStopSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], &action, &m_state->before[i]);
    }
}

StopSignals::~StopSignals()
{
    if (!m_state->readEnd.IsOpen()) {
        return;
    }
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], &m_state->before[i], nullptr);
    }
    g_writeEnd = -1;
}

StopSignal StopSignals::WaitForSignal(std::chrono::milliseconds timeout)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline =
        Clock::now() + std::min(timeout, std::chrono::milliseconds(std::chrono::hours(24)));
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        struct pollfd waited = {m_state->readEnd.Get(), POLLIN, 0};
        const int ready = ::poll(&waited, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        unsigned char number = 0;
        if (ready > 0 && ::read(m_state->readEnd.Get(), &number, 1) == 1) {
            return SignalOf(number);
        }
        if (left.count() <= 0) {
            return StopSignal::None;
        }
    }
}

}  // namespace zr
