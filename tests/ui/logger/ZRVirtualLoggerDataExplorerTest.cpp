#include "logger/ui/ZRVirtualLoggerDataExplorer.h"

#include "dialogs/DialogsIds.h"
#include "dialogs/ui/CGoToDateDlg.h"
#include "logger/SuiteKey.h"
#include "ui/logger/ExplorerFixture.h"

#include <gmock/gmock.h>
#include <atomic>
#include <future>
#include <new>
#include <QActionGroup>
#include <QPrinter>
#include <QSignalSpy>
#include <QTimer>

namespace zr::logger {
namespace {

using ZRVirtualLoggerDataExplorerTest = ExplorerFixture;

// A host with buttons of its own, one of whose drop-downs has no menu for the chevron.
class HostWindow final : public ExplorerWindow {
public:
    static constexpr unsigned kDrop = 40001;
    static constexpr unsigned kDropWithoutMenu = 40002;
    static constexpr unsigned kPlain = 40003;
    static constexpr unsigned kItem = 40010;

    bool InitializeToolBar() override
    {
        ExplorerWindow::InitializeToolBar();
        ToolBar().AddDropDown(kDrop, {}, u"Host");
        ToolBar().AddDropDown(kDropWithoutMenu, {}, u"None");
        ToolBar().AddButton(kPlain, {}, u"Plain");
        ToolBar().AddButton(kCommandCopy, {}, u"Copy");
        ToolBar().AddButton(ui::ID_FILE_PRINT_PREVIEW, {}, u"Preview");
        return true;
    }
    bool MoreDropDown(int command) override
    {
        dropped.push_back(command);
        return true;
    }
    bool MoreChevron(CMenu& menu, int command) override
    {
        menu.AppendMenu(kItem, u"Item");
        return command == static_cast<int>(kDrop);
    }
    bool MoreBitmaps(unsigned images, std::span<QPixmap> bitmaps) override
    {
        strip = images;
        bitmaps.front() = QPixmap(22, 20);
        return true;
    }

    std::vector<int> dropped;
    unsigned strip = 0;
};

// A viewer that takes down what is asked of it to print.
class PrintingViewer final : public ZRVirtualLoggerDataViewer {
public:
    bool Create(QWidget* parent, unsigned) override
    {
        setParent(parent);
        return true;
    }
    void Setup(const ZRLoggerInfo&, XmlNode*) override {}
    void Update(const ZRDateTime&, const ZRDateTime&, const ZRDateTimeSpan&, int,
                const ZRLoggerData::CRecordGroup&) override
    {
    }
    int OnPreparePrinting(CPrintInfo* info) override
    {
        info->m_pPD->m_flags |= ui::PD_PRINTSETUP;
        calls.emplace_back("Prepare");
        return isPrepared ? 1 : 0;
    }
    void OnBeginPrinting(CDC*, CPrintInfo*) override { calls.emplace_back("Begin"); }
    void OnEndPrinting(CDC*, CPrintInfo*) override { calls.emplace_back("End"); }
    void Print(CDC*, CPrintInfo*) override { calls.emplace_back("Print"); }
    void ClipboardCopy() override {}
    bool OnConfig() override { return false; }
    void GetLoggerInfo(ZRLoggerInfo&) override {}

    bool isPrepared = true;
    std::vector<std::string> calls;
};

class PrintingWindow final : public ExplorerWindow {
public:
    void CreateViewer(int) override { viewer = std::make_unique<PrintingViewer>(); }
    PrintingViewer& Shown() { return dynamic_cast<PrintingViewer&>(*viewer); }

    using ExplorerWindow::OnBeginPrinting;
    using ExplorerWindow::OnEndPrinting;
    using ExplorerWindow::OnPreparePrinting;
    using ExplorerWindow::OnPrint;
};

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

// The work of a load happens while the dialog's loop runs, and not before the dialog is there.
TEST_F(ZRVirtualLoggerDataExplorerTest, LoadsUnderADialogThatStaysAlive)
{
    RecordVoltages(Date(14, 1, 2003), {2300, 2310});
    std::promise<void> release;
    std::shared_future<void> released = release.get_future();
    std::atomic<bool> hasBegun = false;
    gate.gate = [&] {
        hasBegun = true;
        released.wait();
        return true;
    };
    bool wasVisible = false;
    bool hadRows = true;
    QString title;
    ui::SetModalHook([&](QDialog& dialog) {
        wasVisible = dialog.isVisible();
        auto& progress = dynamic_cast<CDlgProgress&>(dialog);
        auto* const look = new QTimer(&progress);
        QObject::connect(look, &QTimer::timeout, &progress, [&, look] {
            if (progress.m_text.text() == "...") {
                look->stop();
                title = progress.windowTitle();
                hadRows = List().GetItemCount() > 0;
                release.set_value();
            }
        });
        look->start(0);
    });
    window.Create(nullptr);
    window.Setup(Info({u"M.U"}), &selected);
    window.SelectViewer(kTableViewer);
    EXPECT_TRUE(wasVisible);
    EXPECT_TRUE(hasBegun);
    EXPECT_EQ(title, "Loading data");
    EXPECT_FALSE(hadRows);
    EXPECT_EQ(window.Loading(), nullptr);
    EXPECT_EQ(List().GetItemCount(), 1);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, EndsALoadThatTheWindowIsClosedDuring)
{
    OpenWeek();
    RecordVoltages(Date(24, 12, 2002), {2300, 2310});
    std::promise<void> release;
    std::shared_future<void> released = release.get_future();
    gate.gate = [released] {
        released.wait();
        return true;
    };
    bool stayed = false;
    ui::SetModalHook([&](QDialog&) {
        window.close();
        stayed = window.isVisible();
        release.set_value();
    });
    ClickButton(kCommandPrevious);
    ui::SetModalHook(nullptr);
    EXPECT_TRUE(stayed);
    QApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.Viewer(), nullptr);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, StopsALoadThatTheUserCancels)
{
    Open();
    RecordVoltages(Date(8, 1, 2003), {2300, 2310});
    std::promise<void> release;
    std::shared_future<void> released = release.get_future();
    gate.gate = [released] {
        released.wait();
        return true;
    };
    ui::SetModalHook([&](QDialog& dialog) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_TRUE(dialog.isVisible());
        release.set_value();
    });
    ClickButton(kCommandPrevious);
    EXPECT_TRUE(window.WasLoadStopped());
    ui::SetModalHook(nullptr);
    gate.gate = nullptr;
    window.Reload();
    EXPECT_FALSE(window.WasLoadStopped());
    EXPECT_EQ(List().GetItemCount(), 1);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ShowsAnEmptyTableWhenTheStoreFailsInTheMiddle)
{
    for (int hour = 0; hour < 6; ++hour) {
        Record(u"M.U", Date(14, 1, 2003, hour), 2300);
    }
    int blocks = 0;
    gate.gate = [&] { return ++blocks < 3; };
    Open();
    EXPECT_EQ(blocks, 3);
    EXPECT_EQ(List().GetItemCount(), 0);
    EXPECT_FALSE(Viewer().Caption().isEmpty());
    gate.gate = nullptr;
    window.Reload();
    EXPECT_EQ(List().GetItemCount(), 6);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ShowsAnEmptyTableWhenTheRecordsAreTooManyForTheMemory)
{
    Record(u"M.U", Date(14, 1, 2003), 2300);
    gate.gate = []() -> bool { throw std::bad_alloc(); };
    Open();
    EXPECT_EQ(List().GetItemCount(), 0);
    EXPECT_FALSE(window.Data()->Failure().empty());
    gate.gate = nullptr;
    window.OnPeriodMenuItem(31821);
    EXPECT_EQ(List().GetItemCount(), 1);
    EXPECT_TRUE(window.Data()->Failure().empty());
}

TEST_F(ZRVirtualLoggerDataExplorerTest, ShowsTheOthersWhenAVariableHasVanished)
{
    RecordVoltages(kDay, {2300});
    Open({u"M.U", u"Gone.X", u"M.E"});
    window.SetupData(Date(6, 1, 2003), kGroupByWeek, kEveryRecord, false);
    EXPECT_EQ(List().GetColumnCount(), 3);
    EXPECT_EQ(Cell(0, 1), "230.0");
}

TEST_F(ZRVirtualLoggerDataExplorerTest, OpensWithoutAnyVariable)
{
    Open({});
    EXPECT_EQ(List().GetColumnCount(), 1);
    EXPECT_EQ(List().GetItemCount(), 0);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, TellsTheHostWheneverSomethingElseIsShown)
{
    Open();
    const int before = window.shown;
    ClickButton(kCommandPrevious);
    EXPECT_GT(window.shown, before);
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

TEST_F(ZRVirtualLoggerDataExplorerTest, TellsAHostOfEveryDropDown)
{
    HostWindow host;
    host.Create(nullptr);
    host.Setup(Info({u"M.U"}), nullptr);
    host.SelectViewer(kTableViewer);
    host.resize(1200, 300);
    host.show();
    QApplication::processEvents();
    for (const unsigned button : {kCommandGroupBy, HostWindow::kDrop}) {
        QTest::mouseClick(ui::FindControl(host, button), Qt::LeftButton);
        if (CMenu* const menu = OpenMenu(); menu != nullptr) {
            menu->close();
        }
    }
    EXPECT_EQ(host.dropped, (std::vector{static_cast<int>(kCommandGroupBy), static_cast<int>(HostWindow::kDrop)}));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, AsksAHostForPicturesBehindItsOwn)
{
    HostWindow host;
    host.Create(nullptr);
    EXPECT_EQ(host.strip, 64U);
    EXPECT_FALSE(host.menuBitmaps[4].isNull());
    EXPECT_EQ(host.menuBitmaps[5].size(), QSize(22, 20));
}

TEST_F(ZRVirtualLoggerDataExplorerTest, OffersAHostsButtonsInTheirOrderBehindTheChevron)
{
    HostWindow host;
    host.Create(nullptr);
    host.Setup(Info({u"M.U"}), nullptr);
    host.SelectViewer(kTableViewer);
    host.resize(60, 300);
    host.show();
    QApplication::processEvents();
    QTest::mouseClick(host.findChild<QToolButton*>("chevron"), Qt::LeftButton);
    CMenu* const menu = OpenMenu();
    ASSERT_NE(menu, nullptr);
    QStringList texts;
    for (const QAction* const entry : menu->actions()) {
        texts << entry->text();
    }
    // The drop-down without a menu is left out.
    EXPECT_EQ(texts,
              QStringList({"Previous", "Next", "Go to...", "Group by", "Period", "Host", "Plain", "Copy", "Preview"}));
    EXPECT_NE(menu->FindItem(HostWindow::kItem), nullptr);
    menu->close();
}

TEST_F(ZRVirtualLoggerDataExplorerTest, NeitherPrintsNorCopiesWithoutAViewer)
{
    HostWindow host;
    host.Create(nullptr);
    host.Setup(Info({u"M.U"}), nullptr);
    host.SelectViewer(kTableViewer);
    EXPECT_TRUE(host.ToolBar().IsButtonEnabled(kCommandCopy));
    EXPECT_TRUE(host.ToolBar().IsButtonEnabled(ui::ID_FILE_PRINT_PREVIEW));
    host.SelectViewer(kNoViewer);
    EXPECT_FALSE(host.ToolBar().IsButtonEnabled(kCommandCopy));
    EXPECT_FALSE(host.ToolBar().IsButtonEnabled(ui::ID_FILE_PRINT_PREVIEW));
    bool wasShown = false;
    QTimer::singleShot(0, &host, [&] {
        if (QWidget* const dialog = QApplication::activeModalWidget(); dialog != nullptr) {
            wasShown = true;
            dialog->close();
        }
    });
    for (const unsigned command : {ui::ID_FILE_PRINT, ui::ID_FILE_PRINT_PREVIEW, kCommandCopy}) {
        EXPECT_TRUE(ui::SendCommand(&host, command, 0, nullptr));
    }
    QApplication::processEvents();
    EXPECT_FALSE(wasShown);
    EXPECT_TRUE(messages.empty());
}

TEST_F(ZRVirtualLoggerDataExplorerTest, LeavesPrintingToItsViewer)
{
    PrintingWindow explorer;
    explorer.Create(nullptr);
    explorer.Setup(Info({}), nullptr);
    explorer.SelectViewer(kTableViewer);
    QPrinter printer;
    CPrintDialog dialog(printer, nullptr);
    CPrintInfo info(dialog);
    EXPECT_TRUE(explorer.OnPreparePrinting(&info));
    explorer.OnBeginPrinting(nullptr, &info);
    explorer.OnPrint(nullptr, &info);
    explorer.OnEndPrinting(nullptr, &info);
    EXPECT_EQ(explorer.Shown().calls, (std::vector<std::string>{"Prepare", "Begin", "Print", "End"}));
    EXPECT_EQ(dialog.m_flags, ui::PD_PRINTSETUP);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, PutsTheFlagsBackWhenItsViewerDoesNotPrint)
{
    PrintingWindow explorer;
    explorer.Create(nullptr);
    explorer.Setup(Info({}), nullptr);
    explorer.SelectViewer(kTableViewer);
    explorer.Shown().isPrepared = false;
    QPrinter printer;
    CPrintDialog dialog(printer, nullptr);
    dialog.m_flags = 4;
    CPrintInfo info(dialog);
    EXPECT_FALSE(explorer.OnPreparePrinting(&info));
    EXPECT_EQ(dialog.m_flags, 4U);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, LetsNoCommandThroughWhileItLoads)
{
    Open();
    int loads = 0;
    ui::SetModalHook([&](QDialog&) {
        ++loads;
        ui::SendCommand(&window, kCommandPrevious, 0, nullptr);
        ui::SendCommand(&window, static_cast<unsigned>(kGroupByYear), 0, nullptr);
    });
    ClickButton(kCommandPrevious);
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(window.Window().dateFrom, Date(6, 1, 2003));
    EXPECT_EQ(window.Window().groupBy, kGroupByWeek);
}

// As when the program ends.
TEST_F(ZRVirtualLoggerDataExplorerTest, GoesAfterADialogThatItIsClosedUnder)
{
    Open();
    bool hadViewer = false;
    ui::SetModalHook([&](QDialog& dialog) {
        window.close();
        hadViewer = window.Viewer() != nullptr;
        dialog.reject();
    });
    ClickButton(kCommandGoTo);
    ui::SetModalHook(nullptr);
    EXPECT_TRUE(hadViewer);
    QApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.Viewer(), nullptr);
}

TEST_F(ZRVirtualLoggerDataExplorerTest, GoesAfterAConfigurationThatItIsClosedUnder)
{
    bool hadViewer = false;
    window.profileDialog = [&](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo&) {
        window.close();
        hadViewer = window.Viewer() != nullptr;
        copy.DeleteVariable(0);
        return true;
    };
    Open();
    window.OnConfig();
    EXPECT_TRUE(hadViewer);
    QApplication::processEvents();
    EXPECT_FALSE(window.isVisible());
    const XmlNode* const kept = window.Config().root->Node(u"Vars");
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->children.size(), 2U);
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
