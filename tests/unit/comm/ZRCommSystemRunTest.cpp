// The worker: its tick, its state, and how it starts and stops.
#include "CommFixture.h"
#include "platform/WinThread.h"
#include "siblings/tools/ZRDateTime.h"
#include "StepClock.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using zr::workerState;
using zr::test::PlainDriver;
using zr::test::StepClock;

class ZRCommSystemRunTest : public zr::test::CommFixture {
protected:
    ~ZRCommSystemRunTest() override { zr::SetThreadStarter({}); }

    static std::uint64_t Ticks(const ZRCommSystem& system, const wchar* group)
    {
        const ZRDeviceWorkGroup* const found = system.WorkGroup(group);
        return found != nullptr ? found->Ticks() : std::numeric_limits<std::uint64_t>::max();
    }
};

TEST_F(ZRCommSystemRunTest, TheWorkerIsStoppedAtFirst)
{
    EXPECT_EQ(workerState, 4);
}

TEST_F(ZRCommSystemRunTest, AnEmptySystemStartsAWorkerThatCallsNothingAndStops)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, "", "");
    system.Start();
    EXPECT_EQ(workerState, 2);
    clock.Run(2s);
    EXPECT_EQ(workerState, 2);
    system.Stop();
    EXPECT_EQ(workerState, 4);
}

TEST_F(ZRCommSystemRunTest, TicksEveryGroupASecondAfterTheStartAndNotBefore)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B"), Device("M1", "A") + Device("M2", "B"));
    system.Start();
    clock.Run(900ms);
    EXPECT_EQ(Ticks(system, u"A"), 0u);
    clock.Run(100ms);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    EXPECT_EQ(Ticks(system, u"B"), 1u);
    clock.Run(900ms);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    clock.Run(100ms);
    EXPECT_EQ(Ticks(system, u"A"), 2u);
    system.Stop();
}

TEST_F(ZRCommSystemRunTest, LooksAtTheClockAHundredMillisecondsApart)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.Start();
    // Seven looks 150 ms apart: the tick comes 1050 ms after the start.
    for (int i = 0; i < 6; ++i) {
        clock.Step(150ms);
    }
    EXPECT_EQ(Ticks(system, u"A"), 0u);
    clock.Step(150ms);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    // The next second is counted from there.
    clock.Run(900ms);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    clock.Run(100ms);
    EXPECT_EQ(Ticks(system, u"A"), 2u);
    system.Stop();
}

TEST_F(ZRCommSystemRunTest, DoesNotMakeUpForTicksThatWereMissed)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.Start();
    clock.Step(10s);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    clock.Run(900ms);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    clock.Run(100ms);
    EXPECT_EQ(Ticks(system, u"A"), 2u);
    system.Stop();
}

TEST_F(ZRCommSystemRunTest, TicksOnWhenTheTickCounterWraps)
{
    StepClock clock(std::numeric_limits<std::uint32_t>::max() - 450);
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.Start();
    clock.Run(900ms);
    EXPECT_EQ(Ticks(system, u"A"), 0u);
    clock.Run(100ms);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    clock.Run(1s);
    EXPECT_EQ(Ticks(system, u"A"), 2u);
    system.Stop();
}

TEST_F(ZRCommSystemRunTest, AllGroupsOfATickGetTheSameTimeInUtc)
{
    StepClock clock;
    clock.SetUtc(std::chrono::sys_days(std::chrono::year(2024) / 2 / 29) + 23h + 59min + 58s + 400ms);
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B"), Device("M1", "A") + Device("M2", "B"));
    system.Start();
    clock.Run(2s);
    ZRDateTime expected;
    expected.SetDateTime(2024, 3, 1, 0, 0, 0, 0, 0);
    EXPECT_EQ(system.WorkGroup(u"A")->LastTick(), expected);
    EXPECT_EQ(system.WorkGroup(u"B")->LastTick(), expected);
    system.Stop();
}

TEST_F(ZRCommSystemRunTest, AGroupWithoutItsConnectionIsNotStartedAndStillTicks)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.DeleteConnection(system.Connection(u"A"));
    auto* const driver = dynamic_cast<PlainDriver*>(*system.DriversBegin());
    ASSERT_NE(driver, nullptr);
    system.Start();
    EXPECT_TRUE(system.WorkGroup(u"A")->Stopped());
    clock.Run(2s);
    EXPECT_EQ(Ticks(system, u"A"), 2u);
    system.Stop();
    EXPECT_EQ(driver->cycles, 0);
}

TEST_F(ZRCommSystemRunTest, ADeviceInNoGroupIsNeverPolled)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A") + Device("M2", "") + Device("M3", "B"));
    system.Start();
    clock.Run(2s);
    system.Stop();
    for (const wchar* const name : {u"M2", u"M3"}) {
        const auto* const driver = dynamic_cast<PlainDriver*>(*system.GetDriver(name));
        ASSERT_NE(driver, nullptr);
        ASSERT_EQ(driver->name, name);
        EXPECT_EQ(driver->cycles, 0);
    }
}

TEST_F(ZRCommSystemRunTest, StartGivesEveryGroupItsConnectionBeforeTheWorkerBegins)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    bool hadStarted = false;
    int stateAtBegin = 0;
    zr::SetThreadStarter([&](AFX_THREADPROC, void*) -> CWinThread* {
        hadStarted = !system.WorkGroup(u"A")->Stopped();
        stateAtBegin = workerState;
        return nullptr;
    });
    system.Start();
    EXPECT_TRUE(hadStarted);
    EXPECT_EQ(stateAtBegin, 2);
    system.Stop();
}

TEST_F(ZRCommSystemRunTest, AFailedThreadStartLeavesTheStateStoppedAndTheGroupsStarted)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    zr::SetThreadStarter([](AFX_THREADPROC, void*) -> CWinThread* { return nullptr; });
    system.Start();
    EXPECT_EQ(workerState, 4);
    EXPECT_FALSE(system.WorkGroup(u"A")->Stopped());
    system.Stop();
    EXPECT_TRUE(system.WorkGroup(u"A")->Stopped());
}

TEST_F(ZRCommSystemRunTest, StartsAgainAfterAFailedThreadStart)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    zr::SetThreadStarter([](AFX_THREADPROC, void*) -> CWinThread* { return nullptr; });
    system.Start();
    zr::SetThreadStarter({});
    system.Start();
    clock.Run(1s);
    EXPECT_EQ(Ticks(system, u"A"), 1u);
    system.Stop();
}

TEST_F(ZRCommSystemRunTest, TheWorkerProcedureRefusesANullParameter)
{
    AFX_THREADPROC procedure = nullptr;
    zr::SetThreadStarter([&](AFX_THREADPROC given, void*) -> CWinThread* {
        procedure = given;
        return nullptr;
    });
    ZRCommSystem system;
    system.Start();
    ASSERT_NE(procedure, nullptr);
    EXPECT_EQ(procedure(nullptr), -1);
}

TEST_F(ZRCommSystemRunTest, TheWorkerLeavesAtOnceWhenItIsNotToRun)
{
    AFX_THREADPROC procedure = nullptr;
    zr::SetThreadStarter([&](AFX_THREADPROC given, void*) -> CWinThread* {
        procedure = given;
        return nullptr;
    });
    ZRCommSystem system;
    system.Start();
    ASSERT_NE(procedure, nullptr);
    workerState = zr::WORKER_STOPPING;
    EXPECT_EQ(procedure(&system), 0);
    EXPECT_EQ(workerState, 4);
}

TEST_F(ZRCommSystemRunTest, StopAsksTheWorkerAndSpinsUntilItHasLeft)
{
    StepClock clock;
    ZRCommSystem system;
    system.Start();
    clock.Run(100ms);
    std::vector<int> states;
    clock.OnSleepZero = [&states] { states.push_back(workerState); };
    system.Stop();
    clock.OnSleepZero = {};
    ASSERT_FALSE(states.empty());
    EXPECT_EQ(states.front(), 3);
    EXPECT_EQ(states.back(), 4);
    EXPECT_EQ(std::set<int>(states.begin(), states.end()), (std::set<int>{3, 4}));
}

TEST_F(ZRCommSystemRunTest, StopOnAnEmptySystemThatNeverRanSleepsOnce)
{
    StepClock clock;
    ZRCommSystem system;
    int sleeps = 0;
    clock.OnSleepZero = [&sleeps] { ++sleeps; };
    system.Stop();
    EXPECT_EQ(sleeps, 1);
    clock.OnSleepZero = {};
}

TEST_F(ZRCommSystemRunTest, StopTwiceInARowOnlyAsksTheGroupsAgain)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.Start();
    clock.Run(1s);
    system.Stop();
    EXPECT_TRUE(system.WorkGroup(u"A")->Stopped());
    system.Stop();
    EXPECT_EQ(workerState, 4);
    EXPECT_TRUE(system.WorkGroup(u"A")->Stopped());
    EXPECT_EQ(Ticks(system, u"A"), 1u);
}

TEST_F(ZRCommSystemRunTest, StopReturnsWhenEveryGroupHasComeToRest)
{
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B") + Udp("C"), Device("M1", "A") + Device("M2", "B") + Device("M3", "C"));
    system.Start();
    system.Stop();
    for (auto group = system.GroupsBegin(); group != system.GroupsEnd(); ++group) {
        EXPECT_TRUE((*group)->Stopped());
    }
}

TEST_F(ZRCommSystemRunTest, StartsAndStopsManyTimes)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    for (std::uint64_t i = 1; i <= 20; ++i) {
        system.Start();
        clock.Run(1s);
        EXPECT_EQ(Ticks(system, u"A"), i);
        system.Stop();
        EXPECT_EQ(workerState, 4);
    }
}

TEST_F(ZRCommSystemRunTest, StartDoesNotTestWhetherAWorkerRunsAlready)
{
    // On the system's own clock: time goes on for the second worker while the first is joined.
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    std::atomic<int> begun = 0;
    zr::SetThreadStarter([&begun](AFX_THREADPROC procedure, void* parameter) {
        ++begun;
        return new CWinThread(std::thread(procedure, parameter));
    });
    system.Start();
    system.Start();
    EXPECT_EQ(begun, 2);
    // One Stop ends both: nothing touches the groups that Reset destroys.
    system.Reset();
    EXPECT_EQ(workerState, 4);
}

TEST_F(ZRCommSystemRunTest, ASecondSystemSharesTheStateOfTheWorker)
{
    StepClock clock;
    ZRCommSystem running;
    ZRCommSystem other;
    running.Start();
    clock.Run(100ms);
    EXPECT_EQ(workerState, 2);
    other.Stop();
    EXPECT_EQ(workerState, 4);
    running.Stop();
}

TEST_F(ZRCommSystemRunTest, ResetStopsTheWorkerFirst)
{
    StepClock clock;
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.Start();
    clock.Run(1s);
    system.Reset();
    EXPECT_EQ(workerState, 4);
    EXPECT_EQ(GroupCount(system), 0);
}

TEST_F(ZRCommSystemRunTest, TheDestructorStopsTheWorker)
{
    StepClock clock;
    {
        ZRCommSystem system;
        Load(system, Udp("A"), Device("M1", "A"));
        system.Start();
        clock.Run(1s);
    }
    EXPECT_EQ(workerState, 4);
    EXPECT_EQ(PlainDriver::alive, 0);
}

TEST_F(ZRCommSystemRunTest, TicksOnTheSystemsOwnClock)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.Start();
    while (Ticks(system, u"A") < 1) {
        std::this_thread::yield();
    }
    const ZRDateTime utc = ZRDateTime::UTC();
    const ZRDateTime tick = system.WorkGroup(u"A")->LastTick();
    system.Stop();
    EXPECT_LE(tick, utc);
    EXPECT_GE(tick.seconds, utc.seconds - 60);
}

}  // namespace
