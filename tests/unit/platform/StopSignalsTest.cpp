#include "platform/StopSignals.h"

#include "platform/Terminal.h"
#include "support/Process.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <csignal>
#include <thread>

namespace {

using namespace std::chrono_literals;

TEST(StopSignals, ArriveInTheirOrder)
{
    zr::StopSignals signals;
    EXPECT_EQ(signals.WaitForSignal(0ms), zr::StopSignal::None);
    ::raise(SIGHUP);
    ::raise(SIGINT);
    ::raise(SIGTERM);
    EXPECT_EQ(signals.WaitForSignal(10s), zr::StopSignal::HangUp);
    EXPECT_EQ(signals.WaitForSignal(10s), zr::StopSignal::Interrupt);
    EXPECT_EQ(signals.WaitForSignal(10s), zr::StopSignal::Terminate);
    EXPECT_EQ(signals.WaitForSignal(0ms), zr::StopSignal::None);
}

TEST(StopSignals, WakeAWaitingLoop)
{
    zr::StopSignals signals;
    std::thread sender([] { ::kill(::getpid(), SIGTERM); });
    EXPECT_EQ(signals.WaitForSignal(20s), zr::StopSignal::Terminate);
    sender.join();
}

TEST(StopSignals, DoAgainWhatTheyDidBeforeWhenItIsGone)
{
    struct sigaction ignore = {};
    struct sigaction old = {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGHUP, &ignore, &old);
    {
        const zr::StopSignals signals;
    }
    struct sigaction now = {};
    ::sigaction(SIGHUP, &old, &now);
    EXPECT_EQ(now.sa_handler, SIG_IGN);
}

TEST(Terminal, HasASizeWhereverItGoes)
{
    EXPECT_GT(zr::SizeOfTerminal().columns, 0);
    EXPECT_GT(zr::SizeOfTerminal().rows, 0);
}

TEST(Process, GivesLinesStatusAndSignals)
{
    zr::test::Process echo({"sh", "-c", "echo one; echo two $WORD; echo bad >&2; read x; echo got $x; exit 7"},
                           {"WORD=three"});
    ASSERT_TRUE(echo.Started());
    EXPECT_EQ(echo.ReadLineWith("two"), "two three");
    EXPECT_EQ(echo.ReadErrorLine([](const std::string&) { return true; }), "bad");
    EXPECT_TRUE(echo.Write("word\n"));
    EXPECT_EQ(echo.ReadLineWith("got"), "got word");
    EXPECT_EQ(echo.WaitForExit(), 7);
    EXPECT_EQ(echo.Output(), "one\ntwo three\ngot word\n");
    EXPECT_EQ(echo.ReadLineWith("more"), std::nullopt);

    zr::test::Process killed({"cat"});
    EXPECT_EQ(killed.WaitForExit(1ms), std::nullopt);
    killed.Send(SIGTERM);
    EXPECT_EQ(killed.WaitForExit(), 128 + SIGTERM);
    EXPECT_FALSE(zr::test::Process({"/no/such/program"}).Started());
}

}  // namespace
