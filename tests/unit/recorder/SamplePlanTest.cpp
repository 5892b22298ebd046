#include "siblings/driversupport/recorder/SamplePlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::int64_t kSecond = 1000000;
constexpr std::int64_t kDay = 86400 * kSecond;
constexpr std::int64_t kMidnight = 20000 * kDay;

// A plan with a clock that the test turns; tells what has become due as seconds since midnight.
class SamplePlan : public testing::Test {
protected:
    void Begin(std::vector<std::int32_t> periods, milliseconds sinceMidnight = milliseconds(0))
    {
        m_plan = std::make_unique<zr::SamplePlan>(periods);
        m_now.utc = kMidnight + sinceMidnight.count() * 1000;
        m_plan->Begin(m_now);
    }

    // Time passes, and the clock is set by so much besides.
    void Pass(milliseconds duration, milliseconds set = milliseconds(0))
    {
        m_now.steady += duration;
        m_now.utc += (duration + set).count() * 1000;
        m_due.clear();
        m_late = 0;
        m_setBack = 0;
        for (const zr::SamplePlan::Due& due : m_plan->Take(m_now)) {
            if (due.isDue) {
                m_due.push_back({due.index, (due.time - kMidnight) / kSecond});
            }
            m_late += due.late;
            m_setBack += due.clockSetBack;
        }
    }

    // The times that became due while time passed in small steps.
    std::vector<std::int64_t> DueWithin(milliseconds duration, milliseconds step = milliseconds(100))
    {
        std::vector<std::int64_t> times;
        std::uint64_t late = 0;
        std::uint64_t setBack = 0;
        for (milliseconds passed(0); passed < duration; passed += step) {
            Pass(step);
            for (const Entry& entry : m_due) {
                times.push_back(entry.second);
            }
            late += m_late;
            setBack += m_setBack;
        }
        m_late = late;
        m_setBack = setBack;
        return times;
    }

    [[nodiscard]] milliseconds UntilNext() const
    {
        return std::chrono::duration_cast<milliseconds>(m_plan->UntilNext(m_now));
    }

    using Entry = std::pair<std::size_t, std::int64_t>;  // period, time
    std::unique_ptr<zr::SamplePlan> m_plan;
    zr::SamplePlan::Moment m_now;
    std::vector<Entry> m_due;
    std::uint64_t m_late = 0;
    std::uint64_t m_setBack = 0;
};

TEST_F(SamplePlan, IsDueAtMultiplesOfThePeriodInUtc)
{
    Begin({10}, milliseconds(3500));
    EXPECT_EQ(UntilNext(), milliseconds(6500));
    Pass(milliseconds(6400));
    EXPECT_TRUE(m_due.empty());
    Pass(milliseconds(120));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 10)));
    EXPECT_EQ(UntilNext(), milliseconds(9980));
    EXPECT_THAT(DueWithin(seconds(30)), testing::ElementsAre(20, 30, 40));
    EXPECT_EQ(m_late + m_setBack, 0u);
}

TEST_F(SamplePlan, EachPeriodHasItsOwnTimes)
{
    Begin({1, 5, 86400}, milliseconds(500));
    Pass(milliseconds(600));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 1)));
    DueWithin(milliseconds(3800));
    Pass(milliseconds(200));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 5), Entry(1, 5)));
    EXPECT_EQ(m_late, 0u);
}

TEST_F(SamplePlan, ADayIsDueAtMidnightOfUtc)
{
    Begin({86400}, std::chrono::hours(23) + std::chrono::minutes(59));
    EXPECT_EQ(UntilNext(), seconds(60));
    EXPECT_THAT(DueWithin(seconds(61)), testing::ElementsAre(86400));
    EXPECT_EQ(UntilNext(), std::chrono::hours(24) - seconds(1));
}

TEST_F(SamplePlan, ThePresentTimeIsNotDueAtTheBeginning)
{
    Begin({1}, seconds(7));
    Pass(milliseconds(0));
    EXPECT_TRUE(m_due.empty());
    EXPECT_THAT(DueWithin(seconds(1)), testing::ElementsAre(8));
}

TEST_F(SamplePlan, ATimeIsDueOnce)
{
    Begin({1}, milliseconds(900));
    Pass(milliseconds(100));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 1)));
    Pass(milliseconds(0));
    EXPECT_TRUE(m_due.empty());
    Pass(milliseconds(500));
    EXPECT_TRUE(m_due.empty());
}

TEST_F(SamplePlan, ClockSetForwardGoesOnWithTheNextTimeAndLosesNothing)
{
    Begin({10}, seconds(5));
    Pass(milliseconds(100), std::chrono::hours(24 * 365 * 5));
    EXPECT_TRUE(m_due.empty());
    EXPECT_GT(m_plan->Step(), 0);
    EXPECT_EQ(UntilNext(), milliseconds(4900));
    EXPECT_EQ(DueWithin(seconds(20)).size(), 2u);
    EXPECT_EQ(m_late + m_setBack, 0u);
    EXPECT_EQ(m_plan->Step(), 0);
}

TEST_F(SamplePlan, ATimeThatPassesWhileTheClockIsSetForwardIsDue)
{
    Begin({10}, seconds(5));
    // From 5 to 3610.5: of the new time the last three seconds were lived through.
    Pass(milliseconds(3000), milliseconds(3602500));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 3610)));
}

TEST_F(SamplePlan, ClockSetBackSkipsWhatWasLivedThroughAndCountsIt)
{
    Begin({1}, milliseconds(500));
    EXPECT_EQ(DueWithin(seconds(10)).size(), 10u);  // 1 to 10
    Pass(milliseconds(0), -seconds(5));
    EXPECT_EQ(m_plan->Step(), -5 * kSecond);
    EXPECT_THAT(DueWithin(seconds(8)), testing::ElementsAre(11, 12, 13));
    EXPECT_EQ(m_setBack, 5u);
    EXPECT_EQ(m_late, 0u);
}

TEST_F(SamplePlan, ClockSetBackToATimeBeforeTheBeginningRecordsThatTime)
{
    Begin({1}, seconds(100));
    DueWithin(seconds(3));  // 101 to 103
    Pass(milliseconds(0), -seconds(50));
    const std::vector<std::int64_t> times = DueWithin(seconds(52));
    ASSERT_EQ(times.size(), 49u);
    EXPECT_EQ(times.front(), 54);
    EXPECT_EQ(times[46], 100);
    EXPECT_EQ(times[47], 104);
    EXPECT_EQ(m_setBack, 3u);
}

TEST_F(SamplePlan, AClockThatWasYearsAheadDoesntStopTheRecording)
{
    Begin({1}, milliseconds(500));
    Pass(milliseconds(0), std::chrono::hours(24 * 365 * 3));
    EXPECT_EQ(DueWithin(seconds(5)).size(), 5u);
    Pass(milliseconds(0), -std::chrono::hours(24 * 365 * 3));
    EXPECT_THAT(DueWithin(seconds(3)), testing::ElementsAre(6, 7, 8));
    EXPECT_EQ(m_setBack, 0u);
}

TEST_F(SamplePlan, AClockThatIsSetToAndFroNeverRepeatsATime)
{
    Begin({1}, milliseconds(500));
    std::multiset<std::int64_t> times;
    std::uint64_t setBack = 0;
    for (int i = 0; i < 400; ++i) {
        Pass(milliseconds(0), seconds(i % 2 == 0 ? 40 + i : -37 - i));
        for (const std::int64_t time : DueWithin(seconds(7))) {
            times.insert(time);
        }
        setBack += m_setBack;
        EXPECT_EQ(m_late, 0u);
    }
    EXPECT_GT(setBack, 0u);
    for (const std::int64_t time : times) {
        EXPECT_EQ(times.count(time), 1u) << time;
    }
}

TEST_F(SamplePlan, AClockThatIsSteeredBackALittleRepeatsNothingAndCountsNothing)
{
    Begin({1}, milliseconds(500));
    Pass(milliseconds(510));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 1)));
    Pass(milliseconds(10), -milliseconds(300));  // 0.72
    EXPECT_TRUE(m_due.empty());
    EXPECT_THAT(DueWithin(milliseconds(1300)), testing::ElementsAre(2));
    EXPECT_EQ(m_setBack + m_late, 0u);
}

TEST_F(SamplePlan, AClockThatStandsStillMakesNothingDue)
{
    Begin({1}, milliseconds(500));
    for (int i = 0; i < 50; ++i) {
        Pass(milliseconds(100), -milliseconds(100));
        EXPECT_TRUE(m_due.empty());
        EXPECT_GT(UntilNext(), milliseconds(0));
    }
    EXPECT_THAT(DueWithin(seconds(1)), testing::ElementsAre(1));
    EXPECT_EQ(m_setBack + m_late, 0u);
}

TEST_F(SamplePlan, HeldUpForSeveralPeriodsCountsTheMissedAsLate)
{
    Begin({1}, milliseconds(500));
    Pass(milliseconds(5600));  // 6.1
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 6)));
    EXPECT_EQ(m_late, 5u);
    EXPECT_EQ(m_plan->Step(), 0);
}

TEST_F(SamplePlan, HeldUpForYearsCountsWithoutALoop)
{
    Begin({1}, milliseconds(500));
    Pass(std::chrono::hours(24 * 365 * 50));
    EXPECT_EQ(m_late, 50u * 365 * 86400 - 1);
    EXPECT_EQ(m_due.size(), 1u);
}

TEST_F(SamplePlan, ATimeIsStillDueForATenthOfItsPeriod)
{
    Begin({60}, seconds(50));
    Pass(milliseconds(15900));  // 65.9
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 60)));
    Begin({60}, seconds(50));
    Pass(milliseconds(16000));
    EXPECT_TRUE(m_due.empty());
    EXPECT_EQ(m_late, 1u);
}

TEST_F(SamplePlan, ADayIsDueForAMinute)
{
    Begin({86400}, std::chrono::hours(23));
    Pass(std::chrono::minutes(60) + milliseconds(59900));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 86400)));
    Begin({86400}, std::chrono::hours(23));
    Pass(std::chrono::minutes(61));
    EXPECT_TRUE(m_due.empty());
    EXPECT_EQ(m_late, 1u);
}

TEST_F(SamplePlan, HeldUpAndSetBackCountsWhatWasLivedThroughAsSetBack)
{
    Begin({1}, milliseconds(500));
    DueWithin(seconds(10));                 // 1 to 10, now 10.5
    Pass(milliseconds(4000), -seconds(8));  // 6.5, and 2.5 to 6.5 was lived once more
    EXPECT_TRUE(m_due.empty());
    EXPECT_EQ(m_setBack, 4u);
    EXPECT_EQ(m_late, 0u);
}

TEST_F(SamplePlan, APauseIsNeitherLateNorForgotten)
{
    Begin({1}, milliseconds(500));
    DueWithin(seconds(3));  // 1 to 3
    m_now.steady += seconds(100);
    m_now.utc -= 2 * kSecond;
    m_plan->Begin(m_now);  // 1.5
    EXPECT_THAT(DueWithin(seconds(4)), testing::ElementsAre(4, 5));
    EXPECT_EQ(m_setBack, 2u);
    EXPECT_EQ(m_late, 0u);
}

TEST_F(SamplePlan, TimesBefore1970AreTimesAsWell)
{
    Begin({10}, milliseconds(0));
    m_now.utc = -15 * kSecond;
    m_plan->Begin(m_now);
    Pass(seconds(5));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, -10 - kMidnight / kSecond)));
}

TEST_F(SamplePlan, APeriodOfNothingCountsAsASecond)
{
    Begin({0, -5}, milliseconds(500));
    Pass(milliseconds(600));
    EXPECT_THAT(m_due, testing::ElementsAre(Entry(0, 1), Entry(1, 1)));
}

}  // namespace
