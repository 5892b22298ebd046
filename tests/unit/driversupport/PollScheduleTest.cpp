#include "siblings/driversupport/PollSchedule.h"

#include <gtest/gtest.h>

namespace zr {

namespace {

using namespace std::chrono_literals;
using Task = PollSchedule::Task;

class PollScheduleTest : public testing::Test {
protected:
    PollScheduleTest()
    {
        for (std::uint8_t unit = 1; unit <= 3; ++unit) {
            schedule.Add(unit);
        }
    }

    // Begins the cycle of whoever's turn it is.
    std::size_t Begin(std::chrono::milliseconds period)
    {
        const PollSchedule::Turn turn = schedule.Next(now);
        EXPECT_EQ(turn.task, Task::Begin);
        schedule.Begun(turn.member, period, now);
        schedule.Worked(turn.member);
        return turn.member;
    }
    void RunAllOnce(std::chrono::milliseconds period)
    {
        for (int i = 0; i < 3; ++i) {
            schedule.Over(Begin(period));
        }
    }

    PollSchedule::Time now{1000s};
    PollSchedule schedule;
};

TEST_F(PollScheduleTest, HasNoTurnWithoutMembers)
{
    PollSchedule empty;
    EXPECT_EQ(empty.Next(now).task, Task::None);
}

TEST_F(PollScheduleTest, TakesMembersInTurnARequestAtATime)
{
    const std::size_t first = Begin(0ms);
    const std::size_t second = Begin(0ms);
    const std::size_t third = Begin(0ms);
    for (const std::size_t expected : {first, second, third, first}) {
        const PollSchedule::Turn turn = schedule.Next(now);
        EXPECT_EQ(turn.task, Task::Continue);
        EXPECT_EQ(turn.member, expected);
    }
}

TEST_F(PollScheduleTest, WaitsForTheTickThatThePeriodNames)
{
    RunAllOnce(1500ms);
    EXPECT_EQ(schedule.Next(now + 100s).task, Task::None);
    schedule.Tick(1);
    EXPECT_EQ(schedule.Next(now).task, Task::None);
    schedule.Tick(2);
    EXPECT_EQ(schedule.Next(now).task, Task::Begin);
}

TEST_F(PollScheduleTest, WaitsForTheTimeOfAPeriodBelowASecond)
{
    RunAllOnce(200ms);
    const PollSchedule::Turn turn = schedule.Next(now + 199ms);
    EXPECT_EQ(turn.task, Task::None);
    EXPECT_EQ(turn.notBefore, now + 200ms);
    EXPECT_EQ(schedule.Next(now + 200ms).task, Task::Begin);
}

TEST_F(PollScheduleTest, DoesNotCatchUpOnMissedCycles)
{
    RunAllOnce(200ms);
    now += 10s;
    RunAllOnce(200ms);
    EXPECT_EQ(schedule.Next(now).task, Task::None);
}

TEST_F(PollScheduleTest, ACycleWithoutARequestIsNotBegunAgainBeforeTheTick)
{
    for (int i = 0; i < 3; ++i) {
        const PollSchedule::Turn turn = schedule.Next(now);
        schedule.Begun(turn.member, 0ms, now);
        schedule.Over(turn.member);
    }
    EXPECT_EQ(schedule.Next(now + 100s).task, Task::None);
    schedule.Tick(1);
    EXPECT_EQ(schedule.Next(now).task, Task::Begin);
}

TEST_F(PollScheduleTest, ACallGoesAheadOfTheOthers)
{
    Begin(0ms);
    Begin(0ms);
    Begin(0ms);
    EXPECT_EQ(schedule.Next(now).member, 1u);
    schedule.Call(0);
    const PollSchedule::Turn turn = schedule.Next(now);
    EXPECT_EQ(turn.task, Task::Call);
    EXPECT_EQ(turn.member, 0u);
    schedule.CallServed(0);
    EXPECT_EQ(schedule.Next(now).task, Task::Continue);
}

TEST_F(PollScheduleTest, AHeldUnitWaitsWhileTheOthersGoOn)
{
    schedule.Hold(2, now + 3s);
    for (int i = 0; i < 2; ++i) {
        const std::size_t member = Begin(1s);
        EXPECT_NE(member, 1u);
        schedule.Over(member);
    }
    const PollSchedule::Turn turn = schedule.Next(now);
    EXPECT_EQ(turn.task, Task::None);
    EXPECT_EQ(turn.notBefore, now + 3s);
    EXPECT_EQ(schedule.Next(now + 3s).member, 1u);
}

TEST_F(PollScheduleTest, AParkedMemberIsOnlyProbedUntilItIsTakenBack)
{
    RunAllOnce(0ms);
    schedule.Park(0, now + 5s);
    schedule.Park(1, now + 6s);
    schedule.Park(2, now + 7s);
    EXPECT_EQ(schedule.Next(now).notBefore, now + 5s);
    const PollSchedule::Turn turn = schedule.Next(now + 5s);
    EXPECT_EQ(turn.task, Task::Probe);
    EXPECT_EQ(turn.member, 0u);
    schedule.Unpark(0);
    EXPECT_EQ(schedule.Next(now).task, Task::Begin);
}

TEST_F(PollScheduleTest, ALostLineMakesEveryCycleDueAgain)
{
    RunAllOnce(1h);
    schedule.Park(1, now + 5s);
    schedule.LineLost();
    RunAllOnce(1h);
    EXPECT_EQ(schedule.Next(now).task, Task::None);
}

}  // namespace

}  // namespace zr
