// The legend of a scene, as the model lays it out.
#include "unit/graphsupport/GraphFixture.h"

#include <algorithm>

namespace zr::graph {
namespace {

using GraphLegendTest = GraphFixture;

TEST_F(GraphLegendTest, TheLegendHasTheValueAtTheCursorElseTheLast)
{
    Record(kVoltage, {2300, 2310, 2320});
    Show({Curve(kVoltage)});
    EXPECT_TRUE(Holds(model.Scene().over, "Voltage"));
    EXPECT_TRUE(Holds(model.Scene().over, "2002-12-30 00:02:00"));
    EXPECT_TRUE(Holds(model.Scene().over, "232.0 V"));
    model.SetMode(kZoomMode);
    model.Move({Panel().left, 200});
    EXPECT_TRUE(Holds(model.Scene().over, "230.0 V"));
    EXPECT_TRUE(Holds(model.Scene().over, "2002-12-30 00:00:00"));
    // The time is that of the sample, as in the tooltip.
    model.ZoomTo({kBegin, kBegin + 2 * kMinuteLong});
    model.Move(PlaceOf(0.9));
    EXPECT_TRUE(Holds(model.Scene().over, "231.0 V"));
    EXPECT_TRUE(Holds(model.Scene().over, "2002-12-30 00:01:00"));
    model.UndoZoom();
    model.Move({Panel().right - 1, 200});
    EXPECT_TRUE(Holds(model.Scene().over, "-"));
}

TEST_F(GraphLegendTest, TheLegendDoesNotMoveWithItsValues)
{
    Record(kVoltage, {9, 23100, 2320, 10, 23000, 5});
    Record(kCurrent, {1, 2});
    Show({Curve(kVoltage), Curve(kCurrent)});
    const auto places = [&] {
        std::vector<int> lefts;
        for (const SceneRect& swatch : Items<SceneRect>(model.Scene().over, SceneRole::Swatch)) {
            lefts.push_back(swatch.rect.left);
        }
        return lefts;
    };
    model.SetMode(kZoomMode);
    const std::vector<int> before = places();
    for (int x = Panel().left; x < Panel().right; x += 7) {
        model.Move({x, 200});
        EXPECT_EQ(places(), before);
    }
}

TEST_F(GraphLegendTest, TheLegendStripHasItsGeometry)
{
    Record(kVoltage, {2300, 2310});
    Record(kCurrent, {1, 2});
    Show({Curve(kVoltage), Curve(kCurrent)});
    const auto swatches = Items<SceneRect>(model.Scene().over, SceneRole::Swatch);
    ASSERT_EQ(swatches.size(), 2u);
    EXPECT_EQ(swatches[0].rect.Width(), 10);
    EXPECT_EQ(swatches[0].rect.Height(), 10);
    for (const SceneItem& item : model.Scene().over) {
        const auto* text = std::get_if<SceneText>(&item);
        if (text != nullptr && text->text == u"2002-12-30 00:01:00") {
            EXPECT_EQ(text->rect.left, 5);
            EXPECT_EQ(text->rect.top, 2);
        }
        if (text != nullptr && text->text == u"Voltage") {
            EXPECT_EQ(text->rect.left, swatches[0].rect.right + 3);
        }
    }
}

// None is cut by what tells of the others.
TEST_F(GraphLegendTest, TheLegendTellsOfCurvesWithoutRoomBesideThoseThatHaveIt)
{
    Record(kVoltage, {2300, 2310});
    for (int width = 220; width < 900; width += 7) {
        SetSize(width, 110);
        Show(std::vector<CurveInfo>(12, Curve(kVoltage)));
        const auto texts = Items<SceneText>(model.Scene().over, SceneRole::DimText);
        ASSERT_EQ(texts.size(), 1u) << width;
        const auto swatches = Items<SceneRect>(model.Scene().over, SceneRole::Swatch);
        EXPECT_EQ(Utf16ToUtf8(texts[0].text), std::to_string(12 - swatches.size()) + " more") << width;
        for (const SceneText& text : Items<SceneText>(model.Scene().over, SceneRole::Text)) {
            EXPECT_LE(text.rect.right, texts[0].rect.left) << width;
        }
    }
}

TEST_F(GraphLegendTest, WithoutColoursTheLegendShowsTheDashes)
{
    Record(kVoltage, {2300, 2310});
    Show({Curve(kVoltage), Curve(kVoltage), Curve(kVoltage)});
    const GraphScene paper = model.SceneFor({800, 200, 1.0, &extents, true, true});
    EXPECT_TRUE(Items<SceneRect>(paper.over, SceneRole::Swatch).empty());
    const std::vector<std::string> texts = Texts(paper.over);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Voltage"), 3);
    std::vector<int> lengths;
    for (const SceneLine& line : Items<SceneLine>(paper.over, SceneRole::Text)) {
        lengths.push_back(line.to.x - line.from.x + 1);
    }
    ASSERT_EQ(lengths.size(), 1u + 3u + 9u);
    EXPECT_EQ(lengths.front(), 26);
    EXPECT_EQ(lengths[1], 6);
    EXPECT_EQ(lengths.back(), 1);
}

TEST_F(GraphLegendTest, OnPaperTheLegendHasUnitsAlone)
{
    ShowVoltage();
    const GraphScene paper = model.SceneFor({800, 400, 1.0, &extents, true, false});
    EXPECT_EQ(Texts(paper.over), (std::vector<std::string>{"Voltage", "V"}));
}

}  // namespace
}  // namespace zr::graph
