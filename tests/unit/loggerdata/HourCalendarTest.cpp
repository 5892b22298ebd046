#include "siblings/driversupport/hours/HourCalendar.h"

#include "RandomCalendar.h"
#include "support/ZoneChanges.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace zr {
namespace {

using test::SecondsOf;
using HourRun = HourCalendar::Run;

constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kHour = 3600;

// The same every day: hour type 1 from 02:30 to 22:00, else 0.
HourCalendar EveryDay()
{
    HourCalendar::Parts parts;
    parts.days = {{{0, 0}, {150, 1}, {1320, 0}}};
    parts.dayOfKinds.assign(HourCalendar::KindOf(1, 0, false), 0);
    return HourCalendar(std::move(parts));
}

TEST(HourCalendar, NumbersTheDaysOfALeapYear)
{
    EXPECT_EQ(YearDay(1, 1), 0u);
    EXPECT_EQ(YearDay(2, 29), 59u);
    EXPECT_EQ(YearDay(3, 1), 60u);
    EXPECT_EQ(YearDay(12, 31), kYearDays - 1);
}

TEST(HourCalendar, KnowsEasterSunday)
{
    for (const auto& [year, date] : std::vector<std::pair<int, std::string>>{{2000, "2000-04-23"},
                                                                             {2008, "2008-03-23"},
                                                                             {2011, "2011-04-24"},
                                                                             {2019, "2019-04-21"},
                                                                             {2024, "2024-03-31"},
                                                                             {2025, "2025-04-20"},
                                                                             {2026, "2026-04-05"},
                                                                             {2038, "2038-04-25"},
                                                                             {2049, "2049-04-18"},
                                                                             {2076, "2076-04-19"},
                                                                             {2106, "2106-04-18"}}) {
        EXPECT_EQ(EasterSunday(year) * kDay, SecondsOf(date + "T00:00")) << date;
    }
    for (int year = 2000; year < 2136; ++year) {
        EXPECT_EQ((EasterSunday(year) + 4) % 7, 0) << year;  // a Sunday
    }
}

TEST(HourCalendar, WithoutMoreItHasOneHourType)
{
    const HourCalendar calendar;
    EXPECT_EQ(calendar.HourTypeAt(SecondsOf("2026-02-28T12:00")), 0u);
    EXPECT_EQ(calendar.Runs(TimeZone(), 5, 10 * kDay), (std::vector<HourRun>{{5, 10 * kDay, 0}}));
}

TEST(HourCalendar, ADayGoesByTheMinute)
{
    const HourCalendar calendar = EveryDay();
    EXPECT_EQ(calendar.HourTypeAt(SecondsOf("2026-05-05T02:29:59")), 0u);
    EXPECT_EQ(calendar.HourTypeAt(SecondsOf("2026-05-05T02:30:00")), 1u);
    EXPECT_EQ(calendar.HourTypeAt(SecondsOf("2026-05-05T21:59:59")), 1u);
    EXPECT_EQ(calendar.HourTypeAt(SecondsOf("2026-05-05T22:00:00")), 0u);
}

TEST(HourCalendar, RunsGoOnOverMidnight)
{
    const std::int64_t midnight = SecondsOf("2026-05-05T00:00");
    EXPECT_EQ(EveryDay().Runs(TimeZone(), midnight + kHour, midnight + kDay + 3 * kHour),
              (std::vector<HourRun>{{midnight + kHour, midnight + 9000, 0},
                                    {midnight + 9000, midnight + 22 * kHour, 1},
                                    {midnight + 22 * kHour, midnight + kDay + 9000, 0},
                                    {midnight + kDay + 9000, midnight + kDay + 3 * kHour, 1}}));
}

TEST(HourCalendar, AnEmptyStretchHasNoRuns)
{
    EXPECT_TRUE(EveryDay().Runs(TimeZone(), 10, 10).empty());
    EXPECT_TRUE(EveryDay().Runs(TimeZone(), 10, 9).empty());
}

TEST(HourCalendar, TheHourThatOccursTwiceCountsByItsClockBothTimes)
{
    const TimeZone paris = test::ZoneOfTable("Europe/Paris");
    const std::int64_t change = SecondsOf("2026-10-25T01:00");  // 03:00 becomes 02:00
    EXPECT_EQ(EveryDay().Runs(paris, change - 2 * kHour, change + 2 * kHour),
              (std::vector<HourRun>{{change - 2 * kHour, change - 1800, 0},
                                    {change - 1800, change, 1},
                                    {change, change + 1800, 0},
                                    {change + 1800, change + 2 * kHour, 1}}));
}

TEST(HourCalendar, ASkippedHourIsInNoRun)
{
    const TimeZone paris = test::ZoneOfTable("Europe/Paris");
    const std::int64_t change = SecondsOf("2026-03-29T01:00");  // 02:00 becomes 03:00
    EXPECT_EQ(EveryDay().Runs(paris, change - 2 * kHour, change + 2 * kHour),
              (std::vector<HourRun>{{change - 2 * kHour, change, 0}, {change, change + 2 * kHour, 1}}));
}

// Whether the runs cover the stretch once and each says what the clock says at its minutes.
void ExpectToTell(const HourCalendar& calendar, const TimeZone& zone, std::int64_t from, std::int64_t to,
                  const std::string& what)
{
    const std::vector<HourRun> runs = calendar.Runs(zone, from, to);
    ASSERT_FALSE(runs.empty()) << what;
    ASSERT_EQ(runs.front().from, from) << what;
    ASSERT_EQ(runs.back().to, to) << what;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        ASSERT_LT(runs[i].from, runs[i].to) << what;
        for (std::int64_t utc = runs[i].from; utc < runs[i].to; utc += 60) {
            ASSERT_EQ(calendar.HourTypeAt(zone.ToLocal(utc)), runs[i].hourType) << what << " at " << utc;
        }
        if (i > 0) {
            ASSERT_EQ(runs[i].from, runs[i - 1].to) << what;
            ASSERT_NE(runs[i].hourType, runs[i - 1].hourType) << what;
        }
    }
}

TEST(HourCalendar, RunsTellTheClockAtEveryChangeOfEveryZone)
{
    std::mt19937 random(7);
    for (const auto& [name, changes] : test::ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        const HourCalendar calendar = test::RandomCalendar(random, 3);
        for (const test::ZoneChange& change : changes) {
            ExpectToTell(calendar, zone, change.utc - 20 * kHour, change.utc + 20 * kHour, name);
        }
    }
}

TEST(HourCalendar, RunsCoverTheYearsOfEveryZoneOnce)
{
    std::mt19937 random(8);
    for (const auto& [name, changes] : test::ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        const HourCalendar calendar = test::RandomCalendar(random, 4);
        const std::int64_t from = SecondsOf("2000-01-01T00:00") + static_cast<std::int64_t>(random() % kDay);
        const std::int64_t to = SecondsOf("2038-01-01T00:00") + static_cast<std::int64_t>(random() % kDay);
        std::int64_t at = from;
        for (const HourRun& run : calendar.Runs(zone, from, to)) {
            ASSERT_EQ(run.from, at) << name;
            ASSERT_GT(run.to, run.from) << name;
            ASSERT_EQ(calendar.HourTypeAt(zone.ToLocal(run.from)), run.hourType) << name;
            ASSERT_EQ(calendar.HourTypeAt(zone.ToLocal(run.to - 1)), run.hourType) << name;
            at = run.to;
        }
        ASSERT_EQ(at, to) << name;
    }
}

}  // namespace
}  // namespace zr
