// The demo: the plant as a process, supervised by the service and by the registry.
#include "integration/service/RegistryFixture.h"
#include "siblings/driversupport/ZRRSDeviceConnection.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

namespace zr::test {
namespace {

constexpr std::string_view kSilent = "METER-SILENT";

std::string FileText(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << file;
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string Replaced(std::string text, const std::string& old, const std::string& fresh)
{
    const std::size_t at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return at == std::string::npos ? text : text.replace(at, old.size(), fresh);
}

class DemoPlantTest : public RegistryFixture {
protected:
    // The demo plant on free ports, and its document with them.
    void SetUp() override
    {
        const std::filesystem::path demo = std::filesystem::path(ZR_RESOURCES) / "demo";
        std::string plant = FileText(demo / "plant.xml");
        plant = Replaced(plant, "Port=\"47001\"", "Port=\"0\"");
        plant = Replaced(plant, "Port=\"47002\"", "Port=\"0\"");
        plant = Replaced(plant, "household/", (demo / "household/").string());
        plant = Replaced(plant, "../devices", (demo / "../devices").string());
        const auto file = m_folder.Write("plant.xml", plant);
        m_plant = std::make_unique<Process>(
            std::vector<std::string>{ZR_PLANT, file.string(), "--link-dir", m_folder.Path().string(), "--truth",
                                     (m_folder / "truth.csv").string()},
            Environment());
        std::vector<std::string> ports;
        const auto ready = m_plant->ReadLine([&](const std::string& line) {
            std::istringstream words(line);
            std::string kind;
            std::string name;
            std::string last;
            words >> kind >> name;
            while (words >> last) {
            }
            if (kind == "converter") {
                ports.push_back(last.substr(last.rfind(':') + 1));
            } else if (kind == "serial") {
                m_serial = last;
            }
            return line == "ready";
        });
        ASSERT_TRUE(ready) << m_plant->Errors();
        ASSERT_EQ(ports.size(), 2u);
        std::string document = FileText(demo / "kestrix.xml");
        document = Replaced(document, "Socket=\"47001\"", "Socket=\"" + ports[0] + "\"");
        document = Replaced(document, "Socket=\"47002\"", "Socket=\"" + ports[1] + "\"");
        m_documentFile = m_folder.Write("kestrix.xml", document);
    }

    // What the plant served of each variable, as "DEVICE.VARIABLE=VALUE".
    std::set<std::string> Truth()
    {
        std::set<std::string> served;
        std::istringstream lines(m_folder.Read("truth.csv"));
        std::string line;
        while (std::getline(lines, line)) {
            std::istringstream fields(line);
            std::string time;
            std::string device;
            std::string variable;
            std::string value;
            std::getline(fields, time, ',');
            std::getline(fields, device, ',');
            std::getline(fields, variable, ',');
            std::getline(fields, value, ',');
            served.insert(device + "." + variable + "=" + Rounded(value));
        }
        return served;
    }
    // To 6 significant decimals, so that both ways of writing a number agree; texts as they are.
    static std::string Rounded(const std::string& text)
    {
        char* end = nullptr;
        const double number = std::strtod(text.c_str(), &end);
        return end != text.c_str() && *end == '\0' ? Rounded(number) : text;
    }
    static std::string Rounded(double number) { return std::to_string(std::llround(number * 1e6)); }

    std::filesystem::path m_documentFile;
    std::string m_serial;
    std::unique_ptr<Process> m_plant;
};

TEST_F(DemoPlantTest, TheServiceReachesAllDevicesButTheSilentOne)
{
    Load(FileText(m_documentFile));
    long others = 0;
    long all = 0;
    for (auto driver = m_system.DriversBegin(); driver != m_system.DriversEnd(); ++driver) {
        const long count = static_cast<long>((*driver)->VariableCount());
        all += count;
        others += Utf16ToUtf8((*driver)->name) == kSilent ? 0 : count;
    }
    const auto service = StartService({m_documentFile.string(), "--port", "1=" + m_serial, "--for", "8", "--json"});
    ASSERT_EQ(service->WaitForExit(std::chrono::seconds(30)), 0) << service->Errors();
    const std::string& json = service->Output();
    EXPECT_EQ(std::count(json.begin(), json.end(), '\n'), 1) << json;
    EXPECT_EQ(Figure(json, "devices"), 12) << json;
    EXPECT_EQ(Figure(json, "online"), 11) << json;
    EXPECT_EQ(Figure(json, "variables"), all) << json;
    EXPECT_EQ(Figure(json, "valid"), others) << json << service->Errors();
    EXPECT_EQ(Figure(json, "warnings"), 1) << json << service->Errors();
    EXPECT_GE(Figure(json, "ticks"), 5) << json;
    EXPECT_GT(Figure(json, "transactions"), 80) << json;
}

TEST_F(DemoPlantTest, EveryValueIsOneThatThePlantServed)
{
    SetPortMap({{1, m_serial}});
    Load(FileText(m_documentFile));
    m_system.Start();
    std::set<std::string> seen;
    for (auto driver = m_system.DriversBegin(); driver != m_system.DriversEnd(); ++driver) {
        if (Utf16ToUtf8((*driver)->name) == kSilent) {
            continue;
        }
        for (std::size_t i = 0; i < (*driver)->VariableCount(); ++i) {
            const ZRBasicString name = (*driver)->name + u"." + (*driver)->VariableName(i);
            ZRDriverVariable variable = Locked(name);
            ASSERT_TRUE(Eventually([&] { return variable.IsValid(); })) << Utf16ToUtf8(name);
            tagSVariableValue value;
            variable.Value(value);
            seen.insert(Utf16ToUtf8(name) + "=" +
                        (value.type == tagSVariableValue::kText ? Rounded(Utf16ToUtf8(value.text))
                                                                : Rounded(Number(variable))));
        }
    }
    m_system.Stop();
    SetPortMap({});
    const std::set<std::string> truth = Truth();
    EXPECT_GT(seen.size(), 300u);
    for (const std::string& each : seen) {
        EXPECT_TRUE(truth.contains(each)) << each;
    }
}

}  // namespace
}  // namespace zr::test
