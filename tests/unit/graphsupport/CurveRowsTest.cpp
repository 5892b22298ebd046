#include "siblings/graphsupport/CurveRows.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <vector>

namespace zr::graph {
namespace {

constexpr ValueMap kMap{0.0, 10.0};
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

std::vector<RowSpan> Rows(const std::vector<ValueRange>& ranges, const ValueMap& map = kMap)
{
    std::vector<RowSpan> spans(ranges.size());
    RowsOf(ranges, map, 100, 1, spans);
    return spans;
}

TEST(CurveRows, TheHighLimitIsTheTopEdge)
{
    EXPECT_DOUBLE_EQ(RowOf(10.0, kMap, 100), 0.0);
    EXPECT_DOUBLE_EQ(RowOf(0.0, kMap, 100), 100.0);
    EXPECT_DOUBLE_EQ(RowOf(7.5, kMap, 100), 25.0);
    EXPECT_TRUE(std::isnan(RowOf(kNan, kMap, 100)));
}

TEST(CurveRows, RangesBecomeRows)
{
    const std::vector<RowSpan> spans = Rows({{2.0, 4.0}, {}, {5.0, 5.0}});
    EXPECT_FLOAT_EQ(spans[0].top, 60.0F);
    EXPECT_FLOAT_EQ(spans[0].bottom, 80.0F);
    EXPECT_GT(spans[1].top, spans[1].bottom);
    EXPECT_FLOAT_EQ(spans[2].top, 50.0F);
    EXPECT_FLOAT_EQ(spans[2].bottom, 50.0F);
}

TEST(CurveRows, HugeValuesAreCutNearThePanel)
{
    const std::vector<RowSpan> spans = Rows({{-1e300, 1e300}, {1e300, 1e300}, {-1e300, -1e300}});
    EXPECT_GE(spans[0].top, -10.0F);
    EXPECT_LT(spans[0].top, 0.0F);
    EXPECT_LE(spans[0].bottom, 110.0F);
    EXPECT_GT(spans[0].bottom, 100.0F);
    // Wholly outside.
    EXPECT_GT(spans[1].top, spans[1].bottom);
    EXPECT_GT(spans[2].top, spans[2].bottom);
}

TEST(CurveRows, AScaleOfHugeValuesIsNoTrouble)
{
    const std::vector<RowSpan> spans = Rows({{-1e300, 1e300}}, {-2e300, 2e300});
    EXPECT_FLOAT_EQ(spans[0].top, 25.0F);
    EXPECT_FLOAT_EQ(spans[0].bottom, 75.0F);
}

class CurvePathTest : public testing::Test {
protected:
    CurvePathTest()
    {
        panel.rect = {10, 20, 110, 120};
        panel.map = kMap;
    }

    std::vector<PathPoint> Path(const std::vector<CurvePoint>& points)
    {
        std::vector<PathPoint> path;
        PathOf(points, 0, 1000, panel, path);
        return path;
    }

    CurvePanel panel;
};

TEST_F(CurvePathTest, PointsStandAtTheirPlaces)
{
    const std::vector<PathPoint> path = Path({{0, 0.0}, {500, 10.0}, {1000, 5.0}});
    ASSERT_EQ(path.size(), 3u);
    EXPECT_DOUBLE_EQ(path[0].x, 10.0);
    EXPECT_DOUBLE_EQ(path[0].y, 120.0);
    EXPECT_DOUBLE_EQ(path[1].x, 60.0);
    EXPECT_DOUBLE_EQ(path[1].y, 20.0);
    EXPECT_DOUBLE_EQ(path[2].x, 110.0);
    EXPECT_DOUBLE_EQ(path[2].y, 70.0);
}

TEST_F(CurvePathTest, BreaksStay)
{
    const std::vector<PathPoint> path = Path({{0, 1.0}, {100, 2.0}, {200, kNan}, {300, 3.0}});
    ASSERT_EQ(path.size(), 4u);
    EXPECT_TRUE(std::isnan(path[2].y));
    EXPECT_DOUBLE_EQ(path[3].x, 40.0);
}

TEST_F(CurvePathTest, LinesAreCutWhereTheyLeaveThePanel)
{
    // From the middle straight up to 1e300 and back to the middle.
    const std::vector<PathPoint> path = Path({{0, 5.0}, {500, 1e300}, {1000, 5.0}});
    ASSERT_EQ(path.size(), 5u);
    EXPECT_NEAR(path[1].x, 10.0, 0.01);
    EXPECT_LT(path[1].y, 20.0);
    EXPECT_GT(path[1].y, 0.0);
    EXPECT_TRUE(std::isnan(path[2].y));
    EXPECT_NEAR(path[3].x, 110.0, 0.01);
    EXPECT_DOUBLE_EQ(path[4].y, 70.0);
}

TEST_F(CurvePathTest, ALineThroughThePanelKeepsItsSlope)
{
    const std::vector<PathPoint> path = Path({{0, -10.0}, {1000, 20.0}});
    ASSERT_EQ(path.size(), 2u);
    EXPECT_NEAR((path[1].y - path[0].y) / (path[1].x - path[0].x), -3.0, 1e-9);
    EXPECT_GT(path[0].x, 40.0);
    EXPECT_LT(path[1].x, 80.0);
}

TEST_F(CurvePathTest, WhatIsWhollyOutsideIsNotThere)
{
    EXPECT_TRUE(Path({{0, 50.0}, {1000, 60.0}}).empty());
    EXPECT_TRUE(Path({}).empty());
}

}  // namespace
}  // namespace zr::graph
