#include "siblings/driversupport/DeviceHealth.h"

#include <gtest/gtest.h>

namespace zr {

namespace {

using namespace std::chrono_literals;
using Change = DeviceHealth::Change;
using Heard = DeviceHealth::Heard;

class DeviceHealthTest : public testing::Test {
protected:
    Change TimeOut(DeviceHealth::Time::duration cost = 0s) { return health.TimedOut(now, cost, Heard::Nothing); }
    Change Damage() { return health.TimedOut(now, 0s, Heard::Damage); }

    DeviceHealth::Time now{1000s};
    DeviceHealth health{ServiceTimes{}};
};

TEST_F(DeviceHealthTest, TheFirstAnswerIsNoNews)
{
    EXPECT_FALSE(health.IsOnline());
    EXPECT_EQ(health.Answered(), Change::Online);
    EXPECT_EQ(health.Answered(), Change::None);
    EXPECT_TRUE(health.IsOnline());
}

TEST_F(DeviceHealthTest, ThreeTimeOutsInARowMeanSilence)
{
    EXPECT_EQ(health.Answered(), Change::Online);
    EXPECT_EQ(TimeOut(), Change::None);
    EXPECT_EQ(TimeOut(), Change::None);
    EXPECT_EQ(health.Answered(), Change::None);
    EXPECT_EQ(TimeOut(), Change::None);
    EXPECT_EQ(TimeOut(), Change::None);
    EXPECT_TRUE(health.IsOnline());
    EXPECT_EQ(TimeOut(), Change::Silent);
    EXPECT_TRUE(health.IsSilent());
}

TEST_F(DeviceHealthTest, SilenceIsToldOnceAndItsEndOnce)
{
    TimeOut();
    TimeOut();
    EXPECT_EQ(TimeOut(), Change::Silent);
    EXPECT_EQ(TimeOut(), Change::None);
    EXPECT_EQ(health.Answered(), Change::Back);
    EXPECT_EQ(health.Answered(), Change::None);
}

TEST_F(DeviceHealthTest, ADeviceThatSendsNothingButDamageIsToldAsDamaged)
{
    EXPECT_EQ(Damage(), Change::None);
    EXPECT_EQ(Damage(), Change::None);
    EXPECT_EQ(Damage(), Change::Damaged);
    EXPECT_TRUE(health.IsSilent());
    EXPECT_EQ(Damage(), Change::None);
    EXPECT_EQ(TimeOut(), Change::None);
    EXPECT_EQ(health.Answered(), Change::Back);
}

TEST_F(DeviceHealthTest, DamageNowAndThenIsNotWhatADeviceFallsSilentOf)
{
    for (int quiet = 0; quiet < 3; ++quiet) {
        Change last = Change::None;
        for (int request = 0; request < 3; ++request) {
            last = request == quiet ? TimeOut() : Damage();
        }
        EXPECT_EQ(last, Change::Silent) << quiet;
        EXPECT_EQ(health.Answered(), Change::Back);
    }
}

TEST_F(DeviceHealthTest, SilenceBeforeAnAnswerOrALostLineDoesNotCountAgainstLaterDamage)
{
    TimeOut();
    health.Answered();
    Damage();
    Damage();
    EXPECT_EQ(Damage(), Change::Damaged);
    EXPECT_EQ(health.Answered(), Change::Back);
    TimeOut();
    health.LineLost();
    Damage();
    Damage();
    EXPECT_EQ(Damage(), Change::Damaged);
}

TEST_F(DeviceHealthTest, ASilentDeviceIsAskedAtGrowingIntervals)
{
    TimeOut();
    TimeOut();
    for (const auto interval : {5s, 10s, 20s, 40s, 60s, 60s}) {
        TimeOut();
        EXPECT_EQ(health.ProbeAt(), now + interval);
        now = health.ProbeAt();
    }
}

TEST_F(DeviceHealthTest, ProbesCostTheOthersATenthOfTheirTimeAtMost)
{
    TimeOut(3s);
    TimeOut(3s);
    TimeOut(3s);
    // The time-out and a rest of the line as long.
    EXPECT_GE(health.ProbeAt() - now, 10 * (3s + 3s));
}

TEST_F(DeviceHealthTest, ALostLineSaysNothingAboutTheDevice)
{
    health.Answered();
    health.LineLost();
    EXPECT_FALSE(health.IsOnline());
    EXPECT_EQ(health.Answered(), Change::Online);
}

TEST_F(DeviceHealthTest, ASilenceToldBeforeTheLineWasLostIsNotToldAgain)
{
    TimeOut();
    TimeOut();
    TimeOut();
    health.LineLost();
    TimeOut();
    TimeOut();
    EXPECT_EQ(TimeOut(), Change::None);
    EXPECT_TRUE(health.IsSilent());
    EXPECT_EQ(health.Answered(), Change::Back);
}

}  // namespace

}  // namespace zr
