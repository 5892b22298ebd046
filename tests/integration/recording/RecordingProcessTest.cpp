// The service as it records: real devices of the plant, a real file, read by a second program meanwhile.
#include "integration/service/ServiceFixture.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "siblings/tools/Utf.h"
#include "support/SampleMap.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <sstream>

namespace zr::test {
namespace {

constexpr std::int64_t kSecond = 1'000'000;
constexpr const char* kVoltage =
    R"(<DataSet Name="volts" Period="1" Retention="7"><Variable Name="METER.U1"/></DataSet>)";
constexpr const char* kFrequency = R"(<DataSet Name="hertz" Period="1"><Variable Name="METER.F"/></DataSet>)";

using Samples = std::map<std::int64_t, double>;

class RecordingProcessTest : public ServiceFixture {
protected:
    // A plant of two meters, ten minutes a second, and a document with them.
    void SetUp() override
    {
        const std::string resources = ZR_RESOURCES;
        const auto plant = m_folder.Write(
            "plant-file.xml",
            "<Plant Series=\"" + resources + "/demo/household/household_1min.csv\" Profiles=\"" + resources +
                "/devices\"><Converter Name=\"N\"><Device Name=\"METER\" Profile=\"EM3\" "
                "Unit=\"1\"/><Device Name=\"OTHER\" Profile=\"EM3\" Unit=\"2\"/></Converter></Plant>\n");
        m_plant = std::make_unique<Process>(
            std::vector<std::string>{ZR_PLANT, plant.string(), "--speed", "600", "--start", "2006-12-18T06:00",
                                     "--truth", (m_folder / "truth.csv").string()},
            Environment());
        std::string port;
        const auto ready = m_plant->ReadLine([&](const std::string& line) {
            if (line.starts_with("converter ")) {
                port = line.substr(line.rfind(':') + 1);
            }
            return line == "ready";
        });
        ASSERT_TRUE(ready) << m_plant->Errors();
        m_document = m_folder.Write(
            "plant.xml", DocumentText(UdpLine("L", port, 1000), {{"METER", "EM3", "L", "Unit=\"1\" Period=\"0.2\""},
                                                                 {"OTHER", "EM3", "L", "Unit=\"2\" Period=\"0.2\""}}));
    }

    std::filesystem::path WriteRecording(const std::string& content, const std::string& name = "plant.recording.xml")
    {
        return m_folder.Write(name, "<Recording>\n" + content + "\n</Recording>\n");
    }

    // Supervising; what it records lies in the test's folder.
    std::unique_ptr<Process> Start(std::vector<std::string> more = {})
    {
        std::vector<std::string> arguments{m_document.string(), "--for", "100", "--json", "--no-publication"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return StartService(arguments);
    }

    // Ends it as asked; its line of figures.
    static std::string End(Process& service)
    {
        service.Send(SIGTERM);
        EXPECT_EQ(service.WaitForExit(), 0) << service.Errors();
        return service.Output();
    }

    [[nodiscard]] std::filesystem::path Data() const { return m_folder / "data" / "kestrix"; }

    // As another program reads them, while the service writes; empty while there is no store.
    [[nodiscard]] static Samples Read(const std::filesystem::path& file, const wchar* variable)
    {
        SampleMap collector;
        if (std::filesystem::is_regular_file(file)) {
            SqliteLoggerStore store(file);
            if (const std::unique_ptr<LoggerReader> reader = store.OpenReader(); reader != nullptr) {
                reader->ReadBlocks(variable, 0, std::numeric_limits<std::int64_t>::max(), LoggerNeed::Samples,
                                   collector);
            }
        }
        return collector.samples;
    }
    [[nodiscard]] Samples Read(const wchar* variable) const { return Read(Data() / "plant.zrlog", variable); }

    // Whether that many samples of a variable get into the store.
    [[nodiscard]] bool Comes(const wchar* variable, std::size_t count) const
    {
        return Eventually([&] { return Read(variable).size() >= count; });
    }

    static bool Says(Process& service, const std::string& part)
    {
        return service.ReadErrorLine([&](const std::string& line) { return line.find(part) != std::string::npos; })
            .has_value();
    }

    static std::size_t CountOf(const std::string& text, const std::string& part)
    {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
            ++count;
        }
        return count;
    }

    // Every value of a variable that the plant has served, in millionths.
    std::set<long long> Served(const std::string& variable)
    {
        std::set<long long> served;
        std::istringstream lines(m_folder.Read("truth.csv"));
        std::string line;
        while (std::getline(lines, line)) {
            std::vector<std::string> fields;
            std::istringstream text(line);
            for (std::string field; std::getline(text, field, ',');) {
                fields.push_back(field);
            }
            if (fields.size() > 3 && fields[1] == "METER" && fields[2] == variable) {
                served.insert(std::llround(std::stod(fields[3]) * 1e6));
            }
        }
        return served;
    }

    // Samples that a figure of a line counts.
    static long Lost(const std::string& json)
    {
        long sum = 0;
        for (const char* const reason : {"invalid", "missing", "late", "clock_set_back", "no_room", "damaged"}) {
            sum += Figure(json, reason);
        }
        return sum;
    }

    std::filesystem::path m_document;
    std::unique_ptr<Process> m_plant;
};

TEST_F(RecordingProcessTest, EverySampleIsAValueThatThePlantServed)
{
    WriteRecording(R"(<DataSet Name="all" Period="1"><Device Name="METER"/></DataSet>)");
    const auto service = Start();
    ASSERT_TRUE(Comes(u"METER.P", 5)) << service->Errors();
    const std::string json = End(*service);
    std::size_t stored = 0;
    for (const std::string variable : {"U1",  "U2",  "U3",  "U12", "U23", "U31", "F",   "I1",  "I2", "I3",   "P1",
                                       "P2",  "P3",  "P",   "Q1",  "Q2",  "Q3",  "Q",   "S1",  "S2", "S3",   "S",
                                       "PF1", "PF2", "PF3", "PF",  "EAI", "EAE", "ERI", "ERC", "PD", "PDMAX"}) {
        const std::set<long long> served = Served(variable);
        const Samples samples = Read(Utf8ToUtf16("METER." + variable).CStr());
        EXPECT_GE(samples.size(), 5u) << variable;
        for (const auto& [time, value] : samples) {
            EXPECT_EQ(time % kSecond, 0) << variable;
            EXPECT_TRUE(served.contains(std::llround(value * 1e6))) << variable << " " << value;
        }
        stored += samples.size();
    }
    EXPECT_GT(Served("P").size(), 5u) << "the plant stands still";
    EXPECT_EQ(Figure(json, "recorded"), static_cast<long>(stored)) << json;
    EXPECT_EQ(Figure(json, "spooled"), 0) << json;
    EXPECT_EQ(Lost(json), 0) << json;
    EXPECT_EQ(Figure(json, "warnings"), 0) << service->Errors();
}

TEST_F(RecordingProcessTest, AReloadChangesWhatIsRecorded)
{
    WriteRecording(kVoltage);
    const auto service = Start();
    ASSERT_TRUE(Comes(u"METER.U1", 2)) << service->Errors();
    WriteRecording(kFrequency);
    service->Send(SIGHUP);
    ASSERT_TRUE(Comes(u"METER.F", 2)) << service->Errors();
    const std::size_t volts = Read(u"METER.U1").size();
    ASSERT_TRUE(Comes(u"METER.F", 4)) << service->Errors();
    EXPECT_EQ(Read(u"METER.U1").size(), volts) << "it is recorded still";
    const std::string json = End(*service);
    EXPECT_EQ(Figure(json, "recorded"), static_cast<long>(volts + Read(u"METER.F").size()))
        << "counts go on over a reload: " << json;
    SqliteLoggerStore store(Data() / "plant.zrlog");
    const auto reader = store.OpenReader();
    std::vector<LoggerDataSet> sets;
    ASSERT_TRUE(reader->DataSets(sets)) << reader->Error();
    const auto has = [&](const wchar* name) {
        return std::any_of(sets.begin(), sets.end(), [&](const LoggerDataSet& set) { return set.name == name; });
    };
    EXPECT_TRUE(has(u"hertz"));
}

TEST_F(RecordingProcessTest, AReloadWithoutAChangeInterruptsNothing)
{
    WriteRecording(kVoltage);
    const auto service = Start();
    ASSERT_TRUE(Comes(u"METER.U1", 2)) << service->Errors();
    service->Send(SIGHUP);
    ASSERT_TRUE(Says(*service, "is loaded")) << service->Errors();
    const std::size_t before = Read(u"METER.U1").size();
    EXPECT_TRUE(Comes(u"METER.U1", before + 2)) << service->Errors();
    End(*service);
}

TEST_F(RecordingProcessTest, ABadRecordingFileKeepsTheOldRecordingGoing)
{
    WriteRecording(kVoltage);
    const auto service = Start();
    ASSERT_TRUE(Comes(u"METER.U1", 1)) << service->Errors();
    const auto file = WriteRecording(R"(<DataSet Name="a" Period="0"/>)");
    service->Send(SIGHUP);
    ASSERT_TRUE(Says(*service, file.string() + ":2: Period of DataSet must be")) << service->Errors();
    ASSERT_TRUE(Says(*service, "recording goes on as before")) << service->Errors();
    const std::size_t before = Read(u"METER.U1").size();
    EXPECT_TRUE(Comes(u"METER.U1", before + 2)) << service->Errors();
    End(*service);
    EXPECT_EQ(CountOf(service->Errors(), "plant.recording.xml is refused"), 1u) << service->Errors();
}

TEST_F(RecordingProcessTest, ABadRecordingFileAtTheStartEndsTheProgram)
{
    const auto file = WriteRecording("<Dataset/>");
    const auto service = Start();
    EXPECT_EQ(service->WaitForExit(), 2);
    EXPECT_EQ(service->Errors(), file.string() + ":2: unknown element Dataset in Recording\n");
}

TEST_F(RecordingProcessTest, KilledAndStartedAgainItGoesOn)
{
    WriteRecording(kVoltage);
    Samples before;
    {
        const auto service = Start();
        ASSERT_TRUE(Comes(u"METER.U1", 3)) << service->Errors();
        before = Read(u"METER.U1");
        service->Send(SIGKILL);
        ASSERT_EQ(service->WaitForExit(), 128 + SIGKILL);
    }
    const auto service = Start();
    ASSERT_TRUE(Comes(u"METER.U1", before.size() + 4)) << service->Errors();
    End(*service);
    const Samples after = Read(u"METER.U1");
    for (const auto& [time, value] : before) {
        const auto found = after.find(time);
        ASSERT_NE(found, after.end()) << time;
        EXPECT_EQ(found->second, value);
    }
}

TEST_F(RecordingProcessTest, WhatWaitsWhileTheStoreIsAwayIsSentInOrderWhenItIsBack)
{
    const std::filesystem::path place = m_folder / "store";
    const std::filesystem::path away = m_folder / "store-away";
    WriteRecording("<Store File=\"" + (place / "plant.zrlog").string() + "\"/>\n<Spool Folder=\"" +
                   (m_folder / "spool").string() + "\"/>\n" + kVoltage);
    const auto service = Start();
    const auto stored = [&] { return Read(place / "plant.zrlog", u"METER.U1"); };
    ASSERT_TRUE(Eventually([&] { return stored().size() >= 2; })) << service->Errors();
    // A file stands where the folder was: the store can be neither reached nor made anew.
    std::filesystem::rename(place, away);
    m_folder.Write("store", "");
    ASSERT_TRUE(Says(*service, "The data store plant.zrlog cannot be reached")) << service->Errors();
    std::filesystem::remove(place);
    std::filesystem::rename(away, place);
    ASSERT_TRUE(Says(*service, "event: The data store plant.zrlog is back")) << service->Errors();
    const std::size_t back = stored().size();
    ASSERT_TRUE(Eventually([&] { return stored().size() >= back + 1; })) << service->Errors();
    const std::string json = End(*service);
    const Samples samples = stored();
    EXPECT_EQ(Figure(json, "recorded"), static_cast<long>(samples.size())) << json;
    EXPECT_EQ(Figure(json, "spooled"), 0) << json;
    EXPECT_EQ(Lost(json), 0) << json;
    // A second from each to the next.
    EXPECT_EQ(samples.rbegin()->first - samples.begin()->first,
              static_cast<std::int64_t>(samples.size() - 1) * kSecond);
    EXPECT_EQ(CountOf(service->Errors(), "cannot be reached"), 1u) << service->Errors();
}

TEST_F(RecordingProcessTest, WhatWaitsAtTheEndIsCountedAndSentByTheNextProgram)
{
    m_folder.Write("store", "");
    const std::string store = (m_folder / "store" / "plant.zrlog").string();
    WriteRecording("<Store File=\"" + store + "\"/><Spool Folder=\"" + (m_folder / "spool").string() + "\"/>" +
                   kVoltage);
    long waiting = 0;
    {
        const auto service = Start();
        ASSERT_TRUE(Says(*service, "cannot be reached")) << service->Errors();
        const std::string json = End(*service);
        waiting = Figure(json, "spooled");
        EXPECT_GE(waiting, 1) << json;
        EXPECT_EQ(Figure(json, "recorded"), 0) << json;
        EXPECT_EQ(Lost(json), 0) << json;
    }
    std::filesystem::remove(m_folder / "store");
    const auto service = Start();
    ASSERT_TRUE(Eventually([&] { return Read(store, u"METER.U1").size() > static_cast<std::size_t>(waiting); }))
        << service->Errors();
    const std::string json = End(*service);
    EXPECT_EQ(Figure(json, "recorded"), static_cast<long>(Read(store, u"METER.U1").size())) << json;
    EXPECT_EQ(Figure(json, "spooled"), 0) << json;
}

TEST_F(RecordingProcessTest, SamplesOfASilentDeviceAreCountedAndWarnedOfOnce)
{
    WriteRecording(std::string(kVoltage) + kFrequency +
                   R"(<DataSet Name="other" Period="1"><Variable Name="OTHER.F"/></DataSet>)");
    const auto service = Start();
    ASSERT_TRUE(Comes(u"METER.F", 1)) << service->Errors();
    ASSERT_TRUE(m_plant->Write("fault METER mute\n"));
    ASSERT_TRUE(Says(*service, "Samples of ")) << service->Errors();
    ASSERT_TRUE(Says(*service, "Samples of ")) << service->Errors();
    // More that fall due are lost, and nothing more is said.
    const std::size_t before = Read(u"METER.F").size();
    ASSERT_TRUE(Comes(u"OTHER.F", Read(u"OTHER.F").size() + 3)) << service->Errors();
    ASSERT_TRUE(m_plant->Write("fault METER none\n"));
    ASSERT_TRUE(Comes(u"METER.F", before + 1)) << service->Errors();
    const std::string json = End(*service);
    EXPECT_GE(Figure(json, "invalid"), 4) << json;
    EXPECT_EQ(Lost(json), Figure(json, "invalid")) << json;
    for (const std::string set : {"volts", "hertz"}) {
        EXPECT_EQ(CountOf(service->Errors(), "warning: Samples of " + set + " are lost"), 1u) << service->Errors();
    }
    EXPECT_EQ(Figure(json, "warnings"), 3) << service->Errors();
}

TEST_F(RecordingProcessTest, AVariableThatNoDeviceHasIsCountedAsMissing)
{
    WriteRecording(R"(<DataSet Name="a" Period="1"><Variable Name="METER.U1"/><Variable Name="LATER.U1"/></DataSet>)"
                   R"(<DataSet Name="b" Period="1"><Device Name="NEVER"/></DataSet>)");
    const auto service = Start();
    ASSERT_TRUE(Says(*service, "Samples of b are lost (there is no device NEVER)")) << service->Errors();
    ASSERT_TRUE(Comes(u"METER.U1", 3)) << service->Errors();
    const std::string json = End(*service);
    EXPECT_EQ(Figure(json, "missing"), Figure(json, "recorded")) << json;
    EXPECT_EQ(CountOf(service->Errors(), "Samples of a are lost"), 1u) << service->Errors();
}

TEST_F(RecordingProcessTest, NoRecordingLeavesEvenABadFileAlone)
{
    WriteRecording("<Dataset/>");
    const auto service = Start({"--no-recording"});
    ASSERT_TRUE(Eventually([&] { return !Served("F").empty(); })) << service->Errors();
    const std::string json = End(*service);
    EXPECT_EQ(Figure(json, "recorded"), 0) << json;
    EXPECT_EQ(Lost(json), 0) << json;
    EXPECT_FALSE(std::filesystem::exists(Data() / "plant.zrlog"));
}

TEST_F(RecordingProcessTest, TheOptionNamesAnotherFileThatMustBeThere)
{
    EXPECT_EQ(Start({"--recording", (m_folder / "none.xml").string()})->WaitForExit(), 2);
    WriteRecording("<Dataset/>");
    const auto other = WriteRecording(std::string("<Store File=\"other.zrlog\"/>") + kVoltage, "other.xml");
    const auto service = Start({"--recording", other.string(), "--data", (m_folder / "mine").string()});
    EXPECT_TRUE(Eventually([&] { return !Read(m_folder / "mine" / "other.zrlog", u"METER.U1").empty(); }))
        << service->Errors();
    EXPECT_TRUE(std::filesystem::is_directory(m_folder / "mine" / "other.zrlog-spool"));
    End(*service);
}

TEST_F(RecordingProcessTest, WithoutARecordingFileNothingIsRecorded)
{
    const auto service = Start();
    ASSERT_TRUE(Eventually([&] { return !Served("F").empty(); })) << service->Errors();
    EXPECT_EQ(Figure(End(*service), "recorded"), 0);
    EXPECT_FALSE(std::filesystem::exists(Data() / "plant.zrlog"));
}

TEST_F(RecordingProcessTest, StoreAndSpoolAreForTheirOwnerOnly)
{
    WriteRecording(kVoltage);
    const auto service = Start();
    ASSERT_TRUE(Comes(u"METER.U1", 1)) << service->Errors();
    End(*service);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(Data() / "plant.zrlog").permissions(), perms::owner_read | perms::owner_write);
    EXPECT_EQ(std::filesystem::status(Data() / "plant.zrlog-spool").permissions(), perms::owner_all);
}

TEST_F(RecordingProcessTest, APasswordThatOthersCanReadIsToldAndNeverShown)
{
    const auto file = WriteRecording(
        std::string("<Store><Node Connection=\"host=127.0.0.1 port=1 user=u password=s3cret\"/></Store>") + kVoltage);
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    const auto service = Start();
    ASSERT_TRUE(Says(*service, "chmod 600")) << service->Errors();
    ASSERT_TRUE(Says(*service, "cannot be reached")) << service->Errors();
    const std::string json = End(*service);
    EXPECT_EQ((service->Errors() + json).find("s3cret"), std::string::npos) << service->Errors();
    EXPECT_GE(Figure(json, "spooled"), 1) << json;
}

}  // namespace
}  // namespace zr::test
