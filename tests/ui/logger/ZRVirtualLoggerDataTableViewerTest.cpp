#include "logger/ui/ZRVirtualLoggerDataTableViewer.h"

#include "logger/SuiteKey.h"
#include "platform/ui/CDC.h"
#include "ui/logger/ExplorerFixture.h"

#include <QPainter>
#include <QPrinter>
#include <QScrollBar>
#include <QTimer>

namespace zr::logger {
namespace {

using ZRVirtualLoggerDataTableViewerTest = ExplorerFixture;

TEST_F(ZRVirtualLoggerDataTableViewerTest, PutsTheCaptionAboveTheList)
{
    Open();
    const auto* const caption = dynamic_cast<const QLabel*>(ui::FindControl(Viewer(), ui::kTableCaption));
    ASSERT_NE(caption, nullptr);
    EXPECT_EQ(caption->geometry(), QRect(0, 0, Viewer().width(), caption->fontMetrics().height()));
    EXPECT_TRUE(caption->alignment().testFlag(Qt::AlignHCenter));
    EXPECT_EQ(ui::ControlId(List()), 150U);
    EXPECT_EQ(List().geometry(), QRect(0, caption->height(), Viewer().width(), Viewer().height() - caption->height()));
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, HasAColumnForTheTimeAndEachVariable)
{
    Open();
    ASSERT_EQ(List().GetColumnCount(), 4);
    EXPECT_EQ(Title(0), "Date and time");
    EXPECT_EQ(Title(1), "M Voltage (V)");
    EXPECT_EQ(Title(3), "M Power factor (PF)");
    EXPECT_EQ(List().GetColumnWidth(1), 100);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, MakesTheTimeColumnAsWideAsADateAtFirst)
{
    Open();
    EXPECT_EQ(List().GetColumnWidth(0), List().GetStringWidth(u"30-12-2002 23:58"));
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, KeepsTheWidthOfTheTimeColumnFromWindowToWindow)
{
    Open();
    List().horizontalHeader()->resizeSection(0, 211);
    window.close();
    ExplorerWindow another;
    another.Create(nullptr);
    another.Setup(Info({u"M.U"}), nullptr);
    another.SelectViewer(kTableViewer);
    EXPECT_EQ(dynamic_cast<ZRVirtualLoggerDataTableViewer&>(*another.Viewer()).List()->GetColumnWidth(0), 211);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, ShowsTheTimeAloneInTheRowsOfADay)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    window.SetupData(Date(31, 12, 2002), kGroupByMonth, kEveryRecord, false);
    EXPECT_EQ(Cell(0, 0), "30/12/2002 00:00:00");
    window.SetupData(Date(31, 12, 2002), kGroupByDay, kEveryRecord, false);
    EXPECT_EQ(Cell(0, 0), "00:00:00");
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, ShowsAPowerFactorBelowTheLimitAsOne)
{
    Record(u"M.PF", kDay, -1.0);
    OpenWeek();
    EXPECT_EQ(Cell(0, 3), "1.000");
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, AnswersTheListOnlyWhatItAsksFor)
{
    RecordVoltages(kDay, {2301});
    OpenWeek();
    const ui::NMLVDISPINFO other{{&List(), ui::kTableList, ui::LVN_GETDISPINFO}, 0x0002, 0, 1, u"as it was"};
    EXPECT_TRUE(ui::SendNotify(&Viewer(), other.hdr));
    EXPECT_EQ(other.text, u"as it was");
    const ui::NMLVDISPINFO asked{{&List(), ui::kTableList, ui::LVN_GETDISPINFO}, ui::LVIF_TEXT, 0, 1, {}};
    EXPECT_TRUE(ui::SendNotify(&Viewer(), asked.hdr));
    EXPECT_EQ(asked.text, u"230.1");
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, HasNoRowsWhileTheDataAreInvalid)
{
    RecordVoltages(kDay, {2301, 2302});
    OpenWeek();
    Viewer().SetInvalidData(true);
    EXPECT_TRUE(Viewer().InvalidData());
    EXPECT_EQ(List().GetItemCount(), 0);
    EXPECT_EQ(Cell(0, 0), "");
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, CarriesColumnsThatTheUserDraggedIntoTheSettings)
{
    Open();
    List().SetColumnOrder(3, 1);
    List().horizontalHeader()->resizeSection(3, 64);
    window.close();
    const XmlNode* const entry = window.Config().root->Node(u"Table/VarSetup?Var=M.PF?");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->Value(u"Index", u""), u"0");
    EXPECT_EQ(entry->Value(u"Width", u""), u"64");
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, ScrollsThroughItsRowsByKeys)
{
    RecordVoltages(kDay, std::vector<double>(1000, 2300));
    OpenWeek();
    List().setFocus();
    QTest::keyClick(&List(), Qt::Key_End);
    EXPECT_EQ(List().currentIndex().row(), 999);
    EXPECT_EQ(List().verticalScrollBar()->value(), List().verticalScrollBar()->maximum());
    QTest::keyClick(&List(), Qt::Key_PageUp);
    const int row = List().currentIndex().row();
    EXPECT_LT(row, 999);
    QTest::keyClick(&List(), Qt::Key_PageDown);
    EXPECT_EQ(List().currentIndex().row(), 999);
    QTest::keyClick(&List(), Qt::Key_Home);
    EXPECT_EQ(List().currentIndex().row(), 0);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, SelectsWholeRows)
{
    RecordVoltages(kDay, {2301, 2302, 2303, 2304});
    OpenWeek();
    List().setFocus();
    const auto click = [this](int row, Qt::KeyboardModifiers keys) {
        QTest::mouseClick(List().viewport(), Qt::LeftButton, keys,
                          List().visualRect(List().model()->index(row, 1)).center());
    };
    click(0, Qt::NoModifier);
    click(1, Qt::ShiftModifier);
    click(3, Qt::ControlModifier);
    auto ranges = List().GetSelectedRanges();
    std::sort(ranges.begin(), ranges.end());
    EXPECT_EQ(ranges, (std::vector<std::pair<int, int>>{{0, 1}, {3, 3}}));
    QTest::keyClick(&List(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(List().GetSelectedRanges(), (std::vector<std::pair<int, int>>{{0, 3}}));
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, LosesTheSelectionWithTheRows)
{
    RecordVoltages(kDay, {2301, 2302});
    OpenWeek();
    List().selectAll();
    window.Reload();
    EXPECT_TRUE(List().GetSelectedRanges().empty());
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, SearchesNoRowByItsLetters)
{
    RecordVoltages(kDay, std::vector<double>(1000, 2300));
    OpenWeek();
    window.SetupData(Date(31, 12, 2002), kGroupByDay, kEveryRecord, false);
    List().setFocus();
    QTest::keyClick(&List(), Qt::Key_Home);
    QTest::keyClicks(&List(), "01");
    EXPECT_EQ(List().currentIndex().row(), 0);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, AsksForASetupAndADeviceContextToPrintOn)
{
    Open();
    QPrinter printer;
    CPrintDialog dialog(printer, nullptr);
    CPrintInfo info(dialog);
    QTimer::singleShot(0, &window, [] {
        auto* const shown = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(shown, nullptr);
        shown->reject();
    });
    EXPECT_EQ(Viewer().OnPreparePrinting(&info), 0);
    EXPECT_EQ(dialog.m_flags, 0x140U);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, ContinuesPrintingUntilTheLastPage)
{
    RecordVoltages(kDay, std::vector<double>(200, 2300));
    OpenWeek();
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFileName(QString::fromStdString((folder / "pages.pdf").string()));
    QPainter painter(&printer);
    CDC dc(painter, printer);
    CPrintDialog dialog(printer, nullptr);
    CPrintInfo info(dialog);
    info.m_rectDraw = QRect(0, 0, dc.GetDeviceCaps(ui::HORZRES), dc.GetDeviceCaps(ui::VERTRES));
    Viewer().OnBeginPrinting(&dc, &info);
    ASSERT_GT(info.GetMaxPage(), 1U);
    info.m_bContinuePrinting = false;
    Viewer().Print(&dc, &info);
    EXPECT_TRUE(info.m_bContinuePrinting);
    info.m_nCurPage = info.GetMaxPage();
    Viewer().Print(&dc, &info);
    EXPECT_FALSE(info.m_bContinuePrinting);
    Viewer().OnEndPrinting(&dc, &info);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, WritesItsCaptionInTheFontOfTheList)
{
    QFont large = QApplication::font();
    large.setPixelSize(31);
    QApplication::setFont(large, "QTableView");
    Open();
    EXPECT_EQ(ui::FindControl(Viewer(), ui::kTableCaption)->font().pixelSize(), 31);
    QApplication::setFont(QApplication::font(), "QTableView");
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, LetsTheUserDragColumns)
{
    Open();
    QHeaderView& header = *List().horizontalHeader();
    const auto middle = [&](int column) {
        return QPoint(header.sectionViewportPosition(column) + header.sectionSize(column) / 2, header.height() / 2);
    };
    const QPoint from = middle(3);
    const QPoint to = middle(1) - QPoint(header.sectionSize(1) / 4, 0);
    QTest::mousePress(header.viewport(), Qt::LeftButton, Qt::NoModifier, from);
    QTest::mouseMove(header.viewport(), (from + to) / 2);
    QTest::mouseMove(header.viewport(), to);
    QTest::mouseRelease(header.viewport(), Qt::LeftButton, Qt::NoModifier, to);
    EXPECT_EQ(List().GetColumnOrder(3), 1);
    EXPECT_EQ(List().GetColumnOrder(1), 2);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, NeitherSortsNorSelectsByItsTitles)
{
    RecordVoltages(kDay, {2302, 2301});
    OpenWeek();
    QHeaderView& header = *List().horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(header.sectionViewportPosition(1) + 20, header.height() / 2));
    EXPECT_TRUE(List().GetSelectedRanges().empty());
    EXPECT_EQ(Cell(0, 1), "230.2");
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, HoldsWidthsOfTheSettingsWithinLimits)
{
    window.Create(nullptr);
    XmlNode* const vars = window.Config().root->NewChild(u"Vars");
    XmlNode* const table = window.Config().root->NewChild(u"Table");
    const std::vector<std::pair<const wchar*, const wchar*>> widths = {
        {u"M.U", u"99999999999"}, {u"M.E", u"-5"}, {u"M.PF", u"12 pixels"}};
    for (const auto& [name, width] : widths) {
        vars->NewChild(u"Var")->SetValue(u"Name", name);
        XmlNode* const entry = table->NewChild(u"VarSetup");
        entry->SetValue(u"Var", name);
        entry->SetValue(u"Index", u"7");
        entry->SetValue(u"Width", width);
    }
    Open();
    EXPECT_EQ(List().GetColumnWidth(1), kMaxColumnWidth);
    EXPECT_EQ(List().GetColumnWidth(2), 0);
    EXPECT_EQ(List().GetColumnWidth(3), 12);
    EXPECT_EQ(List().GetColumnOrder(3), 3);
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, ShowsNamesAsTheyStand)
{
    const std::u16string longName(10000, u'W');
    test::LiveDevice odd(
        u"N", {Described(u"X", u"<b>a & \"c\"</b>", 1, 0, 0, 0), Described(u"Y", longName.c_str(), 1, 0, 0, 0)});
    Record(u"N.X", kDay, 1);
    Open({u"N.X", u"N.Y"});
    EXPECT_EQ(Title(1), "N <b>a & \"c\"</b> (V)");
    EXPECT_EQ(List().model()->headerData(1, Qt::Horizontal, Qt::ToolTipRole).toString(),
              "<p>N &lt;b&gt;a &amp; &quot;c&quot;&lt;/b&gt; (V)</p>");
    EXPECT_EQ(Title(2).size(), 10000U + 6);
    // Three lines at most.
    EXPECT_LT(List().horizontalHeader()->height(), 5 * List().fontMetrics().lineSpacing());
    EXPECT_FALSE(window.grab().isNull());
}

TEST_F(ZRVirtualLoggerDataTableViewerTest, BreaksLongTitlesIntoLines)
{
    Open({u"M.U"});
    const int oneLine = List().horizontalHeader()->height();
    List().horizontalHeader()->resizeSection(1, 60);
    QApplication::processEvents();
    EXPECT_GT(List().horizontalHeader()->height(), oneLine);
}

}  // namespace
}  // namespace zr::logger
