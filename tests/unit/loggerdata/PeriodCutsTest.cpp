#include "siblings/driversupport/PeriodCuts.h"

#include "support/ZoneChanges.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <set>
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

std::int64_t Floor(std::int64_t value, std::int64_t step)
{
    return value - (value % step + step) % step;
}

// Where a period below a day cuts, found minute by minute: where the clock is in another period of its day than the
// minute before, and where it is set to the beginning of one.
Cuts CutsByTheMinute(const TimeZone& zone, std::int64_t from, std::int64_t to, std::int32_t period)
{
    const auto start = [&](std::int64_t utc) {
        const std::int64_t local = zone.ToLocal(utc);
        return Floor(local, kDay) + Floor(local - Floor(local, kDay), period);
    };
    Cuts cuts = {from};
    for (std::int64_t utc = from + 60; utc < to; utc += 60) {
        const bool isSet = zone.ToLocal(utc) != zone.ToLocal(utc - 60) + 60;
        if (start(utc) != start(utc - 60) || (isSet && start(utc) == zone.ToLocal(utc))) {
            cuts.push_back(utc);
        }
    }
    cuts.push_back(to);
    return cuts;
}

TEST(PeriodCuts, BelowADayGoByTheClockAtEveryChangeOfEveryZone)
{
    for (const auto& [name, changes] : test::ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        for (const test::ZoneChange& change : changes) {
            for (const std::int32_t period : {60, 300, 600, 900, 1200, 1800, 3600, 7200, 6 * 3600, 12 * 3600}) {
                const std::int64_t from = change.utc - 5 * kHour;
                const std::int64_t to = change.utc + 5 * kHour;
                ASSERT_EQ(PeriodCuts(zone, from, to, period), CutsByTheMinute(zone, from, to, period))
                    << name << ' ' << change.utc << ' ' << period;
            }
        }
    }
}

TEST(PeriodCuts, OfOneHourTheHourThatOccursTwiceIsCutTwiceAndASkippedOneNotAtAllInEveryZone)
{
    for (const auto& [name, changes] : test::ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        for (const test::ZoneChange& change : changes) {
            const std::int64_t hours = (change.after - change.before) / kHour;
            if (hours * kHour != change.after - change.before || change.utc % kHour != 0 || change.after % kHour != 0) {
                continue;  // by half hours, or not at one
            }
            std::multiset<std::int64_t> clocks;
            const Cuts cuts = PeriodCuts(zone, change.utc - 36 * kHour, change.utc + 36 * kHour, 3600);
            for (const std::int64_t cut : cuts) {
                clocks.insert(zone.ToLocal(cut));
            }
            ASSERT_EQ(cuts.size(), 73u) << name;
            for (std::int64_t i = 0; i < hours; ++i) {
                ASSERT_EQ(clocks.count(change.lastLocalBefore + 1 + i * kHour), 0u) << name << ' ' << change.utc;
            }
            for (std::int64_t i = 0; i < -hours; ++i) {
                ASSERT_EQ(clocks.count(change.firstLocalAfter + i * kHour), 2u) << name << ' ' << change.utc;
            }
        }
    }
}

// Where days are cut, found minute by minute: where the calendar first shows a date.
Cuts DaysByTheMinute(const TimeZone& zone, std::int64_t from, std::int64_t to)
{
    Cuts cuts = {from};
    std::int64_t date = Floor(zone.ToLocal(from), kDay);
    for (std::int64_t utc = from + 60; utc < to; utc += 60) {
        const std::int64_t today = Floor(zone.ToLocal(utc), kDay);
        if (today > date) {
            date = today;
            cuts.push_back(utc);
        }
    }
    cuts.push_back(to);
    return cuts;
}

TEST(PeriodCuts, DaysGoByTheCalendarAtEveryChangeOfEveryZone)
{
    std::set<double> lengths;  // hours
    for (const auto& [name, changes] : test::ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        for (const test::ZoneChange& change : changes) {
            const std::int64_t from = change.utc - 2 * kDay;
            const std::int64_t to = change.utc + 2 * kDay;
            const Cuts cuts = PeriodCuts(zone, from, to, 86400);
            ASSERT_EQ(cuts, DaysByTheMinute(zone, from, to)) << name << ' ' << change.utc;
            for (std::size_t i = 2; i + 1 < cuts.size(); ++i) {
                lengths.insert(static_cast<double>(cuts[i] - cuts[i - 1]) / 3600);
            }
        }
    }
    // With the half hours of Lord Howe Island and Pyongyang, and the two hours of Troll.
    EXPECT_EQ(lengths, (std::set<double>{22, 23, 23.5, 24, 24.5, 25, 26}));
}

TEST(PeriodCuts, AscendInEveryZoneOverAllYears)
{
    const std::int64_t from = At(2000, 1, 1);
    const std::int64_t to = At(2038, 1, 1);
    for (const auto& [name, changes] : test::ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        for (const std::int32_t period :
             {900, 3600, 7200, 25200, 86400, 2 * 86400, 7 * 86400, 30 * 86400, 2678400, 3 * 2678400, 12 * 2678400}) {
            const Cuts cuts = PeriodCuts(zone, from, to, period);
            ASSERT_EQ(cuts.front(), from) << name;
            ASSERT_EQ(cuts.back(), to) << name;
            ASSERT_TRUE(std::adjacent_find(cuts.begin(), cuts.end(), std::greater_equal<>()) == cuts.end()) << name;
            for (std::size_t i = 1; i + 1 < cuts.size() && period >= 86400; ++i) {
                // At midnight, or at the change that skips it.
                ASSERT_TRUE(zone.ToLocal(cuts[i]) % kDay == 0 || zone.SpanAt(cuts[i]).begin == cuts[i]) << name;
            }
        }
    }
}

TEST(PeriodCuts, MonthsAreWholeInEveryZone)
{
    for (const auto& [name, changes] : test::ZoneChanges()) {
        const TimeZone zone = test::ZoneOfTable(name);
        const Cuts cuts = PeriodCuts(zone, zone.ToUtc(At(2001, 1, 1)), zone.ToUtc(At(2037, 1, 1)), 2678400);
        ASSERT_EQ(cuts.size(), 36u * 12 + 1) << name;
        for (std::size_t i = 0; i < cuts.size(); ++i) {
            const int month = static_cast<int>(i);
            ASSERT_EQ(cuts[i], zone.ToUtc(At(2001 + month / 12, static_cast<unsigned>(month % 12 + 1), 1))) << name;
        }
    }
}

}  // namespace
}  // namespace zr
