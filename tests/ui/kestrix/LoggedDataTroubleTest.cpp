#include "hosts/kestrix/ui/StatusLine.h"
#include "hosts/kestrix/ui/Theme.h"
#include "LoggedDataFixture.h"
#include "ui/support/KeepPicture.h"

namespace zr::desktop {
namespace {

// What the window says when data can't be shown.
class LoggedDataTroubleTest : public LoggedDataFixture {
protected:
    static StatusLine& Line(LoggedDataWindow& window)
    {
        return dynamic_cast<StatusLine&>(*ui::FindControl(window, kLoggedStatus));
    }
    static std::string Tip(LoggedDataWindow& window) { return Line(window).toolTip().toStdString(); }
    // Messages of the list of warnings that tell of logged data.
    static std::vector<std::string> Warnings()
    {
        std::vector<std::string> told;
        for (int i = 0; i < ZRDebugInfo::Get().Size(); ++i) {
            const std::string text = Utf16ToUtf8(ZRDebugInfo::Get().WarningStr(i));
            if (text.find("logged data") != std::string::npos) {
                EXPECT_FALSE(ZRDebugInfo::Get().IsEvent(i));
                told.push_back(text);
            }
        }
        return told;
    }
};

TEST_F(LoggedDataTroubleTest, TellsThatTheStoreFailedInTheMiddleOfALoad)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    Settle();
    EXPECT_FALSE(Line(*window).AsksForAttention());
    int blocks = 0;
    m_gate.gate = [&] { return ++blocks < 5; };
    m_gate.failure = "plant.sqlite: disk I/O error";
    ShowAll(*window);
    EXPECT_GE(blocks, 5);
    EXPECT_EQ(List(*window).GetItemCount(), 0);
    EXPECT_TRUE(window->Status().startsWith("The data cannot be read: plant.sqlite: disk I/O error   |   0 records"))
        << window->Status().toStdString();
    EXPECT_TRUE(Line(*window).AsksForAttention());
    EXPECT_EQ(Line(*window).palette().color(QPalette::Window), NoticeColour());
    EXPECT_TRUE(m_asked.empty());  // nobody need be there to answer
    Settle();
    EXPECT_TRUE(test::KeepPicture(window->grab().toImage(), "logged-data-failed.png"));

    m_gate.gate = nullptr;
    QTest::keyClick(&List(*window), Qt::Key_F5);
    EXPECT_EQ(List(*window).GetItemCount(), kRecords);
    EXPECT_TRUE(window->Status().startsWith("40 records")) << window->Status().toStdString();
    EXPECT_FALSE(Line(*window).AsksForAttention());
}

TEST_F(LoggedDataTroubleTest, WarnsOnceOfEachFailure)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    m_gate.gate = [] { return false; };
    m_gate.failure = "plant.sqlite: disk I/O error";
    ShowAll(*window);
    window->Reload();
    m_frame->UpdateAll();
    const std::string told = "The logged data of METER-1 cannot be read: plant.sqlite: disk I/O error";
    ASSERT_EQ(Warnings().size(), 1U) << Warnings().back();
    EXPECT_NE(Warnings()[0].find(told), std::string::npos) << Warnings()[0];
    m_gate.gate = nullptr;
    window->Reload();
    m_gate.gate = [] { return false; };
    window->Reload();
    m_frame->UpdateAll();
    EXPECT_EQ(Warnings().size(), 2U);
}

TEST_F(LoggedDataTroubleTest, TellsWhatIsDamagedAndShowsTheRest)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    m_gate.damage = "plant.sqlite: METER-1.U1, hour 2003-01-15 08:00: checksum";
    ShowAll(*window);
    EXPECT_EQ(List(*window).GetItemCount(), kRecords);
    EXPECT_TRUE(window->Status().startsWith("Left out, since it is damaged: plant.sqlite: METER-1.U1"))
        << window->Status().toStdString();
    EXPECT_NE(window->Status().indexOf("more)"), -1);
    EXPECT_TRUE(Line(*window).AsksForAttention());
    EXPECT_NE(Tip(*window).find("40 records"), std::string::npos) << Tip(*window);
    EXPECT_NE(Tip(*window).find("checksum"), std::string::npos) << Tip(*window);
}

TEST_F(LoggedDataTroubleTest, TellsWhyAColumnHasNoValues)
{
    StartWithData({u"METER-1.U1", u"NONE.MVDF@PEAK#METER-1.U1"});
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    ShowAll(*window);
    EXPECT_EQ(List(*window).GetItemCount(), kRecords);
    EXPECT_TRUE(window->Status().startsWith("No values: ")) << window->Status().toStdString();
    EXPECT_NE(window->Status().indexOf("NONE.MVDF"), -1) << window->Status().toStdString();
    EXPECT_TRUE(Line(*window).AsksForAttention());
}

TEST_F(LoggedDataTroubleTest, NamesTheVariablesThatNoDeviceHasAnyMore)
{
    StartWithData({u"METER-1.U1", u"METER-1.OLD", u"METER-1.OLDER"});
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    ShowAll(*window);
    EXPECT_EQ(List(*window).GetColumnCount(), 2);
    EXPECT_EQ(List(*window).GetItemText(0, 1).substr(0, 3), u"2,3");
    EXPECT_TRUE(window->Status().endsWith("no device has it any more: METER-1.OLD (+ 1 more)"))
        << window->Status().toStdString();
    EXPECT_NE(Tip(*window).find("METER-1.OLDER"), std::string::npos) << Tip(*window);
    EXPECT_FALSE(Line(*window).AsksForAttention());
}

TEST_F(LoggedDataTroubleTest, TakesTheColoursThatAreChosenMeanwhile)
{
    StartWithData();
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    m_gate.gate = [] { return false; };
    ShowAll(*window);
    m_frame->ChooseColours(Colours::Dark);
    Settle();
    EXPECT_EQ(Line(*window).palette().color(QPalette::Window), NoticeColour());
    EXPECT_EQ(Line(*window).palette().color(QPalette::WindowText), NoticeTextColour());
    EXPECT_TRUE(test::KeepPicture(window->grab().toImage(), "logged-data-failed-dark.png"));
}

TEST_F(LoggedDataTroubleTest, SpeaksTheLanguageInForce)
{
    StartWithData();
    ASSERT_TRUE(m_frame->UseLanguage("de"));
    LoggedDataWindow* const window = OpenFor(u"METER-1");
    ASSERT_NE(window, nullptr);
    m_gate.gate = [] { return false; };
    ShowAll(*window);
    EXPECT_TRUE(window->Status().startsWith("Die Daten k\u00f6nnen nicht gelesen werden: the store went away"))
        << window->Status().toStdString();
}

}  // namespace
}  // namespace zr::desktop
