// A graph of what nobody would draw: it shows what there is, and stays a graph.
#include "ui/graphsupport/GraphFixture.h"

#include <cmath>

namespace zr::graph {
namespace {

class BadInputTest : public GraphFixture {
protected:
    // Each with its place in the middle of the height, so that all of it is over the curves.
    QPoint Across(double part) const { return {static_cast<int>(graph->width() * part), graph->height() / 2}; }
    // Whatever a user can do with it.
    void UseAll()
    {
        for (const int mode : {0, 1, 2}) {
            graph->SetMode(mode);
            Hover(Across(0.5));
            Drag(Across(0.3), Across(0.7));
            Turn(Across(0.5), QPoint(0, 240));
            Turn(Across(0.5), QPoint(120, -120), Qt::ShiftModifier);
            Press(Across(0.4), Qt::ShiftModifier);
            Release(Across(0.4), Qt::ShiftModifier);
            Mouse(QEvent::MouseButtonDblClick, Across(0.5), Qt::LeftButton, Qt::LeftButton);
            for (const Qt::Key key : {Qt::Key_Left, Qt::Key_PageDown, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_M,
                                      Qt::Key_Backspace, Qt::Key_Home}) {
                Key(key);
            }
            EXPECT_FALSE(Picture(2).Image().isNull());
        }
        EXPECT_TRUE(graph->CopyToClipboard(false));
        EXPECT_TRUE(graph->CopyToClipboard(true));
        Key(Qt::Key_Delete);
        graph->SetMode(0);
        graph->UndoZoom();
        Leave();
    }
    // Every pixel is painted, and the curve is seen somewhere.
    void ExpectSound(bool hasCurve)
    {
        EXPECT_EQ(Picture().CountAll(0xFF00FF), 0) << "a place isn't painted";
        EXPECT_EQ(Picture().CountAll(kRed) > 0, hasCurve);
    }
    // Times of a picture's panel at which the curve is seen, by their columns.
    static int Columns(const GraphPicture& picture, double from, double to)
    {
        int columns = 0;
        for (int x = picture.Place(0, from, 0).x(); x < picture.Place(0, to, 0).x(); ++x) {
            const QRect& panel = picture.Panels().front();
            columns += picture.Count(QRect(x, panel.top(), 1, panel.height()), kRed) > 0 ? 1 : 0;
        }
        return columns;
    }
    // As it stands in the store, whatever it is.
    void RecordAnything(const std::vector<double>& values)
    {
        constexpr std::int64_t kEpoch = 946684800;
        const int series = store.OpenSeries(u"G.U", static_cast<std::int32_t>(VariableClass::Instantaneous));
        std::vector<LoggerAppend> batch;
        std::int64_t time = kEpoch + kDay.seconds;
        for (const double value : values) {
            batch.push_back({series, time * 1000000, value});
            time += 3600;
        }
        ASSERT_TRUE(store.Append(batch));
    }
};

TEST_F(BadInputTest, NoCurve)
{
    RecordRise();
    Draw({});
    UseAll();
    ExpectSound(false);
    EXPECT_TRUE(graph->StatusText().IsEmpty());
    EXPECT_TRUE(graph->zoomHistory.empty());
}

TEST_F(BadInputTest, NoRecord)
{
    Draw({{u"G.U", 0, kRed}});
    UseAll();
    EXPECT_EQ(Utf16ToUtf8(graph->StatusText()), "0 records in view");
    EXPECT_EQ(Picture().Count(Picture().Panels().front(), kRed), 0);
}

TEST_F(BadInputTest, OnePointIsADotInTheMiddle)
{
    std::vector<double> values(13, kMissing);
    values.back() = 230.0;
    RecordEvery(3600, u"G.U", values);
    Draw({{u"G.U", 0, kRed}});
    EXPECT_EQ(Utf16ToUtf8(graph->StatusText()), "1 record in view");
    const GraphPicture picture = Picture();
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.5, 0.5), kRed, 3));
    EXPECT_LE(picture.Count(picture.Panels().front(), kRed), 9);
    UseAll();
    ExpectSound(true);
}

TEST_F(BadInputTest, EqualValuesAreALevelLineInTheMiddle)
{
    for (const wchar* name : {u"G.U", u"G.V", u"G.PF"}) {
        const double value = name == std::u16string(u"G.V") ? 0.0 : 0.5;
        RecordDay(name, [value](int) { return value; });
        Draw({{name, 0, kRed}});
        const GraphPicture picture = Picture();
        for (const double part : {0.1, 0.5, 0.9}) {
            EXPECT_TRUE(picture.Has(picture.Place(0, part, 0.5), kRed, 2)) << Utf16ToUtf8(name) << part;
        }
        EXPECT_LT(picture.Count(picture.Panels().front(), kRed), 3 * picture.Panels().front().width());
        UseAll();
        ExpectSound(true);
    }
}

TEST_F(BadInputTest, ValuesThatAreNoNumbersAreGaps)
{
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    std::vector<double> values(24, 230.0);
    values[7] = kMissing;
    values[8] = kInfinite;
    values[16] = -kInfinite;
    RecordAnything(values);
    Draw({{u"G.U", 0, kRed}});
    const GraphPicture picture = Picture();
    EXPECT_EQ(Columns(picture, 6.2 / 24, 8.8 / 24), 0);
    EXPECT_EQ(Columns(picture, 15.2 / 24, 16.8 / 24), 0);
    EXPECT_GT(Columns(picture, 10.0 / 24, 14.0 / 24), 80);
    // The scale is that of the numbers.
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.5, 0.5), kRed, 2));
    UseAll();
    ExpectSound(true);
}

TEST_F(BadInputTest, NothingButInfinities)
{
    RecordAnything(std::vector<double>(24, std::numeric_limits<double>::infinity()));
    Draw({{u"G.U", 0, kRed}});
    EXPECT_EQ(Picture().Count(Picture().Panels().front(), kRed), 0);
    UseAll();
    EXPECT_EQ(Picture().CountAll(0xFF00FF), 0);
}

TEST_F(BadInputTest, ValuesOf1e300)
{
    RecordEvery(3600, u"G.U", {1e300, -1e300, 1e300, 1e308, -1e308, 0, 1e-300, 5e-324, 1e300});
    Draw({{u"G.U", 0, kRed}});
    EXPECT_GT(Columns(Picture(), 0.02, 0.3), 100);
    UseAll();
    ExpectSound(true);
    // Far out of the scale on both sides: upright lines between, and nothing beside the panel.
    Draw({{u"G.U", 0, kRed, -1.0, 1.0}});
    const GraphPicture picture = Picture();
    EXPECT_GT(picture.Count(picture.Panels().front(), kRed), 50);
    UseAll();
    ExpectSound(true);
}

TEST_F(BadInputTest, LimitsInTheWrongOrderAreExchanged)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    const QImage right = Picture().Image();
    Draw({{u"G.U", 0, kRed, 240.0, 220.0}});
    EXPECT_EQ(Picture().Image(), right);
    UseAll();
}

TEST_F(BadInputTest, LimitsThatAreEqualOrNoNumbers)
{
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    RecordRise();
    for (const auto& [least, most] : {std::pair(230.0, 230.0), std::pair(kMissing, kMissing),
                                      std::pair(-kInfinite, kInfinite), std::pair(kInfinite, -kInfinite)}) {
        Draw({{u"G.U", 0, kRed, least, most}});
        UseAll();
        ExpectSound(true);
    }
}

TEST_F(BadInputTest, TimeGoingBack)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    ZRLoggerData::CRecordGroup& group = loaded->RecordGroup(logger::kEveryRecord, nullptr);
    std::int64_t* const times = group.Chunks().front().times;
    // An hour of records says that it was half a day before.
    for (std::size_t i = 300; i < 360; ++i) {
        times[i] -= 43200 * std::int64_t{1000000};
    }
    graph->Update(kDay, Tomorrow(), &loaded->loggerInfo, &group);
    const GraphPicture picture = Picture();
    for (const double part : {0.1, 0.5, 0.9}) {
        EXPECT_TRUE(picture.Has(picture.Place(0, part, part), kRed)) << part;
    }
    EXPECT_EQ(Columns(picture, 302.0 / 1440, 357.0 / 1440), 0);
    UseAll();
    ExpectSound(true);
}

TEST_F(BadInputTest, AWindowThatEndsBeforeItBegins)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed}});
    graph->Update(Tomorrow(), kDay, &loaded->loggerInfo, &loaded->RecordGroup(logger::kEveryRecord, nullptr));
    UseAll();
    EXPECT_EQ(Picture().Count(Picture().Panels().front(), kRed), 0);
}

TEST_F(BadInputTest, AWindowOf1By1Pixel)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed}, {u"G.PF", 1, kBlue}});
    for (const QSize size : {QSize(1, 1), QSize(1, 400), QSize(600, 1)}) {
        parent.resize(size);
        graph->resize(size);
        UseAll();
        EXPECT_EQ(Picture(2).Image().size(), size * 2);
    }
    graph->resize(600, 400);
    EXPECT_GT(Picture().CountAll(kRed), 100);
}

TEST_F(BadInputTest, TwoHundredCurves)
{
    RecordRise();
    std::vector<Drawn> curves(200, Drawn{u"G.U", 0, kRed});
    for (std::size_t i = 0; i < curves.size(); ++i) {
        curves[i].zone = static_cast<int>(i % 9) - 1;
    }
    Draw(curves);
    EXPECT_LE(Picture().Panels().size(), 6U);
    UseAll();
    ExpectSound(true);
}

// By the mouse in each mode, and by a marker: the drag ends, and what it did so far is taken back.
TEST_F(BadInputTest, ARecordGroupReplacedWhileTheMouseDrags)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    graph->SetMode(1);
    Drag(Across(0.2), Across(0.8));
    ASSERT_EQ(graph->zoomHistory.size(), 1U);
    Press(Across(0.3), Qt::ShiftModifier);
    Release(Across(0.3), Qt::ShiftModifier);
    const zr::graph::Zoom view = graph->InView();
    struct Way {
        int mode;
        double from;
    };
    for (const Way& way : {Way{0, 0.5}, Way{1, 0.5}, Way{2, 0.5}, Way{0, 0.3}}) {
        graph->SetMode(way.mode);
        Leave();
        const QImage before = Picture().Image();
        Press(Across(way.from));
        DragTo(Across(0.6));
        graph->invalidData = true;
        loaded.reset();
        DragTo(Across(0.7));
        EXPECT_FALSE(Picture().Image().isNull());
        Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
        graph->invalidData = false;
        DragTo(Across(0.75));
        Release(Across(0.75));
        Leave();
        EXPECT_EQ(graph->zoomHistory.size(), 1U) << way.mode;
        EXPECT_EQ(graph->InView().from, view.from) << way.mode;
        EXPECT_EQ(graph->InView().to, view.to) << way.mode;
        EXPECT_EQ(Picture().Image(), before) << way.mode;
    }
}

TEST_F(BadInputTest, ACurveOfAVariableThatIsNotThere)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed}});
    for (const int index : {-1, 1, 1000000}) {
        auto* const curve = new ZRGraph::CVarInfo;
        curve->index = index;
        graph->varInfos.push_back(curve);
    }
    graph->Update(kDay, Tomorrow(), &loaded->loggerInfo, &loaded->RecordGroup(logger::kEveryRecord, nullptr));
    UseAll();
    ExpectSound(true);
}

// Nothing was consumed that anybody knows of: no line where bars would end.
TEST_F(BadInputTest, BarsWithoutValuesPaintNothing)
{
    RecordRise();
    Draw({{u"G.E", 0, kRed}, {u"G.U", 1, kBlue}}, kHour);
    const GraphPicture picture = Picture();
    ASSERT_EQ(picture.Panels().size(), 2U);
    EXPECT_EQ(picture.Count(picture.Panels()[0].adjusted(0, -3, 0, 3), kRed), 0);
    EXPECT_GT(picture.Count(picture.Panels()[1], kBlue), 100);
}

}  // namespace
}  // namespace zr::graph
