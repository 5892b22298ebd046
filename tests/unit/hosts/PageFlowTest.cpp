#include "hosts/kestrix/PageFlow.h"

#include <gtest/gtest.h>

namespace zr::desktop {
namespace {

TEST(PageFlowTest, TakesAsManyColumnsAsTheWidthHasRoomFor)
{
    EXPECT_EQ(PageFlow::Of(700, 224, 20, 4).columns, 2);
    EXPECT_EQ(PageFlow::Of(712, 224, 20, 4).columns, 3);
    EXPECT_EQ(PageFlow::Of(5000, 224, 20, 4).columns, 4);
    EXPECT_EQ(PageFlow::Of(712, 224, 20, 4).cellWidth, 224);
}

TEST(PageFlowTest, HasOneColumnWhereThereIsRoomForNone)
{
    EXPECT_EQ(PageFlow::Of(100, 224, 20, 4).columns, 1);
    EXPECT_EQ(PageFlow::Of(0, 224, 20, 4).columns, 1);
    EXPECT_EQ(PageFlow::Of(0, 224, 20, 4).cellWidth, 0);
    EXPECT_EQ(PageFlow::Of(500, 224, 20, 0).columns, 1);
}

TEST(PageFlowTest, FillsRowsAcrossAndColumnsDown)
{
    const PageFlow flow = PageFlow::Of(712, 224, 20, 4);
    EXPECT_EQ(flow.Rows(7), 3);
    EXPECT_EQ(flow.ColumnAcross(4), 1);
    EXPECT_EQ(flow.RowAcross(4), 1);
    EXPECT_EQ(flow.ColumnDown(4, 7), 1);
    EXPECT_EQ(flow.RowDown(4, 7), 1);
    EXPECT_EQ(flow.X(2), 488);
    EXPECT_EQ(flow.Rows(0), 0);
    EXPECT_EQ(flow.ColumnDown(0, 0), 0);
}

}  // namespace
}  // namespace zr::desktop
