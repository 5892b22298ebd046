// What a scene shows over its curves: tooltip and markers.
#include "unit/graphsupport/GraphFixture.h"

#include <algorithm>

namespace zr::graph {
namespace {

using GraphOverlayTest = GraphFixture;

TEST_F(GraphOverlayTest, TheTooltipHasTimeAndValuesOfAllCurves)
{
    Record(kVoltage, {2300, 2310, 2320});
    Record(kCurrent, {1, kNothing, kNothing, kNothing, 2});
    Show({Curve(kVoltage), Curve(kCurrent, 1)});
    model.Move({Panel().left + 1, 100});
    const SceneLayer& over = model.Scene().over;
    EXPECT_EQ(Items<SceneRect>(over, SceneRole::BoxFrame).size(), 1u);
    const std::vector<std::string> texts = Texts(over);
    EXPECT_GE(std::count(texts.begin(), texts.end(), "Voltage"), 2);
    EXPECT_GE(std::count(texts.begin(), texts.end(), "Current"), 2);
    EXPECT_EQ(Items<SceneLine>(over, SceneRole::Cursor).size(), 2u);
    EXPECT_FALSE(Items<SceneRect>(over, SceneRole::Point).empty());
    // In other modes the legend does.
    model.SetMode(kZoomMode);
    EXPECT_TRUE(Items<SceneRect>(model.Scene().over, SceneRole::BoxFrame).empty());
}

TEST_F(GraphOverlayTest, TheTooltipHasTheTimeOfTheSampleOfTheCurvePointedAt)
{
    std::vector<double> volts;
    std::vector<double> amperes;
    for (int i = 0; i < 600; ++i) {
        volts.push_back(2300.0);
        amperes.push_back(i % 10 == 0 ? 5.0 : kNothing);
    }
    Record(kVoltage, volts);
    Record(kCurrent, amperes);
    Show({Curve(kVoltage), Curve(kCurrent, 1)});
    model.ZoomTo({kBegin + 290 * kMinuteLong, kBegin + 310 * kMinuteLong});
    const Rect below = model.Scene().panels.at(1).rect;
    const int x = PlaceOf(303.2).x;
    model.Move({x, OnCurve(0, x - below.left).y});
    EXPECT_TRUE(Holds(model.Scene().over, "2002-12-30 05:03:00"));
    EXPECT_FALSE(Holds(model.Scene().over, "2002-12-30 05:00:00"));
    model.Move({x, OnCurve(1, x - below.left).y});
    EXPECT_TRUE(Holds(model.Scene().over, "2002-12-30 05:00:00"));
}

TEST_F(GraphOverlayTest, TheTooltipStaysInThePicture)
{
    ShowVoltage();
    for (const Point at : {Point{Panel().left, Panel().top}, Point{Panel().right - 1, Panel().bottom - 1}}) {
        model.Move(at);
        const auto boxes = Items<SceneRect>(model.Scene().over, SceneRole::BoxFrame);
        ASSERT_EQ(boxes.size(), 1u);
        EXPECT_TRUE(boxes[0].rect.left >= 0 && boxes[0].rect.right <= 800);
        EXPECT_TRUE(boxes[0].rect.top >= 0 && boxes[0].rect.bottom <= 400);
        EXPECT_FALSE(boxes[0].rect.Holds(at));
    }
}

TEST_F(GraphOverlayTest, TwoMarkersHaveATable)
{
    ShowVoltage();
    const int height = Panel().Height();
    model.SetMarker(0, kBegin + 100 * kMinuteLong);
    EXPECT_EQ(Panel().Height(), height);
    model.SetMarker(1, kBegin + 160 * kMinuteLong);
    EXPECT_LT(Panel().Height(), height);
    const SceneLayer& over = model.Scene().over;
    EXPECT_TRUE(Holds(over, "01:00:00"));
    EXPECT_TRUE(Holds(over, "Mean"));
    EXPECT_TRUE(Holds(over, "2002-12-30 01:40:00"));
    EXPECT_EQ(Items<SceneLine>(over, SceneRole::Marker).size(), 2u);
    EXPECT_TRUE(Holds(over, "1"));
    EXPECT_TRUE(Holds(over, "2"));
    EXPECT_FALSE(Holds(over, "Sum")) << "there is none of what isn't consumption";
    model.RemoveMarkers();
    EXPECT_EQ(Panel().Height(), height);
}

TEST_F(GraphOverlayTest, AMarkerOutOfViewIsNotDrawn)
{
    ShowVoltage();
    model.SetMarker(0, kBegin);
    model.ZoomTo({kBegin + 100 * kMinuteLong, kBegin + 200 * kMinuteLong});
    EXPECT_TRUE(Items<SceneLine>(model.Scene().over, SceneRole::Marker).empty());
    EXPECT_TRUE(model.Marker(0));
}

}  // namespace
}  // namespace zr::graph
