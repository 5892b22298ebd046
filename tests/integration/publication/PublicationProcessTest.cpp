#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <array>
#include <csignal>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using zr::test::Process;
using zr::test::TempFolder;

// Runs sixty times as fast as measured, so that values move at every poll.
const std::string kPlant =
    "<Plant Series=\"" ZR_RESOURCES "/demo/household/household_1min.csv\" Profiles=\"" ZR_RESOURCES
    "/devices\"><Converter Name=\"NORTH\">"
    "<Device Name=\"M1\" Profile=\"EM3\" Unit=\"1\"/></Converter></Plant>\n";

std::string Document(const std::string& port)
{
    return "<Kestrix><CommSystem><Connections><Connection Name=\"NORTH\" Type=\"UDP\" Address=\"127.0.0.1\" Socket=\"" +
           port +
           "\"/></Connections><Devices><Device Name=\"M1\" Driver=\"EM3\" Connection=\"NORTH\" Unit=\"1\" "
           "Period=\"0.2\"/></Devices></CommSystem></Kestrix>\n";
}

class PublicationProcess : public testing::Test {
protected:
    void SetUp() override
    {
        m_plant.emplace(std::vector<std::string>{ZR_PLANT, m_folder.Write("plant.xml", kPlant).string(), "--speed",
                                                 "60", "--truth", (m_folder / "truth.csv").string()});
        const auto line = m_plant->ReadLineWith("converter NORTH udp 127.0.0.1:");
        ASSERT_TRUE(line) << m_plant->Errors();
        ASSERT_TRUE(m_plant->ReadLineWith("ready"));
        StartService(m_folder.Write("one.xml", Document(line->substr(line->rfind(':') + 1))).string());
    }

    void StartService(const std::string& document)
    {
        m_service.emplace(std::vector<std::string>{ZR_SERVICE, document, "--json", "--service", "HALL"}, Environment());
        ASSERT_TRUE(m_service->ReadErrorLine([](const std::string& line) {
            return line.find("as service HALL") != std::string::npos;
        })) << m_service->Errors();
    }

    // Folders of its own, so that other tests are neither seen nor disturbed.
    std::vector<std::string> Environment() const
    {
        const std::string folder = m_folder.Path().string();
        return {"HOME=" + folder, "XDG_RUNTIME_DIR=" + folder, "XDG_CONFIG_HOME=" + folder, "XDG_DATA_HOME=" + folder};
    }

    std::vector<std::string> Client(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), ZR_CLIENT);
        return arguments;
    }

    // Every (variable, value) that the plant has served.
    std::set<std::pair<std::string, double>> Served()
    {
        std::set<std::pair<std::string, double>> served;
        std::istringstream text(m_folder.Read("truth.csv"));
        for (std::string line; std::getline(text, line);) {
            std::istringstream fields(line);
            std::array<std::string, 6> field;
            for (std::string& each : field) {
                std::getline(fields, each, ',');
            }
            if (field[1] == "M1") {
                served.emplace(field[2], std::stod(field[3]));
            }
        }
        return served;
    }

    // Checks lines "TIME<tab>ITEM<tab>VALUE" against what was served, and returns how many there were.
    std::size_t ExpectServed(const std::string& output)
    {
        const auto served = Served();
        std::size_t lines = 0;
        std::istringstream text(output);
        for (std::string time, item, value; text >> time >> item >> value; ++lines) {
            EXPECT_TRUE(served.contains({item, std::stod(value)})) << item << ' ' << value << " was never served";
        }
        return lines;
    }

    TempFolder m_folder;
    std::optional<Process> m_plant;
    std::optional<Process> m_service;
};

TEST_F(PublicationProcess, TwoClientsGetTheValuesThatTheDeviceServed)
{
    Process first(Client({"advise", "HALL", "M1", "P1", "U1", "--count", "12", "--timeout", "60"}), Environment());
    Process second(Client({"advise", "HALL", "M1", "P2", "U2", "--count", "12", "--timeout", "60"}), Environment());
    EXPECT_EQ(first.WaitForExit(std::chrono::seconds(70)), 0) << first.Errors();
    EXPECT_EQ(second.WaitForExit(std::chrono::seconds(70)), 0) << second.Errors();
    EXPECT_EQ(ExpectServed(first.Output()), 12u) << first.Output();
    EXPECT_EQ(ExpectServed(second.Output()), 12u) << second.Output();
}

TEST_F(PublicationProcess, AKilledClientDisturbsNoOther)
{
    Process killed(Client({"advise", "HALL", "M1", "P1", "--timeout", "60"}), Environment());
    ASSERT_TRUE(killed.ReadLineWith("P1")) << killed.Errors();
    killed.Send(SIGKILL);
    ASSERT_TRUE(killed.WaitForExit());
    Process other(Client({"advise", "HALL", "M1", "P2", "--count", "3", "--timeout", "60"}), Environment());
    EXPECT_EQ(other.WaitForExit(std::chrono::seconds(70)), 0) << other.Errors();
    EXPECT_EQ(ExpectServed(other.Output()), 3u);
}

// It prints its values in the callback, so that a pipe nobody reads any more ends it there.
TEST_F(PublicationProcess, AClientThatDiesInItsCallbackLeavesNothingBehind)
{
    Process dying({"sh", "-c", "\"$0\" advise HALL M1 P1 I1 U1 --timeout 60 | head -n 1", ZR_CLIENT}, Environment());
    ASSERT_EQ(dying.WaitForExit(std::chrono::seconds(70)), 0) << dying.Errors();
    Process other(Client({"advise", "HALL", "M1", "P2", "--timeout", "60"}), Environment());
    ASSERT_TRUE(other.ReadLineWith("P2")) << other.Errors();
    m_service->Send(SIGTERM);
    EXPECT_EQ(m_service->WaitForExit(), 0) << m_service->Errors();
    EXPECT_NE(m_service->Output().find("\"dde_conversations\":1,\"dde_links\":1,\"dde_posts\":"), std::string::npos)
        << m_service->Output();
}

TEST_F(PublicationProcess, RefusesWhatItDoesNotPublish)
{
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"advise", "NOBODY", "M1", "P1"},
                                                      std::vector<std::string>{"advise", "HALL", "M2", "P1"},
                                                      std::vector<std::string>{"advise", "HALL", "M1", "NOTHING"}}) {
        Process client(Client(arguments), Environment());
        EXPECT_EQ(client.WaitForExit(), 1);
        EXPECT_NE(client.Errors().find(arguments[1] == "NOBODY" ? "NOBODY"
                                       : arguments[2] == "M2"   ? "M2"
                                                                : "NOTHING"),
                  std::string::npos)
            << client.Errors();
    }
}

TEST_F(PublicationProcess, TellsItsClientsWhenItEndsAndCountsThem)
{
    Process client(Client({"advise", "HALL", "M1", "P1", "U1", "--timeout", "60"}), Environment());
    ASSERT_TRUE(client.ReadLineWith("P1")) << client.Errors();
    ASSERT_TRUE(client.ReadLineWith("U1")) << client.Errors();
    m_service->Send(SIGTERM);
    EXPECT_EQ(m_service->WaitForExit(), 0) << m_service->Errors();
    EXPECT_NE(m_service->Output().find("\"dde_conversations\":1,\"dde_links\":2,"), std::string::npos)
        << m_service->Output();
    EXPECT_EQ(client.WaitForExit(), 3) << client.Errors();
}

TEST_F(PublicationProcess, ListsItsServices)
{
    Process client(Client({"services"}), Environment());
    EXPECT_EQ(client.WaitForExit(), 0) << client.Errors();
    EXPECT_EQ(client.Output(), "HALL\n");
}

}  // namespace
