// The service that records a meter on two servers, one of which goes and comes back.
#include "integration/postgres/PostgresServers.h"
#include "integration/service/ServiceFixture.h"
#include "siblings/driversupport/store/LoggerNodes.h"
#include "siblings/driversupport/store/PostgresLoggerStore.h"
#include "siblings/tools/Utf.h"
#include "unit/loggerdata/StoreKinds.h"

#include <csignal>
#include <limits>

namespace zr::test {
namespace {

constexpr std::int64_t kSecond = 1'000'000;
constexpr const wchar* kVariables[] = {u"METER.U1", u"METER.U2", u"METER.U3", u"METER.F", u"METER.P", u"METER.Q"};

class ServiceNodesTest : public ServiceFixture {
protected:
    // A plant of one meter, a document with it, and what is recorded of it on both servers.
    void SetUp() override
    {
        const std::string resources = ZR_RESOURCES;
        const auto plant = m_folder.Write(
            "plant-file.xml", "<Plant Series=\"" + resources + "/demo/household/household_1min.csv\" Profiles=\"" +
                                  resources +
                                  "/devices\"><Converter Name=\"N\"><Device Name=\"METER\" Profile=\"EM3\" "
                                  "Unit=\"1\"/></Converter></Plant>\n");
        m_plant = std::make_unique<Process>(std::vector<std::string>{ZR_PLANT, plant.string()}, Environment());
        std::string port;
        ASSERT_TRUE(m_plant->ReadLine([&](const std::string& line) {
            port = line.starts_with("converter ") ? line.substr(line.rfind(':') + 1) : port;
            return line == "ready";
        })) << m_plant->Errors();
        m_document = m_folder.Write(
            "plant.xml", DocumentText(UdpLine("L", port, 1000), {{"METER", "EM3", "L", "Unit=\"1\" Period=\"0.2\""}}));
        std::string text = "<Recording><Store>";
        for (int server = 1; server <= 2; ++server) {
            m_servers.push_back(FreshDatabase(server));
            text += "<Node Connection=\"" + m_servers.back() + "\"/>";
        }
        text += "</Store><DataSet Name=\"all\" Period=\"1\">";
        for (const wchar* const variable : kVariables) {
            text += "<Variable Name=\"" + Utf16ToUtf8(variable) + "\"/>";
        }
        m_folder.Write("plant.recording.xml", text + "</DataSet></Recording>");
    }

    // Of one node; empty while it is away.
    std::vector<std::int64_t> Times(std::size_t node, const wchar* variable)
    {
        PostgresLoggerStore store(m_servers[node]);
        BlockCollector collector;
        if (const auto reader = store.OpenReader(); reader != nullptr) {
            reader->ReadBlocks(variable, 0, std::numeric_limits<std::int64_t>::max(), LoggerNeed::Samples, collector);
        }
        return collector.times;
    }
    // The first variable that a node keeps.
    static const wchar* VariableOf(std::size_t node)
    {
        for (const wchar* const variable : kVariables) {
            if (NodeOfVariable(variable, 2) == node) {
                return variable;
            }
        }
        return nullptr;
    }
    bool Comes(std::size_t node, std::size_t count)
    {
        return Eventually([&] { return Times(node, VariableOf(node)).size() >= count; });
    }

    std::filesystem::path m_document;
    std::unique_ptr<Process> m_plant;
    std::vector<std::string> m_servers;
};

TEST_F(ServiceNodesTest, AServerThatIsAwayCostsItsOwnVariablesOnlyAndGetsThemLater)
{
    ASSERT_NE(VariableOf(0), nullptr);
    ASSERT_NE(VariableOf(1), nullptr);
    const auto service = StartService({m_document.string(), "--for", "100", "--json", "--no-publication"});
    const auto says = [&](const std::string& part) {
        return service->ReadErrorLine([&](const std::string& line) { return line.find(part) != std::string::npos; })
            .has_value();
    };
    ASSERT_TRUE(Comes(0, 1)) << service->Errors();
    ASSERT_TRUE(Comes(1, 1)) << service->Errors();
    Control(2, "crash");
    ASSERT_TRUE(says("cannot be reached")) << service->Errors();
    EXPECT_TRUE(Comes(0, Times(0, VariableOf(0)).size() + 2)) << "the other server's variables wait too";
    Control(2, "start");
    ASSERT_TRUE(says("is back")) << service->Errors();
    const std::size_t back = Times(1, VariableOf(1)).size();
    EXPECT_TRUE(Comes(1, back + 1)) << service->Errors();
    service->Send(SIGTERM);
    ASSERT_EQ(service->WaitForExit(), 0) << service->Errors();
    const std::string& json = service->Output();
    std::size_t stored = 0;
    for (const wchar* const variable : kVariables) {
        const std::vector<std::int64_t> times = Times(NodeOfVariable(variable, 2), variable);
        ASSERT_FALSE(times.empty()) << Utf16ToUtf8(variable);
        EXPECT_EQ(times.back() - times.front(), static_cast<std::int64_t>(times.size() - 1) * kSecond)
            << Utf16ToUtf8(variable) << ": a gap, or a double";
        EXPECT_TRUE(Times(1 - NodeOfVariable(variable, 2), variable).empty()) << "it is on both servers";
        stored += times.size();
    }
    EXPECT_EQ(Figure(json, "recorded"), static_cast<long>(stored)) << json;
    EXPECT_EQ(Figure(json, "spooled"), 0) << json;
    EXPECT_EQ(Figure(json, "invalid"), 0) << json;
    EXPECT_EQ(Figure(json, "no_room"), 0) << json;
    EXPECT_EQ(Figure(json, "warnings"), 1) << service->Errors();
}

}  // namespace
}  // namespace zr::test
