#include "logger/ui/ZRVirtualLoggerDataGraphicViewer.h"

#include "logger/GraphMenu.h"
#include "ui/logger/ExplorerFixture.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>

namespace zr::logger {
namespace {

class ZRVirtualLoggerDataGraphicViewerTest : public ExplorerFixture {
protected:
    ZRVirtualLoggerDataGraphicViewerTest()
    {
        ui::SetMessageBoxHook([this](const std::u16string& text, unsigned style) {
            messages.push_back(Utf16ToUtf8(ZRBasicString(text)));
            styles.push_back(style);
            return answer;
        });
    }

    // The week from 30 December 2002 on, as a graph of every record.
    void OpenGraph(const std::vector<ZRBasicString>& variables = {u"M.U", u"M.E", u"M.PF"})
    {
        window.Create(nullptr);
        window.Setup(Info(variables), &selected);
        window.SelectViewer(kGraphViewer);
        window.resize(760, 420);
        window.show();
        QApplication::processEvents();
        window.SetupData(Date(6, 1, 2003), kGroupByWeek, kEveryRecord, false);
    }
    void RecordDays()
    {
        for (int i = 0; i < 7 * 96; ++i) {
            const ZRDateTime time(kDay.seconds + static_cast<std::uint32_t>(i) * 900, 0);
            Record(u"M.U", time, 2300 + 40 * std::sin(i / 15.0));
            Record(u"M.E", time, 1000.0 * i);
            Record(u"M.PF", time, i % 96 < 48 ? 0.9 : -0.9);
        }
    }

    ZRVirtualLoggerDataGraphicViewer& Viewer()
    {
        return dynamic_cast<ZRVirtualLoggerDataGraphicViewer&>(*window.Viewer());
    }
    ZRGraph& Graph() { return Viewer().Graph(); }

    // As the right button does; the menu that opens.
    CMenu* RightClick(QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse)
    {
        const QPoint place = Graph().rect().center();
        QContextMenuEvent event(reason, place, Graph().mapToGlobal(place));
        QApplication::sendEvent(&Graph(), &event);
        return OpenMenu();
    }
    void ChooseFromMenu(unsigned id)
    {
        CMenu* const menu = RightClick();
        ASSERT_NE(menu, nullptr);
        QAction* const action = menu->FindItem(id);
        ASSERT_NE(action, nullptr) << id;
        QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // The numbers of a menu's entries, 0 for a separator.
    static std::vector<unsigned> Entries(const CMenu& menu)
    {
        std::vector<unsigned> ids;
        for (const QAction* action : menu.actions()) {
            ids.push_back(action->isSeparator() ? 0U : action->objectName().toUInt());
        }
        return ids;
    }
    void Mouse(QEvent::Type type, int x, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        const QPoint place = Graph().rect().center() + QPoint(x, 0);
        QMouseEvent event(type, place, Graph().mapToGlobal(place), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(&Graph(), &event);
    }
    void DragInGraph()
    {
        Mouse(QEvent::MouseButtonPress, -100, Qt::LeftButton, Qt::LeftButton);
        for (int x = -80; x <= 100; x += 20) {
            Mouse(QEvent::MouseMove, x, Qt::NoButton, Qt::LeftButton);
        }
        Mouse(QEvent::MouseButtonRelease, 100, Qt::LeftButton, Qt::NoButton);
    }
    void Zoom()
    {
        ChooseFromMenu(kCommandZoomMode);
        DragInGraph();
        ASSERT_EQ(Graph().zoomHistory.size(), 1U);
    }
    QString File() const { return QString::fromStdString((folder / "graph.pdf").string()); }

    int answer = ui::IDNO;
};

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TheGraphFillsTheViewer)
{
    OpenGraph();
    EXPECT_EQ(ui::ControlId(Graph()), 123U);
    EXPECT_EQ(Graph().geometry(), Viewer().rect());
    window.resize(500, 300);
    QApplication::processEvents();
    EXPECT_EQ(Graph().geometry(), Viewer().rect());
    EXPECT_EQ(selected, kGraphViewer);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, HasACurveForEachVariable)
{
    RecordDays();
    OpenGraph();
    ASSERT_EQ(Graph().varInfos.size(), 3U);
    EXPECT_EQ(Graph().varInfos[0]->index, 0);
    EXPECT_EQ(Graph().varInfos[1]->index, 2);
    EXPECT_EQ(Graph().varInfos[2]->zone, 2);
    EXPECT_TRUE(test::KeepPicture(window.grab().toImage(), "graph-viewer.png"));
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, ShowsNoCurvesWithoutVariables)
{
    OpenGraph({});
    EXPECT_TRUE(Graph().varInfos.empty());
    EXPECT_FALSE(window.grab().isNull());
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TheMenuOffersNoZoomsToUndoBeforeThereAreAny)
{
    RecordDays();
    OpenGraph();
    CMenu* const menu = RightClick();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(Entries(*menu), (std::vector<unsigned>{101, 102, 103, 0, 106, 107}));
    EXPECT_TRUE(menu->FindItem(101)->isChecked());
    EXPECT_FALSE(menu->FindItem(102)->isChecked());
    EXPECT_FALSE(menu->FindItem(103)->isEnabled());
    EXPECT_EQ(menu->FindItem(107)->text(), "Print preview...");
    EXPECT_TRUE(test::KeepPicture(menu->grab().toImage(), "graph-menu.png"));
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TheMenuOpensByItsKeyToo)
{
    OpenGraph();
    EXPECT_NE(RightClick(QContextMenuEvent::Keyboard), nullptr);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TheMenuChoosesWhatTheMouseDoes)
{
    RecordDays();
    OpenGraph();
    ChooseFromMenu(kCommandZoomMode);
    EXPECT_EQ(Graph().mode, 1);
    EXPECT_TRUE(RightClick()->FindItem(102)->isChecked());
    OpenMenu()->close();
    ChooseFromMenu(kCommandTooltipMode);
    EXPECT_EQ(Graph().mode, 0);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TheMenuUndoesZoomsAndPansOnceThereIsOne)
{
    RecordDays();
    OpenGraph();
    Zoom();
    CMenu* const menu = RightClick();
    EXPECT_EQ(Entries(*menu), (std::vector<unsigned>{101, 102, 103, 0, 104, 105, 0, 106, 107}));
    EXPECT_TRUE(menu->FindItem(103)->isEnabled());
    menu->close();
    ChooseFromMenu(kCommandPanMode);
    EXPECT_EQ(Graph().mode, 2);
    ChooseFromMenu(kCommandUndoLastZoom);
    EXPECT_TRUE(Graph().zoomHistory.empty());
    Zoom();
    DragInGraph();
    ChooseFromMenu(kCommandUndoZoom);
    EXPECT_TRUE(Graph().zoomHistory.empty());
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TellsTheExplorerThatAnotherStretchIsShown)
{
    RecordDays();
    OpenGraph();
    const int before = window.graphShown;
    Zoom();
    EXPECT_GT(window.graphShown, before);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, OptionsRunTheDialogAndLoadAnew)
{
    int asked = 0;
    window.graphDialog = [&](ZRGraphProfile& copy, ZRGraphProfile&, ZRLoggerInfo&) {
        ++asked;
        copy.DeleteVariable(0);
        return true;
    };
    RecordDays();
    OpenGraph();
    const int before = window.shown;
    ChooseFromMenu(kCommandGraphOptions);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(Graph().varInfos.size(), 2U);
    EXPECT_GT(window.shown, before);
    // All are still read.
    EXPECT_EQ(window.Data()->loggerInfo.variables.size(), 3U);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, WithoutADialogTheCurvesStayAsTheyAre)
{
    OpenGraph();
    EXPECT_FALSE(Viewer().OnConfig());
    EXPECT_EQ(Graph().varInfos.size(), 3U);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, InvalidDataAreTheGraphsAlone)
{
    OpenGraph();
    Viewer().SetInvalidData(true);
    EXPECT_TRUE(Graph().invalidData);
    EXPECT_FALSE(Viewer().InvalidData());
    EXPECT_FALSE(window.grab().isNull());
    Viewer().SetInvalidData(false);
    EXPECT_FALSE(Graph().invalidData);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, IsPaintedWhileTheDataAreReplaced)
{
    RecordDays();
    OpenGraph();
    int painted = 0;
    gate.gate = [&] { return true; };
    QTimer::singleShot(0, &window, [&] { painted += window.grab().isNull() ? 0 : 1; });
    window.SetupData(Date(6, 1, 2003), kGroupByMonth, kEveryRecord, true);
    QApplication::processEvents();
    EXPECT_EQ(painted, 1);
    EXPECT_FALSE(Graph().invalidData);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, ACopyIsAskedForBlackAndWhite)
{
    RecordDays();
    OpenGraph();
    QApplication::clipboard()->clear();
    answer = ui::IDYES;
    window.OnEditCopy();
    ASSERT_EQ(messages, std::vector<std::string>{"Copy the graph in black and white?"});
    EXPECT_EQ(styles, std::vector<unsigned>{36});
    const auto colours = [] {
        const QImage picture = QApplication::clipboard()->image();
        EXPECT_FALSE(picture.isNull());
        int coloured = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QRgb pixel = picture.pixel(x, y);
                const auto [least, most] = std::minmax({qRed(pixel), qGreen(pixel), qBlue(pixel)});
                coloured += most - least > 40 ? 1 : 0;
            }
        }
        return coloured;
    };
    EXPECT_EQ(colours(), 0);
    answer = ui::IDNO;
    window.OnEditCopy();
    EXPECT_GT(colours(), 100);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, IsPrintedOnOnePage)
{
    RecordDays();
    OpenGraph();
    ASSERT_EQ(window.PrintToFile(File()), ZRPrintPreviewDialog::Printed::Done);
    QFile file(File());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("%PDF"));
    const auto output = [this](const QString& program, const QStringList& before) {
        QProcess reader;
        reader.start(program,
                     before + QStringList(File()) + (program == "pdftotext" ? QStringList("-") : QStringList()));
        EXPECT_TRUE(reader.waitForFinished()) << program.toStdString() << " is needed";
        return QString::fromUtf8(reader.readAllStandardOutput());
    };
    EXPECT_TRUE(output("pdfinfo", {}).contains(QRegularExpression("Pages: +1\n")));
    const QString words = output("pdftotext", {"-layout"});
    for (const char* text : {"Voltage", "V", "Energy", "kWh", "Power factor", "PF", "30/12", "05/01", "2002", "2003"}) {
        EXPECT_TRUE(words.contains(text)) << text << " is not in:\n" << words.toStdString();
    }
    // Nobody was asked, and the file takes colours.
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(Viewer().Layout().PrintColor(), kPrintColour);
}

#ifndef _WIN32
TEST_F(ZRVirtualLoggerDataGraphicViewerTest, AsksAColourPrinterForBlackAndWhite)
{
    RecordDays();
    OpenGraph();
    answer = ui::IDYES;
    QTimer::singleShot(0, &window, [&] {
        auto* const dialog = dynamic_cast<QPrintDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->printer()->setColorMode(QPrinter::Color);
        if (auto* const name = dialog->findChild<QLineEdit*>("filename"); name != nullptr) {
            name->setText(File());
        }
        dialog->accept();
    });
    ui::SendCommand(&window, ui::ID_FILE_PRINT, 0, nullptr);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0], "The printer can print in colour.\nPrint in black and white all the same?");
    EXPECT_EQ(styles[0], 36U);
    EXPECT_EQ(Viewer().Layout().PrintColor(), kPrintBlackAndWhite);
    // A preview after that is as the device prints, again.
    ASSERT_EQ(window.PrintToFile(File()), ZRPrintPreviewDialog::Printed::Done);
    EXPECT_EQ(Viewer().Layout().PrintColor(), kPrintColour);
}
#endif

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, PrintsNothingWhenTheDialogIsCancelled)
{
    OpenGraph();
    ExpectNothingPrintedWhenCancelled();
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TheMenuShowsAPreview)
{
    RecordDays();
    OpenGraph();
    bool wasShown = false;
    CMenu* const menu = RightClick();
    ASSERT_NE(menu, nullptr);
    QTimer::singleShot(0, &window, [&] {
        auto* const preview = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(preview, nullptr);
        wasShown = true;
        EXPECT_TRUE(test::KeepPicture(preview->grab().toImage(), "graph-preview.png"));
        preview->close();
    });
    menu->FindItem(kCommandGraphPrint)->trigger();
    EXPECT_TRUE(wasShown);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, TableAndGraphShareTheVariablesWanted)
{
    window.profileDialog = [](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo&) {
        copy.DeleteVariable(1);
        return true;
    };
    OpenGraph();
    EXPECT_EQ(Graph().varInfos.size(), 3U);
    window.SelectViewer(kTableViewer);
    window.OnConfig();
    window.SelectViewer(kGraphViewer);
    ASSERT_EQ(Graph().varInfos.size(), 2U);
    EXPECT_EQ(Utf16ToUtf8(Viewer().Layout().Profile()[0].Name), "M.U");
    EXPECT_EQ(Utf16ToUtf8(Viewer().Layout().Profile()[1].Name), "M.PF");
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, KeepsItsCurvesWhileATableIsShown)
{
    window.graphDialog = [](ZRGraphProfile& copy, ZRGraphProfile&, ZRLoggerInfo&) {
        copy[0].LineType = 0x0302;
        copy[0].Color = 0x123456;
        copy[1].Zone = 0;
        return true;
    };
    OpenGraph();
    window.OnConfig();
    window.SelectViewer(kTableViewer);
    window.SelectViewer(kGraphViewer);
    EXPECT_EQ(Graph().varInfos[0]->pen.lopnStyle, 2U);
    EXPECT_EQ(Graph().varInfos[0]->pen.lopnWidth, 3);
    EXPECT_EQ(Graph().varInfos[0]->pen.lopnColor, 0x123456UL);
    EXPECT_EQ(Graph().varInfos[1]->zone, 0);
    EXPECT_EQ(Graph().varInfos[2]->zone, 1);
}

TEST_F(ZRVirtualLoggerDataGraphicViewerTest, SwitchingBetweenTableAndGraphReadsNothingWhereNothingChanged)
{
    RecordDays();
    std::atomic<int> blocks = 0;
    gate.gate = [&] { return ++blocks > 0; };
    OpenGraph();
    ASSERT_GT(blocks, 0);
    blocks = 0;
    for (const int kind : {kTableViewer, kGraphViewer, kTableViewer}) {
        window.SelectViewer(kind, Reading::WhereNeeded);
    }
    EXPECT_EQ(blocks, 0);
    EXPECT_EQ(dynamic_cast<ZRVirtualLoggerDataTableViewer&>(*window.Viewer()).Table().Count(), 7 * 96);
    window.Reload();
    EXPECT_GT(blocks, 0);
}

}  // namespace
}  // namespace zr::logger
