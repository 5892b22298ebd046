#include "siblings/driversupport/recorder/UpkeepTime.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::hours;
using std::chrono::seconds;

constexpr std::int64_t kSecond = 1000000;
constexpr std::int64_t kDay = 86400 * kSecond;

class UpkeepTime : public testing::Test {
protected:
    std::int64_t Take(std::int64_t utc, hours steady)
    {
        return m_time.Take(utc, std::chrono::steady_clock::time_point(steady));
    }
    zr::UpkeepTime m_time;
};

TEST_F(UpkeepTime, FollowsTheClock)
{
    EXPECT_EQ(Take(100 * kDay, hours(0)), 100 * kDay);
    EXPECT_EQ(Take(102 * kDay, hours(48)), 102 * kDay);
    EXPECT_EQ(Take(101 * kDay, hours(49)), 101 * kDay);
    EXPECT_EQ(Take(101 * kDay + kDay / 2, hours(49)), 101 * kDay + kDay / 2);
}

TEST_F(UpkeepTime, AClockThatJumpsYearsAheadIsDoubtedForADay)
{
    EXPECT_EQ(Take(100 * kDay, hours(0)), 100 * kDay);
    EXPECT_EQ(Take(2000 * kDay, hours(1)), 100 * kDay + 3600 * kSecond);
    EXPECT_EQ(Take(2000 * kDay, hours(24)), 101 * kDay);
    EXPECT_EQ(Take(2001 * kDay, hours(25)), 2001 * kDay);
}

TEST_F(UpkeepTime, AClockThatIsPutRightAgainIsBelievedAtOnce)
{
    EXPECT_EQ(Take(100 * kDay, hours(0)), 100 * kDay);
    EXPECT_EQ(Take(2000 * kDay, hours(1)), 100 * kDay + 3600 * kSecond);
    EXPECT_EQ(Take(100 * kDay + 7200 * kSecond, hours(2)), 100 * kDay + 7200 * kSecond);
    EXPECT_EQ(Take(3000 * kDay, hours(3)), 100 * kDay + 3 * 3600 * kSecond);
}

}  // namespace
