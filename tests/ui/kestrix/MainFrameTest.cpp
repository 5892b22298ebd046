#include "DesktopFixture.h"
#include "diagnostics/DiagnosticsIds.h"
#include "diagnostics/ui/CDebugDlgBar.h"
#include "hosts/kestrix/ui/DevicePageView.h"
#include "hosts/kestrix/ui/GroupPageView.h"
#include "hosts/kestrix/ui/InfoDlg.h"
#include "platform/ProcessLock.h"
#include "platform/ui/CDialog.h"
#include "platform/ui/CListCtrl.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "ui/support/FindWindow.h"

#include <cstring>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QStatusBar>
#include <QTest>
#include <QToolButton>

namespace zr::desktop {
namespace {

class MainFrameTest : public DesktopFixture {
protected:
    ZRValueControl* NumberOf(const QString& reference) const
    {
        for (auto* const control : test::FindWindows<ZRValueControl>(*m_frame->Page())) {
            if (control->toolTip().endsWith(reference)) {
                return control;
            }
        }
        return nullptr;
    }

    QString MarkText() const { return m_frame->findChild<QLabel*>(QString::number(kSelectionText))->text(); }

    CListCtrl* WarningList() const { return test::FindWindow<CListCtrl>(*m_frame, kWarningList); }
};

TEST_F(MainFrameTest, ShowsThePageOfTheFirstDevice)
{
    Start();
    EXPECT_EQ(ShownNode(), u"METER-1");
    ASSERT_NE(m_frame->Page(), nullptr);
    EXPECT_NE(dynamic_cast<DevicePageView*>(m_frame->Page()), nullptr);
    // Every variable, and a bar for each of the 13 that have one.
    const auto table = ZRDeviceDriver::LockDriver(u"METER-1", false)->Store();
    EXPECT_EQ(m_frame->Page()->ValueCount(), table->Table().Size() + 13);
}

TEST_F(MainFrameTest, EveryValueOfAPageHasRoomOfItsOwn)
{
    Start();
    for (const int width : {700, 1024, 1600}) {
        m_frame->resize(width, 700);
        Settle();
        const auto controls = test::FindWindows<CWnd>(*m_frame->Page(), Qt::FindDirectChildrenOnly);
        ASSERT_FALSE(controls.isEmpty());
        for (int i = 0; i < controls.size(); ++i) {
            EXPECT_TRUE(m_frame->Page()->rect().contains(controls[i]->geometry())) << width;
            for (int j = i + 1; j < controls.size(); ++j) {
                EXPECT_FALSE(controls[i]->geometry().intersects(controls[j]->geometry()))
                    << width << " " << i << " " << j;
            }
        }
    }
}

TEST_F(MainFrameTest, ArrowKeysInTheTreeChangeThePage)
{
    Start();
    m_frame->Tree().setFocus();
    QTest::keyClick(&m_frame->Tree(), Qt::Key_Down);
    EXPECT_EQ(ShownNode(), u"METER-2");
    QTest::keyClick(&m_frame->Tree(), Qt::Key_Home);
    EXPECT_EQ(ShownNode(), u"North");
    EXPECT_NE(dynamic_cast<GroupPageView*>(m_frame->Page()), nullptr);
}

TEST_F(MainFrameTest, AGroupShowsItsDevicesSideBySide)
{
    Start();
    ASSERT_TRUE(m_frame->ShowNode(0));
    m_frame->resize(1400, 700);
    Settle();
    Write(u"METER-1", u"U1", 2301);
    Write(u"METER-2", u"U1", 2412);
    m_frame->UpdateAll();
    const ZRValueControl* const first = NumberOf("METER-1.U1");
    const ZRValueControl* const second = NumberOf("METER-2.U1");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->y(), second->y());
    EXPECT_LT(first->x(), second->x());
    EXPECT_EQ(first->SpokenText(), "2,301.0");
}

TEST_F(MainFrameTest, ValuesFollowTheirDevice)
{
    Start();
    Write(u"METER-1", u"F", 49.98);
    m_frame->UpdateAll();
    ASSERT_NE(NumberOf("METER-1.F"), nullptr);
    EXPECT_EQ(NumberOf("METER-1.F")->SpokenText(), "49.98");
}

TEST_F(MainFrameTest, ASelectedValueShowsItsLowAndHighSinceStart)
{
    Start();
    for (const double value : {49.97, 50.03, 50.0}) {
        Write(u"METER-1", u"F", value);
        m_frame->UpdateAll();
    }
    ZRValueControl* const frequency = NumberOf("METER-1.F");
    ASSERT_NE(frequency, nullptr);
    QTest::mouseClick(frequency, Qt::LeftButton);
    ASSERT_TRUE(m_frame->Page()->Selection().has_value());
    EXPECT_EQ(MarkText(), "low 49.97 Hz, high 50.03 Hz since start");
    QTest::mouseClick(frequency, Qt::LeftButton);
    EXPECT_FALSE(m_frame->Page()->Selection().has_value());
}

TEST_F(MainFrameTest, OneValueIsSelectedAtATime)
{
    Start();
    QTest::mouseClick(NumberOf("METER-1.F"), Qt::LeftButton);
    QTest::mouseClick(NumberOf("METER-1.P"), Qt::LeftButton);
    EXPECT_FALSE(NumberOf("METER-1.F")->Selected());
    EXPECT_TRUE(NumberOf("METER-1.P")->Selected());
    EXPECT_EQ(m_frame->Page()->Selection()->name, u"P");
}

TEST_F(MainFrameTest, ForgettingAMarkBeginsItAnew)
{
    Start();
    for (const double value : {49.97, 50.03, 50.0}) {
        Write(u"METER-1", u"F", value);
        m_frame->UpdateAll();
    }
    QTest::mouseClick(NumberOf("METER-1.F"), Qt::LeftButton);
    Command(kCmdForgetMark);
    EXPECT_EQ(MarkText(), "low 50.00 Hz, high 50.00 Hz since start");
}

TEST_F(MainFrameTest, CopiesTheLinkInThreeForms)
{
    Start();
    QTest::mouseClick(NumberOf("METER-1.F"), Qt::LeftButton);
    QTest::keyClick(m_frame.get(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "=KESTRIX|'METER-1'!F");
    Command(kCmdLinkFunction);
    EXPECT_EQ(QApplication::clipboard()->text(), "=DDE(\"KESTRIX\";\"METER-1\";\"F\")");
    Command(kCmdLinkName);
    EXPECT_EQ(QApplication::clipboard()->text(), "METER-1.F");
    EXPECT_EQ(m_frame->statusBar()->currentMessage(), "Copied: METER-1.F");
}

TEST_F(MainFrameTest, CopiesNothingWhileNothingIsSelected)
{
    Start();
    QApplication::clipboard()->setText("before");
    Command(kCmdLinkReference);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
}

TEST_F(MainFrameTest, TheRightButtonSelectsAValueAndOffersItsLinks)
{
    Start();
    ZRValueControl* const frequency = NumberOf("METER-1.F");
    const QPoint place = frequency->geometry().center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, m_frame->Page()->mapToGlobal(place));
    QApplication::sendEvent(m_frame->Page(), &event);
    EXPECT_EQ(m_frame->Page()->Selection()->name, u"F");
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_GE(menu->actions().size(), 5);
    menu->close();
}

TEST_F(MainFrameTest, LanguagesSwitchTextsAndNumbersAtOnce)
{
    Start();
    Write(u"METER-1", u"F", 49.98);
    Command(kCmdLanguageGerman);
    Settle();
    EXPECT_EQ(m_frame->menuBar()->actions()[0]->text(), "&Datei");
    EXPECT_EQ(NumberOf("METER-1.F")->SpokenText(), "49,98");
    Command(kCmdLanguageSpanish);
    Settle();
    EXPECT_EQ(m_frame->menuBar()->actions()[0]->text(), "&Archivo");
    Command(kCmdLanguageEnglish);
    Settle();
    EXPECT_EQ(m_frame->menuBar()->actions()[0]->text(), "&File");
    EXPECT_EQ(NumberOf("METER-1.F")->SpokenText(), "49.98");
    EXPECT_EQ(m_settings.language, "en");
}

TEST_F(MainFrameTest, TheMenuThatSwitchesTheLanguageMayGoWithIt)
{
    Start();
    for (const char* const item : {"33012", "33013", "33011"}) {
        QAction* action = nullptr;
        for (auto* const menu : m_frame->findChildren<QMenu*>()) {
            const auto* const ours = dynamic_cast<const CMenu*>(menu);
            QAction* const found = ours != nullptr ? ours->FindItem(QString::fromLatin1(item).toUInt()) : nullptr;
            action = action != nullptr ? action : found;
        }
        ASSERT_NE(action, nullptr);
        action->trigger();
        Settle();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_EQ(m_frame->menuBar()->actions().size(), 3);
    EXPECT_EQ(m_frame->menuBar()->actions()[0]->text(), "&File");
    EXPECT_EQ(test::FindWindows<CToolBar>(*m_frame).size(), 1);
}

TEST_F(MainFrameTest, TheSelectedValueStaysSelectedInAnotherLanguage)
{
    Start();
    QTest::mouseClick(NumberOf("METER-1.F"), Qt::LeftButton);
    Command(kCmdLanguageGerman);
    ASSERT_TRUE(m_frame->Page()->Selection().has_value());
    EXPECT_EQ(m_frame->Page()->Selection()->name, u"F");
}

TEST_F(MainFrameTest, AnotherLanguageForgetsNoMark)
{
    Start();
    for (const double value : {49.97, 50.03, 50.0}) {
        Write(u"METER-1", u"F", value);
        m_frame->UpdateAll();
    }
    QTest::mouseClick(NumberOf("METER-1.F"), Qt::LeftButton);
    Command(kCmdLanguageGerman);
    EXPECT_TRUE(MarkText().contains("49,97")) << MarkText().toStdString();
    EXPECT_TRUE(MarkText().contains("50,03")) << MarkText().toStdString();
}

TEST_F(MainFrameTest, ColoursSwitchAtOnce)
{
    Start();
    // The grounds of the page and of the tree, where nothing is written.
    const auto ground = [this] { return m_frame->Page()->grab().toImage().pixelColor(4, 4); };
    const QColor light = ground();
    Command(kCmdColoursDark);
    Settle();
    const QColor dark = ground();
    EXPECT_GT(light.lightness(), 180);
    EXPECT_LT(dark.lightness(), 80);
    Command(kCmdColoursLight);
    EXPECT_EQ(m_settings.colours, Colours::Light);
}

TEST_F(MainFrameTest, ASelectedWarningShowsItsDevice)
{
    Start();
    m_frame->ShowDevice(u"METER-1");
    m_supervisor->Report({DeviceWarning::DeviceSilent, u"METER-2", {}, {}}, 0);
    m_frame->UpdateAll();
    ASSERT_NE(WarningList(), nullptr);
    const int last = WarningList()->GetItemCount() - 1;
    WarningList()->SetItemState(last, ui::LVIS_SELECTED, ui::LVIS_SELECTED);
    Settle();
    EXPECT_EQ(ShownNode(), u"METER-2");
}

TEST_F(MainFrameTest, AWarningOfAConnectionShowsItsFirstDevice)
{
    Start();
    m_frame->ShowDevice(u"IO-1");
    m_supervisor->Report({DeviceWarning::ConnectionLost, u"NORTH", {}, {}}, 0);
    m_frame->UpdateAll();
    WarningList()->SetItemState(WarningList()->GetItemCount() - 1, ui::LVIS_SELECTED, ui::LVIS_SELECTED);
    Settle();
    EXPECT_EQ(ShownNode(), u"METER-1");
}

TEST_F(MainFrameTest, ValuesGoOnAfterADragOfTheWarningBarThatAnotherWindowEnds)
{
    Start();
    m_frame->Run();
    auto* const bar = test::FindWindow<CDebugDlgBar>(*m_frame);
    ASSERT_NE(bar, nullptr);
    const QPoint edge = bar->mapTo(m_frame.get(), QPoint(200, 1));
    QTest::mouseMove(m_frame->windowHandle(), edge);
    QTest::mousePress(m_frame->windowHandle(), Qt::LeftButton, {}, edge);
    Settle();
    ASSERT_EQ(QWidget::mouseGrabber(), bar);
    QEvent lost(QEvent::WindowDeactivate);
    QApplication::sendEvent(bar, &lost);
    Write(u"METER-1", u"F", 49.98);
    EXPECT_TRUE(QTest::qWaitFor([this] { return NumberOf("METER-1.F")->SpokenText() == "49.98"; }));
    QTest::mouseRelease(m_frame->windowHandle(), Qt::LeftButton, {}, edge);
}

TEST_F(MainFrameTest, ClosingTheWarningBarUnchecksItsMenuItem)
{
    Start();
    EXPECT_TRUE(WarningList()->isVisible());
    Command(kBarClosedCommand);
    EXPECT_FALSE(WarningList()->isVisible());
    EXPECT_FALSE(m_settings.showsWarnings);
    Command(kCmdWarnings);
    EXPECT_TRUE(WarningList()->isVisible());
}

TEST_F(MainFrameTest, TheTreeTellsTheStateOfEachDevice)
{
    Start();
    const auto state = [this](int group, int device) {
        return m_frame->Tree().topLevelItem(group)->child(device)->toolTip(0);
    };
    m_frame->UpdateAll();
    EXPECT_EQ(state(0, 0), "METER-1: Not yet asked");
    Write(u"METER-1", u"U1", 230.0);
    m_supervisor->Report({DeviceWarning::DeviceSilent, u"METER-2", {}, {}}, 0);
    m_frame->UpdateAll();
    EXPECT_EQ(state(0, 0), "METER-1: On line");
    EXPECT_EQ(state(0, 1), "METER-2: Silent");
    Write(u"METER-1", u"U1", 300.0);
    m_frame->UpdateAll();
    EXPECT_EQ(state(0, 0), "METER-1: Alarm");
    EXPECT_EQ(m_frame->Tree().topLevelItem(0)->toolTip(0), "North: Alarm");
}

TEST_F(MainFrameTest, ADocumentOfAnotherProgramIsShownWithABanner)
{
    ProcessLock other;
    ASSERT_EQ(other.Take(m_document, "kestrixd"), ProcessLock::Result::Taken);
    Start();
    EXPECT_TRUE(m_frame->ShowsBanner());
    m_frame->UpdateAll();
    EXPECT_EQ(m_frame->Tree().topLevelItem(0)->child(0)->toolTip(0), "METER-1: Not polled here");
    other.Release();
    QTest::mouseClick(m_frame->findChild<QToolButton*>(QString::number(kBannerRetry)), Qt::LeftButton);
    EXPECT_FALSE(m_frame->ShowsBanner());
    EXPECT_TRUE(m_supervisor->IsOurs());
}

TEST_F(MainFrameTest, WindowPlaceAndPageComeBack)
{
    Start();
    m_frame->setGeometry(30, 40, 700, 500);
    m_frame->ShowDevice(u"IO-1");
    Settle();
    m_frame->KeepSettings();
    ASSERT_TRUE(m_settings.Store(u"Software\\Kestrix"));
    m_frame.reset();
    m_settings = DesktopSettings::Load(u"Software\\Kestrix");
    m_frame = std::make_unique<MainFrame>(*m_supervisor, m_settings);
    m_frame->show();
    Settle();
    EXPECT_EQ(m_frame->geometry(), QRect(30, 40, 700, 500));
    EXPECT_EQ(ShownNode(), u"IO-1");
}

TEST_F(MainFrameTest, ToolbarAndStatusBarStayAway)
{
    Start();
    Command(kCmdToolbar);
    Command(kCmdStatusBar);
    Command(kCmdWarnings);
    m_frame.reset();
    Open();
    EXPECT_FALSE(test::FindWindow<CToolBar>(*m_frame, kMainToolbar)->isVisible());
    EXPECT_FALSE(m_frame->statusBar()->isVisible());
    EXPECT_FALSE(WarningList()->isVisible());
}

TEST_F(MainFrameTest, F6GoesFromTreeToPageToWarnings)
{
    Start();
    m_frame->activateWindow();
    m_frame->Tree().setFocus();
    Command(kCmdNextPane);
    EXPECT_TRUE(m_frame->Page()->isAncestorOf(m_frame->focusWidget()));
    Command(kCmdNextPane);
    EXPECT_EQ(m_frame->focusWidget(), WarningList());
    Command(kCmdNextPane);
    EXPECT_EQ(m_frame->focusWidget(), &m_frame->Tree());
}

TEST_F(MainFrameTest, EscapeAndReturnLeaveThePageWhereItIs)
{
    Start();
    QTest::keyClick(m_frame->Page(), Qt::Key_Escape);
    QTest::keyClick(m_frame->Page(), Qt::Key_Return);
    EXPECT_TRUE(m_frame->Page()->isVisible());
}

TEST_F(MainFrameTest, ADocumentWithoutDevicesSaysSo)
{
    m_folder.Write("plant.xml", "<Kestrix><CommSystem/></Kestrix>\n");
    Start();
    EXPECT_EQ(m_frame->Page(), nullptr);
    m_frame->UpdateAll();
}

TEST_F(MainFrameTest, AGroupOfManyDevicesIsLeafedThrough)
{
    std::string devices;
    std::string entries;
    for (int i = 0; i < 40; ++i) {
        const std::string name = "M" + std::to_string(i);
        devices += "<Device Name=\"" + name + "\" Driver=\"EM3\" Connection=\"NORTH\" Unit=\"" + std::to_string(i + 1) +
                   "\"/>";
        entries += "<Device Id=\"" + name + "\"/>";
    }
    m_folder.Write("plant.xml",
                   "<K><CommSystem><Connections><Connection Name=\"NORTH\" Type=\"UDP\" Address=\"127.0.0.1\" "
                   "Socket=\"47996\"/></Connections><Devices>" +
                       devices + "</Devices></CommSystem><DeviceGroups><Groups><G Id=\"All\"><Devices>" + entries +
                       "</Devices></G></Groups></DeviceGroups></K>");
    Start();
    m_frame->ShowNode(0);
    Settle();
    EXPECT_NE(NumberOf("M0.U1"), nullptr);
    EXPECT_EQ(NumberOf("M39.U1"), nullptr);
    for (int turns = 0; turns < 40 && NumberOf("M39.U1") == nullptr; ++turns) {
        for (auto* const button : m_frame->Page()->findChildren<QToolButton*>()) {
            if (button->arrowType() == Qt::RightArrow) {
                button->click();
            }
        }
    }
    EXPECT_NE(NumberOf("M39.U1"), nullptr);
    EXPECT_EQ(NumberOf("M0.U1"), nullptr);
}

TEST_F(MainFrameTest, AKeptTreeWidthLeavesThePageHalfTheWindow)
{
    m_settings.window = {0, 0, 1000, 700, false};
    m_settings.treeWidth = 90000;
    Start();
    EXPECT_GE(m_frame->findChild<QScrollArea*>()->width(), 490);
}

TEST_F(MainFrameTest, ToolTipsTellUnitAndLinkAndTakeNothingForMarkup)
{
    Start();
    EXPECT_TRUE(NumberOf("METER-1.U1")->toolTip().contains("(V)")) << NumberOf("METER-1.U1")->toolTip().toStdString();
    EXPECT_EQ(PlainTip("<img src='x'>"), "<p style='white-space:pre-wrap'>&lt;img src='x'&gt;</p>");
    EXPECT_EQ(PlainTip("Voltage < 3 V"), "Voltage < 3 V");
}

TEST_F(MainFrameTest, AboutTellsTheVersion)
{
    Start();
    const std::unique_ptr<CDialog> about(m_frame->NewAboutDialog());
    EXPECT_TRUE(about->DlgItem<QLabel>(kInfoText).text().startsWith("Kestrix 0."));
}

}  // namespace
}  // namespace zr::desktop
