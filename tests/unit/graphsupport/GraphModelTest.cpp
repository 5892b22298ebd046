#include "siblings/graphsupport/GraphModel.h"

#include "unit/graphsupport/GraphFixture.h"

#include <array>
#include <random>

namespace zr::graph {
namespace {

class GraphModelTest : public GraphFixture {
protected:
    // What must hold for every scene.
    void ExpectSound(const GraphScene& scene) const
    {
        const auto isNear = [&](const Rect& rect) {
            return rect.left >= -20 && rect.top >= -20 && rect.right <= scene.width + 2000 &&
                   rect.bottom <= scene.height + 2000;
        };
        for (const SceneLayer* layer : {&scene.under, &scene.over}) {
            for (const SceneItem& item : *layer) {
                if (const auto* text = std::get_if<SceneText>(&item)) {
                    ASSERT_TRUE(isNear(text->rect)) << Utf16ToUtf8(text->text);
                    ASSERT_LT(text->text.Length(), 200u);
                    ASSERT_LT(text->curve, static_cast<int>(model.Curves()));
                } else if (const auto* rect = std::get_if<SceneRect>(&item)) {
                    ASSERT_TRUE(isNear(rect->rect));
                    ASSERT_LT(rect->curve, static_cast<int>(model.Curves()));
                }
            }
        }
        for (const CurvePanel& panel : scene.panels) {
            ASSERT_FALSE(panel.rect.IsEmpty());
            ASSERT_TRUE(panel.rect.left >= 0 && panel.rect.top >= 0 && panel.rect.right <= scene.width &&
                        panel.rect.bottom <= scene.height);
            ASSERT_LT(panel.map.low, panel.map.high);
            std::vector<RowSpan> spans(static_cast<std::size_t>(panel.rect.Width()));
            model.Spans(panel, spans);
            for (const RowSpan& span : spans) {
                ASSERT_TRUE(std::isfinite(span.top) && std::isfinite(span.bottom));
                const float margin = 2.0F * static_cast<float>(panel.pen.lopnWidth) + 3.0F;
                ASSERT_TRUE(span.top > span.bottom ||
                            (span.top >= -margin && span.bottom <= static_cast<float>(panel.rect.Height()) + margin));
            }
            std::vector<PathPoint> path;
            model.Path(panel, path);
            for (const PathPoint& point : path) {
                ASSERT_TRUE(std::isfinite(point.x));
                ASSERT_FALSE(std::isinf(point.y));
            }
        }
    }
    void ExpectSound() { ExpectSound(model.Scene()); }
};

TEST_F(GraphModelTest, WithoutCurvesItSaysSo)
{
    Show({});
    EXPECT_TRUE(Holds(model.Scene().under, "No curve is chosen."));
    EXPECT_TRUE(model.Scene().panels.empty());
    EXPECT_TRUE(model.Status().text.IsEmpty());
}

TEST_F(GraphModelTest, BeforeAnythingItSaysSoToo)
{
    EXPECT_TRUE(Holds(model.Scene().under, "No curve is chosen."));
    model.Move({400, 200});
    model.Press({400, 200}, true);
    model.Wheel({400, 200}, 1.0);
    for (int action = 0; action <= static_cast<int>(GraphAction::PanMode); ++action) {
        model.Do(static_cast<GraphAction>(action));
    }
    EXPECT_FALSE(model.Cursor());
    EXPECT_FALSE(model.Marker(0));
}

TEST_F(GraphModelTest, WithoutRecordsItSaysSo)
{
    Show({Curve(kVoltage)});
    EXPECT_TRUE(Holds(model.Scene().under, "There are no records in this window of time."));
    EXPECT_TRUE(Holds(model.Scene().over, "Voltage"));
    EXPECT_EQ(model.Status().records, 0u);
    EXPECT_DOUBLE_EQ(model.Status().recordsPerColumn, 0.0);
    EXPECT_EQ(Utf16ToUtf8(model.Status().text), "0 records in view");
}

TEST_F(GraphModelTest, OneSampleIsOneDot)
{
    Record(kVoltage, {2300});
    Show({Curve(kVoltage)});
    ExpectSound();
    EXPECT_EQ(Utf16ToUtf8(model.Status().text), "1 record in view");
    std::vector<RowSpan> spans(static_cast<std::size_t>(Panel().Width()));
    model.Spans(model.Scene().panels[0], spans);
    EXPECT_LE(spans[0].top, spans[0].bottom);
    EXPECT_GT(spans[1].top, spans[1].bottom);
}

TEST_F(GraphModelTest, EqualValuesLieInTheMiddle)
{
    Record(kVoltage, std::vector<double>(600, 2300.0));
    Show({Curve(kVoltage)});
    ExpectSound();
    EXPECT_NEAR(OnCurve(0, 50).y, (Panel().top + Panel().bottom) / 2, Panel().Height() / 5);
}

TEST_F(GraphModelTest, TheScaleHasLabelsUnitAndGrid)
{
    ShowVoltage();
    const GraphScene& scene = model.Scene();
    EXPECT_TRUE(Holds(scene.under, "V"));
    EXPECT_TRUE(Holds(scene.under, "231.0"));
    EXPECT_TRUE(Holds(scene.under, "234.0"));
    EXPECT_TRUE(Holds(scene.under, "04:00"));
    EXPECT_TRUE(Holds(scene.under, "2002-12-30"));
    EXPECT_GT(Items<SceneLine>(scene.under, SceneRole::Grid).size(), 8u);
    EXPECT_GT(Items<SceneLine>(scene.under, SceneRole::Axis).size(), 8u);
}

TEST_F(GraphModelTest, WithoutALineForUnitsTheUppermostLabelHasIts)
{
    SetSize(800, 110);
    ShowVoltage();
    std::vector<std::string> labels = Texts(model.Scene().under);
    std::erase_if(labels, [](const std::string& text) { return text.find(" V") == std::string::npos; });
    EXPECT_EQ(labels, std::vector<std::string>{"234 V"});
    SetSize(800, 400);
    EXPECT_FALSE(Holds(model.Scene().under, "234.0 V"));
}

TEST_F(GraphModelTest, TheAxisOfASingleCurveHasItsColour)
{
    Record(kVoltage, {2300, 2310});
    Record(kCurrent, {1, 2});
    Show({Curve(kVoltage), Curve(kVoltage), Curve(kCurrent)});
    std::vector<int> colours;
    for (const SceneLine& line : Items<SceneLine>(model.Scene().under, SceneRole::Axis)) {
        if (line.from.x == line.to.x && std::abs(line.to.y - line.from.y) > 100) {
            colours.push_back(line.curve);
        }
    }
    EXPECT_EQ(colours, (std::vector<int>{-1, 2}));
}

TEST_F(GraphModelTest, RunsStandSideBySideAndZonesOneBelowTheOther)
{
    Record(kVoltage, {2300, 2310});
    Record(kCurrent, {1, 2});
    Record(kState, {0, 1});
    Show({Curve(kVoltage), Curve(kCurrent), Curve(kState, 1)});
    const auto& panels = model.Scene().panels;
    ASSERT_EQ(panels.size(), 3u);
    EXPECT_EQ(panels[0].rect, panels[1].rect);
    EXPECT_NE(panels[0].map.high, panels[1].map.high);
    EXPECT_GE(panels[2].rect.top, panels[0].rect.bottom);
    EXPECT_EQ(panels[2].rect.left, panels[0].rect.left);
    EXPECT_EQ(panels[2].rect.right, panels[0].rect.right);
}

TEST_F(GraphModelTest, ARunHasOneScaleForItsCurves)
{
    Record(kVoltage, {2300, 2310});
    Record(kCurrent, {1, 2});
    Show({Curve(kVoltage), Curve(kVoltage)});
    EXPECT_DOUBLE_EQ(model.Scene().panels[0].map.high, model.Scene().panels[1].map.high);
}

TEST_F(GraphModelTest, AutomaticLimitsFollowWhatIsInView)
{
    std::vector<double> values(600, 2300.0);
    values[500] = 4000.0;
    Record(kVoltage, values);
    Show({Curve(kVoltage)});
    EXPECT_GE(model.Scene().panels[0].map.high, 400.0);
    model.ZoomTo({kBegin, kBegin + 400 * kMinuteLong});
    EXPECT_LT(model.Scene().panels[0].map.high, 300.0);
}

TEST_F(GraphModelTest, FixedLimitsStand)
{
    ShowVoltage();
    CurveInfo curve = Curve(kVoltage);
    curve.minimum = 200.0;
    curve.maximum = 260.0;
    Show({curve});
    EXPECT_DOUBLE_EQ(model.Scene().panels[0].map.low, 200.0);
    EXPECT_DOUBLE_EQ(model.Scene().panels[0].map.high, 260.0);
}

TEST_F(GraphModelTest, LimitsInTheWrongOrderAreExchanged)
{
    ShowVoltage();
    CurveInfo curve = Curve(kVoltage);
    curve.minimum = 260.0;
    curve.maximum = 200.0;
    Show({curve});
    EXPECT_DOUBLE_EQ(model.Scene().panels[0].map.low, 200.0);
}

TEST_F(GraphModelTest, ValuesOutsideFixedLimitsAreCutAtThePanel)
{
    Record(kVoltage, {2300, 1e300, 2300, -1e300, 2300});
    CurveInfo curve = Curve(kVoltage);
    curve.minimum = 200.0;
    curve.maximum = 260.0;
    Show({curve});
    ExpectSound();
    EXPECT_EQ(Utf16ToUtf8(model.ReadingsAt(kBegin + kMinuteLong).at(0).value), "1.0000E+299 V");
}

TEST_F(GraphModelTest, APowerFactorRunsOverOne)
{
    Record(kFactor, {0.9, 0.95, -0.95, -0.9});
    Show({Curve(kFactor)});
    const ValueMap map = model.Scene().panels.at(0).map;
    EXPECT_LT(map.low, 0.9);
    EXPECT_GT(map.high, 1.1);
    EXPECT_LT(map.high, 1.3);
    EXPECT_TRUE(Holds(model.Scene().under, "1.00"));
    EXPECT_TRUE(Holds(model.Scene().under, "-0.90"));
}

TEST_F(GraphModelTest, BarsStandOnZeroAndBehindLines)
{
    std::vector<double> counts;
    std::vector<double> volts;
    for (int i = 0; i < 600; ++i) {
        counts.push_back(100000.0 + i * 100.0);
        volts.push_back(2300.0);
    }
    Record(kEnergy, counts);
    Record(kVoltage, volts);
    Show({Curve(kVoltage), Curve(kEnergy)}, 900);
    const auto& panels = model.Scene().panels;
    ASSERT_EQ(panels.size(), 2u);
    EXPECT_EQ(panels[0].shape, CurveShape::Bars);
    EXPECT_EQ(panels[0].curve, 1);
    EXPECT_DOUBLE_EQ(panels[0].map.low, 0.0);
    EXPECT_EQ(panels[1].shape, CurveShape::Line);
}

TEST_F(GraphModelTest, CountersAreBarsAtAPeriodAlone)
{
    Record(kEnergy, {100000.0, 100100.0, 100200.0});
    Show({Curve(kEnergy)}, 60);
    EXPECT_EQ(model.Scene().panels.at(0).shape, CurveShape::Bars);
    Show({Curve(kEnergy)});
    EXPECT_EQ(model.Scene().panels.at(0).shape, CurveShape::Line);
}

TEST_F(GraphModelTest, BarsOfNothingStandOnZeroToo)
{
    Record(kVoltage, {2300.0, 2300.0});
    Show({Curve(kEnergy)}, 900);
    EXPECT_DOUBLE_EQ(model.Scene().panels.at(0).map.low, 0.0);
    EXPECT_GE(model.Scene().panels.at(0).map.high, 1.0);
}

TEST_F(GraphModelTest, AnIndexOutOfTheListIsLeftOut)
{
    Record(kVoltage, {2300, 2310});
    Show({Curve(77), Curve(kVoltage), Curve(-1)});
    EXPECT_EQ(model.Curves(), 1u);
    EXPECT_EQ(model.Colour(0), Curve(kVoltage).pen.lopnColor);
    EXPECT_EQ(model.Colour(1), 0u);
    EXPECT_EQ(model.Colour(-1), 0u);
    ExpectSound();
}

TEST_F(GraphModelTest, TheStatusSaysWhenThePictureIsReduced)
{
    ShowVoltage();
    EXPECT_FALSE(model.Status().isReduced);
    EXPECT_EQ(Utf16ToUtf8(model.Status().text), "600 records in view");
    SetSize(300, 300);
    EXPECT_TRUE(model.Status().isReduced);
    EXPECT_NEAR(model.Status().recordsPerColumn, 600.0 / Panel().Width(), 1e-9);
    EXPECT_NE(Utf16ToUtf8(model.Status().text).find("least and largest values are shown"), std::string::npos);
    model.ZoomTo({kBegin, kBegin + 10 * kMinuteLong});
    EXPECT_EQ(Utf16ToUtf8(model.Status().text), "10 records in view");
}

TEST_F(GraphModelTest, AnotherWindowForgetsZoomsAndMarkers)
{
    ShowVoltage();
    model.ZoomTo({kBegin, kBegin + 10 * kMinuteLong});
    model.SetMarker(0, kBegin);
    model.Move(PlaceOf(5));
    const std::vector<CurveInfo> curves = {Curve(kVoltage)};
    const ZRLoggerData::CRecordGroup& group = Load();
    model.Update(curves, kFrom, kTo, info, &group);
    EXPECT_EQ(model.History().size(), 1u);
    EXPECT_TRUE(model.Marker(0));
    EXPECT_TRUE(model.Cursor());
    model.Update(curves, kFrom, Date(1, 1, 2003), info, &group);
    EXPECT_FALSE(model.Cursor());
    EXPECT_TRUE(model.History().empty());
    EXPECT_FALSE(model.Marker(0));
}

TEST_F(GraphModelTest, TheWindowIsLocalToThePlant)
{
    SetPlantZone(TimeZone(3600, {}));
    Show({Curve(kVoltage)});
    EXPECT_EQ(model.Whole().from, kBegin - 60 * kMinuteLong);
    EXPECT_EQ(model.Whole().to - model.Whole().from, 1440 * kMinuteLong);
}

TEST_F(GraphModelTest, NoDateAndNoGroupAreNoData)
{
    const std::vector<CurveInfo> curves = {Curve(kVoltage)};
    const ZRLoggerData::CRecordGroup& group = Load();
    model.Update(curves, ZRDateTime(), kTo, info, &group);
    ExpectSound();
    EXPECT_TRUE(model.Scene().panels.empty());
    model.Update(curves, kTo, kFrom, info, &group);
    EXPECT_TRUE(model.Scene().panels.empty());
    model.Update(curves, kFrom, kTo, info, nullptr);
    EXPECT_TRUE(model.Scene().panels.empty());
    EXPECT_EQ(model.Status().records, 0u);
}

TEST_F(GraphModelTest, OfCurvesThatHaveGoneNothingIsKnown)
{
    ShowVoltage();
    const CurvePanel panel = model.Scene().panels.at(0);
    model.Clear();
    std::vector<RowSpan> spans(static_cast<std::size_t>(panel.rect.Width()));
    model.Spans(panel, spans);
    for (const RowSpan& span : spans) {
        EXPECT_GT(span.top, span.bottom);
    }
    std::vector<PathPoint> path;
    model.Path(panel, path);
    EXPECT_TRUE(path.empty());
    model.Move({400, 200});
    EXPECT_EQ(model.CurveAt({400, 200}), -1);
    EXPECT_EQ(model.Status().records, 0u);
    ExpectSound();
}

TEST_F(GraphModelTest, PaperShowsNothingOfThePointer)
{
    ShowVoltage();
    model.SetMarker(0, kBegin + 100 * kMinuteLong);
    model.Move(OnCurve(0, 100));
    const GraphScene paper = model.SceneFor({4000, 2000, 6.25, &extents, true, false});
    EXPECT_EQ(paper.width, 4000);
    EXPECT_TRUE(Items<SceneLine>(paper.over, SceneRole::Cursor).empty());
    EXPECT_TRUE(Items<SceneRect>(paper.over, SceneRole::BoxFrame).empty());
    EXPECT_TRUE(Items<SceneRect>(paper.over, SceneRole::Highlight).empty());
    EXPECT_FALSE(Items<SceneLine>(paper.over, SceneRole::Marker).empty());
    EXPECT_FALSE(paper.panels.at(0).isHighlighted);
    EXPECT_EQ(paper.panels.at(0).pen.lopnWidth, 6);
    ExpectSound(paper);
}

TEST_F(GraphModelTest, WithoutColoursCurvesDifferByTheirDashes)
{
    Record(kVoltage, {2300, 2310});
    Show({Curve(kVoltage), Curve(kVoltage), Curve(kVoltage)});
    const GraphScene paper = model.SceneFor({400, 200, 1.0, &extents, true, true});
    EXPECT_EQ(paper.panels.at(0).pen.lopnStyle, PS_SOLID);
    EXPECT_EQ(paper.panels.at(1).pen.lopnStyle, PS_DASH);
    EXPECT_EQ(paper.panels.at(2).pen.lopnStyle, PS_DOT);
    EXPECT_EQ(paper.panels.at(2).pen.lopnColor, 0u);
}

TEST_F(GraphModelTest, ChangesAreToldOnce)
{
    ShowVoltage();
    EXPECT_TRUE(model.TakeChanges().shown);
    const GraphChanges none = model.TakeChanges();
    EXPECT_FALSE(none.under || none.over || none.shown);
    model.Move(PlaceOf(100));
    const GraphChanges moved = model.TakeChanges();
    EXPECT_TRUE(moved.over);
    EXPECT_FALSE(moved.under);
    EXPECT_FALSE(moved.shown);
    model.SetMarker(0, kBegin);
    EXPECT_TRUE(model.TakeChanges().shown);
    model.TextsChanged();
    EXPECT_TRUE(model.TakeChanges().under);
}

TEST_F(GraphModelTest, TimesOverAClockChangeStandInOrder)
{
    // Autumn in Berlin's offsets: back by an hour at 01:00 UTC of the day.
    SetPlantZone(TimeZone(7200, {{kBegin / kMicrosOfSecond + 3600, 3600}}));
    ShowVoltage();
    EXPECT_EQ(model.Whole().to - model.Whole().from, 25 * 60 * kMinuteLong);
    ExpectSound();
}

TEST_F(GraphModelTest, OnePixelDoesNoHarm)
{
    ShowVoltage();
    model.SetMarker(0, kBegin);
    model.SetMarker(1, kBegin + 60 * kMinuteLong);
    for (const auto& [width, height] :
         {std::pair(1, 1), std::pair(0, 0), std::pair(1, 400), std::pair(800, 1), std::pair(3, 3)}) {
        SetSize(width, height);
        ExpectSound();
        model.Move({0, 0});
        model.Press({0, 0}, false);
        model.Release({0, 0});
        model.Wheel({0, 0}, 1.0);
        model.UndoZoom();
        ExpectSound();
    }
}

TEST_F(GraphModelTest, AScaleThatIsNoneIsOne)
{
    ShowVoltage();
    for (const double scale : {0.0, -1.0, kNothing}) {
        SetSize(400, 300, scale);
        ExpectSound();
    }
}

TEST_F(GraphModelTest, WithoutTextsThereIsAPictureToo)
{
    ShowVoltage();
    model.SetTarget({400, 300, 1.0, nullptr, false, false});
    model.SetMarker(0, kBegin);
    model.SetMarker(1, kBegin + 60 * kMinuteLong);
    model.Move({200, 150});
    EXPECT_TRUE(Texts(model.Scene().under).empty());
    EXPECT_TRUE(Texts(model.Scene().over).empty());
    EXPECT_EQ(model.Scene().panels.size(), 1u);
}

TEST_F(GraphModelTest, TwoHundredCurvesHaveRoom)
{
    std::vector<double> volts(600, 2300.0);
    Record(kVoltage, volts);
    Record(kCurrent, volts);
    std::vector<CurveInfo> curves;
    for (int i = 0; i < 200; ++i) {
        curves.push_back(Curve(i % 2 == 0 ? kVoltage : kCurrent, i / 20));
    }
    Show(curves);
    EXPECT_EQ(model.Curves(), 200u);
    EXPECT_EQ(model.Scene().panels.size(), 200u);
    model.SetMarker(0, kBegin);
    model.SetMarker(1, kBegin + 60 * kMinuteLong);
    model.Move({400, 30});
    ExpectSound();
    const std::vector<std::string> texts = Texts(model.Scene().over);
    EXPECT_TRUE(std::any_of(texts.begin(), texts.end(),
                            [](const std::string& text) { return text.find(" more") != std::string::npos; }));
    EXPECT_GT(model.Scene().panels[0].rect.Width(), 300);
}

TEST_F(GraphModelTest, AnythingInAnyOrderDoesNoHarm)
{
    std::mt19937 random(2024);
    std::vector<double> values;
    for (int i = 0; i < 600; ++i) {
        const std::array<double, 6> odd = {0.0, -1e300, 1e300, 5e-324, kNothing, 2300.0};
        values.push_back(odd.at(random() % odd.size()));
    }
    for (const Variable variable : {kVoltage, kCurrent, kState, kFactor}) {
        Record(variable, values);
    }
    for (int i = 0; i < 1500; ++i) {
        const Point at{static_cast<int>(random() % 900) - 50, static_cast<int>(random() % 500) - 50};
        switch (random() % 14) {
            case 0:
                SetSize(static_cast<int>(random() % 1000), static_cast<int>(random() % 600),
                        static_cast<double>(random() % 2 + 1));
                break;
            case 1: {
                std::vector<CurveInfo> curves;
                for (auto k = random() % 8; k > 0; --k) {
                    curves.push_back(Curve(static_cast<int>(random() % 8) - 1, static_cast<int>(random() % 8) - 1));
                    curves.back().minimum = random() % 3 == 0 ? static_cast<double>(random() % 500) : kNoLimit;
                    curves.back().maximum = random() % 3 == 0 ? 1e300 : kNoLimit;
                }
                Show(curves, random() % 2 == 0 ? 0 : 900);
                break;
            }
            case 2:
                model.Update(std::vector{Curve(kVoltage)}, kFrom, kTo, info, nullptr);
                break;
            case 3:
                model.Press(at, random() % 3 == 0);
                break;
            case 4:
                model.Release(at);
                break;
            case 5:
                model.Wheel(at, static_cast<double>(random() % 9) - 4.0);
                break;
            case 6:
            case 7:
                model.Do(static_cast<GraphAction>(random() % (static_cast<unsigned long>(GraphAction::PanMode) + 1)));
                break;
            case 8:
                model.Leave();
                break;
            case 9:
                model.DoubleClick(at);
                break;
            case 10:
                model.Clear();
                break;
            default:
                model.Move(at);
                break;
        }
        ASSERT_LE(static_cast<int>(model.Shape()), static_cast<int>(PointerShape::SizeMarker));
        ASSERT_LE(model.Status().records, 600u);
        ExpectSound();
        ASSERT_FALSE(HasFatalFailure());
        const Zoom whole = model.Whole();
        ASSERT_GE(model.InView().from, whole.from);
        ASSERT_LE(model.InView().to, whole.to);
    }
}

}  // namespace
}  // namespace zr::graph
