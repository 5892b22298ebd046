#include "devices/simulation/HouseholdSeries.h"

#include "SmallSeries.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using zr::HouseholdSeries;
using zr::test::kSeriesHeader;
using zr::test::kSmallSeries;
using zr::test::LoadSeries;

std::string Refusal(const std::string& text)
{
    HouseholdSeries series;
    std::string error;
    EXPECT_FALSE(series.LoadText(text, "rows.csv", error));
    EXPECT_EQ(series.Size(), 0u);
    return error;
}

TEST(HouseholdSeries, HoldsTheMeasuredHouseWithItsFiveMissingMinutes)
{
    HouseholdSeries series;
    zr::test::LoadHouse(series);
    ASSERT_EQ(series.Size(), 47960u);
    std::size_t missing = 0;
    for (std::size_t row = 0; row < series.Size(); ++row) {
        missing += series.IsMeasured(row) ? 0u : 1u;
    }
    EXPECT_EQ(missing, 5u);
    EXPECT_EQ(series.Find("2006-12-21T11:23"), 6839.0);
    EXPECT_FALSE(series.IsMeasured(6839));
}

TEST(HouseholdSeries, RunsStraightFromOneMinuteToTheNext)
{
    HouseholdSeries series;
    LoadSeries(series);
    const zr::HouseholdSample sample = series.At(0.25);
    EXPECT_DOUBLE_EQ(sample.activeW, 1500.0);
    EXPECT_DOUBLE_EQ(sample.reactiveVar, 450.0);
    EXPECT_DOUBLE_EQ(sample.voltageV, 237.5);
}

TEST(HouseholdSeries, BridgesMissingMinutesStraight)
{
    HouseholdSeries series;
    LoadSeries(series);
    EXPECT_FALSE(series.IsMeasured(2));
    EXPECT_DOUBLE_EQ(series.At(2.0).activeW, 1800.0);
    EXPECT_DOUBLE_EQ(series.At(2.0).voltageV, 235.0);
}

TEST(HouseholdSeries, RepeatsWithoutLosingEnergy)
{
    HouseholdSeries series;
    LoadSeries(series);
    EXPECT_DOUBLE_EQ(series.At(5.0).activeW, series.At(1.0).activeW);
    const double onePass = (1.8 + 2.1 + 1.5 + 1.2) * 1000.0 / 60.0;
    EXPECT_NEAR(series.ActiveWh(4.0), onePass, 1e-9);
    EXPECT_NEAR(series.ActiveWh(9.0), 2.0 * onePass + 1.8 * 1000.0 / 60.0, 1e-9);
    EXPECT_NEAR(series.ReactiveVarh(4.0), (0.3 + 0.15 + 0.45 + 0.6) * 1000.0 / 60.0, 1e-9);
}

TEST(HouseholdSeries, CountsTheSubMetersWithinTheMinute)
{
    HouseholdSeries series;
    LoadSeries(series);
    const zr::HouseholdSample sample = series.At(1.5);
    EXPECT_DOUBLE_EQ(sample.subMeterWh[0], 6.0);
    EXPECT_DOUBLE_EQ(sample.subMeterWh[1], 1.5);
    EXPECT_DOUBLE_EQ(sample.subMeterWh[2], 18.0);
    EXPECT_DOUBLE_EQ(sample.subMeterW[1], 180.0);
}

TEST(HouseholdSeries, FindsTheTimeOfDayAfterTheFirstDay)
{
    HouseholdSeries series;
    LoadSeries(series);
    EXPECT_EQ(series.FirstMinuteOfDay(), 23 * 60 + 58);
    EXPECT_DOUBLE_EQ(series.FindTimeOfDay((23 * 60 + 59) * 60.0 + 30.0), 1441.5);
    EXPECT_DOUBLE_EQ(series.FindTimeOfDay(0.0), 1442.0);
}

TEST(HouseholdSeries, KnowsOnlyTheTimesOfItsRows)
{
    HouseholdSeries series;
    LoadSeries(series);
    EXPECT_EQ(series.Find("2007-01-02T00:01"), 3.0);
    for (const char* time : {"2007-01-02T00:02", "2007-01-01T23:57", "2007-01-01 23:58", "2007-13-01T00:00", ""}) {
        EXPECT_FALSE(series.Find(time)) << time;
    }
}

TEST(HouseholdSeries, RefusesBadRowsWithTheirLine)
{
    const std::string first = std::string(kSeriesHeader) + "2007-01-01T00:00,1,1,230,4,0,0,0\n";
    EXPECT_EQ(Refusal("time\n").substr(0, 11), "rows.csv:1:");
    EXPECT_EQ(Refusal(""), Refusal("\n"));
    EXPECT_EQ(Refusal(first), "rows.csv:2: fewer than two rows");
    EXPECT_EQ(Refusal(first + "2007-01-01T00:02,1,1,230,4,0,0,0\n"),
              "rows.csv:3: the time isn't one minute after that of the row before");
    EXPECT_EQ(Refusal(first + "2007-01-01,1,1,230,4,0,0,0\n"),
              "rows.csv:3: the time isn't in the form YYYY-MM-DDThh:mm");
    EXPECT_EQ(Refusal(first + "2007-01-01T00:01,1,1,230,4,0,0\n"), "rows.csv:3: a row needs 8 fields");
    EXPECT_EQ(Refusal(first + "2007-01-01T00:01,-1,1,230,4,0,0,0\n"),
              "rows.csv:3: field 2 isn't a number from 0 to 1000");
    EXPECT_EQ(Refusal(first + "2007-01-01T00:01,1,nan,230,4,0,0,0\n"),
              "rows.csv:3: field 3 isn't a number from 0 to 1000");
    EXPECT_EQ(Refusal(first + "2007-01-01T00:01,1,1,,4,0,0,0\n"),
              "rows.csv:3: a row must have all of its values, or none");
    EXPECT_EQ(Refusal(first + "2007-01-01T00:01,,,,,,,\n"), "rows.csv:3: the last row has no values");
    EXPECT_EQ(Refusal(std::string(kSeriesHeader) + "2007-01-01T00:01,,,,,,,\n"),
              "rows.csv:2: the first row has no values");
}

}  // namespace
