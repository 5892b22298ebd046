// The explorer as its host sees it: buttons of its own, printing, what it is told.
#include "ui/logger/ExplorerFixture.h"

#include <QPrinter>
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

TEST_F(ZRVirtualLoggerDataExplorerTest, TellsTheHostWheneverSomethingElseIsShown)
{
    Open();
    const int before = window.shown;
    ClickButton(kCommandPrevious);
    EXPECT_GT(window.shown, before);
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

}  // namespace
}  // namespace zr::logger
