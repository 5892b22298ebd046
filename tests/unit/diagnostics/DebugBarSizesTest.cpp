#include "diagnostics/DebugBarSizes.h"

#include "platform/BarStyles.h"

#include <gtest/gtest.h>

namespace {

using namespace zr;
using namespace zr::ui;

constexpr BarSize kHorz{300, 90};
constexpr BarSize kFloat{320, 120};
constexpr BarSize kClient{640, 75};
constexpr int kEdge = 2;

struct LayoutRow {
    const char* name;
    unsigned mode;
    int length;
    BarSize given;
    BarSize horzAfter = kHorz;
    BarSize floatAfter = kFloat;
};

class DebugBarSizesTest : public ::testing::TestWithParam<LayoutRow> {};

TEST_P(DebugBarSizesTest, CalcDynamicLayoutAnswersEachMode)
{
    const LayoutRow& row = GetParam();
    DebugBarSizes sizes{kHorz, kFloat, true};
    EXPECT_EQ(sizes.CalcDynamicLayout(row.length, row.mode, kClient), row.given);
    EXPECT_EQ(sizes.sizeHorz, row.horzAfter);
    EXPECT_EQ(sizes.sizeFloat, row.floatAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, DebugBarSizesTest,
    ::testing::Values(
        LayoutRow{"DockedLyingTakesTheClientSize", LM_HORZ | LM_HORZDOCK, -1, kClient, kClient},
        LayoutRow{"DockedStandingTakesTheClientSize", LM_VERTDOCK, -1, kClient, kClient},
        LayoutRow{"DockedWithoutHorzTakesTheClientSize", LM_HORZDOCK, -1, kClient, kClient},
        LayoutRow{"StretchedLyingIsAsLongAsTheSide", LM_STRETCH | LM_HORZ | LM_HORZDOCK, -1, {32767, 90}},
        LayoutRow{"StretchedStandingIsAsLongAsTheSide", LM_STRETCH | LM_VERTDOCK, -1, {300, 32767}},
        LayoutRow{"StretchedGoesByTheHorzBitAndNotByTheDock", LM_STRETCH | LM_HORZDOCK, -1, {300, 32767}},
        LayoutRow{"DockComesBeforeTheSizeLastUsed", LM_STRETCH | LM_HORZ | LM_HORZDOCK | LM_MRUWIDTH, -1, {32767, 90}},
        LayoutRow{"DockComesBeforeALength", LM_STRETCH | LM_VERTDOCK | LM_LENGTHY, 50, {300, 32767}},
        LayoutRow{"SizeLastUsedIsTheFloatingOne", LM_HORZ | LM_MRUWIDTH, -1, kFloat},
        LayoutRow{"SizeLastUsedComesBeforeALength", LM_MRUWIDTH | LM_LENGTHY, 50, kFloat},
        LayoutRow{"StretchWithoutADockIsALengthLikeAnyOther", LM_STRETCH, 50, {50, 120}, {50, 90}, {50, 120}},
        LayoutRow{"ALengthThatIsAHeightGoesToBothHeights", LM_HORZ | LM_LENGTHY, 50, {320, 50}, {300, 50}, {320, 50}},
        LayoutRow{"ALengthThatIsAWidthGoesToBothWidths", LM_HORZ, 50, {50, 120}, {50, 90}, {50, 120}},
        LayoutRow{"ALengthWithoutAnyBitIsAWidth", 0, 50, {50, 120}, {50, 90}, {50, 120}}),
    [](const auto& each) { return each.param.name; });

TEST(DebugBarSizes, LeavesTheDockedSizeWhereItShallNotFollow)
{
    DebugBarSizes sizes{kHorz, kFloat, false};
    EXPECT_EQ(sizes.CalcDynamicLayout(50, LM_LENGTHY, kClient), (BarSize{320, 50}));
    EXPECT_EQ(sizes.CalcDynamicLayout(60, LM_HORZ, kClient), (BarSize{60, 50}));
    EXPECT_EQ(sizes.sizeHorz, kHorz);
    EXPECT_EQ(sizes.sizeFloat, (BarSize{60, 50}));
}

TEST(DebugBarSizes, GrowsDockedAndFloatingByTheSame)
{
    DebugBarSizes sizes{kHorz, kFloat, true};
    sizes.Grow(-25);
    EXPECT_EQ(sizes.sizeHorz, (BarSize{300, 65}));
    EXPECT_EQ(sizes.sizeFloat, (BarSize{320, 95}));
}

TEST(DebugBarHotZone, AtTheTopIsTheBottomEdgeAndLowerThanAtTheBottom)
{
    const HotZone top = HotZoneOf(CBRS_ALIGN_TOP, 100, kEdge);
    EXPECT_FALSE(top.Holds(94)) << "not greater than 100 - 3 * 2";
    EXPECT_TRUE(top.Holds(95));
    EXPECT_TRUE(top.Holds(99));
    EXPECT_FALSE(top.Holds(0));
    const HotZone bottom = HotZoneOf(CBRS_ALIGN_BOTTOM, 100, kEdge);
    EXPECT_TRUE(bottom.Holds(0));
    EXPECT_TRUE(bottom.Holds(3));
    EXPECT_FALSE(bottom.Holds(4)) << "not below 2 * 2";
    EXPECT_FALSE(bottom.Holds(99));
}

TEST(DebugBarHotZone, IsNotThereLeftRightOrFloating)
{
    for (const unsigned alignment : {CBRS_ALIGN_LEFT, CBRS_ALIGN_RIGHT, 0u, CBRS_ALIGN_ANY}) {
        EXPECT_EQ(HotZoneOf(alignment, 100, kEdge).rows, 0) << alignment;
    }
}

TEST(DebugBarHotZone, StaysInABarThatIsLowerThanTheZone)
{
    for (const unsigned alignment : {CBRS_ALIGN_TOP, CBRS_ALIGN_BOTTOM}) {
        for (const int height : {0, 1, 3}) {
            const HotZone zone = HotZoneOf(alignment, height, kEdge);
            EXPECT_EQ(zone.first, 0);
            EXPECT_EQ(zone.rows, height);
        }
    }
}

// A bar of 100 in a frame of 500; no less than 30.
constexpr DragLimits kLimits{100, 30, 500};

struct Drag : EdgeDrag {
    Drag(unsigned side, int y)
    {
        Hover(side, {10, y}, kLimits.barHeight, kEdge);
        Begin({10, y});
    }
};

TEST(DebugBarEdgeDrag, IsArmedInTheZoneAndIdleOutsideIt)
{
    EdgeDrag drag;
    EXPECT_EQ(drag.DockSide(), 0u);
    drag.Hover(CBRS_ALIGN_TOP, {10, 98}, 100, kEdge);
    EXPECT_EQ(drag.DockSide(), CBRS_ALIGN_TOP);
    drag.Hover(CBRS_ALIGN_TOP, {10, 50}, 100, kEdge);
    EXPECT_EQ(drag.DockSide(), 0u);
    drag.Hover(CBRS_ALIGN_BOTTOM, {10, 1}, 100, kEdge);
    EXPECT_EQ(drag.DockSide(), CBRS_ALIGN_BOTTOM);
    drag.Hover(CBRS_ALIGN_LEFT, {10, 1}, 100, kEdge);
    EXPECT_EQ(drag.DockSide(), 0u);
    EXPECT_FALSE(drag.IsDragging());
}

TEST(DebugBarEdgeDrag, GrowsDownwardsAtTheTopAndUpwardsAtTheBottom)
{
    Drag top(CBRS_ALIGN_TOP, 98);
    EXPECT_EQ(top.End({10, 128}, kLimits), 30);
    Drag bottom(CBRS_ALIGN_BOTTOM, 1);
    EXPECT_EQ(bottom.End({10, -29}, kLimits), 30);
    EXPECT_FALSE(bottom.IsDragging());
    EXPECT_EQ(bottom.DockSide(), 0u);
}

TEST(DebugBarEdgeDrag, RestrictsOnlyTheHeightOfAPoint)
{
    Drag drag(CBRS_ALIGN_TOP, 98);
    EXPECT_EQ(drag.RestrictMovingArea({-700, 120}, kLimits), (BarPoint{-700, 120}));
}

TEST(DebugBarEdgeDrag, RestrictsTheBarToTheLeastHeightAndToHalfOfTheFrame)
{
    Drag top(CBRS_ALIGN_TOP, 98);
    EXPECT_EQ(top.RestrictMovingArea({0, -1000}, kLimits).y, 98 - 70);
    EXPECT_EQ(top.RestrictMovingArea({0, 1000}, kLimits).y, 98 + 150);
    EXPECT_EQ(top.End({0, 1000}, kLimits), 150);
    Drag bottom(CBRS_ALIGN_BOTTOM, 1);
    EXPECT_EQ(bottom.RestrictMovingArea({0, 1000}, kLimits).y, 1 + 70);
    EXPECT_EQ(bottom.RestrictMovingArea({0, -1000}, kLimits).y, 1 - 150);
    EXPECT_EQ(bottom.End({0, 1000}, kLimits), -70);
}

TEST(DebugBarEdgeDrag, LeavesTheFrameTheSmallerHalfOfAnOddHeight)
{
    Drag drag(CBRS_ALIGN_TOP, 98);
    EXPECT_EQ(drag.End({0, 1000}, {100, 30, 501}), 151) << "501 - 251 is 501 / 2";
}

TEST(DebugBarEdgeDrag, TakesHalfOfAFrameThatIsTooLowForTheLeastHeight)
{
    Drag drag(CBRS_ALIGN_TOP, 98);
    EXPECT_EQ(drag.End({0, -1000}, {100, 30, 40}), 20 - 100);
}

TEST(DebugBarEdgeDrag, FollowsTheMouseAsFarAsTheLimits)
{
    Drag drag(CBRS_ALIGN_TOP, 98);
    EXPECT_EQ(drag.Current(), (BarPoint{10, 98}));
    drag.Follow({12, 110}, kLimits);
    EXPECT_EQ(drag.Current(), (BarPoint{12, 110}));
    drag.Follow({12, 900}, kLimits);
    EXPECT_EQ(drag.Current(), (BarPoint{12, 248}));
}

TEST(DebugBarEdgeDrag, StaysArmedWhenTheCaptureIsLost)
{
    Drag drag(CBRS_ALIGN_TOP, 98);
    drag.Lose();
    EXPECT_FALSE(drag.IsDragging());
    EXPECT_EQ(drag.DockSide(), CBRS_ALIGN_TOP);
}

TEST(DebugBarColumn, IsNarrowerByTheScrollBarWhenTheLinesExceedAPage)
{
    EXPECT_EQ(WarningColumnWidth(300, 5, 5, 1, 14), 298);
    EXPECT_EQ(WarningColumnWidth(300, 6, 5, 1, 14), 284);
    EXPECT_EQ(WarningColumnWidth(1, 6, 5, 1, 14), 0);
}

TEST(DebugBarCloseButton, IsTwoThirdsOfAStandardControlLessOne)
{
    EXPECT_EQ(CloseButtonCell(14), 8);
    EXPECT_EQ(CloseButtonCell(24), 15);
}

}  // namespace
