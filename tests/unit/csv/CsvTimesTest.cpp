#include "siblings/tools/CsvCells.h"

#include <gtest/gtest.h>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace zr {
namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kHour = 3600 * kMicros;
constexpr std::int64_t kSpring = 1017536400;  // 31 March 2002, 01:00 UTC: 02:00 becomes 03:00
constexpr std::int64_t kAutumn = 1035680400;  // 27 October 2002, 01:00 UTC: 03:00 becomes 02:00

TimeZone Paris()
{
    return {3600, {{kSpring, 7200}, {kAutumn, 3600}}};
}

class CsvTimesTest : public testing::Test {
protected:
    std::int64_t Read(const std::string& text)
    {
        std::int64_t utc = -1;
        const char* const problem = times.Read(text, utc);
        EXPECT_EQ(problem, nullptr) << text << ' ' << problem;
        return utc;
    }
    std::string Problem(const std::string& text)
    {
        std::int64_t utc = -1;
        const char* const problem = times.Read(text, utc);
        EXPECT_EQ(utc, -1);
        return problem != nullptr ? problem : "";
    }
    // Hours from the change in autumn.
    std::vector<double> Passes(const std::vector<std::string>& texts)
    {
        std::vector<double> hours;
        for (const std::string& text : texts) {
            hours.push_back(static_cast<double>(Read("2002-10-27T" + text) - kAutumn * kMicros) /
                            static_cast<double>(kHour));
        }
        return hours;
    }

    CsvTimes times{Paris()};
};

TEST_F(CsvTimesTest, ReadsLocalTimes)
{
    const std::int64_t time = 1041438240 * kMicros;  // 1 January 2003, 16:24 UTC
    EXPECT_EQ(Read("2003-01-01T17:24"), time);
    EXPECT_EQ(Read("2003-01-01 17:24"), time);
    EXPECT_EQ(Read("2003-01-01T17:24:00"), time);
    EXPECT_EQ(Read("2003-01-01T17:24:59"), time + 59 * kMicros);
    EXPECT_EQ(Read("2003-01-01T17:24:00.25"), time + 250000);
    EXPECT_EQ(Read("2003-01-01T17:24:00,000001"), time + 1);
    EXPECT_EQ(Read("2003-01-01T17:24:00.0000019"), time + 1);
    EXPECT_EQ(Read("2003-01-01"), time - (17 * 60 + 24) * 60 * kMicros);
}

TEST_F(CsvTimesTest, ReadsTimesWithAnOffset)
{
    const std::int64_t time = 1041438240 * kMicros;
    for (const char* text :
         {"2003-01-01T16:24Z", "2003-01-01T18:24:00+02:00", "2003-01-01 18:24:00 +02:00", "2003-01-01T18:24:00+0200",
          "2003-01-01T18:24:00+02", "2003-01-01T10:54:00-05:30", "2003-01-02T00:24:00.0+08:00"}) {
        EXPECT_EQ(Read(text), time) << text;
    }
}

TEST_F(CsvTimesTest, ReadsUnixSeconds)
{
    EXPECT_EQ(Read("1041438240"), 1041438240 * kMicros);
    EXPECT_EQ(Read("1041438240.5"), 1041438240 * kMicros + 500000);
    EXPECT_EQ(Read("1041438240,123456"), 1041438240 * kMicros + 123456);
}

TEST_F(CsvTimesTest, RefusesWhatIsNoTime)
{
    for (const char* text : {"",
                             "x",
                             "17:24",
                             "2003-01",
                             "2003-13-01",
                             "2003-02-29",
                             "2003-01-01T",
                             "2003-01-01T24:00",
                             "2003-01-01T1:24",
                             "2003-01-01T17:60",
                             "2003-01-01T17:24:60",
                             "2003-01-01T17:24:",
                             "2003-01-01T17:24:00.",
                             "2003-01-01x17:24",
                             "2003-01-01T17:24x",
                             "2003-01-01T17:24+",
                             "2003-01-01T17:24+2",
                             "2003-01-01T17:24+02:6",
                             "01.01.2003 17:24",
                             "2003/01/01 17:24",
                             "-5",
                             "1041438240.",
                             "1041438240x",
                             "2003-01-01T17:24+02:70"}) {
        EXPECT_EQ(Problem(text), "is no time, as 2006-12-16T17:24:00 is one") << text;
    }
}

TEST_F(CsvTimesTest, RefusesYearsThatRecordsDoNotHold)
{
    for (const char* text : {"1999-12-31T23:59", "2136-01-01", "9999-12-31", "0", "1041438240000", "99999999999999999",
                             "1999-12-31T22:59Z"}) {
        const std::string problem = Problem(text);
        EXPECT_EQ(problem, "lies outside the years 2000 to 2135") << text;
    }
    Read("2000-01-01T00:00");
    Read("2135-12-31T23:59:59.999999");
}

TEST_F(CsvTimesTest, RefusesTheHourThatIsSkipped)
{
    Read("2002-03-31T01:59:59");
    EXPECT_EQ(Problem("2002-03-31T02:00"), "doesn't exist: the clock is set forward over it in this time zone");
    EXPECT_EQ(Problem("2002-03-31T02:59:59"), "doesn't exist: the clock is set forward over it in this time zone");
    EXPECT_EQ(Read("2002-03-31T03:00"), kSpring * kMicros);
    // With an offset nothing is skipped.
    EXPECT_EQ(Read("2002-03-31T02:30+01:00"), (kSpring + 1800) * kMicros);
}

TEST_F(CsvTimesTest, TheHourThatOccursTwiceIsFirstTheOneAndThenTheOther)
{
    EXPECT_EQ(Passes({"01:30", "02:00", "02:30", "02:00", "02:30", "03:00"}),
              (std::vector<double>{-1.5, -1, -0.5, 0, 0.5, 1}));
}

TEST_F(CsvTimesTest, AnEqualTimeIsTheSamePassUnlessRowsAreAnHourApart)
{
    EXPECT_EQ(Passes({"02:00", "02:30", "02:30", "02:45", "02:15"}),
              (std::vector<double>{-1, -0.5, -0.5, -0.25, 0.25}));
    times = CsvTimes(Paris());
    EXPECT_EQ(Passes({"01:00", "02:00", "02:00", "03:00"}), (std::vector<double>{-2, -1, 0, 1}));
}

TEST_F(CsvTimesTest, AFileThatRunsBackwardsHasItsPassesTheOtherWayRound)
{
    EXPECT_EQ(Passes({"03:00", "02:30", "02:00", "02:30", "02:00", "01:30"}),
              (std::vector<double>{1, 0.5, 0, -0.5, -1, -1.5}));
    times = CsvTimes(Paris());
    EXPECT_EQ(Passes({"04:00", "03:00", "02:00", "02:00", "01:00"}), (std::vector<double>{2, 1, 0, -1, -2}));
}

TEST_F(CsvTimesTest, AFileThatBeginsInTheDoubledHourBeginsInItsFirstPass)
{
    EXPECT_EQ(Passes({"02:30", "02:45", "02:00"}), (std::vector<double>{-0.5, -0.25, 0}));
}

// Every change of every zone: whole minutes of local time around it, in order, come back.
TEST(CsvTimesOfAllZonesTest, ReadEveryMinuteAroundEveryChange)
{
    std::ifstream file(ZR_TEST_DATA "/dst_transitions_2000_2037.csv");
    std::string line;
    std::map<std::string, std::vector<std::pair<std::int64_t, std::int32_t>>> zones;
    std::map<std::string, std::int32_t> firstOffsets;
    while (std::getline(file, line)) {
        std::vector<std::string> cells;
        std::istringstream words(line);
        for (std::string cell; std::getline(words, cell, ',');) {
            cells.push_back(cell);
        }
        if (line.starts_with("zone") || line.starts_with("#") || cells.size() < 5) {
            continue;
        }
        firstOffsets.emplace(cells[0], std::stoi(cells[3]));
        zones[cells[0]].emplace_back(std::stoll(cells[1]), std::stoi(cells[4]));
    }
    std::size_t changes = 0;
    for (const auto& [name, list] : zones) {
        const TimeZone zone(firstOffsets[name], list);
        for (const auto& [change, offset] : list) {
            CsvTimes times(zone);
            for (std::int64_t utc = change - 3 * 3600; utc < change + 3 * 3600; utc += 60) {
                const std::int64_t local = zone.ToLocal(utc);
                const std::chrono::sys_days day{
                    std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(local)))};
                const std::chrono::year_month_day date(day);
                const auto ofDay = static_cast<int>(local - day.time_since_epoch().count() * 86400);
                char text[32];
                std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d", static_cast<int>(date.year()),
                              static_cast<unsigned>(date.month()) % 100, static_cast<unsigned>(date.day()) % 100,
                              ofDay / 3600 % 100, ofDay / 60 % 60);
                std::int64_t read = 0;
                const char* const problem = times.Read(text, read);
                ASSERT_EQ(problem, nullptr) << name << ' ' << text << ' ' << problem;
                ASSERT_EQ(read, utc * kMicros) << name << ' ' << text;
            }
            ++changes;
        }
    }
    EXPECT_EQ(changes, 1341u);
}

}  // namespace
}  // namespace zr
