#include "hosts/kestrix/LoggedDataPage.h"

#include "EnglishTexts.h"
#include "siblings/tools/TimeZone.h"

#include <gtest/gtest.h>

namespace zr::desktop {
namespace {

constexpr std::int64_t kNoon = 1763726400'000'000;  // 21 November 2025 12:00 UTC

class LoggedDataPageTest : public testing::Test {
protected:
    LoggedDataPageTest()
    {
        SetPlantZone(TimeZone(3600, {}));
        m_status.isConfigured = true;
        m_status.isRecording = true;
        m_status.file = "plant.recording.xml";
        m_status.storeFile = "folder/plant.zrlog";
        m_status.nodes = {u"plant.zrlog"};
        m_status.dataSets = {{u"mains", 60, 730, {u"A.U1", u"A.U2"}}, {u"io", 10, 0, {u"B.I1"}}};
        RecorderDataSetFigures mains{u"mains", 60, 2, kNoon, {}};
        mains.counts.recorded = 12345;
        m_status.figures.dataSets = {mains, {u"io", 10, 1, 0, {}}};
        m_status.figures.nodes.resize(1);
        m_status.figures.nodes[0].state = RecorderNodeState::Recording;
        m_status.figures.nodes[0].spoolLimit = 64u << 20;
    }
    ~LoggedDataPageTest() override { SetPlantZone(TimeZone::System()); }

    [[nodiscard]] LoggedDataPage Page(const wchar* otherProgram = u"") const
    {
        return MakeLoggedDataPage(m_status, otherProgram);
    }

    test::EnglishTexts m_texts;
    supervision::RecordingStatus m_status;
};

TEST_F(LoggedDataPageTest, ShowsEveryDataSetWithItsUnits)
{
    const LoggedDataPage page = Page();
    ASSERT_EQ(page.dataSets.size(), 2u);
    EXPECT_EQ(page.dataSets[0], (LoggedDataPage::DataSet{u"mains", u"1 min", u"730 d", u"2", u"12,345", u"0", u"",
                                                         u"21/11/2025 13:00:00"}));
    EXPECT_EQ(page.dataSets[1],
              (LoggedDataPage::DataSet{u"io", u"10 s", u"for ever", u"1", u"0", u"0", u"", u"none yet"}));
}

TEST_F(LoggedDataPageTest, TellsWhySamplesAreNotRecorded)
{
    m_status.figures.dataSets[0].counts.unrecorded[0] = 3;
    EXPECT_EQ(Page().dataSets[0].notRecorded, u"3");
    EXPECT_EQ(Page().dataSets[0].reasons, u"no valid value 3");
}

TEST_F(LoggedDataPageTest, ShowsTheStoreWithWhatWaits)
{
    m_status.figures.nodes[0].spooled = 2000;
    m_status.figures.nodes[0].spoolBytes = 3u << 19;
    const LoggedDataPage page = Page();
    ASSERT_EQ(page.stores.size(), 1u);
    EXPECT_EQ(page.stores[0], (LoggedDataPage::Store{u"folder/plant.zrlog", DeviceState::OnLine, u"recording", u"2,000",
                                                     u"1.5 of 64.0", u""}));
    EXPECT_EQ(page.badge, DeviceState::OnLine);
    EXPECT_EQ(page.state, u"recording");
    EXPECT_EQ(page.place, u"plant.recording.xml");
}

TEST_F(LoggedDataPageTest, TheWorstStoreIsTheStateOfTheWhole)
{
    m_status.storeFile.clear();
    m_status.nodes = {u"node 1", u"node 2", u"node 3"};
    m_status.figures.nodes.resize(3);
    m_status.figures.nodes[1].state = RecorderNodeState::Full;
    m_status.figures.nodes[1].since = kNoon;
    m_status.figures.nodes[1].error = "disk full";
    m_status.figures.nodes[2].state = RecorderNodeState::Spooling;
    m_status.figures.nodes[2].since = kNoon;
    const LoggedDataPage page = Page();
    EXPECT_EQ(page.badge, DeviceState::Alarm);
    EXPECT_EQ(page.state, u"no room since 21/11/2025 13:00:00");
    EXPECT_EQ(page.stores[0].badge, DeviceState::OnLine);
    EXPECT_EQ(page.stores[1].title, u"node 2");
    EXPECT_EQ(page.stores[1].trouble, u"disk full");
    EXPECT_EQ(page.stores[2].state, u"store away since 21/11/2025 13:00:00");
    EXPECT_EQ(page.stores[2].badge, DeviceState::Silent);
}

TEST_F(LoggedDataPageTest, AnotherProgramsCountsAreNotGuessed)
{
    m_status.isRecording = false;
    m_status.figures.nodes.clear();
    const LoggedDataPage page = Page(u"kestrixd");
    EXPECT_EQ(page.state, u"recorded by kestrixd");
    EXPECT_EQ(page.badge, DeviceState::NotPolled);
    EXPECT_EQ(page.stores[0].state, u"recorded by kestrixd");
    EXPECT_TRUE(page.stores[0].waiting.IsEmpty());
    EXPECT_EQ(page.dataSets[0].variables, u"2");
    EXPECT_TRUE(page.dataSets[0].recorded.IsEmpty());
    EXPECT_TRUE(page.dataSets[0].last.IsEmpty());
}

TEST_F(LoggedDataPageTest, WaitsForTheFirstValues)
{
    m_status.isRecording = false;
    EXPECT_EQ(Page().state, u"waits for the first values");
    EXPECT_EQ(Page().badge, DeviceState::NotAsked);
}

TEST_F(LoggedDataPageTest, WithoutARecordingFileItTellsWhereOneIsLookedFor)
{
    m_status = {};
    m_status.file = "plant.recording.xml";
    const LoggedDataPage page = Page();
    EXPECT_EQ(page.state, u"nothing is recorded");
    EXPECT_EQ(page.place, u"There is no file plant.recording.xml to say what is recorded.");
    EXPECT_TRUE(page.stores.empty());
    EXPECT_TRUE(page.dataSets.empty());
}

TEST_F(LoggedDataPageTest, PeriodsHaveTheLargestUnitThatIsWhole)
{
    EXPECT_EQ(PeriodText(1), u"1 s");
    EXPECT_EQ(PeriodText(90), u"90 s");
    EXPECT_EQ(PeriodText(600), u"10 min");
    EXPECT_EQ(PeriodText(7200), u"2 h");
    EXPECT_EQ(PeriodText(31 * 86400), u"31 d");
    EXPECT_EQ(PeriodText(std::int64_t{36525} * 86400), u"36,525 d");
}

}  // namespace
}  // namespace zr::desktop
