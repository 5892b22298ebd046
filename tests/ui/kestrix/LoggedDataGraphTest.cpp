// Windows on logged data that show them as a graph.
#include "hosts/kestrix/ui/StatusLine.h"
#include "LoggedDataFixture.h"
#include "logger/ui/ZRVirtualLoggerDataGraphicViewer.h"
#include "platform/ui/Clipboard.h"
#include "support/SmallDisk.h"
#include "ui/support/KeepPicture.h"

#include <atomic>
#include <QClipboard>
#include <QMimeData>
#include <QToolButton>

namespace zr::desktop {
namespace {

using logger::kGraphViewer;
using logger::kTableViewer;

class LoggedDataGraphTest : public LoggedDataFixture {
protected:
    static ZRVirtualLoggerDataGraphicViewer& Viewer(LoggedDataWindow& window)
    {
        return dynamic_cast<ZRVirtualLoggerDataGraphicViewer&>(*window.Viewer());
    }
    // METER-1's records, all of them, as a graph.
    LoggedDataWindow& OpenGraph()
    {
        StartWithData();
        LoggedDataWindow* const window = OpenFor(u"METER-1");
        EXPECT_NE(window, nullptr);
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        ShowAll(*window);
        window->ShowAs(kGraphViewer);
        Settle();
        return *window;
    }
    // Where the focus is; the window has the keys again before, as a user waits for it.
    static void Press(LoggedDataWindow& window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        ASSERT_EQ(QApplication::focusWidget(), &Viewer(window).Graph());
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    static QToolButton& Button(LoggedDataWindow& window, unsigned id)
    {
        return dynamic_cast<QToolButton&>(*ui::FindControl(window, id));
    }
};

TEST_F(LoggedDataGraphTest, SwitchesByKeysAndShowsWhichIsOn)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    Settle();
    EXPECT_EQ(window->SelectedViewer(), kTableViewer);
    QTest::keyClick(&List(*window), Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(window->SelectedViewer(), kGraphViewer);
    EXPECT_TRUE(Button(*window, kLoggedGraph).isChecked());
    EXPECT_FALSE(Button(*window, kLoggedTable).isChecked());
    Press(*window, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(window->SelectedViewer(), kTableViewer);
    EXPECT_TRUE(Button(*window, kLoggedTable).isChecked());
}

TEST_F(LoggedDataGraphTest, SwitchesByButtons)
{
    LoggedDataWindow& window = OpenGraph();
    EXPECT_TRUE(test::KeepPicture(window.grab().toImage(), "logged-graph.png"));
    QTest::mouseClick(&Button(window, kLoggedTable), Qt::LeftButton);
    EXPECT_EQ(window.SelectedViewer(), kTableViewer);
    QTest::mouseClick(&Button(window, kLoggedGraph), Qt::LeftButton);
    EXPECT_EQ(window.SelectedViewer(), kGraphViewer);
    // The one that is on stays.
    QTest::mouseClick(&Button(window, kLoggedGraph), Qt::LeftButton);
    EXPECT_EQ(window.SelectedViewer(), kGraphViewer);
    EXPECT_TRUE(Button(window, kLoggedGraph).isChecked());
}

TEST_F(LoggedDataGraphTest, SwitchingReadsNothingWhereNothingChangedAndF5Does)
{
    LoggedDataWindow& window = OpenGraph();
    std::atomic<int> blocks = 0;
    m_gate.gate = [&] { return ++blocks > 0; };
    window.ShowAs(kTableViewer);
    EXPECT_EQ(List(window).GetItemCount(), kRecords);
    window.ShowAs(kGraphViewer);
    EXPECT_EQ(blocks, 0);
    Press(window, Qt::Key_F5);
    EXPECT_GT(blocks, 0);
}

TEST_F(LoggedDataGraphTest, SwitchingReadsWhatCouldNotBeReadBefore)
{
    LoggedDataWindow& window = OpenGraph();
    m_gate.gate = [] { return false; };
    window.Reload();
    m_gate.gate = nullptr;
    window.ShowAs(kTableViewer);
    EXPECT_EQ(List(window).GetItemCount(), kRecords);
}

TEST_F(LoggedDataGraphTest, OpensAsItWasSeenLast)
{
    delete &OpenGraph();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->SelectedViewer(), kGraphViewer);
    // Each device by itself.
    LoggedDataWindow* const other = OpenFor(u"METER-2");
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->SelectedViewer(), kTableViewer);
}

TEST_F(LoggedDataGraphTest, ArrowsGoToOtherTimesUntilTheGraphIsZoomed)
{
    LoggedDataWindow& window = OpenGraph();
    const ZRDateTime shown = window.Window().dateFrom;
    Press(window, Qt::Key_Left);
    EXPECT_LT(window.Window().dateFrom, shown);
    Press(window, Qt::Key_Right);
    EXPECT_EQ(window.Window().dateFrom, shown);
    ZRGraph& graph = Viewer(window).Graph();
    Press(window, Qt::Key_Plus);
    Press(window, Qt::Key_Right);
    const graph::Zoom before = graph.InView();
    Press(window, Qt::Key_Left);
    EXPECT_LT(graph.InView().from, before.from);
    EXPECT_EQ(window.Window().dateFrom, shown);
    Press(window, Qt::Key_Left, Qt::AltModifier);
    EXPECT_LT(window.Window().dateFrom, shown);
}

TEST_F(LoggedDataGraphTest, TheStatusLineTellsOfRecordsAndZoom)
{
    LoggedDataWindow& window = OpenGraph();
    const std::string whole = window.Status().toStdString();
    EXPECT_NE(whole.find("40 records"), std::string::npos) << whole;
    EXPECT_EQ(whole.find("zoomed"), std::string::npos) << whole;
    ZRGraph& graph = Viewer(window).Graph();
    Press(window, Qt::Key_Plus);
    Settle();
    ASSERT_FALSE(graph.zoomHistory.empty());
    const std::string zoomed = window.Status().toStdString();
    EXPECT_NE(zoomed.find("zoomed in: "), std::string::npos) << zoomed;
    graph.UndoZoom();
    EXPECT_EQ(window.Status().toStdString(), whole);
}

TEST_F(LoggedDataGraphTest, TheStatusLineTellsThatCurvesAreReduced)
{
    LoggedDataWindow& window = OpenGraph();
    std::vector<LoggerAppend> batch;
    const int series = m_store.OpenSeries(u"METER-1.U1", 1);
    const std::int64_t last = (946684800LL + ZRDateTime::LTC().seconds) / kDay * kDay - 2 * kDay;
    for (int k = 0; k < 20000; ++k) {
        batch.push_back({series, (last + k) * 1000000LL, 2300.0 + k % 100});
    }
    ASSERT_TRUE(m_store.Append(batch));
    window.Reload();
    EXPECT_NE(window.Status().toStdString().find("least and largest values are shown"), std::string::npos)
        << window.Status().toStdString();
}

TEST_F(LoggedDataGraphTest, ExportsDataAndPicture)
{
    LoggedDataWindow& window = OpenGraph();
    for (const char* const name : {"graph.csv", "graph.xlsx", "graph.pdf"}) {
        EXPECT_TRUE(window.ExportTo(m_folder / name)) << name;
        EXPECT_GT(std::filesystem::file_size(m_folder / name), 0U) << name;
    }
    window.ShowAs(kTableViewer);
    EXPECT_TRUE(window.ExportTo(m_folder / "table.csv"));
    EXPECT_EQ(m_folder.Read("graph.csv"), m_folder.Read("table.csv"));
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(LoggedDataGraphTest, CopiesAPictureByItsKey)
{
    LoggedDataWindow& window = OpenGraph();
    QApplication::clipboard()->clear();
    Press(window, Qt::Key_C, Qt::ControlModifier);
    ASSERT_EQ(m_asked.size(), 1U);
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasImage());
}

TEST_F(LoggedDataGraphTest, ShowsALoadThatFailsAndGoesOn)
{
    LoggedDataWindow& window = OpenGraph();
    m_gate.gate = [] { return false; };
    window.Reload();
    EXPECT_NE(window.Status().toStdString().find("cannot be read"), std::string::npos) << window.Status().toStdString();
    EXPECT_FALSE(window.grab().isNull());
    m_gate.gate = nullptr;
    window.Reload();
    EXPECT_EQ(window.Status().toStdString().find("cannot be read"), std::string::npos);
}

TEST_F(LoggedDataGraphTest, TellsWhenTheClipboardCannotBeOpened)
{
    LoggedDataWindow& window = OpenGraph();
    ui::SetClipboardHook([] { return false; });
    for (const int kind : {kGraphViewer, kTableViewer}) {
        window.ShowAs(kind);
        Settle();
        m_asked.clear();
        QTest::mouseClick(&Button(window, logger::kCommandCopy), Qt::LeftButton);
        ASSERT_EQ(m_asked.size(), 1U);
        EXPECT_NE(m_asked[0].find(u"clipboard cannot be opened"), std::u16string::npos);
    }
    ui::SetClipboardHook(nullptr);
}

TEST_F(LoggedDataGraphTest, TellsWhenTheDiskHasNoRoomForItsPicture)
{
    LoggedDataWindow& window = OpenGraph();
    m_folder.Write("graph.pdf", "old");
    {
        const test::SmallDisk disk(1024);
        EXPECT_FALSE(window.ExportTo(m_folder / "graph.pdf"));
    }
    ASSERT_EQ(m_asked.size(), 1U);
    EXPECT_NE(m_asked[0].find(u"graph.pdf was not written"), std::u16string::npos);
    EXPECT_EQ(m_folder.Read("graph.pdf"), "old");
}

TEST_F(LoggedDataGraphTest, ShowsTheButtonsThatFitFromTheFirst)
{
    LoggedDataWindow& window = OpenGraph();
    for (const unsigned id : {logger::kCommandPrevious, logger::kCommandNext, logger::kCommandGoTo,
                              logger::kCommandGroupBy, logger::kCommandPeriod, logger::kCommandCopy}) {
        EXPECT_EQ(Button(window, id).visibleRegion(), QRegion(Button(window, id).rect())) << id;
    }
}

}  // namespace
}  // namespace zr::desktop
