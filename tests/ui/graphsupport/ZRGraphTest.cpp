#include "siblings/graphsupport/ui/ZRGraph.h"

#include "ui/graphsupport/GraphFixture.h"
#include "ui/support/SuiteTest.h"

#include <cmath>
#include <tuple>

namespace zr::graph {
namespace {

class ZRGraphTest : public GraphFixture {
protected:
    // The middle of the first zone, in the window's coordinates.
    QPoint Middle() { return Picture().Place(0, 0.5, 0.5); }
    QPoint Across(double part) { return Picture().Place(0, part, 0.5); }
    void ZoomToMiddle()
    {
        graph->SetMode(1);
        Drag(Across(0.25), Across(0.75));
    }
    // The second half of what it was of a rise that is zoomed about its middle: steeper.
    QImage Shown() { return Picture().Image(); }
};

TEST_F(ZRGraphTest, IsMadeOnceAsAChildThatCanHaveTheFocus)
{
    EXPECT_EQ(graph->parentWidget(), &parent);
    EXPECT_EQ(graph->GetDlgCtrlID(), ui::kGraphId);
    EXPECT_EQ(graph->focusPolicy(), Qt::StrongFocus);
    EXPECT_EQ(graph->accessibleName(), "Graph");
    EXPECT_TRUE(graph->isVisible());
    EXPECT_FALSE(graph->Create(&parent, 5));
    EXPECT_EQ(graph->GetDlgCtrlID(), ui::kGraphId);
}

TEST_F(ZRGraphTest, OwnsItsCurves)
{
    DrawRise();
    EXPECT_EQ(graph->varInfos.size(), 1U);
    graph->ClearVariables(kAllCurves);
    EXPECT_TRUE(graph->varInfos.empty());
    EXPECT_EQ(Picture().CountAll(kRed), 0);
    EXPECT_EQ(graph->RecordsPerColumn(), 0.0);
}

TEST_F(ZRGraphTest, HasTwelveColoursForTheViewer)
{
    EXPECT_EQ(ZRGraph::predefinedColors.size(), 12U);
}

// Window width and height, scale factor.
class ZRGraphAtSizesTest : public ZRGraphTest, public testing::WithParamInterface<std::tuple<QSize, int>> {
protected:
    ZRGraphAtSizesTest() { parent.resize(std::get<0>(GetParam())); }
    GraphPicture Shot() { return Picture(std::get<1>(GetParam())); }
};

INSTANTIATE_TEST_SUITE_P(SizesAndScales, ZRGraphAtSizesTest,
                         testing::Combine(testing::Values(QSize(600, 400), QSize(1000, 700)), testing::Values(1, 2)));

TEST_P(ZRGraphAtSizesTest, PaintsALineWhereItsValuesAre)
{
    DrawRise();
    const GraphPicture picture = Shot();
    ASSERT_EQ(picture.Panels().size(), 1U);
    for (double part = 0.05; part < 1.0; part += 0.1) {
        EXPECT_TRUE(picture.Has(picture.Place(0, part, part), kRed)) << part;
        EXPECT_FALSE(picture.Has(picture.Place(0, part, 1.0 - part), kRed) && std::abs(part - 0.5) > 0.1) << part;
    }
    // One line and no more: about a pixel a column, wherever it is.
    const QRect& panel = picture.Panels().front();
    EXPECT_LT(picture.Count(panel, kRed), 6 * panel.width());
}

TEST_P(ZRGraphAtSizesTest, LeavesAGapWhereRecordsAreMissing)
{
    RecordDay(u"G.U", [](int minute) { return minute > 480 && minute < 960 ? kMissing : 230.0; });
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    const GraphPicture picture = Shot();
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.2, 0.5), kRed));
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.8, 0.5), kRed));
    const QRect gap(picture.Place(0, 0.35, 1.0), picture.Place(0, 0.65, 0.0));
    EXPECT_EQ(picture.Count(gap, kRed), 0);
}

TEST_P(ZRGraphAtSizesTest, PaintsConsumptionAsBars)
{
    // Two an hour until noon, then six until the evening.
    RecordDay(u"G.E", [](int minute) {
        return minute > 1080 ? kMissing : minute < 720 ? minute / 30.0 : 24.0 + (minute - 720) / 10.0;
    });
    Draw({{u"G.E", 0, kRed, 0.0, 8.0}}, kHour);
    const GraphPicture picture = Shot();
    const auto isFilled = [&](double across, double up) {
        const QRgb pixel = picture.Image().pixel(picture.Place(0, across, up));
        return qRed(pixel) > qGreen(pixel) + 60;
    };
    EXPECT_TRUE(isFilled(0.23, 0.12));
    EXPECT_FALSE(isFilled(0.23, 0.32));
    EXPECT_TRUE(isFilled(0.64, 0.12));
    EXPECT_TRUE(isFilled(0.64, 0.69));
    EXPECT_FALSE(isFilled(0.64, 0.82));
    // Nothing where nothing was recorded, at any height.
    const QRect& panel = picture.Panels().front();
    for (int row = panel.top() + 1; row < panel.bottom(); ++row) {
        const QRgb pixel = picture.Image().pixel(picture.Place(0, 0.9, 0.0).x(), row);
        ASSERT_LE(qRed(pixel), qGreen(pixel) + 60) << row;
    }
}

TEST_P(ZRGraphAtSizesTest, PaintsStatesAsSteps)
{
    RecordEvery(21600, u"G.S", {0, 0, 4, 4, 4});
    Draw({{u"G.S", 0, kRed, -1.0, 5.0}});
    const GraphPicture picture = Shot();
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.25, 1 / 6.0), kRed));
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.47, 1 / 6.0), kRed));
    // Upright at noon.
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.5, 0.5), kRed, 2));
    EXPECT_FALSE(picture.Has(picture.Place(0, 0.45, 0.5), kRed, 2));
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.53, 5 / 6.0), kRed));
}

TEST_P(ZRGraphAtSizesTest, FoldsPowerFactors)
{
    RecordDay(u"G.PF", [](int minute) { return minute < 720 ? 0.5 : -0.5; });
    Draw({{u"G.PF", 0, kRed, 0.0, 2.0}});
    const GraphPicture picture = Shot();
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.25, 0.25), kRed));
    // -0.5 continues above 1.
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.75, 0.75), kRed));
}

TEST_P(ZRGraphAtSizesTest, PaintsEachZoneInAStripOfItsOwn)
{
    RecordDay(u"G.U", [](int) { return 230.0; });
    RecordDay(u"G.PF", [](int) { return 0.8; });
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}, {u"G.PF", 1, kBlue, 0.0, 1.0}});
    const GraphPicture picture = Shot();
    ASSERT_EQ(picture.Panels().size(), 2U);
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.3, 0.5), kRed));
    EXPECT_TRUE(picture.Has(picture.Place(1, 0.3, 0.8), kBlue));
    EXPECT_EQ(picture.Count(picture.Panels()[0], kBlue), 0);
    EXPECT_EQ(picture.Count(picture.Panels()[1], kRed), 0);
}

TEST_P(ZRGraphAtSizesTest, PaintsAnAxisInTheColourOfItsCurveAndAFrameAroundEachZone)
{
    RecordDay(u"G.U", [](int) { return 230.0; });
    RecordDay(u"G.PF", [](int) { return 0.8; });
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}, {u"G.PF", 1, kBlue, 0.0, 1.0}});
    const GraphPicture picture = Shot();
    ASSERT_EQ(picture.Panels().size(), 2U);
    const unsigned long colours[] = {kRed, kBlue};
    for (std::size_t zone = 0; zone < 2; ++zone) {
        const QRect& panel = picture.Panels()[zone];
        // The axis is upright beside the curves, as high as they.
        const QRect beside(panel.left() - 3, panel.top(), 3, panel.height());
        EXPECT_GE(picture.Count(beside, colours[zone]), panel.height()) << zone;
        EXPECT_EQ(picture.Count(beside, colours[1 - zone]), 0) << zone;
        // The frame is no ground, and all of one colour.
        const QImage& image = picture.Image();
        for (const int row : {panel.top() - 1, panel.bottom() + 1}) {
            const QRgb frame = image.pixel(panel.left() + 5, row);
            EXPECT_NE(frame, kPanelGround);
            for (int x = panel.left() + 5; x < panel.right() - 5; ++x) {
                ASSERT_EQ(image.pixel(x, row), frame) << zone << ' ' << row << ' ' << x;
            }
        }
    }
}

TEST_P(ZRGraphAtSizesTest, PaintsTheSameOnADarkDesktop)
{
    DrawRise();
    QPalette palette = test::DarkPalette();
    graph->setPalette(palette);
    const QImage dark = Shot().Image();
    int pixels = 0;
    for (int y = 0; y < dark.height(); y += 3) {
        for (int x = 0; x < dark.width(); x += 3) {
            pixels += qGray(dark.pixel(x, y)) < 0x50 ? 1 : 0;
        }
    }
    // All but texts and curves.
    EXPECT_GT(pixels, dark.width() * dark.height() / 9 * 8 / 10);
    EXPECT_GT(Shot().CountAll(kRed), 100);
}

TEST_F(ZRGraphTest, FollowsTheMouseWithoutLeavingATrace)
{
    DrawRise();
    const QImage before = Shown();
    Hover(Across(0.3));
    const QImage hovered = Shown();
    EXPECT_NE(hovered, before);
    Hover(Across(0.6));
    EXPECT_NE(Shown(), hovered);
    Leave();
    EXPECT_EQ(Shown(), before);
}

TEST_F(ZRGraphTest, ZoomsByTheRubberBandAndUndoesIt)
{
    DrawRise();
    const QImage whole = Shown();
    EXPECT_TRUE(graph->zoomHistory.empty());
    const double records = graph->RecordsPerColumn();
    graph->SetMode(1);
    EXPECT_EQ(graph->mode, 1);
    Press(Across(0.25));
    DragTo(Across(0.75));
    EXPECT_NE(Shown(), whole) << "no band";
    Release(Across(0.75));
    EXPECT_EQ(graph->zoomHistory.size(), 1U);
    EXPECT_NEAR(graph->RecordsPerColumn(), records / 2, records / 20);
    const GraphPicture picture = Picture();
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.02, 0.26), kRed, 3));
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.98, 0.74), kRed, 3));
    graph->UndoLastZoom(false);
    EXPECT_TRUE(graph->zoomHistory.empty());
    Leave();
    EXPECT_EQ(Shown(), whole);
}

TEST_F(ZRGraphTest, GoesBackToTheWholeWindowAtOnce)
{
    DrawRise();
    ZoomToMiddle();
    ZoomToMiddle();
    EXPECT_EQ(graph->zoomHistory.size(), 2U);
    graph->UndoZoom();
    EXPECT_TRUE(graph->zoomHistory.empty());
}

TEST_F(ZRGraphTest, ZoomsByTheWheelInAnyMode)
{
    DrawRise();
    for (int mode = 0; mode < 3; ++mode) {
        graph->SetMode(mode);
        const double records = graph->RecordsPerColumn();
        Turn(Middle(), QPoint(0, 120));
        EXPECT_LT(graph->RecordsPerColumn(), records) << mode;
        EXPECT_FALSE(graph->zoomHistory.empty()) << mode;
        graph->UndoZoom();
        EXPECT_EQ(graph->RecordsPerColumn(), records) << mode;
    }
}

TEST_F(ZRGraphTest, PansByASidewaysWheel)
{
    DrawRise();
    ZoomToMiddle();
    const double value = 0.5;
    ASSERT_TRUE(Picture().Has(Picture().Place(0, value, value), kRed, 3));
    Turn(Middle(), QPoint(-240, 0));
    Leave();
    // Later values are higher.
    EXPECT_FALSE(Picture().Has(Picture().Place(0, value, value), kRed, 3));
    EXPECT_TRUE(Picture().Has(Picture().Place(0, value, value + 0.1), kRed, 3));
    Turn(Middle(), QPoint(0, 240), Qt::ShiftModifier);
    Leave();
    EXPECT_TRUE(Picture().Has(Picture().Place(0, value, value), kRed, 3));
}

TEST_F(ZRGraphTest, PansWithAHand)
{
    DrawRise();
    ZoomToMiddle();
    graph->SetMode(2);
    Hover(Middle());
    EXPECT_EQ(graph->cursor().shape(), Qt::OpenHandCursor);
    Press(Middle());
    EXPECT_EQ(graph->cursor().shape(), Qt::ClosedHandCursor);
    // To earlier times: values fall.
    const QRect panel = Picture().Panels().front();
    DragTo(Middle() + QPoint(panel.width() / 5, 0));
    Release(Middle() + QPoint(panel.width() / 5, 0));
    EXPECT_EQ(graph->cursor().shape(), Qt::OpenHandCursor);
    Leave();
    EXPECT_TRUE(Picture().Has(Picture().Place(0, 0.5, 0.4), kRed, 3));
    EXPECT_EQ(graph->zoomHistory.size(), 1U);
}

TEST_F(ZRGraphTest, ShowsTheWholeAfterADoubleClick)
{
    DrawRise();
    ZoomToMiddle();
    graph->SetMode(0);
    Mouse(QEvent::MouseButtonDblClick, Middle(), Qt::LeftButton, Qt::LeftButton);
    Release(Middle());
    EXPECT_TRUE(graph->zoomHistory.empty());
}

TEST_F(ZRGraphTest, IsDrivenByKeys)
{
    DrawRise();
    const double records = graph->RecordsPerColumn();
    Key(Qt::Key_2);
    EXPECT_EQ(graph->mode, 1);
    Key(Qt::Key_3);
    EXPECT_EQ(graph->mode, 2);
    Key(Qt::Key_1);
    EXPECT_EQ(graph->mode, 0);
    Key(Qt::Key_Plus, Qt::ShiftModifier);
    EXPECT_LT(graph->RecordsPerColumn(), records);
    const QImage zoomed = Shown();
    Key(Qt::Key_Right);
    EXPECT_NE(Shown(), zoomed);
    Key(Qt::Key_Left);
    EXPECT_EQ(Shown(), zoomed);
    Key(Qt::Key_PageDown);
    const QImage page = Shown();
    EXPECT_NE(page, zoomed);
    Key(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_NE(Shown(), page);
    Key(Qt::Key_Minus, Qt::KeypadModifier);
    Key(Qt::Key_Home);
    EXPECT_EQ(graph->RecordsPerColumn(), records);
    EXPECT_TRUE(graph->zoomHistory.empty());
    Key(Qt::Key_Plus);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(graph->zoomHistory.empty());
    Key(Qt::Key_Plus);
    Key(Qt::Key_Escape);
    EXPECT_TRUE(graph->zoomHistory.empty());
}

TEST_F(ZRGraphTest, TellsTheValuesAtTheCursorOfTheKeyboard)
{
    RecordDay(u"G.U", [](int) { return 230.0; });
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    const QImage before = Shown();
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_NE(Shown(), before);
    EXPECT_TRUE(graph->accessibleDescription().contains("30/12/2002")) << graph->accessibleDescription().toStdString();
    EXPECT_TRUE(graph->accessibleDescription().contains("Voltage 230.0 V"))
        << graph->accessibleDescription().toStdString();
}

TEST_F(ZRGraphTest, LeavesKeysItHasNoUseForToItsWindow)
{
    DrawRise();
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_F5, Qt::NoModifier);
    QApplication::sendEvent(graph, &tab);
    EXPECT_FALSE(tab.isAccepted());
    QKeyEvent left(QEvent::ShortcutOverride, Qt::Key_Delete, Qt::NoModifier);
    left.ignore();
    QApplication::sendEvent(graph, &left);
    EXPECT_TRUE(left.isAccepted());
}

TEST_F(ZRGraphTest, LeavesTheRightButtonToItsParent)
{
    DrawRise();
    Mouse(QEvent::MouseButtonPress, Middle(), Qt::RightButton, Qt::RightButton);
    Mouse(QEvent::MouseButtonRelease, Middle(), Qt::RightButton, Qt::NoButton);
    EXPECT_EQ(parent.rightReleases, 1);
}

TEST_F(ZRGraphTest, SetsMarkersByShiftAndRemovesThemByAKey)
{
    DrawRise();
    const QImage before = Shown();
    Press(Across(0.3), Qt::ShiftModifier);
    Release(Across(0.3), Qt::ShiftModifier);
    Leave();
    const QImage one = Shown();
    EXPECT_NE(one, before);
    Press(Across(0.6), Qt::ShiftModifier);
    Release(Across(0.6), Qt::ShiftModifier);
    Leave();
    const QImage two = Shown();
    EXPECT_NE(two, one);
    // One of them is moved by its line.
    Hover(Across(0.3));
    EXPECT_EQ(graph->cursor().shape(), Qt::SizeHorCursor);
    Drag(Across(0.3), Across(0.4));
    Leave();
    EXPECT_NE(Shown(), two);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Shown(), before);
}

TEST_F(ZRGraphTest, TellsItsParentWhatIsShown)
{
    double records = 0.0;
    parent.onNotice = [&] { records = graph->RecordsPerColumn(); };
    DrawRise();
    EXPECT_GT(parent.notices, 0);
    EXPECT_GT(records, 1.0);
    EXPECT_EQ(records, graph->RecordsPerColumn());
    const auto isTold = [this](const auto& work) {
        const int before = parent.notices;
        work();
        return parent.notices > before;
    };
    EXPECT_TRUE(isTold([this] { Turn(Middle(), QPoint(0, 120)); }));
    EXPECT_TRUE(isTold([this] { graph->SetMode(2); }));
    EXPECT_TRUE(isTold([this] { graph->UndoZoom(); }));
    EXPECT_TRUE(isTold([this] { Press(Middle(), Qt::ShiftModifier); }));
    EXPECT_FALSE(isTold([this] {
        Release(Middle());
        graph->SetMode(7);
        Hover(Middle() + QPoint(30, 0));
        graph->repaint();
    }));
}

TEST_F(ZRGraphTest, IgnoresModesItHasNot)
{
    graph->SetMode(2);
    graph->SetMode(3);
    graph->SetMode(-1);
    EXPECT_EQ(graph->mode, 2);
}

TEST_F(ZRGraphTest, KeepsTheZoomForNewDataOfTheSameRange)
{
    DrawRise();
    ZoomToMiddle();
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    EXPECT_EQ(graph->zoomHistory.size(), 1U);
    graph->Update(kDay, kDay + kHour, &loaded->loggerInfo, nullptr);
    EXPECT_TRUE(graph->zoomHistory.empty());
}

TEST_F(ZRGraphTest, ShowsNothingOfDataItWasNotGiven)
{
    RecordRise();
    Draw({{u"G.U", 0, kRed}});
    graph->Update(kDay, Tomorrow(), nullptr, nullptr);
    EXPECT_EQ(Picture().Count(Picture().Image().rect(), kRed), 0);
    EXPECT_EQ(graph->RecordsPerColumn(), 0.0);
}

// The records are gone while the flag stands: sanitizers tell when one is touched.
TEST_F(ZRGraphTest, TouchesNoRecordsWhileTheDataAreReplaced)
{
    DrawRise();
    graph->SetMode(1);
    const QImage before = Shown();
    Press(Across(0.25));
    DragTo(Across(0.5));
    graph->invalidData = true;
    loaded.reset();
    DragTo(QPoint(200, 100));
    Release(QPoint(200, 100));
    Hover(QPoint(210, 110));
    Turn(QPoint(200, 100), QPoint(0, 120));
    Key(Qt::Key_Plus);
    graph->UndoZoom();
    graph->SetMode(0);
    graph->SetDateText(&FormatDateTime);
    QEvent otherLanguage(QEvent::LanguageChange);
    QApplication::sendEvent(graph, &otherLanguage);
    EXPECT_FALSE(graph->CopyToClipboard(false));
    EXPECT_EQ(graph->RecordsPerColumn(), 0.0);
    parent.resize(650, 420);
    const QImage during = Shown();
    EXPECT_NE(during, before);
    EXPECT_TRUE(graph->zoomHistory.empty());
    parent.resize(600, 400);
    Draw({{u"G.U", 0, kRed, 220.0, 240.0}});
    graph->invalidData = false;
    Hover(QPoint(200, 100));
    Leave();
    EXPECT_TRUE(graph->zoomHistory.empty());
    graph->SetMode(1);
    EXPECT_EQ(Shown(), before);
}

TEST_F(ZRGraphTest, ShowsThePictureItHadPalerWhileTheDataAreReplaced)
{
    DrawRise();
    const QImage before = Shown();
    graph->invalidData = true;
    const QImage during = Shown();
    const QPoint place = Picture().Image().rect().center();
    EXPECT_NE(during, before);
    graph->invalidData = false;
    EXPECT_EQ(Shown(), before);
    EXPECT_TRUE(during.rect().contains(place));
}

TEST_F(ZRGraphTest, TakesADragBackWhenItLosesTheFocus)
{
    DrawRise();
    graph->SetMode(1);
    const QImage before = Shown();
    Press(Across(0.25));
    DragTo(Across(0.75));
    QFocusEvent lost(QEvent::FocusOut);
    QApplication::sendEvent(graph, &lost);
    Release(Across(0.75));
    Leave();
    EXPECT_TRUE(graph->zoomHistory.empty());
    EXPECT_EQ(Shown(), before);
}

TEST_F(ZRGraphTest, TakesADragBackWhenTheButtonWentUpElsewhere)
{
    DrawRise();
    graph->SetMode(1);
    Press(Across(0.25));
    DragTo(Across(0.75));
    Hover(Across(0.8));
    Release(Across(0.8));
    EXPECT_TRUE(graph->zoomHistory.empty());
}

TEST_F(ZRGraphTest, MayBeDestroyedDuringADrag)
{
    for (int mode = 0; mode < 3; ++mode) {
        DrawRise();
        graph->SetMode(mode);
        Press(QPoint(200, 100));
        DragTo(QPoint(300, 120));
        delete graph;
        MakeGraph();
    }
    EXPECT_TRUE(graph->varInfos.empty());
}

TEST_F(ZRGraphTest, PaintsWithoutCurves)
{
    Draw({});
    const QImage picture = Shown();
    EXPECT_EQ(picture.size(), QSize(600, 400));
    EXPECT_EQ(Picture().CountAll(0xFF00FF), 0) << "a place isn't painted";
}

TEST_F(ZRGraphTest, PaintsIntoAPixel)
{
    DrawRise();
    for (const QSize size : {QSize(1, 1), QSize(0, 0), QSize(2, 300), QSize(300, 2), QSize(40, 30)}) {
        parent.resize(size);
        graph->resize(size);
        Hover(QPoint(0, 0));
        Turn(QPoint(0, 0), QPoint(0, 120));
        EXPECT_EQ(Picture(2).Image().width(), std::max(size.width(), 1) * 2);
    }
    graph->resize(600, 400);
    graph->UndoZoom();
    EXPECT_GT(Picture().CountAll(kRed), 100);
}

TEST_F(ZRGraphTest, PaintsTwoHundredCurves)
{
    RecordRise();
    std::vector<Drawn> curves;
    for (int i = 0; i < 200; ++i) {
        curves.push_back({u"G.U", i % 6, ZRGraph::predefinedColors[static_cast<std::size_t>(i % 12)]});
    }
    curves.push_back({u"G.U", 2, kRed});
    Draw(curves);
    EXPECT_EQ(graph->varInfos.size(), 201U);
    EXPECT_GT(Picture().CountAll(kRed), 100);
    Hover(QPoint(300, 200));
    EXPECT_EQ(Shown().size(), QSize(600, 400));
}

TEST_F(ZRGraphTest, BearsValuesOfAnySize)
{
    RecordEvery(3600, u"G.U", {1e300, -1e300, 0, 1, std::numeric_limits<double>::infinity(), 1e300, kMissing, 5});
    Draw({{u"G.U", 0, kRed}});
    EXPECT_GT(Picture().CountAll(kRed), 20);
    Draw({{u"G.U", 0, kRed, 0.0, 10.0}});
    EXPECT_GT(Picture().CountAll(kRed), 1);
    Draw({{u"G.U", 0, kRed, 10.0, 0.0}});
    EXPECT_EQ(Shown().size(), QSize(600, 400));
}

TEST_F(ZRGraphTest, PaintsAPenAsWideAsItIs)
{
    RecordDay(u"G.U", [](int) { return 230.0; });
    const auto heightOf = [this](int width, int scale) {
        Draw({{u"G.U", 0, kRed, 220.0, 240.0, width}});
        const GraphPicture picture = Picture(scale);
        const QRect& panel = picture.Panels().front();
        return picture.Count(QRect(panel.center().x(), panel.top(), 1, panel.height()), kRed);
    };
    EXPECT_NEAR(heightOf(3, 1), 3, 1);
    EXPECT_NEAR(heightOf(9, 1), 9, 1);
    // The softest rows count.
    EXPECT_NEAR(heightOf(3, 2), 7, 1);
}

TEST_F(ZRGraphTest, DrawsAnewAfterPrinting)
{
    DrawRise();
    const QImage before = Shown();
    graph->Regenerate(nullptr, true);
    EXPECT_EQ(Shown(), before);
}

TEST_F(ZRGraphTest, FillsItsWindowAfterItIsResized)
{
    DrawRise();
    parent.resize(800, 500);
    const GraphPicture picture = Picture();
    EXPECT_GT(picture.Panels().front().width(), 600);
    EXPECT_TRUE(picture.Has(picture.Place(0, 0.9, 0.9), kRed));
}

TEST_F(ZRGraphTest, ShowsThatItHasTheFocusOfTheKeyboard)
{
    DrawRise();
    const QImage before = Shown();
    QFocusEvent tab(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(graph, &tab);
    EXPECT_NE(Shown(), before);
    QFocusEvent mouse(QEvent::FocusIn, Qt::MouseFocusReason);
    QApplication::sendEvent(graph, &mouse);
    EXPECT_EQ(Shown(), before);
}

}  // namespace
}  // namespace zr::graph
