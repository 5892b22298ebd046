#include "hosts/supervision/Supervisor.h"

#include "platform/ProcessLock.h"
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zr::supervision {
namespace {

using testing::Test;

// A program that keeps what it is told.
class Listener final : public Supervisor::Host {
public:
    void Complain(const std::string& text) override { complaints.push_back(text); }
    void Log(const std::string& text) override { lines.push_back(text); }
    void RegistryGoes() override { ++gone; }
    void RegistryCame() override { ++came; }

    std::vector<std::string> complaints;
    std::vector<std::string> lines;
    int gone = 0;
    int came = 0;
};

class SupervisorTest : public Test {
protected:
    static std::string Document(const std::string& device)
    {
        return "<K><CommSystem><Connections><Connection Name=\"N\" Type=\"UDP\" Address=\"127.0.0.1\" "
               "Socket=\"47999\"/></Connections><Devices><Device Name=\"" +
               device + "\" Driver=\"EM3\" Connection=\"N\"/></Devices></CommSystem></K>\n";
    }

    SupervisionOptions Options(const std::filesystem::path& document)
    {
        SupervisionOptions options;
        options.document = document;
        options.dataFolder = m_folder / "data";
        options.updatePeriod = std::chrono::milliseconds(100);
        return options;
    }

    static ZRBasicString FirstDevice()
    {
        ZRCommSystem& system = ZRCommSystem::Get();
        return system.DriversBegin() != system.DriversEnd() ? (*system.DriversBegin())->name : ZRBasicString();
    }

    test::TempFolder m_folder;
    test::Environment m_resources{"KESTRIX_RESOURCES", ZR_RESOURCES};
    test::Environment m_runtime{"XDG_RUNTIME_DIR", (m_folder / "run").string()};
    Listener m_host;
};

TEST_F(SupervisorTest, OpensAnotherDocumentAndLetsTheFirstGo)
{
    const auto first = m_folder.Write("a.xml", Document("A"));
    const auto second = m_folder.Write("b.xml", Document("B"));
    Supervisor supervisor(Options(first), "test", m_host);
    ASSERT_TRUE(supervisor.Prepare());
    ASSERT_EQ(supervisor.TakeDocument(), Supervisor::Taking::Taken);
    supervisor.LoadRegistry();
    supervisor.Start();
    EXPECT_EQ(FirstDevice(), u"A");
    ASSERT_TRUE(supervisor.Open(second));
    EXPECT_EQ(FirstDevice(), u"B");
    EXPECT_EQ(m_host.gone, 1);
    EXPECT_EQ(m_host.came, 2);
    ProcessLock other;
    EXPECT_EQ(other.Take(first, "other"), ProcessLock::Result::Taken);
    ProcessLock third;
    EXPECT_EQ(third.Take(second, "third"), ProcessLock::Result::HeldByOther);
}

TEST_F(SupervisorTest, KeepsTheOldDocumentWhenTheNewOneCannotBeRead)
{
    const auto first = m_folder.Write("a.xml", Document("A"));
    const auto bad = m_folder.Write("bad.xml", "<K>");
    Supervisor supervisor(Options(first), "test", m_host);
    ASSERT_TRUE(supervisor.Prepare());
    ASSERT_EQ(supervisor.TakeDocument(), Supervisor::Taking::Taken);
    supervisor.LoadRegistry();
    EXPECT_FALSE(supervisor.Open(bad));
    EXPECT_FALSE(supervisor.Open(m_folder / "none.xml"));
    EXPECT_EQ(FirstDevice(), u"A");
    EXPECT_EQ(m_host.gone, 0);
    EXPECT_EQ(supervisor.Options().document, first);
    ASSERT_FALSE(m_host.lines.empty());
    EXPECT_NE(m_host.lines[0].find("bad.xml:1"), std::string::npos) << m_host.lines[0];
}

TEST_F(SupervisorTest, LoadsADocumentOfAnotherProgramWithoutPolling)
{
    const auto document = m_folder.Write("a.xml", Document("A"));
    ProcessLock other;
    ASSERT_EQ(other.Take(document, "kestrixd"), ProcessLock::Result::Taken);
    Supervisor supervisor(Options(document), "test", m_host);
    ASSERT_TRUE(supervisor.Prepare());
    EXPECT_EQ(supervisor.TakeDocument(), Supervisor::Taking::HeldByOther);
    EXPECT_EQ(supervisor.OtherProgram(), "kestrixd");
    supervisor.LoadRegistry();
    supervisor.Start();
    EXPECT_FALSE(supervisor.IsOurs());
    EXPECT_FALSE(supervisor.Publication().IsRunning());
    EXPECT_EQ(FirstDevice(), u"A");
    other.Release();
    ASSERT_TRUE(supervisor.Reload());
    EXPECT_TRUE(supervisor.IsOurs());
}

TEST_F(SupervisorTest, TellsWhetherTheDocumentWasChangedAndSavesIt)
{
    const auto document = m_folder.Write("a.xml", Document("A"));
    Supervisor supervisor(Options(document), "test", m_host);
    ASSERT_TRUE(supervisor.Prepare());
    ASSERT_EQ(supervisor.TakeDocument(), Supervisor::Taking::Taken);
    EXPECT_FALSE(supervisor.IsModified());
    supervisor.Document().root->SetValue(u"Id", u"Plant");
    EXPECT_TRUE(supervisor.IsModified());
    ASSERT_TRUE(supervisor.Save());
    EXPECT_FALSE(supervisor.IsModified());
    XmlDocument read;
    ASSERT_TRUE(read.Load(document));
    EXPECT_EQ(read.root->Value(u"Id", u""), u"Plant");
}

TEST_F(SupervisorTest, AFilterWithoutACalendarIsToldOfAndServes)
{
    const auto document = m_folder.Write("a.xml", Document("A"));
    const std::filesystem::path filters = m_folder / "data";
    std::filesystem::create_directory(filters);
    std::ofstream(filters / "THREE-TARIFF.MVDF") << R"(<f><hourTypes><hour name="A"/></hourTypes></f>)";
    std::ofstream(filters / "THREE-TARIFF.MVDFI") << R"(<h><hour name="A"/></h>)";
    Supervisor supervisor(Options(document), "test", m_host);
    ASSERT_TRUE(supervisor.Prepare());
    ASSERT_EQ(supervisor.TakeDocument(), Supervisor::Taking::Taken);
    supervisor.LoadRegistry();
    m_host.lines.clear();
    EXPECT_TRUE(supervisor.CheckFilters());
    EXPECT_TRUE(m_host.complaints.empty());
    ASSERT_EQ(m_host.lines.size(), 1u);
    EXPECT_NE(m_host.lines[0].find("THREE-TARIFF.MVDF: has no calendar"), std::string::npos) << m_host.lines[0];
}

TEST_F(SupervisorTest, ARecordingFileThatIsRefusedIsBadInput)
{
    const auto document = m_folder.Write("a.xml", Document("A"));
    const auto recording = m_folder.Write("a.recording.xml", "<Recording>\n<Bad/></Recording>");
    Supervisor supervisor(Options(document), "test", m_host);
    ASSERT_TRUE(supervisor.Prepare());
    EXPECT_EQ(supervisor.TakeDocument(), Supervisor::Taking::BadInput);
    ASSERT_EQ(m_host.complaints.size(), 1u);
    EXPECT_EQ(m_host.complaints[0], recording.string() + ":2: unknown element Bad in Recording");
}

TEST_F(SupervisorTest, ADocumentIsOpenedWithoutTheRecordingThatIsRefused)
{
    const auto first = m_folder.Write("a.xml", Document("A"));
    m_folder.Write("a.recording.xml", "<Recording><DataSet Name=\"s\"><Device Name=\"A\"/></DataSet></Recording>");
    const auto second = m_folder.Write("b.xml", Document("B"));
    m_folder.Write("b.recording.xml", "<Recording><Bad/></Recording>");
    Supervisor supervisor(Options(first), "test", m_host);
    ASSERT_TRUE(supervisor.Prepare());
    ASSERT_EQ(supervisor.TakeDocument(), Supervisor::Taking::Taken);
    supervisor.LoadRegistry();
    EXPECT_TRUE(supervisor.Recording().Status().isConfigured);
    ASSERT_TRUE(supervisor.Open(second));
    EXPECT_EQ(FirstDevice(), u"B");
    EXPECT_FALSE(supervisor.Recording().Status().isConfigured);
    EXPECT_EQ(supervisor.Recording().Status().file, m_folder / "b.recording.xml");
    EXPECT_EQ(supervisor.Figures().warnings, 1u);
}

TEST_F(SupervisorTest, AnUnknownLanguageLeavesTheOldTexts)
{
    Supervisor supervisor(Options(m_folder.Write("a.xml", Document("A"))), "test", m_host);
    ASSERT_TRUE(supervisor.UseLanguage("en"));
    EXPECT_FALSE(supervisor.UseLanguage("xx"));
    EXPECT_EQ(m_host.complaints.size(), 1u);
}

}  // namespace
}  // namespace zr::supervision
