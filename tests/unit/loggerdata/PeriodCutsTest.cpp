#include "siblings/driversupport/PeriodCuts.h"

#include <gtest/gtest.h>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zr {
namespace {

constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kDay = 86400;

// Seconds since 1970 of a date as if it were UTC.
std::int64_t At(int year, unsigned month, unsigned day, int hour = 0, int minute = 0)
{
    const std::chrono::sys_days date = std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
    return date.time_since_epoch().count() * kDay + hour * kHour + minute * 60;
}

// Central Europe in 2002: summer from 31 March 01:00 UTC to 27 October 01:00 UTC.
TimeZone Paris()
{
    return {3600, {{At(2002, 3, 31, 1), 7200}, {At(2002, 10, 27, 1), 3600}}};
}

using Cuts = std::vector<std::int64_t>;

TEST(PeriodCuts, CutsFromMidnight)
{
    const Cuts cuts = PeriodCuts(TimeZone(), At(2002, 1, 1), At(2002, 1, 1, 2), 1800);
    EXPECT_EQ(cuts, (Cuts{At(2002, 1, 1), At(2002, 1, 1, 0, 30), At(2002, 1, 1, 1), At(2002, 1, 1, 1, 30),
                          At(2002, 1, 1, 2)}));
}

TEST(PeriodCuts, BeginsAndEndsWithTheRange)
{
    const Cuts cuts = PeriodCuts(TimeZone(), At(2002, 1, 1, 0, 10), At(2002, 1, 1, 1, 10), 3600);
    EXPECT_EQ(cuts, (Cuts{At(2002, 1, 1, 0, 10), At(2002, 1, 1, 1), At(2002, 1, 1, 1, 10)}));
    EXPECT_EQ(PeriodCuts(TimeZone(), 5, 6, 3600), (Cuts{5, 6}));
}

TEST(PeriodCuts, OfAnEmptyRangeThereAreNone)
{
    EXPECT_TRUE(PeriodCuts(TimeZone(), 5, 5, 3600).empty());
    EXPECT_TRUE(PeriodCuts(TimeZone(), 6, 5, 3600).empty());
    EXPECT_TRUE(PeriodCuts(TimeZone(), 5, 6, 0).empty());
}

TEST(PeriodCuts, APeriodThatDoesntDivideTheDayStartsAnewAtMidnight)
{
    const Cuts cuts = PeriodCuts(TimeZone(), At(2002, 1, 1, 20), At(2002, 1, 2, 8), 7 * 3600);
    EXPECT_EQ(cuts,
              (Cuts{At(2002, 1, 1, 20), At(2002, 1, 1, 21), At(2002, 1, 2), At(2002, 1, 2, 7), At(2002, 1, 2, 8)}));
}

TEST(PeriodCuts, TheHourThatOccursTwiceIsCutTwice)
{
    const std::int64_t midnight = At(2002, 10, 26, 22);  // UTC
    const Cuts cuts = PeriodCuts(Paris(), midnight, midnight + 25 * kHour, 3600);
    ASSERT_EQ(cuts.size(), 26u);
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        EXPECT_EQ(cuts[i], midnight + static_cast<std::int64_t>(i) * kHour);
    }
    EXPECT_EQ(PeriodCuts(Paris(), midnight, midnight + 25 * kHour, 1800).size(), 51u);
    EXPECT_EQ(PeriodCuts(Paris(), midnight, midnight + 25 * kHour, 1200).size(), 76u);
}

TEST(PeriodCuts, ASkippedHourIsNotCut)
{
    const std::int64_t midnight = At(2002, 3, 30, 23);
    EXPECT_EQ(PeriodCuts(Paris(), midnight, midnight + 23 * kHour, 3600).size(), 24u);
    EXPECT_EQ(PeriodCuts(Paris(), midnight, midnight + 23 * kHour, 1800).size(), 47u);
    // A period over the skipped hour is cut where the clock is set to another one.
    const Cuts cuts = PeriodCuts(Paris(), midnight, midnight + 5 * kHour, 2 * 3600);
    EXPECT_EQ(cuts, (Cuts{midnight, midnight + 2 * kHour, midnight + 3 * kHour, midnight + 5 * kHour}));
}

TEST(PeriodCuts, AClockSetBackWithinAPeriodIsNotCut)
{
    // By half an hour, as on Lord Howe Island.
    const TimeZone zone(39600, {{At(2002, 3, 30, 15), 37800}});
    const std::int64_t midnight = At(2002, 3, 30, 13);
    const Cuts cuts = PeriodCuts(zone, midnight, midnight + 4 * kHour, 3600);
    EXPECT_EQ(cuts, (Cuts{midnight, midnight + kHour, midnight + 2 * kHour + 1800, midnight + 3 * kHour + 1800,
                          midnight + 4 * kHour}));
}

TEST(PeriodCuts, DaysGoFromMidnightToMidnight)
{
    const Cuts spring = PeriodCuts(Paris(), At(2002, 3, 29, 23), At(2002, 4, 1, 22), 86400);
    EXPECT_EQ(spring, (Cuts{At(2002, 3, 29, 23), At(2002, 3, 30, 23), At(2002, 3, 31, 22), At(2002, 4, 1, 22)}));
    const Cuts autumn = PeriodCuts(Paris(), At(2002, 10, 25, 22), At(2002, 10, 28, 23), 86400);
    EXPECT_EQ(autumn, (Cuts{At(2002, 10, 25, 22), At(2002, 10, 26, 22), At(2002, 10, 27, 23), At(2002, 10, 28, 23)}));
}

TEST(PeriodCuts, ADayThatBeginsTwiceBeginsAtTheFirst)
{
    // Clocks go from 01:00 back to midnight, as in Havana: the day has 25 hours.
    const TimeZone zone(-14400, {{At(2002, 10, 27, 5), -18000}});
    const Cuts cuts = PeriodCuts(zone, At(2002, 10, 26, 4), At(2002, 10, 28, 5), 86400);
    EXPECT_EQ(cuts, (Cuts{At(2002, 10, 26, 4), At(2002, 10, 27, 4), At(2002, 10, 28, 5)}));
}

TEST(PeriodCuts, ADayThatIsSkippedHasNoGroup)
{
    // 30 December 2011 didn't occur in Apia.
    const TimeZone zone(-36000, {{At(2011, 12, 30, 10), 50400}});
    const Cuts cuts = PeriodCuts(zone, At(2011, 12, 28, 10), At(2012, 1, 1, 10), 86400);
    EXPECT_EQ(cuts, (Cuts{At(2011, 12, 28, 10), At(2011, 12, 29, 10), At(2011, 12, 30, 10), At(2011, 12, 31, 10),
                          At(2012, 1, 1, 10)}));
}

TEST(PeriodCuts, ThirtyOneDaysAreCalendarMonths)
{
    const Cuts cuts = PeriodCuts(Paris(), At(2001, 12, 31, 23), At(2002, 4, 30, 22), 2678400);
    EXPECT_EQ(cuts, (Cuts{At(2001, 12, 31, 23), At(2002, 1, 31, 23), At(2002, 2, 28, 23), At(2002, 3, 31, 22),
                          At(2002, 4, 30, 22)}));
}

TEST(PeriodCuts, LongerPeriodsAreSeveralMonths)
{
    const Cuts cuts = PeriodCuts(TimeZone(), At(2002, 2, 10), At(2002, 8, 1), 3 * 2678400);
    EXPECT_EQ(cuts, (Cuts{At(2002, 2, 10), At(2002, 4, 1), At(2002, 7, 1), At(2002, 8, 1)}));
}

TEST(PeriodCuts, SeveralDaysCountFromTheYear2000)
{
    const Cuts cuts = PeriodCuts(TimeZone(), At(2000, 1, 1), At(2000, 1, 6), 2 * 86400);
    EXPECT_EQ(cuts, (Cuts{At(2000, 1, 1), At(2000, 1, 3), At(2000, 1, 5), At(2000, 1, 6)}));
}

#ifndef _WIN32
// Windows has no zones by these names.
TEST(PeriodCuts, AscendInEveryZoneOverAllChanges)
{
    for (const char* name : {"Europe/Paris", "America/Havana", "America/Sao_Paulo", "Asia/Gaza", "Antarctica/Troll",
                             "Australia/Lord_Howe", "Pacific/Apia", "Pacific/Chatham", "America/St_Johns"}) {
        TimeZone zone;
        std::string error;
        ASSERT_TRUE(TimeZone::Find(name, zone, error)) << error;
        for (const std::int32_t period : {300, 600, 900, 1200, 1800, 3600, 86400, 2678400}) {
            const std::int64_t from = zone.ToUtc(At(2008, 1, 1));
            const std::int64_t to = zone.ToUtc(At(2013, 1, 1));
            const Cuts cuts = PeriodCuts(zone, from, to, period);
            ASSERT_EQ(cuts.front(), from) << name;
            ASSERT_EQ(cuts.back(), to) << name;
            for (std::size_t i = 1; i < cuts.size(); ++i) {
                ASSERT_GT(cuts[i], cuts[i - 1]) << name;
                if (period < 86400) {
                    ASSERT_LE(cuts[i] - cuts[i - 1], 2 * period + 7200) << name;
                    continue;
                }
                const std::int64_t local = zone.ToLocal(cuts[i]) % kDay;
                ASSERT_TRUE(local == 0 || zone.SpanAt(cuts[i]).begin == cuts[i]) << name;
            }
        }
    }
}
#endif

}  // namespace
}  // namespace zr
