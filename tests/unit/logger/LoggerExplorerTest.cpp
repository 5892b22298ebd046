#include "logger/LoggerExplorer.h"

#include "logger/LoggerTable.h"
#include "logger/SuiteKey.h"
#include "support/ManualClock.h"
#include "unit/logger/LoggedFixture.h"
#include "unit/logger/MemoryTableList.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>

namespace zr::logger {
namespace {

using Calls = std::vector<std::string>;

// The table without its window, telling what it is asked for.
class TableViewer final : public ExplorerViewer {
public:
    explicit TableViewer(Calls& calls) : m_calls(calls) {}

    void Setup(const ZRLoggerInfo& info, XmlNode* node) override
    {
        m_calls.emplace_back("Setup");
        table.Setup(info, node);
    }
    void Update(const ZRDateTime& from, const ZRDateTime& to, const ZRDateTimeSpan& period, int groupBy,
                const ZRLoggerData::CRecordGroup& group) override
    {
        m_calls.emplace_back("Update");
        EXPECT_TRUE(table.InvalidData());
        caption = TableCaption(from, to, groupBy);
        shownPeriod = period;
        table.Update(groupBy, group);
    }
    void ClipboardCopy() override { m_calls.emplace_back("ClipboardCopy"); }
    bool OnConfig() override
    {
        m_calls.emplace_back("OnConfig");
        return table.OnConfig(dialog);
    }
    void GetLoggerInfo(ZRLoggerInfo& info) override { table.GetLoggerInfo(info); }
    void SetInvalidData(bool invalid) override
    {
        m_calls.emplace_back(invalid ? "Invalid" : "Valid");
        table.SetInvalidData(invalid);
    }

    MemoryTableList list;
    LoggerTable table{list};
    LoggerTable::ProfileDialog dialog;
    ZRBasicString caption;
    ZRDateTimeSpan shownPeriod;

private:
    Calls& m_calls;
};

class LoadProgress final : public Progress {
public:
    void SetText(const wchar*) override {}
    void SetPos(int) override {}
    [[nodiscard]] bool IsCancelled() const override { return isCancelled; }

    bool isCancelled = false;
};

class LoggerExplorerTest : public LoggedFixture, protected LoggerExplorer::Host {
protected:
    LoggerExplorerTest()
    {
        // 18 December 2002, a Wednesday, at half past two of the local clock.
        SetNow(Date(18, 12, 2002, 14, 30));
    }
    ~LoggerExplorerTest() override { explorer.DestroyViewer(); }

    void SetNow(const ZRDateTime& local)
    {
        using std::chrono::seconds;
        const std::chrono::system_clock::time_point zero = std::chrono::sys_days(std::chrono::January / 1 / 2000);
        auto utc = zero + seconds(local.seconds);
        clock.SetUtc(utc);
        utc += seconds((local - ZRDateTime::LTC()).seconds);
        clock.SetUtc(utc);
        ASSERT_EQ(ZRDateTime::LTC(), local);
    }

    void Start()
    {
        explorer.Setup(Info({u"M.U", u"M.E"}), &hostsViewer);
        explorer.SelectViewer(kTableViewer);
        calls.clear();
    }

    // The host.
    ExplorerViewer* CreateViewer(int kind) override
    {
        calls.push_back("Create " + std::to_string(kind));
        if (kind != kTableViewer) {
            return nullptr;
        }
        viewer = std::make_unique<TableViewer>(calls);
        return viewer.get();
    }
    void DestroyViewer() override
    {
        calls.emplace_back("Destroy");
        viewer->table.OnDestroy();
        viewer.reset();
    }
    void ShowViewer(bool visible) override { calls.emplace_back(visible ? "Show" : "Hide"); }
    void RunLoad(const std::function<void(Progress&)>& work) override
    {
        calls.emplace_back("Load");
        if (duringLoad) {
            duringLoad();
        }
        std::thread loader([&] { work(progress); });
        loader.join();
    }
    ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy) override { return explorer.AutomaticPeriodOf(groupBy); }
    void ShowMessage(unsigned text) override { messages.push_back(text); }
    bool ChooseDate(const COleDateTime&, ZRDateTime& chosen) override
    {
        chosen = choice.value_or(ZRDateTime());
        return choice.has_value();
    }

    Calls calls;
    LoadProgress progress;
    std::function<void()> duringLoad;
    std::vector<unsigned> messages;
    std::optional<ZRDateTime> choice;
    int hostsViewer = 0;
    test::ManualClock clock;
    std::unique_ptr<TableViewer> viewer;
    LoggerExplorer explorer{*this};
};

TEST_F(LoggerExplorerTest, SettingsHaveTheRootMain)
{
    ASSERT_NE(explorer.Config().root, nullptr);
    EXPECT_EQ(explorer.Config().root->tag, ZRBasicString(u"main"));
}

TEST_F(LoggerExplorerTest, SetupLoadsNothing)
{
    explorer.Setup(Info({u"M.U"}), &hostsViewer);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(explorer.SelectedViewer(), kNoViewer);
    EXPECT_EQ(explorer.Window().groupBy, kGroupByWeek);
    EXPECT_EQ(explorer.Window().samplePeriod, ZRDateTimeSpan(1800, 0));
    EXPECT_EQ(explorer.Window().dateTo, ZRDateTime::LTC());
}

TEST_F(LoggerExplorerTest, SelectViewerMakesTheViewerAndLoadsThePresentWeek)
{
    explorer.Setup(Info({u"M.U"}), &hostsViewer);
    explorer.SelectViewer(kTableViewer);
    EXPECT_EQ(calls, (Calls{"Create 2", "Setup", "Invalid", "Load", "Update", "Valid", "Show"}));
    EXPECT_EQ(hostsViewer, kTableViewer);
    EXPECT_EQ(explorer.SelectedViewer(), kTableViewer);
    EXPECT_EQ(Narrow(viewer->caption), "Week 51: 16 December 2002 to 22 December 2002");
}

TEST_F(LoggerExplorerTest, ASecondSelectViewerWithTheSameNumberDoesNothing)
{
    Start();
    explorer.SelectViewer(kTableViewer);
    EXPECT_TRUE(calls.empty());
}

TEST_F(LoggerExplorerTest, SelectViewerOfNoneDestroysTheViewerAndDisablesWhatNeedsOne)
{
    Start();
    EXPECT_TRUE(explorer.IsEnabled(kCommandCopy));
    explorer.SelectViewer(kNoViewer);
    EXPECT_EQ(calls, (Calls{"Destroy", "Create 0"}));
    EXPECT_EQ(hostsViewer, kNoViewer);
    calls.clear();
    for (const unsigned command : {kCommandCopy, kCommandConfig, kCommandPrevious, kCommandNext, kCommandGoTo,
                                   kCommandGroupBy, kCommandPeriod}) {
        EXPECT_FALSE(explorer.IsEnabled(command));
    }
    for (const unsigned command : {kCommandCopy, kCommandConfig, kCommandPrevious, unsigned{kGroupByDay}, 31822U}) {
        EXPECT_TRUE(explorer.OnCommand(command));
    }
    EXPECT_TRUE(calls.empty());
}

TEST_F(LoggerExplorerTest, AKindOfViewerThatThereIsNotLeavesNone)
{
    Start();
    explorer.SelectViewer(kGraphViewer);
    EXPECT_EQ(calls, (Calls{"Destroy", "Create 1"}));
    EXPECT_EQ(explorer.Viewer(), nullptr);
    EXPECT_EQ(explorer.SelectedViewer(), kGraphViewer);
    explorer.SelectViewer(kTableViewer);
    EXPECT_NE(explorer.Viewer(), nullptr);
}

TEST_F(LoggerExplorerTest, AChangeOfViewerKeepsTheSettings)
{
    Start();
    viewer->list.columns[1].width = 33;
    explorer.SelectViewer(kNoViewer);
    explorer.SelectViewer(kTableViewer);
    EXPECT_EQ(viewer->list.columns[1].width, 33);
}

TEST_F(LoggerExplorerTest, AViewerThatAsksForItGetsTheRecordsAtHandWithoutReading)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    Start();
    explorer.OnCommand(31821);
    explorer.SelectViewer(kNoViewer);
    Record(u"M.U", Date(17, 12, 2002, 9), 20);
    calls.clear();
    explorer.SelectViewer(kTableViewer, Reading::WhereNeeded);
    EXPECT_EQ(calls, (Calls{"Create 2", "Setup", "Invalid", "Update", "Valid", "Show"}));
    EXPECT_EQ(viewer->list.count, 1);
    EXPECT_EQ(viewer->shownPeriod, kEveryRecord);
    // One that doesn't ask has them read.
    explorer.SelectViewer(kNoViewer);
    explorer.SelectViewer(kTableViewer);
    EXPECT_EQ(viewer->list.count, 2);
}

TEST_F(LoggerExplorerTest, TheRecordsAtHandServeAnAutomaticPeriodToo)
{
    Start();
    explorer.OnCommand(31820);
    explorer.SelectViewer(kNoViewer);
    calls.clear();
    explorer.SelectViewer(kTableViewer, Reading::WhereNeeded);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Load"), 0);
    EXPECT_EQ(viewer->shownPeriod, ZRDateTimeSpan(1800, 0));
    EXPECT_TRUE(IsAutomatic(explorer.Window().samplePeriod));
}

TEST_F(LoggerExplorerTest, TheRecordsAtHandDoNotServeAnotherPeriodOrOtherVariables)
{
    const auto loads = [this] {
        explorer.SelectViewer(kNoViewer);
        calls.clear();
        explorer.SelectViewer(kTableViewer, Reading::WhereNeeded);
        return std::count(calls.begin(), calls.end(), "Load");
    };
    Start();
    EXPECT_EQ(loads(), 0);
    explorer.Window().samplePeriod = {3600, 0};
    EXPECT_EQ(loads(), 1);
    EXPECT_EQ(viewer->shownPeriod, ZRDateTimeSpan(3600, 0));
    explorer.Window().dateFrom = Date(1, 12, 2002);
    EXPECT_EQ(loads(), 1);
    explorer.Setup(Info({u"M.PF"}), nullptr);
    EXPECT_EQ(loads(), 1);
    EXPECT_EQ(loads(), 0);
}

TEST_F(LoggerExplorerTest, RecordsOfALoadThatWasStoppedServeNobodyElse)
{
    Start();
    progress.isCancelled = true;
    explorer.OnCommand(kGroupByMonth);
    progress.isCancelled = false;
    explorer.SelectViewer(kNoViewer);
    calls.clear();
    explorer.SelectViewer(kTableViewer, Reading::WhereNeeded);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "Load"), 1);
}

TEST_F(LoggerExplorerTest, AnAutomaticPeriodStaysAutomaticAndTheViewerSeesARealOne)
{
    Start();
    explorer.OnCommand(31820);
    EXPECT_EQ(viewer->shownPeriod, ZRDateTimeSpan(1800, 0));
    EXPECT_TRUE(IsAutomatic(explorer.Window().samplePeriod));
    explorer.SelectViewer(kNoViewer);
    explorer.SelectViewer(kTableViewer);
    EXPECT_EQ(viewer->shownPeriod, ZRDateTimeSpan(1800, 0));
    EXPECT_TRUE(IsAutomatic(explorer.Window().samplePeriod));
}

TEST_F(LoggerExplorerTest, TheAutomaticPeriodGoesByTheVariables)
{
    test::LiveDevice counters(u"C", {Described(u"E", u"Energy", 8, 0, 3, 2)});
    EXPECT_EQ(explorer.AutomaticPeriodOf(kGroupByWeek), ZRDateTimeSpan(86400, 0));
    explorer.Setup(Info({u"M.U"}), &hostsViewer);
    EXPECT_EQ(explorer.AutomaticPeriodOf(kGroupByWeek), ZRDateTimeSpan(1800, 0));
}

TEST_F(LoggerExplorerTest, ANewUnitReadsTheDataAnewAndANewPeriodOnlyGroupsThem)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    Start();
    explorer.OnCommand(31821);
    EXPECT_EQ(viewer->list.count, 1);
    // What is recorded now is seen by the next reading alone.
    Record(u"M.U", Date(17, 12, 2002, 9), 20);
    const auto* const everyRecord = &explorer.Data()->RecordGroup(kEveryRecord, nullptr);
    explorer.OnCommand(31827);
    explorer.OnCommand(31821);
    EXPECT_EQ(&explorer.Data()->RecordGroup(kEveryRecord, nullptr), everyRecord);
    EXPECT_EQ(viewer->list.count, 1);
    explorer.OnCommand(kGroupByMonth);
    EXPECT_EQ(viewer->list.count, 2);
}

TEST_F(LoggerExplorerTest, ARefusedPairLoadsNothing)
{
    Start();
    explorer.OnCommand(31828);
    EXPECT_TRUE(messages.empty());
    calls.clear();
    explorer.OnCommand(kGroupByDay);
    EXPECT_EQ(messages, std::vector{kMessageBadCombination});
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(explorer.Window().groupBy, kGroupByWeek);
}

TEST_F(LoggerExplorerTest, PreviousAndNextMoveTheWindow)
{
    Start();
    EXPECT_FALSE(explorer.IsEnabled(kCommandNext));
    explorer.OnCommand(kCommandPrevious);
    EXPECT_EQ(Narrow(viewer->caption), "Week 50: 9 December 2002 to 15 December 2002");
    EXPECT_TRUE(explorer.IsEnabled(kCommandNext));
    explorer.OnCommand(kCommandNext);
    EXPECT_EQ(Narrow(viewer->caption), "Week 51: 16 December 2002 to 22 December 2002");
    calls.clear();
    explorer.OnCommand(kCommandNext);
    EXPECT_TRUE(calls.empty());
}

TEST_F(LoggerExplorerTest, GoToShowsTheUnitOfTheChosenDate)
{
    Start();
    explorer.OnCommand(kCommandGoTo);
    EXPECT_TRUE(calls.empty());
    choice = Date(5, 11, 2002, 12);
    explorer.OnCommand(kCommandGoTo);
    EXPECT_EQ(Narrow(viewer->caption), "Week 45: 4 November 2002 to 10 November 2002");
}

TEST_F(LoggerExplorerTest, CopyGoesToTheViewer)
{
    Start();
    EXPECT_TRUE(explorer.OnCommand(57634));
    EXPECT_EQ(calls, Calls{"ClipboardCopy"});
}

TEST_F(LoggerExplorerTest, ACommandOfOthersIsLeftToThem)
{
    Start();
    EXPECT_FALSE(explorer.OnCommand(1));
    EXPECT_FALSE(explorer.OnCommand(31830));
}

TEST_F(LoggerExplorerTest, ConfigSetsUpAndLoadsAnew)
{
    Start();
    viewer->dialog = [](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo& variables) {
        variables.AddVariable(u"M.PF");
        variables.Lock();
        copy.AddVariable(u"M.PF", u"M Power factor", 2, 7, 0, 3, 100, 0);
        return true;
    };
    explorer.OnCommand(kCommandConfig);
    EXPECT_EQ(calls, (Calls{"OnConfig", "Invalid", "Hide", "Setup", "Invalid", "Load", "Update", "Valid", "Show"}));
    EXPECT_EQ(explorer.Data()->loggerInfo.variables.size(), 3U);
    EXPECT_EQ(viewer->list.columns.size(), 4U);
}

TEST_F(LoggerExplorerTest, ConfigThatIsCancelledChangesNothing)
{
    Start();
    viewer->dialog = [](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo&) {
        copy.DeleteAll();
        return false;
    };
    const ZRLoggerData* const before = explorer.Data();
    explorer.OnCommand(kCommandConfig);
    EXPECT_EQ(calls, Calls{"OnConfig"});
    EXPECT_EQ(explorer.Data(), before);
    EXPECT_EQ(viewer->list.columns.size(), 3U);
}

TEST_F(LoggerExplorerTest, ANewSetupGivesTheViewerTheNewVariables)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    Start();
    explorer.Setup(Info({u"M.U"}), &hostsViewer);
    EXPECT_EQ(calls, (Calls{"Invalid", "Setup"}));
    EXPECT_EQ(viewer->list.count, 0);
    EXPECT_EQ(Narrow(viewer->table.CellText(0, 0)), "");
    explorer.SetupData(explorer.Window().dateTo, kGroupByWeek, ZRDateTimeSpan(1800, 0), true);
    EXPECT_EQ(viewer->list.count, 1);
}

TEST_F(LoggerExplorerTest, AStoreThatIsAwayGivesAnEmptyTable)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    store.SetAvailable(false);
    Start();
    EXPECT_EQ(viewer->list.count, 0);
    store.SetAvailable(true);
    explorer.OnCommand(kGroupByMonth);
    EXPECT_EQ(viewer->list.count, 1);
}

TEST_F(LoggerExplorerTest, ALoadThatIsCancelledGivesAnEmptyTable)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    progress.isCancelled = true;
    Start();
    EXPECT_EQ(viewer->list.count, 0);
}

TEST_F(LoggerExplorerTest, AfterALoadThatWasCancelledTheNextReadsAnewWhateverItChanges)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    Start();
    progress.isCancelled = true;
    explorer.OnCommand(31821);
    EXPECT_EQ(viewer->list.count, 0);
    progress.isCancelled = false;
    explorer.OnCommand(31827);
    EXPECT_EQ(viewer->list.count, 1);
    explorer.OnCommand(31821);
    EXPECT_EQ(viewer->list.count, 1);
}

TEST_F(LoggerExplorerTest, AfterALoadThatFailedTheNextReadsAnewWhateverItChanges)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    store.SetAvailable(false);
    Start();
    EXPECT_EQ(viewer->list.count, 0);
    store.SetAvailable(true);
    explorer.OnCommand(31821);
    EXPECT_EQ(viewer->list.count, 1);
}

TEST_F(LoggerExplorerTest, AfterANewSetupANewPeriodReadsTheData)
{
    Record(u"M.U", Date(17, 12, 2002, 8), 10);
    Start();
    explorer.Setup(Info({u"M.U"}), &hostsViewer);
    explorer.OnCommand(31821);
    EXPECT_EQ(viewer->list.count, 1);
}

TEST_F(LoggerExplorerTest, NoCommandIsReachableWhileDataAreLoaded)
{
    Start();
    int loads = 0;
    duringLoad = [&] {
        ++loads;
        for (const unsigned command : {kCommandPrevious, kCommandGoTo, kCommandConfig, kCommandCopy, 31822U,
                                       static_cast<unsigned>(kGroupByMonth)}) {
            EXPECT_FALSE(explorer.IsEnabled(command));
            EXPECT_TRUE(explorer.OnCommand(command));
        }
    };
    explorer.OnCommand(kCommandPrevious);
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(calls, (Calls{"Invalid", "Load", "Update", "Valid"}));
    EXPECT_TRUE(explorer.IsEnabled(kCommandPrevious));
}

TEST_F(LoggerExplorerTest, TheLastChoiceIsTheHostsToRead)
{
    SuiteKey().WriteText(kLastGroupValue, u"DAY");
    SuiteKey().WriteText(kLastPeriodValue, u"60");
    Start();
    EXPECT_EQ(explorer.Window().groupBy, kGroupByWeek);
    EXPECT_EQ(explorer.Window().samplePeriod, ZRDateTimeSpan(1800, 0));
}

TEST_F(LoggerExplorerTest, SelectViewerAfterConfigShowsTheNewColumns)
{
    Start();
    viewer->dialog = [](ZRTableProfile& copy, ZRTableProfile&, ZRLoggerInfo& variables) {
        copy.DeleteVariable(0);
        delete variables.variables.front();
        variables.variables.pop_front();
        return true;
    };
    explorer.OnCommand(kCommandConfig);
    ASSERT_EQ(viewer->list.columns.size(), 2U);
    EXPECT_EQ(explorer.Data()->loggerInfo.variables.size(), 1U);
    explorer.SelectViewer(kNoViewer);
    explorer.SelectViewer(kTableViewer);
    ASSERT_EQ(viewer->list.columns.size(), 2U);
    EXPECT_EQ(Narrow(viewer->list.columns[1].text), "M Energy (kWh)");
}

TEST_F(LoggerExplorerTest, WithoutSetupAViewerIsMadeAndNothingLoaded)
{
    explorer.SelectViewer(kTableViewer);
    EXPECT_EQ(calls, Calls{"Create 2"});
    EXPECT_FALSE(explorer.IsEnabled(kCommandPrevious));
}

TEST_F(LoggerExplorerTest, DropDownsMarkWhatIsInForce)
{
    Start();
    ExplorerMenu menu;
    EXPECT_TRUE(explorer.DropDownMenu(kCommandGroupBy, menu));
    EXPECT_TRUE(menu[1].isChecked);
    EXPECT_TRUE(explorer.DropDownMenu(kCommandPeriod, menu));
    EXPECT_TRUE(menu[6].isChecked);
    EXPECT_FALSE(explorer.DropDownMenu(kCommandGoTo, menu));
}

}  // namespace
}  // namespace zr::logger
