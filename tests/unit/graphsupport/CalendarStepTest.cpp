#include "siblings/graphsupport/CalendarStep.h"

#include "support/ZoneChanges.h"
#include "unit/graphsupport/RuleZone.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace zr::graph {
namespace {

using Unit = CalendarStep::Unit;

constexpr std::int64_t kHour = 3600 * kMicrosOfSecond;
constexpr int kMonday = 2;

// The local clock at each place, as "hh:mm".
std::vector<std::string> Clocks(const std::vector<std::int64_t>& places, const TimeZone& zone)
{
    std::vector<std::string> clocks;
    for (const std::int64_t place : places) {
        const std::int64_t minutes = LocalMicros(place, zone) % kMicrosOfDay / (60 * kMicrosOfSecond);
        const auto two = [](std::int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
        clocks.push_back(two(minutes / 60) + ":" + two(minutes % 60));
    }
    return clocks;
}

std::vector<std::int64_t> Places(const CalendarStep& step, std::int64_t from, std::int64_t to, const TimeZone& zone)
{
    std::vector<std::int64_t> places;
    AppendPlaces(step, {from, to}, zone, kMonday, places);
    return places;
}

// The change of a zone in a year, towards later or earlier clocks.
std::int64_t Change(const std::string& zone, const std::string& year, bool isForward)
{
    for (const test::ZoneChange& change : test::ZoneChanges().at(zone)) {
        const bool isInYear =
            change.utc >= test::SecondsOf(year + "-01-01T00:00") && change.utc < test::SecondsOf(year + "-12-31T00:00");
        if (isInYear && (change.after > change.before) == isForward) {
            return change.utc * kMicrosOfSecond;
        }
    }
    ADD_FAILURE() << zone << " " << year;
    return 0;
}

TEST(CalendarStep, TheDoubledHourShowsTwice)
{
    const TimeZone paris = test::ZoneOfTable("Europe/Paris");
    const std::int64_t change = Change("Europe/Paris", "2003", false);
    const auto places = Places({Unit::Microsecond, kHour}, change - 3 * kHour, change + 2 * kHour, paris);
    EXPECT_EQ(Clocks(places, paris), (std::vector<std::string>{"00:00", "01:00", "02:00", "02:00", "03:00", "04:00"}));
}

TEST(CalendarStep, ASkippedHourDoesNotShow)
{
    const TimeZone paris = test::ZoneOfTable("Europe/Paris");
    const std::int64_t change = Change("Europe/Paris", "2003", true);
    EXPECT_EQ(Clocks(Places({Unit::Microsecond, kHour}, change - 2 * kHour, change + kHour, paris), paris),
              (std::vector<std::string>{"00:00", "01:00", "03:00", "04:00"}));
    // Every second hour: 2 o'clock isn't there, and 3 is none.
    EXPECT_EQ(Clocks(Places({Unit::Microsecond, 2 * kHour}, change - 2 * kHour, change + 4 * kHour, paris), paris),
              (std::vector<std::string>{"00:00", "04:00", "06:00"}));
}

TEST(CalendarStep, OfAChangeByHalfAnHourThatHalfHourShowsTwice)
{
    const TimeZone lordHowe = test::ZoneOfTable("Australia/Lord_Howe");
    const std::int64_t change = Change("Australia/Lord_Howe", "2005", false);
    EXPECT_EQ(Clocks(Places({Unit::Microsecond, kHour / 2}, change - kHour, change + kHour, lordHowe), lordHowe),
              (std::vector<std::string>{"01:00", "01:30", "01:30", "02:00", "02:30"}));
}

TEST(CalendarStep, HoursStandAtFullLocalHoursOfAHalfHourZone)
{
    const TimeZone adelaide = test::ZoneOfTable("Australia/Adelaide");
    const std::int64_t from = test::SecondsOf("2005-06-01T00:00") * kMicrosOfSecond;
    const auto clocks = Clocks(Places({Unit::Microsecond, 6 * kHour}, from, from + kMicrosOfDay, adelaide), adelaide);
    EXPECT_EQ(clocks, (std::vector<std::string>{"12:00", "18:00", "00:00", "06:00"}));
}

TEST(CalendarStep, ADayWhoseMidnightIsSkippedBeginsAtItsFirstHour)
{
    const TimeZone havana = test::ZoneOfTable("America/Havana");
    const std::int64_t change = Change("America/Havana", "2003", true);
    const auto places = Places({Unit::Day, 1}, change - 30 * kHour, change + 30 * kHour, havana);
    EXPECT_EQ(Clocks(places, havana), (std::vector<std::string>{"00:00", "01:00", "00:00"}));
}

TEST(CalendarStep, ADayThatIsSkippedHasNoPlace)
{
    const TimeZone apia = test::ZoneOfTable("Pacific/Apia");
    const std::int64_t from = test::SecondsOf("2011-12-28T12:00") * kMicrosOfSecond;
    const auto places = Places({Unit::Day, 1}, from, from + 4 * kMicrosOfDay, apia);
    std::vector<std::int64_t> days;
    for (const std::int64_t place : places) {
        days.push_back(LocalDay(place, apia) - test::SecondsOf("2011-12-01T00:00") / 86400 + 1);
    }
    EXPECT_EQ(days, (std::vector<std::int64_t>{29, 31, 32, 33}));
}

TEST(CalendarStep, WeeksBeginOnTheDayOfTheLocale)
{
    const std::int64_t from = test::SecondsOf("2002-12-16T00:00") * kMicrosOfSecond;  // a Monday
    for (const int first : {1, 2, 7}) {
        std::vector<std::int64_t> places;
        AppendPlaces({Unit::Week, 1}, {from, from + 13 * kMicrosOfDay}, TimeZone(), first, places);
        ASSERT_EQ(places.size(), 2u) << first;
        EXPECT_EQ((places[0] - from) / kMicrosOfDay, (first + 5) % 7) << first;
        EXPECT_EQ(places[1] - places[0], 7 * kMicrosOfDay);
    }
}

TEST(CalendarStep, MonthsQuartersAndYearsBeginOnTheirFirstDay)
{
    const auto at = [](const char* text) { return test::SecondsOf(text) * kMicrosOfSecond; };
    const TimeZone utc;
    EXPECT_EQ(Places({Unit::Month, 1}, at("2003-12-02T00:00"), at("2004-03-01T00:00"), utc),
              (std::vector<std::int64_t>{at("2004-01-01T00:00"), at("2004-02-01T00:00"), at("2004-03-01T00:00")}));
    EXPECT_EQ(Places({Unit::Month, 3}, at("2003-12-02T00:00"), at("2004-07-01T00:00"), utc),
              (std::vector<std::int64_t>{at("2004-01-01T00:00"), at("2004-04-01T00:00"), at("2004-07-01T00:00")}));
    EXPECT_EQ(Places({Unit::Month, 60}, at("2003-12-02T00:00"), at("2011-07-01T00:00"), utc),
              (std::vector<std::int64_t>{at("2005-01-01T00:00"), at("2010-01-01T00:00")}));
}

TEST(CalendarStep, NothingLiesInAnEmptyStretch)
{
    EXPECT_TRUE(Places({Unit::Microsecond, kHour}, 10, 9, TimeZone()).empty());
    EXPECT_TRUE(Places({Unit::Day, 1}, 10, 9, TimeZone()).empty());
}

TEST(CalendarStep, TimesBefore1970HavePlacesToo)
{
    EXPECT_EQ(Places({Unit::Microsecond, kHour}, -kHour - 1, 1, TimeZone()), (std::vector<std::int64_t>{-kHour, 0}));
    EXPECT_EQ(Places({Unit::Day, 1}, -kMicrosOfDay - 1, 1, TimeZone()), (std::vector<std::int64_t>{-kMicrosOfDay, 0}));
}

// The local clock around a change, read minute by minute without a TimeZone.
class ClockWalk {
public:
    // From a minute to another, UTC, both included.
    ClockWalk(const test::RuleZone& zone, std::int64_t from, std::int64_t to) : m_from(from)
    {
        const auto changes = test::ChangesOf(zone);
        int offset = test::FirstOffset(zone);
        std::size_t next = 0;
        for (std::int64_t minute = from; minute <= to; ++minute) {
            for (; next < changes.size() && changes[next].first <= minute; ++next) {
                offset = changes[next].second;
            }
            m_locals.push_back(minute + offset);
        }
    }

    // Where the clock shows a multiple of so many minutes.
    [[nodiscard]] std::vector<std::int64_t> Multiples(std::int64_t minutes) const
    {
        std::vector<std::int64_t> places;
        for (std::size_t i = 0; i < m_locals.size(); ++i) {
            if (m_locals[i] % minutes == 0) {
                places.push_back(MicrosAt(i));
            }
        }
        return places;
    }
    // Where a day begins that no minute before it belongs to, of those that are wanted; the first day is not known to
    // begin.
    template <typename IsWanted>
    [[nodiscard]] std::vector<std::int64_t> Days(IsWanted isWanted) const
    {
        std::vector<std::int64_t> places;
        std::int64_t latest = m_locals.front() / kMinutesOfDay;
        for (std::size_t i = 0; i < m_locals.size(); ++i) {
            const std::int64_t day = m_locals[i] / kMinutesOfDay;
            if (day > latest) {
                latest = day;
                if (isWanted(std::chrono::sys_days(std::chrono::days(day)))) {
                    places.push_back(MicrosAt(i));
                }
            }
        }
        return places;
    }

private:
    static constexpr std::int64_t kMinutesOfDay = 1440;

    [[nodiscard]] std::int64_t MicrosAt(std::size_t i) const
    {
        return (m_from + static_cast<std::int64_t>(i)) * 60 * kMicrosOfSecond;
    }

    std::int64_t m_from;
    std::vector<std::int64_t> m_locals;
};

class CalendarStepInZones : public testing::TestWithParam<test::RuleZone> {
protected:
    // Three days around each change, and a stretch about New Year, of a year.
    static std::vector<std::pair<std::int64_t, std::int64_t>> Stretches(int year)
    {
        std::vector<std::pair<std::int64_t, std::int64_t>> stretches;
        constexpr std::int64_t kDay = 1440;
        const std::int64_t newYear = test::SecondsOf(std::to_string(year) + "-01-01T00:00") / 60;
        for (const auto& [change, offset] : test::ChangesOf(GetParam())) {
            if (change >= newYear && change < newYear + 366 * kDay) {
                stretches.emplace_back(change - 3 * kDay / 2, change + 3 * kDay / 2);
            }
        }
        stretches.emplace_back(newYear - 2 * kDay, newYear + 7 * kDay);
        return stretches;
    }
    // The places from the second day of a stretch on, as a walk from its beginning knows them.
    void Expect(const CalendarStep& step, std::pair<std::int64_t, std::int64_t> stretch,
                std::vector<std::int64_t> wanted) const
    {
        constexpr std::int64_t kMinute = 60 * kMicrosOfSecond;
        const std::int64_t from = stretch.first * kMinute + kMicrosOfDay;
        wanted.erase(wanted.begin(), std::lower_bound(wanted.begin(), wanted.end(), from));
        EXPECT_EQ(Places(step, from, stretch.second * kMinute, zone), wanted)
            << static_cast<int>(step.unit) << " " << step.count << " from " << from;
    }

    const TimeZone zone = test::ZoneOf(GetParam());
};

TEST_P(CalendarStepInZones, PlacesAreThoseOfTheLocalClockFrom2000To2100)
{
    for (int year = 2000; year <= 2100 && !HasFailure(); ++year) {
        for (const auto& stretch : Stretches(year)) {
            const ClockWalk walk(GetParam(), stretch.first, stretch.second);
            for (const std::int64_t minutes : {5, 15, 30, 60, 120, 180, 360, 720}) {
                Expect({Unit::Microsecond, minutes * 60 * kMicrosOfSecond}, stretch, walk.Multiples(minutes));
            }
            Expect({Unit::Day, 1}, stretch, walk.Days([](auto) { return true; }));
            Expect({Unit::Week, 1}, stretch, walk.Days([](std::chrono::sys_days day) {
                return std::chrono::weekday(day) == std::chrono::Monday;
            }));
            for (const int months : {1, 3, 6, 12, 60}) {
                Expect({Unit::Month, months}, stretch, walk.Days([months](std::chrono::sys_days day) {
                    const std::chrono::year_month_day date(day);
                    const int month = int{date.year()} * 12 + static_cast<int>(unsigned{date.month()}) - 1;
                    return unsigned{date.day()} == 1 && month % months == 0;
                }));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rules, CalendarStepInZones, testing::ValuesIn(test::kRuleZones),
                         [](const auto& zone) { return std::string(zone.param.name); });

TEST(CalendarStep, AStepIsAMultipleOnlyOfThoseThatHoldAllItsPlaces)
{
    const CalendarStep hour{Unit::Microsecond, kHour};
    const CalendarStep day{Unit::Day, 1};
    const CalendarStep week{Unit::Week, 1};
    const CalendarStep month{Unit::Month, 1};
    EXPECT_TRUE(day.IsMultipleOf(hour));
    EXPECT_TRUE(week.IsMultipleOf(day));
    EXPECT_TRUE(month.IsMultipleOf(day));
    EXPECT_FALSE(month.IsMultipleOf(week));
    EXPECT_FALSE(hour.IsMultipleOf(day));
    EXPECT_FALSE((CalendarStep{Unit::Microsecond, 5}.IsMultipleOf({Unit::Microsecond, 2})));
    EXPECT_TRUE((CalendarStep{Unit::Month, 12}.IsMultipleOf({Unit::Month, 3})));
}

TEST(CalendarStep, StepsGrowAndAreNeverFarApart)
{
    std::int64_t before = 0;
    for (const CalendarStep& step : CalendarSteps()) {
        EXPECT_GT(step.Shortest(), before);
        if (before > 0) {
            EXPECT_LE(step.Shortest(), 7 * before);
        }
        before = step.Shortest();
    }
}

}  // namespace
}  // namespace zr::graph
