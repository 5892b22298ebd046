#include "platform/StopSignals.h"

#include "platform/Terminal.h"
#include "platform/win32/ConsoleEvent.h"

#include <gtest/gtest.h>
#include <initializer_list>

namespace {

using namespace std::chrono_literals;

TEST(StopSignals, EachEventOfTheConsoleHasItsMeaning)
{
    EXPECT_EQ(zr::SignalOfConsoleEvent(CTRL_C_EVENT), zr::StopSignal::Interrupt);
    EXPECT_EQ(zr::SignalOfConsoleEvent(CTRL_BREAK_EVENT), zr::StopSignal::HangUp);
    for (const DWORD event : std::initializer_list<DWORD>{CTRL_CLOSE_EVENT, CTRL_LOGOFF_EVENT, CTRL_SHUTDOWN_EVENT}) {
        EXPECT_EQ(zr::SignalOfConsoleEvent(event), zr::StopSignal::Terminate) << event;
    }
}

// Ctrl+C alone comes from the system here: Wine gives a program no Ctrl+Break of its own, and the others end it.
TEST(StopSignals, WakeAWaitingLoop)
{
    // A console of its own, also where the tests were started without one.
    ::FreeConsole();
    ASSERT_NE(::AllocConsole(), 0) << ::GetLastError();
    {
        zr::StopSignals signals;
        EXPECT_EQ(signals.WaitForSignal(0ms), zr::StopSignal::None);
        for (int i = 0; i < 2; ++i) {
            ASSERT_NE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), 0) << ::GetLastError();
            EXPECT_EQ(signals.WaitForSignal(20s), zr::StopSignal::Interrupt);
        }
        EXPECT_EQ(signals.WaitForSignal(0ms), zr::StopSignal::None);
    }
    ::FreeConsole();
}

TEST(Terminal, HasASizeWhereverItGoes)
{
    EXPECT_GT(zr::SizeOfTerminal().columns, 0);
    EXPECT_GT(zr::SizeOfTerminal().rows, 0);
}

}  // namespace
