#include "siblings/graphsupport/GraphPointer.h"

#include "unit/graphsupport/GraphFixture.h"

#include <random>

namespace zr::graph {
namespace {

class GraphPointerTest : public GraphFixture {
protected:
    GraphPointerTest()
    {
        ShowVoltage();
        EXPECT_TRUE(model.TakeChanges().shown);
    }

    void Drag(Point from, Point to)
    {
        model.Press(from, false);
        model.Move({(from.x + to.x) / 2, to.y});
        model.Move(to);
        model.Release(to);
    }
    [[nodiscard]] double InViewMinutes() const
    {
        return static_cast<double>(model.InView().to - model.InView().from) / static_cast<double>(kMinuteLong);
    }
    [[nodiscard]] double FirstMinute() const
    {
        return static_cast<double>(model.InView().from - kBegin) / static_cast<double>(kMinuteLong);
    }
};

TEST_F(GraphPointerTest, ABandZoomsToItsStretch)
{
    model.SetMode(kZoomMode);
    Drag(PlaceOf(360), PlaceOf(720));
    EXPECT_NEAR(FirstMinute(), 360, 3);
    EXPECT_NEAR(InViewMinutes(), 360, 5);
    EXPECT_EQ(model.History().size(), 1u);
    EXPECT_TRUE(model.TakeChanges().shown);
}

TEST_F(GraphPointerTest, ABandToTheLeftDoesTheSame)
{
    model.SetMode(kZoomMode);
    Drag(PlaceOf(720), PlaceOf(360));
    EXPECT_NEAR(FirstMinute(), 360, 3);
    EXPECT_NEAR(InViewMinutes(), 360, 5);
}

TEST_F(GraphPointerTest, ABandBeyondTheEdgeEndsThere)
{
    model.SetMode(kZoomMode);
    Drag(PlaceOf(720), {10000, 50});
    EXPECT_NEAR(FirstMinute(), 720, 3);
    EXPECT_EQ(model.InView().to, model.Whole().to);
}

TEST_F(GraphPointerTest, TheBandIsSeenWhileItIsDrawn)
{
    model.SetMode(kZoomMode);
    model.Press(PlaceOf(360), false);
    model.Move(PlaceOf(720));
    EXPECT_TRUE(model.IsDragging());
    EXPECT_TRUE(model.TakeChanges().over);
    const auto bands = Items<SceneRect>(model.Scene().over, SceneRole::Band);
    ASSERT_EQ(bands.size(), 1u);
    EXPECT_NEAR(bands[0].rect.left, PlaceOf(360).x, 1);
    EXPECT_NEAR(bands[0].rect.right, PlaceOf(720).x, 2);
    model.Release(PlaceOf(720));
    EXPECT_TRUE(Items<SceneRect>(model.Scene().over, SceneRole::Band).empty());
}

TEST_F(GraphPointerTest, AClickIsNoBand)
{
    model.SetMode(kZoomMode);
    const Point at = PlaceOf(360);
    Drag(at, {at.x + 2, at.y});
    EXPECT_TRUE(model.History().empty());
}

TEST_F(GraphPointerTest, CancellingABandZoomsNothing)
{
    model.SetMode(kZoomMode);
    model.Press(PlaceOf(360), false);
    model.Move(PlaceOf(720));
    model.Do(GraphAction::Cancel);
    EXPECT_FALSE(model.IsDragging());
    model.Release(PlaceOf(720));
    EXPECT_TRUE(model.History().empty());
    EXPECT_TRUE(Items<SceneRect>(model.Scene().over, SceneRole::Band).empty());
}

TEST_F(GraphPointerTest, PanningMovesWhatIsInView)
{
    model.ZoomTo({kBegin + 300 * kMinuteLong, kBegin + 600 * kMinuteLong});
    model.SetMode(kPanMode);
    Drag(PlaceOf(500), PlaceOf(400));
    EXPECT_NEAR(FirstMinute(), 400, 2);
    EXPECT_NEAR(InViewMinutes(), 300, 0.01);
    EXPECT_EQ(model.History().size(), 1u);
}

TEST_F(GraphPointerTest, PanningStopsAtTheEnds)
{
    model.ZoomTo({kBegin + 30 * kMinuteLong, kBegin + 330 * kMinuteLong});
    model.SetMode(kPanMode);
    Drag(PlaceOf(100), PlaceOf(300));
    EXPECT_EQ(model.InView().from, model.Whole().from);
    EXPECT_NEAR(InViewMinutes(), 300, 0.01);
}

TEST_F(GraphPointerTest, CancellingAPanTakesItBack)
{
    const Zoom before{kBegin + 300 * kMinuteLong, kBegin + 600 * kMinuteLong};
    model.ZoomTo(before);
    model.SetMode(kPanMode);
    model.Press(PlaceOf(500), false);
    model.Move(PlaceOf(400));
    EXPECT_NE(model.InView().from, before.from);
    model.CancelDrag();
    EXPECT_EQ(model.InView().from, before.from);
}

TEST_F(GraphPointerTest, WithoutAZoomThereIsNothingToPan)
{
    model.SetMode(kPanMode);
    model.Press(PlaceOf(500), false);
    EXPECT_FALSE(model.IsDragging());
    EXPECT_EQ(model.Shape(), PointerShape::Arrow);
}

TEST_F(GraphPointerTest, TheWheelZoomsAboutThePointerInAnyMode)
{
    for (const int mode : {kTooltipMode, kZoomMode, kPanMode}) {
        model.UndoZoom();
        model.SetMode(mode);
        const Point at = PlaceOf(480);
        model.Wheel(at, 3.0);
        EXPECT_LT(InViewMinutes(), 1440 / 1.9);
        EXPECT_NEAR(PlaceOf(480).x, at.x, 1);
        model.Wheel(at, -3.0);
        EXPECT_NEAR(InViewMinutes(), 1440, 0.01);
    }
}

TEST_F(GraphPointerTest, TurnsOfTheWheelAreUndoneTogether)
{
    model.Wheel(PlaceOf(480), 1.0);
    model.Wheel(PlaceOf(480), 1.0);
    EXPECT_EQ(model.History().size(), 1u);
    model.UndoLastZoom();
    EXPECT_NEAR(InViewMinutes(), 1440, 0.01);
}

TEST_F(GraphPointerTest, TheWheelNeverShowsLessThanAMillisecond)
{
    for (int i = 0; i < 200; ++i) {
        model.Wheel(PlaceOf(480), 10.0);
    }
    EXPECT_EQ(model.InView().to - model.InView().from, 1000);
    EXPECT_FALSE(model.Scene().under.empty());
}

TEST_F(GraphPointerTest, TheWheelNeverShowsLessThanTwoPeriods)
{
    Show({Curve(kVoltage)}, 300);
    for (int i = 0; i < 50; ++i) {
        model.Wheel(PlaceOf(480), 10.0);
    }
    EXPECT_DOUBLE_EQ(InViewMinutes(), 10.0);
}

TEST_F(GraphPointerTest, AWheelOfNoNumberDoesNothing)
{
    model.Wheel(PlaceOf(480), kNothing);
    model.WheelSideways(kNothing);
    const GraphChanges changes = model.TakeChanges();
    EXPECT_FALSE(changes.under || changes.over || changes.shown);
}

TEST_F(GraphPointerTest, TheWheelSidewaysPans)
{
    model.ZoomTo({kBegin + 300 * kMinuteLong, kBegin + 600 * kMinuteLong});
    model.WheelSideways(2.0);
    EXPECT_NEAR(FirstMinute(), 360, 0.01);
}

TEST_F(GraphPointerTest, ADoubleClickShowsTheWholeWindow)
{
    model.ZoomTo({kBegin + 300 * kMinuteLong, kBegin + 600 * kMinuteLong});
    model.ZoomTo({kBegin + 310 * kMinuteLong, kBegin + 320 * kMinuteLong});
    model.DoubleClick(PlaceOf(315));
    EXPECT_NEAR(InViewMinutes(), 1440, 0.01);
    EXPECT_TRUE(model.History().empty());
}

TEST_F(GraphPointerTest, KeysPanZoomAndUndo)
{
    model.Do(GraphAction::ZoomIn);
    EXPECT_NEAR(InViewMinutes(), 720, 0.01);
    EXPECT_NEAR(FirstMinute(), 360, 0.01);
    model.Do(GraphAction::PanRight);
    EXPECT_NEAR(FirstMinute(), 432, 0.01);
    model.Do(GraphAction::PanLeft);
    EXPECT_NEAR(FirstMinute(), 360, 0.01);
    model.Do(GraphAction::PageRight);
    EXPECT_NEAR(FirstMinute(), 720, 0.01);
    model.Do(GraphAction::PageLeft);
    EXPECT_NEAR(FirstMinute(), 0, 0.01);
    model.Do(GraphAction::ZoomIn);
    EXPECT_EQ(model.History().size(), 2u);
    model.Do(GraphAction::UndoZoom);
    EXPECT_NEAR(InViewMinutes(), 720, 0.01);
    model.Do(GraphAction::Whole);
    EXPECT_NEAR(InViewMinutes(), 1440, 0.01);
    model.Do(GraphAction::ZoomIn);
    model.Do(GraphAction::Cancel);
    EXPECT_NEAR(InViewMinutes(), 1440, 0.01);
    model.Do(GraphAction::ZoomIn);
    model.Do(GraphAction::ZoomOut);
    EXPECT_NEAR(InViewMinutes(), 1440, 0.01);
}

TEST_F(GraphPointerTest, KeysZoomAboutTheCursor)
{
    model.Move(PlaceOf(144));
    model.Do(GraphAction::ZoomIn);
    EXPECT_NEAR(FirstMinute(), 72, 2);
}

TEST_F(GraphPointerTest, KeysSetTheMode)
{
    model.Do(GraphAction::ZoomMode);
    EXPECT_EQ(model.Mode(), kZoomMode);
    EXPECT_TRUE(model.TakeChanges().shown);
    model.Do(GraphAction::PanMode);
    EXPECT_EQ(model.Mode(), kPanMode);
    model.Do(GraphAction::TooltipMode);
    EXPECT_EQ(model.Mode(), kTooltipMode);
    model.SetMode(7);
    model.SetMode(-1);
    EXPECT_EQ(model.Mode(), kTooltipMode);
}

TEST_F(GraphPointerTest, KeysMoveTheCursorByAColumn)
{
    model.Do(GraphAction::CursorRight);
    ASSERT_TRUE(model.Cursor());
    const int start = PlaceOf(static_cast<double>(*model.Cursor() - kBegin) / kMinuteLong).x;
    EXPECT_NEAR(start, (Panel().left + Panel().right) / 2, 1);
    model.Do(GraphAction::CursorRight);
    model.Do(GraphAction::CursorRight);
    model.Do(GraphAction::CursorLeft);
    const double minute = static_cast<double>(*model.Cursor() - kBegin) / kMinuteLong;
    EXPECT_NEAR(PlaceOf(minute).x, start + 1, 1);
    for (int i = 0; i < 2000; ++i) {
        model.Do(GraphAction::CursorLeft);
    }
    EXPECT_EQ(model.Cursor(), model.InView().from);
}

TEST_F(GraphPointerTest, MarkersAreSetByKeyAndByShift)
{
    model.Move(PlaceOf(144));
    model.Do(GraphAction::SetMarker);
    ASSERT_TRUE(model.Marker(0));
    EXPECT_EQ(model.Marker(0), model.Cursor());
    model.Press(PlaceOf(288), true);
    ASSERT_TRUE(model.Marker(1));
    EXPECT_NEAR(static_cast<double>(*model.Marker(1) - kBegin) / kMinuteLong, 288, 2);
    EXPECT_FALSE(model.IsDragging());
    model.Do(GraphAction::RemoveMarkers);
    EXPECT_FALSE(model.Marker(0));
    EXPECT_FALSE(model.Marker(1));
}

TEST_F(GraphPointerTest, AMarkerIsDraggedInAnyMode)
{
    for (const int mode : {kTooltipMode, kZoomMode, kPanMode}) {
        model.RemoveMarkers();
        model.SetMode(mode);
        model.SetMarker(0, kBegin + 288 * kMinuteLong);
        model.Move(PlaceOf(288));
        EXPECT_EQ(model.Shape(), PointerShape::SizeMarker);
        Drag(PlaceOf(288), PlaceOf(720));
        EXPECT_NEAR(static_cast<double>(*model.Marker(0) - kBegin) / kMinuteLong, 720, 3);
        EXPECT_TRUE(model.History().empty());
    }
}

TEST_F(GraphPointerTest, CancellingAMarkersDragPutsItBack)
{
    model.SetMarker(0, kBegin + 288 * kMinuteLong);
    model.Press(PlaceOf(288), false);
    model.Move(PlaceOf(720));
    model.CancelDrag();
    EXPECT_EQ(model.Marker(0), kBegin + 288 * kMinuteLong);
}

TEST_F(GraphPointerTest, MarkersAreHeldToTheWindow)
{
    model.SetMarker(0, 0);
    model.SetMarker(1, kBegin * 2);
    EXPECT_EQ(model.Marker(0), model.Whole().from);
    EXPECT_EQ(model.Marker(1), model.Whole().to);
}

TEST_F(GraphPointerTest, TheCursorFollowsThePointerAndLeavesWithIt)
{
    model.Move(PlaceOf(144));
    ASSERT_TRUE(model.Cursor());
    EXPECT_NEAR(static_cast<double>(*model.Cursor() - kBegin) / kMinuteLong, 144, 2);
    model.Move({1, 1});
    EXPECT_FALSE(model.Cursor());
    model.Move(PlaceOf(144));
    model.Leave();
    EXPECT_FALSE(model.Cursor());
}

TEST_F(GraphPointerTest, TheShapeTellsTheMode)
{
    model.Move(PlaceOf(720));
    EXPECT_EQ(model.Shape(), PointerShape::Arrow);
    model.SetMode(kZoomMode);
    EXPECT_EQ(model.Shape(), PointerShape::Cross);
    model.SetMode(kPanMode);
    EXPECT_EQ(model.Shape(), PointerShape::Arrow);
    model.ZoomTo({kBegin + 300 * kMinuteLong, kBegin + 900 * kMinuteLong});
    EXPECT_EQ(model.Shape(), PointerShape::OpenHand);
    model.Press(PlaceOf(700), false);
    EXPECT_EQ(model.Shape(), PointerShape::ClosedHand);
    model.Release(PlaceOf(700));
    model.Leave();
    EXPECT_EQ(model.Shape(), PointerShape::Arrow);
}

TEST_F(GraphPointerTest, TheCurveWithinFivePixelsIsHit)
{
    const Point on = OnCurve(0, 100);
    EXPECT_EQ(model.CurveAt(on), 0);
    EXPECT_EQ(model.CurveAt({0, 0}), -1);
    EXPECT_EQ(model.CurveAt({Panel().right - 5, on.y}), -1) << "there is no sample so late";
    model.Move(on);
    EXPECT_TRUE(model.Scene().panels.at(0).isHighlighted);
    EXPECT_FALSE(Items<SceneRect>(model.Scene().over, SceneRole::Highlight).empty());
}

TEST_F(GraphPointerTest, OfTwoCurvesTheNearerIsHit)
{
    std::vector<double> low(600, 2300.0);
    std::vector<double> high(600, 9.0);
    Record(kState, low);
    Record(kCurrent, high);
    CurveInfo state = Curve(kState);
    CurveInfo current = Curve(kCurrent, 1);
    Show({state, current});
    EXPECT_EQ(model.CurveAt(OnCurve(0, 100)), 0);
    EXPECT_EQ(model.CurveAt(OnCurve(1, 100)), 1);
    Point beside = OnCurve(1, 100);
    beside.y += 4;
    EXPECT_EQ(model.CurveAt(beside), 1);
    beside.y += 8;
    EXPECT_EQ(model.CurveAt(beside), -1);
}

TEST_F(GraphPointerTest, OfTwoCurvesOfOneZoneTheNearerIsHit)
{
    Record(kCurrent, std::vector<double>(600, 9.0));
    Record(kState, std::vector<double>(600, 5.0));
    // Each lies on a scale of its own, in rows far apart.
    CurveInfo low = Curve(kState);
    low.minimum = 0.0;
    low.maximum = 20.0;
    CurveInfo high = Curve(kCurrent);
    high.minimum = 0.0;
    high.maximum = 10.0;
    Show({high, low});
    const Point above = OnCurve(0, 100);
    const Point below = OnCurve(1, 100);
    ASSERT_GT(below.y, above.y + 20);
    EXPECT_EQ(model.CurveAt(above), 0);
    EXPECT_EQ(model.CurveAt({above.x, above.y + 4}), 0);
    EXPECT_EQ(model.CurveAt({below.x, below.y - 4}), 1);
    EXPECT_EQ(model.CurveAt({below.x, (above.y + below.y) / 2}), -1);
}

TEST_F(GraphPointerTest, ALineInFrontOfBarsIsHitRatherThanThey)
{
    std::vector<double> counts;
    std::vector<double> values;
    for (int i = 0; i < 600; ++i) {
        counts.push_back(i * 100.0);
        values.push_back(5.0);
    }
    Record(kEnergy, counts);
    Record(kCurrent, values);
    CurveInfo line = Curve(kCurrent);
    line.minimum = 0.0;
    line.maximum = 10.0;
    Show({Curve(kEnergy), line}, 900);
    // Bars come first among the panels.
    const Point onLine = OnCurve(1, 100);
    EXPECT_EQ(model.CurveAt(onLine), 1);
    EXPECT_EQ(model.CurveAt({onLine.x, Panel().bottom - 10}), 0);
}

// Of a line with gaps, bars and steps: what is hit is what is drawn within five pixels.
TEST_F(GraphPointerTest, ACurveIsHitWhereItIsDrawn)
{
    std::mt19937 random(5);
    std::vector<double> values;
    std::vector<double> counts = {0.0};
    for (int i = 0; i < 600; ++i) {
        values.push_back(random() % 15 == 0 ? kNothing : static_cast<double>(random() % 100));
        counts.push_back(counts.back() + static_cast<double>(random() % 100));
    }
    Record(kCurrent, values);
    Record(kState, values);
    Record(kEnergy, counts);
    for (const Variable variable : {kCurrent, kState, kEnergy}) {
        Show({Curve(variable)}, variable == kEnergy ? 1800 : 0);
        const CurvePanel panel = model.Scene().panels.at(0);
        std::vector<RowSpan> spans(static_cast<std::size_t>(panel.rect.Width()));
        model.Spans(panel, spans);
        const double behind = variable == kEnergy ? 3.0 : 0.0;
        int hits = 0;
        for (int i = 0; i < 3000; ++i) {
            const Point at{panel.rect.left + static_cast<int>(random() % spans.size()),
                           panel.rect.top + static_cast<int>(random() % static_cast<unsigned>(panel.rect.Height()))};
            double distance = 1e9;
            for (std::size_t column = 0; column < spans.size(); ++column) {
                const double row = at.y - panel.rect.top;
                const double top = static_cast<double>(spans[column].top);
                const double bottom = static_cast<double>(spans[column].bottom);
                const double beside = panel.rect.left + static_cast<int>(column) - at.x;
                if (top <= bottom) {
                    distance = std::min(distance, std::hypot(beside, std::max({top - row, row - bottom, 0.0})));
                }
            }
            const bool isHit = model.CurveAt(at) == 0;
            hits += isHit ? 1 : 0;
            // Which times a column holds may differ by one when the columns are asked for alone.
            ASSERT_TRUE(isHit || distance + behind > 4.5) << variable << " " << at.x << " " << at.y;
            ASSERT_TRUE(!isHit || distance + behind < 7.0) << variable << " " << at.x << " " << at.y;
        }
        EXPECT_GT(hits, 100) << variable;
        EXPECT_LT(hits, 2900) << variable;
    }
}

TEST_F(GraphPointerTest, NewDataDuringADragEndItSafely)
{
    for (const int mode : {kTooltipMode, kZoomMode, kPanMode}) {
        model.UndoZoom();
        const Zoom view{kBegin + 300 * kMinuteLong, kBegin + 600 * kMinuteLong};
        model.ZoomTo(view);
        model.SetMode(mode);
        model.Press(PlaceOf(400), false);
        model.Move(PlaceOf(500));
        Show({Curve(kVoltage)});
        EXPECT_FALSE(model.IsDragging());
        model.Move(PlaceOf(520));
        model.Release(PlaceOf(530));
        EXPECT_EQ(model.InView().from, view.from) << mode;
        EXPECT_EQ(model.InView().to, view.to) << mode;
        EXPECT_EQ(model.History().size(), 1u);
    }
}

TEST_F(GraphPointerTest, AnotherModeEndsADrag)
{
    model.SetMode(kZoomMode);
    model.Press(PlaceOf(400), false);
    model.Move(PlaceOf(500));
    model.SetMode(kPanMode);
    model.Release(PlaceOf(600));
    EXPECT_TRUE(model.History().empty());
}

}  // namespace
}  // namespace zr::graph
