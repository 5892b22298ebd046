// Loads of the explorer: under their dialog, stopped, failed, and what is closed meanwhile.
#include "ui/logger/ExplorerFixture.h"

#include <atomic>
#include <future>
#include <new>
#include <QTimer>

namespace zr::logger {
namespace {

using ZRVirtualLoggerDataExplorerTest = ExplorerFixture;

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

}  // namespace
}  // namespace zr::logger
