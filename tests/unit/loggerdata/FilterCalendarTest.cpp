// The calendar of a filter file, from its text.
#include "siblings/driversupport/FilterFile.h"

#include "siblings/tools/Utf.h"
#include "support/ZoneChanges.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace zr {
namespace {

class FilterCalendarTest : public testing::Test {
protected:
    static constexpr const char* kCompanion = R"(<hours><hour name="A"/><hour name="B"/><hour name="C"/></hours>)";

    // A file of three hour types whose calendar begins on line 2.
    bool Load(const std::string& calendar)
    {
        const std::string text = R"(<f><hourTypes><hour name="A"/><hour name="B"/><hour name="C"/></hourTypes>)"
                                 "\n" +
                                 calendar + "\n</f>";
        error.clear();
        return filter.LoadText(text, kCompanion, "F.MVDF", error);
    }

    std::string ErrorOf(const std::string& calendar)
    {
        EXPECT_FALSE(Load(calendar));
        return error;
    }

    // The name of the hour type at a local time such as "2026-03-02T20:00".
    [[nodiscard]] std::string HourTypeAt(const std::string& local) const
    {
        const std::size_t hourType = filter.Calendar()->HourTypeAt(test::SecondsOf(local));
        return Utf16ToUtf8(filter.HourTypes().at(hourType).name);
    }

    // Of some times in one text.
    [[nodiscard]] std::string HourTypesAt(const std::vector<std::string>& locals) const
    {
        std::string all;
        for (const std::string& local : locals) {
            all += HourTypeAt(local);
        }
        return all;
    }

    FilterFile filter;
    std::string error;
};

TEST_F(FilterCalendarTest, AFileWithoutOneHasNone)
{
    ASSERT_TRUE(Load("")) << error;
    EXPECT_FALSE(filter.Calendar().has_value());
}

TEST_F(FilterCalendarTest, TheRestCoversAllThatNothingElseTells)
{
    ASSERT_TRUE(Load(R"(<calendar rest="B"/>)")) << error;
    EXPECT_EQ(HourTypeAt("2026-03-02T20:00"), "B");
    ASSERT_TRUE(Load(R"(<calendar rest="B"><days on="Mon" rest="C"><hours from="08:00" to="09:00" hour="A"/></days>
                        </calendar>)"))
        << error;
    EXPECT_EQ(HourTypesAt({"2026-03-02T07:59", "2026-03-02T08:00", "2026-03-02T09:00", "2026-03-03T08:00"}), "CACB");
}

TEST_F(FilterCalendarTest, HoursMayCrossMidnightOnTheDatesOfTheirDays)
{
    ASSERT_TRUE(
        Load(R"(<calendar rest="A"><days on="Mon"><hours from="22:15" to="06:30" hour="B"/></days></calendar>)"))
        << error;
    // 2 March 2026 is a Monday.
    EXPECT_EQ(HourTypesAt({"2026-03-02T00:00", "2026-03-02T06:29", "2026-03-02T06:30", "2026-03-02T22:14",
                           "2026-03-02T22:15", "2026-03-02T23:59", "2026-03-03T00:00"}),
              "BBAABBA");
}

TEST_F(FilterCalendarTest, HoursMayEndAtMidnightEitherWay)
{
    for (const char* to : {"24:00", "00:00"}) {
        ASSERT_TRUE(Load(std::string(R"(<calendar rest="A"><days><hours from="22:00" hour="B" to=")") + to +
                         R"("/></days></calendar>)"))
            << error;
        EXPECT_EQ(HourTypesAt({"2026-03-02T21:59", "2026-03-02T22:00", "2026-03-02T23:59", "2026-03-03T00:00"}),
                  "ABBA");
    }
    ASSERT_TRUE(Load(R"(<calendar><days><hours from="00:00" to="24:00" hour="C"/></days></calendar>)")) << error;
    EXPECT_EQ(HourTypesAt({"2026-03-02T00:00", "2026-03-02T23:59"}), "CC");
}

TEST_F(FilterCalendarTest, DaysAreListedWithBlanksOrCommasAndStretchesGoOverTheWeek)
{
    for (const char* on : {"Sat-Mon", "Mon Sun,Sat", " Sat, Sun Mon ", "Sat-Sun,Mon"}) {
        ASSERT_TRUE(Load(std::string(R"(<calendar rest="A"><days rest="B" on=")") + on + R"("/></calendar>)")) << on;
        EXPECT_EQ(HourTypesAt({"2026-03-06T12:00", "2026-03-07T12:00", "2026-03-08T12:00", "2026-03-09T12:00",
                               "2026-03-10T12:00"}),
                  "ABBBA")
            << on;
    }
}

TEST_F(FilterCalendarTest, SeasonsIncludeTheirEndsAndMayCrossTheNewYear)
{
    ASSERT_TRUE(Load(R"(<calendar rest="A"><season name="W" from="11-15" to="02-28"/><days season="W" rest="B"/>
                        </calendar>)"))
        << error;
    EXPECT_EQ(HourTypesAt({"2027-11-14T23:59", "2027-11-15T00:00", "2027-12-31T12:00", "2028-01-01T12:00",
                           "2028-02-28T23:59", "2028-02-29T12:00", "2028-03-01T00:00"}),
              "ABBBBAA");
}

TEST_F(FilterCalendarTest, ASeasonMayHaveSeveralStretches)
{
    ASSERT_TRUE(Load(R"(<calendar rest="A"><days season="HIGH" rest="B"/><season name="HIGH" from="12-01" to="02-29"/>
                        <season name="HIGH" from="07-01" to="07-31"/></calendar>)"))
        << error;
    EXPECT_EQ(HourTypesAt({"2028-02-29T12:00", "2028-03-01T12:00", "2028-07-01T12:00", "2028-08-01T12:00"}), "BABA");
}

TEST_F(FilterCalendarTest, HolidaysComeEveryYearOnceOrWithEaster)
{
    ASSERT_TRUE(Load(R"(<calendar rest="A"><holiday date="12-25"/><holiday name="Once" date="2026-05-02"/>
                        <holiday easter="1"/><holiday date="02-29"/><days on="holiday" rest="B"/></calendar>)"))
        << error;
    EXPECT_EQ(HourTypesAt({"2026-12-25T00:00", "2031-12-25T23:59", "2026-12-26T00:00"}), "BBA");
    EXPECT_EQ(HourTypesAt({"2026-05-02T12:00", "2027-05-02T12:00"}), "BA");
    EXPECT_EQ(HourTypesAt({"2026-04-06T12:00", "2026-04-05T12:00", "2024-04-01T12:00", "2025-04-01T12:00"}), "BABA");
    EXPECT_EQ(HourTypesAt({"2028-02-29T12:00", "2027-03-01T12:00"}), "BA");
}

TEST_F(FilterCalendarTest, HolidaysGoBeforeWeekdaysAndSeasonsBeforeTheWholeYear)
{
    ASSERT_TRUE(Load(R"(<calendar><season name="S" from="06-01" to="08-31"/><holiday date="06-10"/>
                        <days on="Mon-Sat" rest="A"/><days on="Mon-Fri" season="S" rest="B"/>
                        <days on="Sun holiday" rest="C"/></calendar>)"))
        << error;
    // In the season a Wednesday that is a holiday, a Thursday, a Saturday and a Sunday; after it a Monday.
    EXPECT_EQ(HourTypesAt(
                  {"2026-06-10T12:00", "2026-06-11T12:00", "2026-06-13T12:00", "2026-06-14T12:00", "2026-09-07T12:00"}),
              "CBACA");
}

TEST_F(FilterCalendarTest, AHolidayThatNoDaysNameIsADayAsOthers)
{
    ASSERT_TRUE(Load(R"(<calendar><holiday date="06-10"/><days rest="A" on="Mon-Fri"/><days on="Sat-Sun" rest="B"/>
                        </calendar>)"))
        << error;
    EXPECT_EQ(HourTypesAt({"2026-06-10T12:00", "2028-06-10T12:00"}), "AB");
}

TEST_F(FilterCalendarTest, AGapIsToldWithFileAndLine)
{
    EXPECT_EQ(ErrorOf("<calendar/>"), "F.MVDF:2: calendar: nothing tells the hour types of Sundays");
    EXPECT_EQ(ErrorOf("<calendar><days on=\"Sun-Fri\" rest=\"A\"/></calendar>"),
              "F.MVDF:2: calendar: nothing tells the hour types of Saturdays");
    EXPECT_EQ(
        ErrorOf("<calendar><season name=\"W\" from=\"01-01\" to=\"12-30\"/><days season=\"W\" rest=\"A\"/></calendar>"),
        "F.MVDF:2: calendar: nothing tells the hour types of Sundays outside the seasons");
    EXPECT_EQ(ErrorOf("<calendar>\n<days><hours from=\"00:00\" to=\"12:30\" hour=\"A\"/>"
                      "<hours from=\"12:31\" to=\"24:00\" hour=\"B\"/></days></calendar>"),
              "F.MVDF:3: days: nothing tells the hour type at 12:30");
    EXPECT_TRUE(
        Load("<calendar><season name=\"W\" from=\"01-01\" to=\"12-31\"/><days season=\"W\" rest=\"A\"/></calendar>"))
        << error;
}

TEST_F(FilterCalendarTest, AnOverlapIsToldWithFileAndLine)
{
    EXPECT_EQ(ErrorOf("<calendar rest=\"A\"><days>\n<hours from=\"08:00\" to=\"12:00\" hour=\"A\"/>\n"
                      "<hours from=\"11:59\" to=\"13:00\" hour=\"B\"/></days></calendar>"),
              "F.MVDF:4: hours: 11:59 has its hour type from hours before");
    EXPECT_EQ(ErrorOf("<calendar rest=\"A\"><days>\n<hours from=\"00:00\" to=\"01:00\" hour=\"A\"/>\n"
                      "<hours from=\"22:00\" to=\"00:01\" hour=\"B\"/></days></calendar>"),
              "F.MVDF:4: hours: 00:00 has its hour type from hours before");
    EXPECT_EQ(ErrorOf("<calendar rest=\"A\">\n<days on=\"Mon-Wed\"/>\n<days on=\"Wed-Fri\"/></calendar>"),
              "F.MVDF:4: days: Wednesdays have theirs from line 3");
    EXPECT_EQ(ErrorOf("<calendar rest=\"A\"><holiday date=\"01-01\"/>\n<days on=\"holiday\"/>\n"
                      "<days on=\"Sun holiday\"/></calendar>"),
              "F.MVDF:4: days: holidays on Sundays have theirs from line 3");
    EXPECT_EQ(ErrorOf("<calendar rest=\"A\"><season name=\"W\" from=\"11-01\" to=\"02-01\"/>\n"
                      "<season name=\"S\" from=\"02-01\" to=\"10-31\"/></calendar>"),
              "F.MVDF:3: has days of season \"W\"");
    EXPECT_EQ(ErrorOf("<calendar rest=\"A\"><season name=\"W\" from=\"11-01\" to=\"02-01\"/><days season=\"W\"/>\n"
                      "<days season=\"W\" on=\"Fri\"/></calendar>"),
              "F.MVDF:3: days: Fridays of season \"W\" have theirs from line 2");
}

TEST_F(FilterCalendarTest, WhatIsNoDateTimeOrNameIsToldWithFileAndLine)
{
    const std::vector<std::pair<std::string, std::string>> rows = {
        {R"(<calendar rest="D"/>)", "rest: no hour type of the filter"},
        {R"(<calendar rest="A" zone="UTC"/>)", "calendar: has no value \"zone\""},
        {R"(<calendar rest="A"><day/></calendar>)", "calendar: has no element \"day\""},
        {R"(<calendar rest="A"/><calendar rest="A"/>)", "calendar: there is one before"},
        {R"(<calendar rest="A"><season from="01-01" to="02-01"/></calendar>)",
         "name: a season is named by 1 to 64 letters, digits, blanks, \"-\" and \"_\""},
        {R"(<calendar rest="A"><season name="S" from="1-1" to="02-01"/></calendar>)",
         "from: not a date of every year, \"MM-DD\""},
        {R"(<calendar rest="A"><season name="S" from="01-01" to="02-30"/></calendar>)",
         "to: not a date of every year, \"MM-DD\""},
        {R"(<calendar rest="A"><holiday/></calendar>)", "holiday: wants either date or easter"},
        {R"(<calendar rest="A"><holiday date="01-01" easter="1"/></calendar>)", "holiday: wants either date or easter"},
        {R"(<calendar rest="A"><holiday date="2025-02-29"/></calendar>)",
         "date: neither \"MM-DD\" nor \"YYYY-MM-DD\" of the years 2000 to 2135"},
        {R"(<calendar rest="A"><holiday date="1999-12-31"/></calendar>)",
         "date: neither \"MM-DD\" nor \"YYYY-MM-DD\" of the years 2000 to 2135"},
        {R"(<calendar rest="A"><holiday easter="250"/></calendar>)", "easter: not a number of days from -80 to 249"},
        {R"(<calendar rest="A"><holiday easter="one"/></calendar>)", "easter: not a number of days from -80 to 249"},
        {R"(<calendar rest="A"><days on="Mon-"/></calendar>)",
         "on: not a list of Mon, Tue, Wed, Thu, Fri, Sat, Sun, stretches of them and holiday"},
        {R"(<calendar rest="A"><days on=""/></calendar>)",
         "on: not a list of Mon, Tue, Wed, Thu, Fri, Sat, Sun, stretches of them and holiday"},
        {R"(<calendar rest="A"><days season="S"/></calendar>)", "season: there is none of that name"},
        {R"(<calendar rest="A"><days><hour/></days></calendar>)", "days: has no element \"hour\""},
        {R"(<calendar rest="A"><days><hours from="24:00" to="24:00" hour="A"/></days></calendar>)",
         "from: not a time from \"00:00\" to \"23:59\""},
        {R"(<calendar rest="A"><days><hours from="8:00" to="24:00" hour="A"/></days></calendar>)",
         "from: not a time from \"00:00\" to \"23:59\""},
        {R"(<calendar rest="A"><days><hours from="08:00" to="24:01" hour="A"/></days></calendar>)",
         "to: not a time from \"00:00\" to \"24:00\""},
        {R"(<calendar rest="A"><days><hours from="08:00" to="08:60" hour="A"/></days></calendar>)",
         "to: not a time from \"00:00\" to \"24:00\""},
        {R"(<calendar rest="A"><days><hours from="08:00" to="08:00" hour="A"/></days></calendar>)",
         "from and to are the same; a whole day is \"00:00\" to \"24:00\""},
        {R"(<calendar rest="A"><days><hours from="08:00" to="09:00"/></days></calendar>)", "hour: missing"},
        {R"(<calendar rest="A"><days><hours from="08:00" to="09:00" hour="D"/></days></calendar>)",
         "hour: no hour type of the filter"},
        {R"(<calendar rest="A"><days><hours from="08:00" to="09:00" hour="A" on="Mon"/></days></calendar>)",
         "hours: has no value \"on\""},
        {R"(<calendar rest="A"><days><hours from="08:00" to="09:00" hour="A"><x/></hours></days></calendar>)",
         "hours: has no elements"},
    };
    for (const auto& [calendar, reason] : rows) {
        EXPECT_EQ(ErrorOf(calendar), "F.MVDF:2: " + reason) << calendar;
    }
}

TEST_F(FilterCalendarTest, MoreOfAnElementThanTheLimitIsRefused)
{
    const auto many = [](int count, const std::string& element) {
        std::string text = "<calendar rest=\"A\">";
        for (int i = 0; i < count; ++i) {
            text += element;
        }
        return text + "</calendar>";
    };
    EXPECT_EQ(ErrorOf(many(1001, R"(<days on="Mon"/>)")), R"(F.MVDF:2: more than 1000 elements "days")");
    EXPECT_EQ(ErrorOf(many(10001, R"(<holiday date="01-01"/>)")), "F.MVDF:2: more than 10000 holidays");
    EXPECT_TRUE(Load(many(10000, R"(<holiday date="01-01"/>)"))) << error;
}

TEST_F(FilterCalendarTest, ARefusedFileLeavesTheCalendarThatWasLoaded)
{
    ASSERT_TRUE(Load(R"(<calendar rest="B"/>)")) << error;
    ASSERT_FALSE(Load(R"(<calendar rest="D"/>)"));
    EXPECT_EQ(HourTypeAt("2026-03-02T20:00"), "B");
}

TEST_F(FilterCalendarTest, MutatedCalendarsAreReadOrRefusedWithALine)
{
    std::ifstream file(ZR_RESOURCES "/filters/THREE-TARIFF.MVDF", std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(file), {}};
    ASSERT_NE(whole.find("<calendar"), std::string::npos);
    const std::string companion = R"(<h><hour name="PEAK"/><hour name="SHOULDER"/><hour name="OFF-PEAK"/></h>)";
    const std::string marks = "0123456789:- \"=<>/MonFriSat";
    std::mt19937 random(12);
    std::size_t refused = 0;
    std::size_t read = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string text = whole;
        const std::size_t begin = text.find("<calendar");
        for (std::size_t edit = 0; edit <= random() % 3; ++edit) {
            text[begin + random() % (text.size() - begin)] = marks[random() % marks.size()];
        }
        if (!filter.LoadText(text, companion, "F.MVDF", error)) {
            ++refused;
            EXPECT_EQ(error.rfind("F.MVDF:", 0), 0u) << error;
            continue;
        }
        ++read;
        for (int i = 0; i < 10 && filter.Calendar(); ++i) {
            const auto local = static_cast<std::int64_t>(946684800u + random() % 2000000000u);
            EXPECT_LT(filter.Calendar()->HourTypeAt(local), filter.HourTypes().size());
        }
    }
    EXPECT_GT(refused, 500u);
    EXPECT_GT(read, 100u);
}

TEST_F(FilterCalendarTest, TheShippedThreeTariffsHoldByWeekdaySeasonAndHoliday)
{
    ASSERT_TRUE(filter.Load(std::filesystem::path(ZR_RESOURCES "/filters/THREE-TARIFF.MVDF"), error)) << error;
    ASSERT_TRUE(filter.Calendar().has_value());
    for (const auto& [local, hourType] :
         std::vector<std::pair<std::string, std::string>>{{"2026-01-15T07:59", "SHOULDER"},  // a Thursday in winter
                                                          {"2026-01-15T08:00", "PEAK"},
                                                          {"2026-01-15T17:29", "SHOULDER"},
                                                          {"2026-01-15T17:30", "PEAK"},
                                                          {"2026-01-15T23:00", "OFF-PEAK"},
                                                          {"2026-01-16T06:59", "OFF-PEAK"},
                                                          {"2026-07-15T08:00", "SHOULDER"},  // a Wednesday in summer
                                                          {"2026-07-15T10:00", "PEAK"},
                                                          {"2026-07-18T10:00", "SHOULDER"},  // a Saturday
                                                          {"2026-07-18T14:00", "OFF-PEAK"},
                                                          {"2026-07-19T10:00", "OFF-PEAK"},  // a Sunday
                                                          {"2026-04-03T10:00", "OFF-PEAK"},  // Good Friday
                                                          {"2026-12-26T10:00", "OFF-PEAK"}}) {
        EXPECT_EQ(HourTypeAt(local), hourType) << local;
    }
}

// The text between the lines that begin and end a block of XML, after a heading.
std::string BlockAfter(const std::string& document, const std::string& heading)
{
    const std::string fence = "```xml\n";
    const std::size_t begin = document.find(fence, document.find(heading)) + fence.size();
    return document.substr(begin, document.find("```", begin) - begin);
}

TEST_F(FilterCalendarTest, TheExampleOfTheDocumentGivesTheHourTypesOfTheDocument)
{
    std::ifstream file(ZR_RESOURCES "/../docs/formats/filter-file.md", std::ios::binary);
    const std::string document{std::istreambuf_iterator<char>(file), {}};
    const std::string example = document.substr(document.find("## A worked example"));
    ASSERT_TRUE(filter.LoadText(BlockAfter(example, "`EXAMPLE.MVDF`"), BlockAfter(example, "`EXAMPLE.MVDFI`"),
                                "EXAMPLE.MVDF", error))
        << error;
    std::size_t rows = 0;
    for (std::size_t at = example.find("\n| 2"); at != std::string::npos; at = example.find("\n| 2", at + 1)) {
        std::string local = example.substr(at + 3, 16);  // "2026-01-15 06:00"
        local[10] = 'T';
        const std::size_t begin = at + 22;
        EXPECT_EQ(HourTypeAt(local), example.substr(begin, example.find(' ', begin) - begin)) << local;
        ++rows;
    }
    EXPECT_EQ(rows, 12u);
}

}  // namespace
}  // namespace zr
