#include "logger/ui/ZRVirtualLoggerDataExplorer.h"

#include "dialogs/DialogsIds.h"
#include "dialogs/ui/CGoToDateDlg.h"
#include "logger/SuiteKey.h"
#include "ui/logger/ExplorerFixture.h"

#include <gmock/gmock.h>
#include <QActionGroup>

namespace zr::logger {
namespace {

using ZRVirtualLoggerDataExplorerTest = ExplorerFixture;

TEST_F(ZRVirtualLoggerDataExplorerTest, OpensOnThePresentWeekWithNothingInIt)
{
    Open();
    EXPECT_EQ(window.objectName(), "167");
    EXPECT_EQ(selected, kTableViewer);
    EXPECT_EQ(Viewer().Caption(), "Week 3: 13 January 2003 to 19 January 2003");
    EXPECT_EQ(List().GetItemCount(), 0);
    EXPECT_TRUE(window.Viewer()->isVisible());
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ShowsTheRecordsOfTheWindow)
{
    RecordVoltages(kDay, {2301, 2302, 2303});
    OpenWeek();
    EXPECT_EQ(List().GetItemCount(), 3);
    EXPECT_EQ(Cell(0, 0), "   Monday 30 00:00:00");
    EXPECT_EQ(Cell(2, 1), "230.3");
    EXPECT_EQ(Cell(2, 2), "");
}

TEST_F(ZRVirtualLoggerDataExplorerTest, StacksViewerAndToolbar)
{
    Open();
    QWidget* const bar = ui::FindControl(window, kReBarId);
    EXPECT_EQ(bar->geometry().bottom(), window.height() - 1);
    EXPECT_EQ(window.Viewer()->geometry(), QRect(0, 0, window.width(), bar->y()));
    window.resize(900, 500);
    EXPECT_EQ(bar->geometry().bottom(), 499);
    EXPECT_EQ(window.Viewer()->geometry(), QRect(0, 0, 900, bar->y()));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, HasFiveButtonsWithPicturesAndTexts)
{
    Open();
    const std::vector<unsigned> buttons = {kCommandPrevious, kCommandNext, kCommandGoTo, kCommandGroupBy,
                                           kCommandPeriod};
    EXPECT_EQ(window.ToolBar().Buttons(), buttons);
    EXPECT_EQ(window.ToolBar().GetButtonText(kCommandGroupBy), "Group by");
    for (const unsigned id : buttons) {
        EXPECT_FALSE(dynamic_cast<QToolButton&>(*ui::FindControl(window, id)).icon().isNull()) << id;
    }
    for (std::size_t i = 0; i < window.menuBitmaps.size(); ++i) {
        EXPECT_EQ(window.menuBitmaps[i].isNull(), i >= buttons.size()) << i;
    }
}

TEST_F(ZRVirtualLoggerDataExplorerTest, GoesBackAndOnByItsButtons)
{
    Open();
    ClickButton(kCommandPrevious);
    EXPECT_EQ(window.Window().dateFrom, Date(6, 1, 2003));
    EXPECT_EQ(Viewer().Caption(), "Week 2: 6 January 2003 to 12 January 2003");
    ClickButton(kCommandPrevious);
    EXPECT_EQ(window.Window().dateFrom, Date(30, 12, 2002));
    ClickButton(kCommandNext);
    EXPECT_EQ(window.Window().dateFrom, Date(6, 1, 2003));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, OffersNextOnlyWhileTheWindowHasEnded)
{
    Open();
    EXPECT_FALSE(window.ToolBar().IsButtonEnabled(kCommandNext));
    ClickButton(kCommandPrevious);
    EXPECT_TRUE(window.ToolBar().IsButtonEnabled(kCommandNext));
    ClickButton(kCommandNext);
    EXPECT_FALSE(window.ToolBar().IsButtonEnabled(kCommandNext));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, OffersNextAgainOnceTheWindowHasEnded)
{
    Open();
    clock.Advance(std::chrono::hours(24 * 7));
    QEvent activated(QEvent::WindowActivate);
    QApplication::sendEvent(&window, &activated);
    EXPECT_TRUE(window.ToolBar().IsButtonEnabled(kCommandNext));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, GoesToAPickedDate)
{
    Open();
    QPoint corner;
    QDate offered;
    ui::SetModalHook([&](QDialog& dialog) {
        auto* const goTo = dynamic_cast<CGoToDateDlg*>(&dialog);
        if (goTo == nullptr) {
            return;
        }
        corner = goTo->geometry().bottomLeft();
        offered = goTo->DlgItem<CMonthCalCtrl>(dialogs::kGoToDateCalendar).selectedDate();
        goTo->DlgItem<CMonthCalCtrl>(dialogs::kGoToDateCalendar).setSelectedDate(QDate(2002, 12, 25));
        QTest::mouseClick(goTo->GetDlgItem(ui::IDOK), Qt::LeftButton);
    });
    ClickButton(kCommandGoTo);
    EXPECT_EQ(offered, QDate(2003, 1, 13));
    EXPECT_EQ(window.Window().dateFrom, Date(23, 12, 2002));
    EXPECT_EQ(window.Window().dateTo, Date(30, 12, 2002));
    const QWidget* const button = ui::FindControl(window, kCommandGoTo);
    EXPECT_EQ(corner + QPoint(0, 1), button->mapToGlobal(QPoint(0, 0)));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, StaysWhereTheDateWasNotPicked)
{
    Open();
    ui::SetModalHook([](QDialog& dialog) {
        if (auto* const goTo = dynamic_cast<CGoToDateDlg*>(&dialog); goTo != nullptr) {
            QTest::mouseClick(goTo->GetDlgItem(ui::IDCANCEL), Qt::LeftButton);
        }
    });
    ClickButton(kCommandGoTo);
    EXPECT_EQ(window.Window().dateFrom, Date(13, 1, 2003));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ChangesTheUnitByItsMenu)
{
    Open();
    ClickButton(kCommandGroupBy);
    CMenu* const menu = OpenMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->FindItem(static_cast<unsigned>(kGroupByWeek))->isChecked());
    EXPECT_FALSE(menu->FindItem(static_cast<unsigned>(kGroupByDay))->isChecked());
    menu->close();
    Choose(kCommandGroupBy, static_cast<unsigned>(kGroupByMonth));
    EXPECT_EQ(window.Window().groupBy, kGroupByMonth);
    EXPECT_EQ(Viewer().Caption(), "January 2003");
}

TEST_F(ZRVirtualLoggerDataExplorerTest, DropsAMenuOnePixelBelowItsButton)
{
    Open();
    window.resize(700, 120);
    window.move(40, 20);
    QApplication::processEvents();
    const QWidget* const button = ui::FindControl(window, kCommandGroupBy);
    ClickButton(kCommandGroupBy);
    CMenu* const menu = OpenMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->pos(), button->mapToGlobal(QPoint(0, button->height() + 1)));
    menu->close();
}

TEST_F(ZRVirtualLoggerDataExplorerTest, HidesANewViewerUntilItHasData)
{
    Open();
    window.SelectViewer(kNoViewer);
    bool wasVisible = true;
    ui::SetModalHook([&](QDialog&) { wasVisible = window.Viewer()->isVisible(); });
    window.SelectViewer(kTableViewer);
    EXPECT_FALSE(wasVisible);
    EXPECT_TRUE(window.Viewer()->isVisible());
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ChangesThePeriodByItsMenu)
{
    RecordVoltages(kDay, {2300, 2310, 2320, 2330, 2340, 2350});
    OpenWeek();
    EXPECT_EQ(List().GetItemCount(), 6);
    Choose(kCommandPeriod, 31822);
    EXPECT_EQ(window.Window().samplePeriod, Minutes(5));
    EXPECT_EQ(List().GetItemCount(), 2);
    Choose(kCommandPeriod, kPeriodAutomatic);
    EXPECT_TRUE(IsAutomatic(window.Window().samplePeriod));
    EXPECT_EQ(List().GetItemCount(), 1);  // of 30 minutes
}

TEST_F(ZRVirtualLoggerDataExplorerTest, RefusesAPeriodThatIsTooLongForTheUnit)
{
    OpenWeek();
    Choose(kCommandPeriod, 31829);
    EXPECT_THAT(messages, testing::ElementsAre(testing::StartsWith("This sample period is too long")));
    EXPECT_EQ(styles.at(0), ui::MB_ICONSTOP);
    EXPECT_EQ(window.Window().samplePeriod, kEveryRecord);
    SuiteKey key;
    ZRBasicString kept;
    EXPECT_TRUE(key.ReadText(kLastPeriodValue, kept));
    EXPECT_EQ(kept, u"44640");
}

TEST_F(ZRVirtualLoggerDataExplorerTest, RefusesAUnitThatIsTooShortForThePeriodAndKeepsTheChoice)
{
    OpenWeek();
    Choose(kCommandPeriod, 31828);
    EXPECT_TRUE(messages.empty());
    Choose(kCommandGroupBy, static_cast<unsigned>(kGroupByDay));
    EXPECT_EQ(messages.size(), 1U);
    EXPECT_EQ(window.Window().groupBy, kGroupByWeek);
    SuiteKey key;
    ZRBasicString kept;
    EXPECT_TRUE(key.ReadText(kLastGroupValue, kept));
    EXPECT_EQ(kept, u"DAY");
}

TEST_F(ZRVirtualLoggerDataExplorerTest, DoesNothingWhenTheSameViewerIsSelectedAgain)
{
    Open();
    const ZRVirtualLoggerDataViewer* const before = window.Viewer();
    gate.gate = [] { return false; };
    RecordVoltages(Date(14, 1, 2003), {2300});
    window.SelectViewer(kTableViewer);
    EXPECT_EQ(window.Viewer(), before);
    EXPECT_EQ(List().GetItemCount(), 0);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, LeavesAnEmptyWindowWithoutAViewer)
{
    Open();
    window.SelectViewer(kNoViewer);
    EXPECT_EQ(window.Viewer(), nullptr);
    EXPECT_EQ(selected, kNoViewer);
    for (const unsigned id : window.ToolBar().Buttons()) {
        EXPECT_FALSE(window.ToolBar().IsButtonEnabled(id)) << id;
    }
    window.OnPrevious();
    window.OnEditCopy();
    EXPECT_EQ(window.Window().dateFrom, Date(13, 1, 2003));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, KeepsTheArrangementWhenTheViewerChanges)
{
    Open();
    List().horizontalHeader()->resizeSection(2, 173);
    List().SetColumnOrder(3, 1);
    window.SelectViewer(kNoViewer);
    window.SelectViewer(kTableViewer);
    EXPECT_EQ(List().GetColumnWidth(2), 173);
    EXPECT_EQ(List().GetColumnOrder(3), 1);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, KeepsTheArrangementWhenTheDevicesChange)
{
    Open({u"M.U", u"M.E", u"M.PF"});
    List().horizontalHeader()->resizeSection(2, 173);
    window.SelectViewer(kNoViewer);
    // M.U is gone, and the others stand in another order.
    window.Setup(Info({u"M.PF", u"M.E"}), &selected);
    window.SelectViewer(kTableViewer);
    ASSERT_EQ(List().GetColumnCount(), 3);
    EXPECT_EQ(Title(2), Utf16ToUtf8(HeaderText(u"M Energy", 8, 3)));
    EXPECT_EQ(List().GetColumnWidth(2), 173);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, LoadsWithTheColumnsThatTheConfigurationAsksFor)
{
    RecordVoltages(kDay, {2300});
    window.profileDialog = [](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo&) {
        copy.DeleteVariable(1);
        return true;
    };
    OpenWeek();
    window.OnConfig();
    EXPECT_EQ(List().GetColumnCount(), 3);
    EXPECT_EQ(List().GetItemCount(), 1);
    EXPECT_TRUE(window.Viewer()->isVisible());
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ChangesNothingWhenTheConfigurationIsCancelled)
{
    window.profileDialog = [](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo&) {
        copy.DeleteVariable(1);
        return false;
    };
    Open();
    window.OnConfig();
    EXPECT_EQ(List().GetColumnCount(), 4);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ShowsAChevronForTheButtonsThatDoNotFit)
{
    Open();
    QWidget* const chevron = window.findChild<QToolButton*>("chevron");
    EXPECT_FALSE(chevron->isVisible());
    const QRect last = window.ToolBar().GetButtonRect(kCommandGroupBy);
    window.resize(last.right() + chevron->sizeHint().width() - 5, 300);
    QApplication::processEvents();
    ASSERT_TRUE(chevron->isVisible());
    // A button that is cut isn't shown.
    EXPECT_EQ(ui::FindControl(window, kReBarId)->childAt(last.topLeft() + QPoint(3, 8)), nullptr);
    QTest::mouseClick(chevron, Qt::LeftButton);
    CMenu* const menu = OpenMenu();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions().at(0)->menu()->actions().size(), 5);
    EXPECT_EQ(menu->actions().at(1)->menu()->actions().size(), 10);
    menu->FindItem(static_cast<unsigned>(kGroupByYear))->trigger();
    menu->close();
    EXPECT_EQ(Viewer().Caption(), "Year 2003");
}

TEST_F(ZRVirtualLoggerDataExplorerTest, GreysWhatTheChevronOffersButIsNotEnabled)
{
    Open();
    window.resize(60, 300);
    QApplication::processEvents();
    QTest::mouseClick(window.findChild<QToolButton*>("chevron"), Qt::LeftButton);
    CMenu* const menu = OpenMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(menu->FindItem(kCommandNext)->isEnabled());
    EXPECT_TRUE(menu->FindItem(kCommandPrevious)->isEnabled());
    menu->close();
}

TEST_F(ZRVirtualLoggerDataExplorerTest, MarksTheEntryInForceAsOneOutOfSeveral)
{
    Open();
    for (const unsigned button : {kCommandGroupBy, kCommandPeriod}) {
        ClickButton(button);
        CMenu* const menu = OpenMenu();
        ASSERT_NE(menu, nullptr);
        int marked = 0;
        for (const QAction* const entry : menu->actions()) {
            ASSERT_NE(entry->actionGroup(), nullptr);
            EXPECT_TRUE(entry->actionGroup()->isExclusive());
            marked += entry->isChecked() ? 1 : 0;
        }
        EXPECT_EQ(marked, 1);
        EXPECT_TRUE(test::KeepPicture(menu->grab().toImage(), "explorer-menu.png"));
        menu->close();
    }
}

TEST_F(ZRVirtualLoggerDataExplorerTest, LooksAsItShould)
{
    for (int i = 0; i < 400; ++i) {
        Record(u"M.U", ZRDateTime(Date(6, 1, 2003).seconds + static_cast<std::uint32_t>(i) * 900, 0), 2300 + i % 17);
        Record(u"M.E", ZRDateTime(Date(6, 1, 2003).seconds + static_cast<std::uint32_t>(i) * 900, 0), 1000.0 * i);
    }
    Open();
    ClickButton(kCommandPrevious);
    EXPECT_TRUE(test::KeepPicture(window.grab().toImage(), "explorer-table.png"));
    window.resize(300, 300);
    QApplication::processEvents();
    EXPECT_TRUE(test::KeepPicture(window.grab().toImage(), "explorer-narrow.png"));
}

}  // namespace
}  // namespace zr::logger
