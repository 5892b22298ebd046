#include "hosts/kestrix/ui/LoggedDataPageView.h"

#include "DesktopFixture.h"
#include "platform/ProcessLock.h"
#include "ui/support/FindWindow.h"

#include <QImage>
#include <QLineEdit>
#include <QTest>
#include <set>

namespace zr::desktop {
namespace {

class LoggedDataPageViewTest : public DesktopFixture {
protected:
    void WriteRecording()
    {
        m_folder.Write("plant.recording.xml",
                       "<Recording><Store File=\"plant.zrlog\"/><DataSet Name=\"mains\" Period=\"60\" "
                       "Retention=\"730\"><Device Name=\"METER-1\"/></DataSet><DataSet Name=\"io\" Period=\"10\">"
                       "<Variable Name=\"IO-1.I1\"/></DataSet></Recording>");
    }

    // The node of logged data, which is the last one at the top.
    [[nodiscard]] std::size_t LoggedNode() const { return m_frame->Tree().Tree().Top().back(); }

    LoggedDataPageView* ShowLoggedData()
    {
        EXPECT_TRUE(m_frame->ShowNode(LoggedNode()));
        Settle();
        return dynamic_cast<LoggedDataPageView*>(m_frame->Page());
    }

    // Pixels of a picture of the page that aren't its background.
    static std::size_t InkOf(QWidget& page)
    {
        const QImage image = page.grab().toImage();
        const QRgb background = image.pixel(1, 1);
        std::size_t ink = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                ink += image.pixel(x, y) != background ? 1u : 0u;
            }
        }
        return ink;
    }
};

TEST_F(LoggedDataPageViewTest, ShowsStoreAndDataSets)
{
    WriteRecording();
    Start();
    LoggedDataPageView* const page = ShowLoggedData();
    ASSERT_NE(page, nullptr);
    const LoggedDataPage& shown = page->Shown();
    ASSERT_EQ(shown.stores.size(), 1u);
    ASSERT_EQ(shown.dataSets.size(), 2u);
    EXPECT_EQ(shown.dataSets[0].name, u"mains");
    EXPECT_EQ(shown.dataSets[0].variables, u"32");
    EXPECT_EQ(shown.dataSets[1].period, u"10 s");
    EXPECT_EQ(page->accessibleDescription(), "waits for the first values");
    EXPECT_FALSE(test::FindWindow<SelectionStrip>(*m_frame)->isVisible()) << "there is no value to select";
}

TEST_F(LoggedDataPageViewTest, FollowsTheRecording)
{
    WriteRecording();
    Start();
    LoggedDataPageView* const page = ShowLoggedData();
    ASSERT_NE(page, nullptr);
    for (const wchar* const device : {u"METER-1", u"IO-1"}) {
        ZRDeviceDriver::LockDriver(device, false)->SetOnline(true);
    }
    m_supervisor->Start();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            m_frame->UpdateAll();
            return page->Shown().state == u"recording";
        },
        20000));
    EXPECT_EQ(page->Shown().badge, DeviceState::OnLine);
    EXPECT_EQ(m_frame->Tree().topLevelItem(m_frame->Tree().topLevelItemCount() - 1)->toolTip(0),
              "Logged data: recording");
}

TEST_F(LoggedDataPageViewTest, TellsWhereARecordingFileWouldLie)
{
    Start();
    LoggedDataPageView* const page = ShowLoggedData();
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->Shown().state, u"nothing is recorded");
    EXPECT_NE(page->Shown().place.Text().find(u"plant.recording.xml"), std::u16string_view::npos);
    EXPECT_GT(InkOf(*page), 100u);
}

TEST_F(LoggedDataPageViewTest, NamesTheProgramThatRecords)
{
    WriteRecording();
    ProcessLock other;
    ASSERT_EQ(other.Take(m_document, "kestrixd"), ProcessLock::Result::Taken);
    Start();
    LoggedDataPageView* const page = ShowLoggedData();
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->Shown().state, u"recorded by kestrixd");
    EXPECT_EQ(page->Shown().badge, DeviceState::NotPolled);
}

TEST_F(LoggedDataPageViewTest, IsShownAgainAfterARestartAndInAnotherLanguage)
{
    WriteRecording();
    Start();
    ASSERT_NE(ShowLoggedData(), nullptr);
    ASSERT_TRUE(m_frame->UseLanguage("de"));
    auto* page = dynamic_cast<LoggedDataPageView*>(m_frame->Page());
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->Shown().state, u"wartet auf die ersten Werte");
    m_frame->KeepSettings();
    m_frame.reset();
    Open();
    EXPECT_NE(dynamic_cast<LoggedDataPageView*>(m_frame->Page()), nullptr);
}

TEST_F(LoggedDataPageViewTest, HasRoomForItsTextsAtEveryWidth)
{
    WriteRecording();
    Start();
    LoggedDataPageView* const page = ShowLoggedData();
    ASSERT_NE(page, nullptr);
    std::set<std::size_t> inks;
    for (const int width : {640, 1024, 1600}) {
        m_frame->resize(width, 700);
        Settle();
        EXPECT_GT(page->minimumHeight(), 100);
        inks.insert(InkOf(*page));
    }
    EXPECT_GT(*inks.begin(), 1000u);
}

TEST_F(LoggedDataPageViewTest, CannotBeRenamed)
{
    Start();
    ASSERT_NE(ShowLoggedData(), nullptr);
    m_frame->Tree().EditSelectedGroup();
    EXPECT_EQ(m_frame->Tree().findChild<QLineEdit*>(), nullptr);
}

}  // namespace
}  // namespace zr::desktop
