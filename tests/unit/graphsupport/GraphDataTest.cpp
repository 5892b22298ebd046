#include "siblings/graphsupport/GraphData.h"

#include "CurveGroup.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace zr::graph {
namespace {

using namespace test;

constexpr std::int64_t kBegin = kNewYear;

TEST(GraphDataTest, NothingIsThereBeforeBindAndAfterClear)
{
    GraphData data;
    EXPECT_EQ(data.Records(), 0u);
    EXPECT_EQ(data.Curves(), 0u);
    std::vector<ValueRange> columns(3, ValueRange{1.0, 2.0});
    data.Reduce(0, kBegin, kBegin + kDayLong, columns);
    EXPECT_TRUE(columns[0].IsEmpty());
    CurveGroup curves({{kBegin, {1.0}}, {kBegin + kMinute, {2.0}}}, 1);
    data.Bind(curves.Group(), {{0, CurveShape::Line, 1.0, false}});
    EXPECT_EQ(data.Records(), 2u);
    EXPECT_EQ(data.Records(kBegin, kBegin + kMinute), 1u);
    data.Clear();
    EXPECT_EQ(data.Records(), 0u);
    EXPECT_EQ(data.Bytes(), 0u);
    EXPECT_FALSE(data.ValueAt(0, kBegin).has_value());
    EXPECT_FALSE(data.SampleAt(0, kBegin).has_value());
    EXPECT_EQ(data.FiguresOf(0, kBegin, kBegin + kDayLong).count, 0u);
}

}  // namespace
}  // namespace zr::graph
