#include "platform/Clock.h"

#include "support/ManualClock.h"

#include <gtest/gtest.h>
#include <atomic>
#include <thread>

namespace {

using namespace std::chrono_literals;
using zr::test::ManualClock;

TEST(Clock, IsTheSystemsUnlessATestSetsItsOwn)
{
    zr::Clock* const system = &zr::CurrentClock();
    {
        ManualClock clock;
        EXPECT_EQ(&zr::CurrentClock(), &clock);
    }
    EXPECT_EQ(&zr::CurrentClock(), system);
}

TEST(Clock, OfTheSystemFollowsTheSystem)
{
    const auto before = std::chrono::steady_clock::now();
    const auto between = zr::CurrentClock().Steady();
    EXPECT_LE(before, between);
    EXPECT_LE(between, std::chrono::steady_clock::now());
    const auto utc = zr::CurrentClock().Utc();
    EXPECT_LT(std::chrono::abs(std::chrono::system_clock::now() - utc), 1h);
    zr::Sleep(0);
    zr::Sleep(2);
    EXPECT_GE(zr::CurrentClock().Steady() - between, 2ms);
}

TEST(Clock, GetTickCountCountsMillisecondsAndWraps)
{
    ManualClock clock;
    const std::uint32_t start = zr::GetTickCount();
    clock.Advance(1500ms);
    EXPECT_EQ(zr::GetTickCount() - start, 1500U);
    clock.Advance(std::chrono::milliseconds(0x100000000LL));
    EXPECT_EQ(zr::GetTickCount() - start, 1500U);
}

TEST(ManualClock, SleepEndsWhenTheTestHasMovedTheClockFarEnough)
{
    ManualClock clock;
    std::atomic<bool> isAwake = false;
    std::thread sleeper([&] {
        zr::Sleep(1000);
        isAwake = true;
    });
    ASSERT_TRUE(clock.WaitForSleepers(1));
    clock.Advance(999ms);
    ASSERT_TRUE(clock.WaitForSleepers(1));
    EXPECT_FALSE(isAwake);
    clock.Advance(1ms);
    sleeper.join();
    EXPECT_TRUE(isAwake);
}

TEST(ManualClock, WaitForSleepersDoesNotCountWhoHasBeenWoken)
{
    ManualClock clock;
    int laps = 0;
    std::thread sleeper([&] {
        for (int i = 0; i < 100; ++i) {
            zr::Sleep(10);
            ++laps;
        }
    });
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(clock.WaitForSleepers(1));
        EXPECT_EQ(laps, i);
        clock.Advance(10ms);
    }
    sleeper.join();
    EXPECT_EQ(laps, 100);
}

TEST(ManualClock, ReleaseAllWakesEverybodyForGood)
{
    ManualClock clock;
    std::thread first([] { zr::Sleep(1000); });
    std::thread second([] {
        zr::Sleep(2000);
        zr::Sleep(2000);
    });
    ASSERT_TRUE(clock.WaitForSleepers(2));
    clock.ReleaseAll();
    first.join();
    second.join();
}

TEST(ManualClock, SleepOfNothingReturnsAndTheWallClockCanBeSet)
{
    ManualClock clock;
    zr::Sleep(0);
    const auto steady = clock.Steady();
    clock.SetUtc(std::chrono::system_clock::time_point(5s));
    EXPECT_EQ(clock.Utc().time_since_epoch(), 5s);
    EXPECT_EQ(clock.Steady(), steady);
}

}  // namespace
