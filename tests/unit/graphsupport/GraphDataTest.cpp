#include "siblings/graphsupport/GraphData.h"

#include "CurveGroup.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace zr::graph {
namespace {

using namespace test;

constexpr std::int64_t kBegin = kNewYear;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Records of one variable, a minute apart.
std::vector<Row> Minutes(const std::vector<double>& values)
{
    std::vector<Row> rows;
    for (const double value : values) {
        rows.push_back({kBegin + static_cast<std::int64_t>(rows.size()) * kMinute, {value}});
    }
    return rows;
}

std::int64_t Minute(double minutes)
{
    return kBegin + static_cast<std::int64_t>(minutes * 60e6);
}

class GraphDataTest : public testing::Test {
protected:
    // The group lives until the next.
    void Bind(const std::vector<Row>& rows, CurveColumn column, std::int32_t period = 0,
              const TimeZone& zone = TimeZone())
    {
        data.Clear();
        curves.emplace(rows, 1, period, zone);
        data.Bind(curves->Group(), {column});
    }

    std::vector<std::pair<double, double>> Reduced(std::int64_t from, std::int64_t to, std::size_t count)
    {
        std::vector<ValueRange> columns(count);
        data.Reduce(0, from, to, columns);
        std::vector<std::pair<double, double>> all;
        for (const ValueRange& column : columns) {
            all.emplace_back(column.low, column.high);
        }
        return all;
    }

    static constexpr std::pair<double, double> kEmpty = {kInfinity, -kInfinity};

    std::optional<CurveGroup> curves;
    GraphData data;
};

TEST_F(GraphDataTest, NothingIsThereBeforeBindAndAfterClear)
{
    EXPECT_EQ(data.Records(), 0u);
    EXPECT_EQ(data.Curves(), 0u);
    EXPECT_EQ(Reduced(Minute(0), Minute(1), 2), (std::vector{kEmpty, kEmpty}));
    Bind(Minutes({1.0, 2.0}), {});
    EXPECT_EQ(data.Records(), 2u);
    EXPECT_EQ(data.Curves(), 1u);
    EXPECT_EQ(data.Records(Minute(0), Minute(1)), 1u);
    EXPECT_GT(data.Bytes(), 0u);
    data.Clear();
    EXPECT_EQ(data.Records(), 0u);
    EXPECT_EQ(data.Records(Minute(0), Minute(1)), 0u);
    EXPECT_EQ(data.Bytes(), 0u);
    EXPECT_FALSE(data.ValueAt(0, Minute(0)).has_value());
    EXPECT_FALSE(data.SampleAt(0, Minute(0)).has_value());
    EXPECT_EQ(data.FiguresOf(0, Minute(0), Minute(5)).count, 0u);
    EXPECT_TRUE(data.RangeOf(0, Minute(0), Minute(5)).IsEmpty());
}

TEST_F(GraphDataTest, AnEmptyGroupHasNothingToDraw)
{
    Bind({}, {});
    EXPECT_EQ(data.Records(), 0u);
    EXPECT_EQ(data.Curves(), 1u);
    EXPECT_EQ(Reduced(Minute(0), Minute(1), 2), (std::vector{kEmpty, kEmpty}));
    std::vector<CurvePoint> points(3);
    data.Points(0, Minute(0), Minute(1), 100, points);
    EXPECT_TRUE(points.empty());
}

TEST_F(GraphDataTest, AColumnThatTheRecordsDoNotHaveIsACurveWithoutSamples)
{
    for (const int column : {-1, 1, 1000}) {
        Bind(Minutes({1.0, 2.0}), {column, CurveShape::Line, 1.0, false});
        EXPECT_EQ(Reduced(Minute(0), Minute(2), 1), std::vector{kEmpty});
        EXPECT_EQ(data.FiguresOf(0, Minute(0), Minute(2)).count, 0u);
        EXPECT_FALSE(data.SampleAt(0, Minute(0)).has_value());
    }
}

TEST_F(GraphDataTest, AWindowThatEndsBeforeItBeginsHoldsNothing)
{
    Bind(Minutes({1.0, 2.0}), {});
    EXPECT_EQ(Reduced(Minute(1), Minute(0), 1), std::vector{kEmpty});
    EXPECT_EQ(data.Records(Minute(1), Minute(0)), 0u);
    EXPECT_EQ(data.FiguresOf(0, Minute(1), Minute(0)).count, 0u);
}

TEST_F(GraphDataTest, ALineGoesOnThroughColumnsWithoutSamples)
{
    Bind(Minutes({0.0, 4.0}), {});
    EXPECT_EQ(Reduced(Minute(0), Minute(1), 4),
              (std::vector<std::pair<double, double>>{{0.0, 1.0}, {1.0, 2.0}, {2.0, 3.0}, {3.0, 4.0}}));
    EXPECT_EQ(data.ValueAt(0, Minute(0.25)), 1.0);
    EXPECT_EQ(data.RangeOf(0, Minute(0.25), Minute(0.5)).high, 2.0);
}

TEST_F(GraphDataTest, AMissingSampleLeavesAGap)
{
    Bind(Minutes({1.0, 1.0, 1.0, 1.0, kInvalid, 3.0, 3.0, 3.0, 3.0}), {});
    EXPECT_EQ(Reduced(Minute(3.25), Minute(4.75), 1), std::vector{kEmpty});
    EXPECT_FALSE(data.ValueAt(0, Minute(4)).has_value());
    EXPECT_FALSE(data.SampleAt(0, Minute(4)).has_value());
    EXPECT_EQ(data.ValueAt(0, Minute(2.5)), 1.0);
}

TEST_F(GraphDataTest, AVariableRecordedLessOftenHasNoGaps)
{
    // The others a minute apart, this one every four.
    Bind(Minutes({1.0, kInvalid, kInvalid, kInvalid, 5.0, kInvalid, kInvalid, kInvalid, 9.0, kInvalid}), {});
    EXPECT_EQ(data.ValueAt(0, Minute(1)), 2.0);
    EXPECT_EQ(data.ValueAt(0, Minute(6)), 7.0);
}

TEST_F(GraphDataTest, ARecordingThatGoesOnAtAnotherPaceHasNoGaps)
{
    std::vector<Row> rows = Minutes({1.0, 1.0, 1.0, 1.0, 1.0});
    for (const int minute : {19, 34, 49, 64}) {
        rows.push_back({Minute(minute), {1.0}});
    }
    Bind(rows, {});
    for (const int minute : {2, 10, 25, 60}) {
        EXPECT_EQ(data.ValueAt(0, Minute(minute)), 1.0) << minute;
    }
}

TEST_F(GraphDataTest, AQuarterOfAnHourShownAtMinutesHasNoGaps)
{
    std::vector<Row> rows;
    for (int quarter = 0; quarter < 6; ++quarter) {
        rows.push_back({Minute(15 * quarter), {1.0}});
    }
    Bind(rows, {}, 60);
    EXPECT_EQ(data.ValueAt(0, Minute(40)), 1.0);
}

TEST_F(GraphDataTest, TheDistanceFromWhichOnIsAGapIsOneAndAHalfOfTheUsualOne)
{
    for (const std::int64_t more : {0, 1}) {
        std::vector<Row> rows = Minutes({1.0, 1.0, 1.0, 1.0});
        for (int i = 0; i < 4; ++i) {
            rows.push_back({Minute(4.5) + more + i * kMinute, {1.0}});
        }
        Bind(rows, {});
        EXPECT_EQ(data.ValueAt(0, Minute(3.5)).has_value(), more == 0) << more;
    }
}

TEST_F(GraphDataTest, ASingleSampleIsADot)
{
    Bind(Minutes({7.0}), {});
    EXPECT_EQ(Reduced(Minute(-1), Minute(1), 4),
              (std::vector<std::pair<double, double>>{kEmpty, kEmpty, {7.0, 7.0}, kEmpty}));
    EXPECT_EQ(data.ValueAt(0, Minute(0)), 7.0);
    EXPECT_EQ(data.SampleAt(0, Minute(0))->value, 7.0);
    EXPECT_FALSE(data.ValueAt(0, Minute(0) + 1).has_value());
}

TEST_F(GraphDataTest, WhatIsNotFiniteIsNoSample)
{
    Bind(Minutes({1.0, 1.0, 1.0, 1.0, 1.0}), {});
    for (const double value : {kInfinity, -kInfinity, kInvalid}) {
        curves->ValueOf(2, 0) = {1, value};
        data.Bind(curves->Group(), {CurveColumn{}});
        EXPECT_EQ(data.FiguresOf(0, Minute(0), Minute(9)).count, 4u);
        EXPECT_EQ(data.RangeOf(0, Minute(0), Minute(9)).high, 1.0);
        EXPECT_FALSE(data.ValueAt(0, Minute(2)).has_value());
    }
}

TEST_F(GraphDataTest, AValueThatIsFiniteOnlyBeforeItIsScaledIsNoSample)
{
    Bind(Minutes({1e300, 1.0}), {0, CurveShape::Line, 1e9, false});
    EXPECT_EQ(data.FiguresOf(0, Minute(0), Minute(9)).count, 1u);
}

TEST_F(GraphDataTest, TheMeanOfTheLargestValuesIsFinite)
{
    const double most = std::numeric_limits<double>::max();
    Bind(Minutes({most, most, most, most}), {});
    const CurveFigures figures = data.FiguresOf(0, Minute(0), Minute(9));
    EXPECT_EQ(figures.mean, most);
    EXPECT_EQ(data.ValueAt(0, Minute(0.5)), most);
}

TEST_F(GraphDataTest, APowerFactorIsFoldedAndItsMeanIsNot)
{
    Bind(Minutes({0.5, -0.9, -0.5}), {0, CurveShape::Line, 1.0, true});
    EXPECT_EQ(data.ValueAt(0, Minute(0)), 0.5);
    EXPECT_EQ(data.ValueAt(0, Minute(1)), 1.1);
    EXPECT_EQ(data.ValueAt(0, Minute(2)), 1.5);
    const CurveFigures figures = data.FiguresOf(0, Minute(0), Minute(9));
    EXPECT_EQ(figures.minimum, 0.5);
    EXPECT_EQ(figures.maximum, 1.5);
    EXPECT_NEAR(figures.mean, -0.3, 1e-12);
}

TEST_F(GraphDataTest, TheSampleNearestToATimeIsShown)
{
    Bind(Minutes({1.0, 2.0, 3.0}), {});
    EXPECT_EQ(data.SampleAt(0, Minute(0.4))->value, 1.0);
    EXPECT_EQ(data.SampleAt(0, Minute(0.6))->time, Minute(1));
    // Half of the usual distance beyond the end of a line, and no further.
    EXPECT_EQ(data.SampleAt(0, Minute(2.5))->value, 3.0);
    EXPECT_FALSE(data.SampleAt(0, Minute(2.6)).has_value());
    EXPECT_EQ(data.SampleAt(0, Minute(-0.5))->value, 1.0);
    EXPECT_FALSE(data.SampleAt(0, Minute(-0.6)).has_value());
}

TEST_F(GraphDataTest, TheEndsOfTimeCanBeAskedFor)
{
    constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    Bind(Minutes({1.0, 2.0, 3.0}), {});
    EXPECT_FALSE(data.SampleAt(0, kMost).has_value());
    EXPECT_FALSE(data.SampleAt(0, kLeast).has_value());
    EXPECT_EQ(data.Records(kLeast, kMost), 3u);
    EXPECT_EQ(data.RangeOf(0, kLeast, kMost).high, 3.0);
}

TEST_F(GraphDataTest, AStepHoldsUntilTheNextSampleAndInAGapForTheUsualDistance)
{
    Bind(Minutes({1.0, 1.0, 1.0, 2.0, kInvalid, kInvalid, 5.0, 5.0, 5.0, 5.0}), {0, CurveShape::Steps, 1.0, false});
    EXPECT_EQ(data.ValueAt(0, Minute(2.9)), 1.0);
    EXPECT_EQ(data.ValueAt(0, Minute(3.9)), 2.0);
    EXPECT_FALSE(data.ValueAt(0, Minute(4)).has_value());
    EXPECT_EQ(data.SampleAt(0, Minute(3.9))->time, Minute(3));
    // The way up to a sample belongs to its column.
    EXPECT_EQ(Reduced(Minute(2.5), Minute(4.5), 4),
              (std::vector<std::pair<double, double>>{{1.0, 1.0}, {1.0, 2.0}, {2.0, 2.0}, kEmpty}));
}

TEST_F(GraphDataTest, ABarStandsFromZeroToTheEndOfItsPeriod)
{
    std::vector<Row> rows;
    for (const int hour : {0, 1, 3}) {
        rows.push_back({kBegin + hour * kHourLong, {hour == 3 ? -2.0 : 4.0}});
    }
    Bind(rows, {0, CurveShape::Bars, 1.0, false}, 3600);
    EXPECT_EQ(Reduced(kBegin, kBegin + 5 * kHourLong, 5),
              (std::vector<std::pair<double, double>>{{0.0, 4.0}, {0.0, 4.0}, kEmpty, {-2.0, 0.0}, kEmpty}));
    EXPECT_EQ(data.ValueAt(0, kBegin + 4 * kHourLong - 1), -2.0);
    EXPECT_FALSE(data.ValueAt(0, kBegin + 4 * kHourLong).has_value());
    std::vector<CurvePoint> points;
    data.Points(0, kBegin + 3 * kHourLong, kBegin + 5 * kHourLong, 100, points);
    ASSERT_EQ(points.size(), 5u);
    EXPECT_EQ(points[0].value, 0.0);
    EXPECT_EQ(points[1].value, -2.0);
    EXPECT_EQ(points[2].time, kBegin + 4 * kHourLong);
    EXPECT_EQ(points[3].value, 0.0);
}

TEST_F(GraphDataTest, ABarOfAMonthEndsWithItsMonth)
{
    std::vector<Row> rows;
    for (const int day : {0, 31, 90}) {
        rows.push_back({kBegin + day * kDayLong, {1.0}});
    }
    // January, February and April 2003.
    Bind(rows, {0, CurveShape::Bars, 1.0, false}, 2678400);
    const auto isDrawn = [&](int day) { return data.ValueAt(0, kBegin + day * kDayLong + kHourLong).has_value(); };
    EXPECT_TRUE(isDrawn(58));
    EXPECT_FALSE(isDrawn(59));
    EXPECT_TRUE(isDrawn(90));
    EXPECT_TRUE(isDrawn(119));
    EXPECT_FALSE(isDrawn(120));
}

TEST_F(GraphDataTest, TheHourThatOccursTwiceIsDrawnTwice)
{
    // The clock of Paris went back on 26 October 2003 at 1:00 UTC.
    constexpr std::int64_t kChange = 1067130000;
    const TimeZone paris(3600, {{1048986000, 7200}, {kChange, 3600}});
    std::vector<Row> rows;
    for (int hour = -3; hour < 3; ++hour) {
        rows.push_back({(kChange + hour * 3600) * kSecond, {static_cast<double>(hour)}});
    }
    for (const std::int32_t period : {0, 3600}) {
        Bind(rows, {0, CurveShape::Steps, 1.0, false}, period, paris);
        ASSERT_EQ(data.Records(), 6u);
        for (int hour = -3; hour < 3; ++hour) {
            EXPECT_EQ(data.ValueAt(0, (kChange + hour * 3600 + 1800) * kSecond), hour) << period;
        }
    }
}

TEST_F(GraphDataTest, TimesThatGoBackAreHeldAtTheLatest)
{
    Bind(Minutes({1.0, 2.0, 3.0, 4.0, 5.0}), {});
    curves->TimeOf(3) = Minute(0.5);
    data.Bind(curves->Group(), {CurveColumn{}});
    // The fourth now stands at the time of the third, and so two minutes before the fifth: a gap.
    EXPECT_EQ(data.Records(Minute(2), Minute(2) + 1), 2u);
    EXPECT_EQ(Reduced(Minute(1.5), Minute(2.5), 1), (std::vector<std::pair<double, double>>{{2.5, 4.0}}));
    EXPECT_EQ(data.ValueAt(0, Minute(2)), 4.0);
}

TEST_F(GraphDataTest, OnlyTheSelectionIsDrawn)
{
    Bind(Minutes({1.0, 2.0, 3.0, 4.0, 5.0}), {});
    const ZRDateTime from(static_cast<std::uint32_t>(Minute(1) / kSecond - 946684800), 0);
    curves->Group().SelectData(from, from + ZRDateTimeSpan(120, 0), true);
    data.Bind(curves->Group(), {CurveColumn{}});
    EXPECT_EQ(data.Records(), 2u);
    EXPECT_EQ(data.RangeOf(0, Minute(-9), Minute(9)).low, 2.0);
    EXPECT_EQ(data.RangeOf(0, Minute(-9), Minute(9)).high, 3.0);
}

TEST_F(GraphDataTest, PointsAreTheSamplesWhereTheyAreFew)
{
    Bind(Minutes({1.0, 5.0, 2.0, 4.0}), {});
    std::vector<CurvePoint> points;
    data.Points(0, Minute(0.5), Minute(9), 1, points);
    ASSERT_EQ(points.size(), 4u);
    EXPECT_EQ(points[0].time, Minute(0.5));
    EXPECT_EQ(points[0].value, 3.0);
    EXPECT_EQ(points[1].value, 5.0);
    EXPECT_EQ(points[3].value, 4.0);
}

// So many that two threads read them and all levels are there.
class GraphDataManyTest : public testing::Test {
protected:
    static constexpr std::size_t kRecords = 300000;
    static constexpr std::int64_t kApart = 10 * kSecond;

    GraphDataManyTest()
    {
        std::vector<Row> rows;
        for (std::size_t r = 0; r < kRecords; ++r) {
            rows.push_back({kBegin + static_cast<std::int64_t>(r) * kApart, {ValueOf(r), -ValueOf(r)}});
        }
        curves.emplace(rows, 2);
        data.Bind(curves->Group(), {CurveColumn{0, CurveShape::Line, 1.0, false}, {1, CurveShape::Line, 2.0, false}});
    }

    static double ValueOf(std::size_t record) { return static_cast<double>(record * 2654435761U % 1000003U); }

    std::optional<CurveGroup> curves;
    GraphData data;
};

TEST_F(GraphDataManyTest, AnyRunOfRecordsHasItsLeastAndItsLargest)
{
    for (std::size_t begin = 1; begin < kRecords; begin = begin * 3 + 1) {
        for (std::size_t end = begin + 1; end < kRecords; end += end - begin + end / 2) {
            ValueRange wanted;
            for (std::size_t r = begin; r < end; ++r) {
                wanted.Add(-2.0 * ValueOf(r));
            }
            const auto timeOf = [](std::size_t record) { return kBegin + static_cast<std::int64_t>(record) * kApart; };
            const CurveFigures figures = data.FiguresOf(1, timeOf(begin), timeOf(end));
            ASSERT_EQ(figures.count, end - begin);
            ASSERT_EQ(figures.minimum, wanted.low);
            ASSERT_EQ(figures.maximum, wanted.high);
        }
    }
}

TEST_F(GraphDataManyTest, WhatIsKeptIsLessThanATenthOfTheRecords)
{
    EXPECT_LT(data.Bytes(), kRecords * (24 + 16 + 8 + 2 * 16) / 10);
}

}  // namespace
}  // namespace zr::graph
