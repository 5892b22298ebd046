#include "devices/modbus/ModbusFrame.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <modbus.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using zr::test::Process;
using zr::test::TempFolder;
namespace modbus = zr::modbus;
using Bytes = std::vector<std::uint8_t>;

const std::string kPlant =
    "<Plant Series=\"" ZR_RESOURCES "/demo/household/household_1min.csv\" Profiles=\"" ZR_RESOURCES
    "/devices\">\n"
    "<Converter Name=\"NORTH\"><Device Name=\"M1\" Profile=\"EM3\" Unit=\"1\"/><Device Name=\"M2\" Profile=\"EM3\" "
    "Unit=\"2\" Scale=\"3\"/></Converter>\n"
    "<SerialLine Name=\"LINE1\" Link=\"line1\"><Device Name=\"NA\" Profile=\"NA3\" Unit=\"1\"/><Device Name=\"IO\" "
    "Profile=\"IO8\" Unit=\"2\"/></SerialLine>\n"
    "</Plant>\n";

// A socket that talks to one converter.
class UdpClient {
public:
    explicit UdpClient(std::uint16_t port) : m_socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        void* const generic = &address;
        EXPECT_EQ(::connect(m_socket, static_cast<sockaddr*>(generic), sizeof address), 0);
    }
    UdpClient(const UdpClient&) = delete;
    UdpClient& operator=(const UdpClient&) = delete;
    ~UdpClient() { ::close(m_socket); }

    void Send(const modbus::Request& request) const
    {
        Bytes frame(modbus::kMaxFrame);
        frame.resize(modbus::EncodeRequest(modbus::Framing::Rtu, request, frame));
        EXPECT_EQ(::send(m_socket, frame.data(), frame.size(), 0), static_cast<ssize_t>(frame.size()));
    }
    // The next datagram; empty when none comes within the time.
    [[nodiscard]] Bytes Receive(int milliseconds = 20'000) const
    {
        pollfd waited = {m_socket, POLLIN, 0};
        Bytes frame(512);
        const ssize_t size =
            ::poll(&waited, 1, milliseconds) == 1 ? ::recv(m_socket, frame.data(), frame.size(), 0) : 0;
        frame.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return frame;
    }

private:
    int m_socket;
};

bool IsReply(const modbus::Request& request, const Bytes& frame)
{
    const auto verdict = modbus::ExamineReply(modbus::Framing::Rtu, request, frame);
    return verdict.kind == modbus::Verdict::Kind::Accept && verdict.size == frame.size();
}

class PlantProcess : public testing::Test {
protected:
    void Start(std::vector<std::string> options = {})
    {
        std::vector<std::string> arguments = {ZR_PLANT,     m_folder.Write("plant.xml", kPlant).string(),
                                              "--truth",    (m_folder / "truth.csv").string(),
                                              "--link-dir", m_folder.Path().string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        m_process.emplace(arguments);
        const auto north = m_process->ReadLineWith("converter NORTH udp 127.0.0.1:");
        ASSERT_TRUE(north) << m_process->Errors();
        m_port = static_cast<std::uint16_t>(std::atoi(north->substr(north->rfind(':') + 1).c_str()));
        const auto line = m_process->ReadLineWith("serial LINE1 ");
        ASSERT_TRUE(line) << m_process->Errors();
        m_line = line->substr(13);
        ASSERT_TRUE(m_process->ReadLineWith("ready"));
    }
    void Command(const std::string& text)
    {
        ASSERT_TRUE(m_process->Write(text + "\n"));
        ASSERT_TRUE(m_process->ReadLineWith("ok: " + text)) << m_process->Output();
    }
    // Raw text of the last line of truth for each variable of a device.
    std::map<std::string, std::string> Truth(const std::string& device)
    {
        std::map<std::string, std::string> raw;
        std::istringstream text(m_folder.Read("truth.csv"));
        for (std::string line; std::getline(text, line);) {
            std::istringstream fields(line);
            std::array<std::string, 6> field;
            for (std::string& each : field) {
                std::getline(fields, each, ',');
            }
            if (field[1] == device) {
                raw[field[2]] = field[4];
            }
        }
        return raw;
    }

    TempFolder m_folder;
    std::optional<Process> m_process;
    std::uint16_t m_port = 0;
    std::string m_line;
};

using Master = std::unique_ptr<modbus_t, void (*)(modbus_t*)>;

Master OpenMaster(const std::string& line, int unit)
{
    Master master(modbus_new_rtu(line.c_str(), 9600, 'N', 8, 1), [](modbus_t* context) {
        modbus_close(context);
        modbus_free(context);
    });
    EXPECT_EQ(modbus_set_slave(master.get(), unit), 0);
    EXPECT_EQ(modbus_connect(master.get()), 0);
    EXPECT_EQ(modbus_set_response_timeout(master.get(), 20, 0), 0);
    return master;
}

std::string Hex(const std::uint16_t* words, std::size_t count)
{
    std::ostringstream text;
    text << std::hex << std::uppercase;
    for (std::size_t i = 0; i < count; ++i) {
        text.width(4);
        text.fill('0');
        text << words[i];
    }
    return text.str();
}

TEST_F(PlantProcess, GivesAnIndependentMasterTheRegistersOfTheTruthFile)
{
    Start();
    const Master master = OpenMaster(m_line, 1);
    std::array<std::uint16_t, 124> words{};
    ASSERT_EQ(modbus_read_registers(master.get(), 0, 124, words.data()), 124) << modbus_strerror(errno);
    const auto truth = Truth("NA");
    EXPECT_GT(truth.size(), 60u);
    EXPECT_EQ(Hex(&words[0], 2), truth.at("U1"));
    EXPECT_EQ(Hex(&words[26], 2), truth.at("P"));
    EXPECT_EQ(Hex(&words[66], 1), truth.at("HU1-3"));
    // Low word first: the master's own reading of a float.
    const std::array<std::uint16_t, 2> voltage = {words[0], words[1]};
    EXPECT_GT(modbus_get_float_cdab(voltage.data()), 220.0F);
    EXPECT_LT(modbus_get_float_cdab(voltage.data()), 260.0F);
}

TEST_F(PlantProcess, LetsAnIndependentMasterReadInputsAndSwitchOutputs)
{
    Start();
    const Master master = OpenMaster(m_line, 2);
    std::array<std::uint8_t, 8> bits{};
    ASSERT_EQ(modbus_read_input_bits(master.get(), 0, 8, bits.data()), 8) << modbus_strerror(errno);
    const auto truth = Truth("IO");
    for (std::size_t i = 0; i < bits.size(); ++i) {
        EXPECT_EQ(std::to_string(bits[i]), truth.at("I" + std::to_string(i + 1)));
    }
    ASSERT_EQ(modbus_write_bit(master.get(), 4, 1), 1);
    ASSERT_EQ(modbus_read_bits(master.get(), 0, 8, bits.data()), 8);
    EXPECT_EQ(bits, (std::array<std::uint8_t, 8>{0, 0, 0, 0, 1, 0, 0, 0}));
    std::array<std::uint16_t, 2> analogue{};
    ASSERT_EQ(modbus_read_input_registers(master.get(), 0, 2, analogue.data()), 2);
    EXPECT_TRUE(analogue[0] >= 4000 && analogue[0] <= 20'000);
    EXPECT_EQ(modbus_read_input_registers(master.get(), 100, 2, analogue.data()), -1);
    EXPECT_EQ(errno, EMBXILADD);
}

TEST_F(PlantProcess, AnswersDatagramsOfTheConverter)
{
    Start();
    const UdpClient client(m_port);
    const auto request = modbus::ReadInputRegisters(2, 0, 54);
    client.Send(request);
    const Bytes frame = client.Receive();
    ASSERT_TRUE(IsReply(request, frame));
    std::array<std::uint16_t, 2> power{};
    const auto data = modbus::ReadReply(modbus::Framing::Rtu, frame).data;
    power = {modbus::RegisterAt(data, 20), modbus::RegisterAt(data, 21)};
    EXPECT_EQ(Hex(power.data(), 2), Truth("M2").at("P"));
}

TEST_F(PlantProcess, SwitchesFaultsByCommands)
{
    Start();
    const UdpClient client(m_port);
    const auto first = modbus::ReadInputRegisters(1, 0, 2);
    const auto second = modbus::ReadInputRegisters(2, 0, 2);
    Command("fault M1 mute");
    client.Send(first);
    client.Send(second);  // in order: what comes first tells that the other was not answered
    EXPECT_TRUE(IsReply(second, client.Receive()));
    Command("fault all none");
    Command("fault M1 doubled");
    client.Send(first);
    EXPECT_TRUE(IsReply(first, client.Receive()));
    EXPECT_TRUE(IsReply(first, client.Receive()));
    Command("fault M1 none");
    Command("fault M1 corrupt");
    client.Send(first);
    const Bytes corrupt = client.Receive();
    EXPECT_EQ(corrupt.size(), 9u);
    EXPECT_FALSE(IsReply(first, corrupt));
    Command("fault M1 none");
    Command("fault M1 cut");
    client.Send(first);
    const Bytes cut = client.Receive();
    EXPECT_TRUE(!cut.empty() && cut.size() < 9);
    Command("fault M1 none");
    Command("fault M1 late 300");
    client.Send(first);
    client.Send(second);
    EXPECT_TRUE(IsReply(second, client.Receive()));
    EXPECT_TRUE(IsReply(first, client.Receive()));
}

TEST_F(PlantProcess, TakesFaultsFromTheCommandLine)
{
    Start({"--fault", "M1 mute", "--fault", "M2 doubled"});
    const UdpClient client(m_port);
    client.Send(modbus::ReadInputRegisters(1, 0, 2));
    const auto second = modbus::ReadInputRegisters(2, 0, 2);
    client.Send(second);
    EXPECT_TRUE(IsReply(second, client.Receive()));
    EXPECT_TRUE(IsReply(second, client.Receive()));
}

TEST_F(PlantProcess, SaysOnlyThatACommandIsWrong)
{
    Start();
    ASSERT_TRUE(m_process->Write("fault NOBODY mute\n"));
    EXPECT_TRUE(m_process->ReadLineWith("error: there is no device \"NOBODY\""));
    const UdpClient client(m_port);
    const auto request = modbus::ReadInputRegisters(1, 0, 2);
    client.Send(request);
    EXPECT_TRUE(IsReply(request, client.Receive()));
}

TEST_F(PlantProcess, EndsCleanlyOnSignalsAndTakesItsLinkAlong)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        Start();
        EXPECT_TRUE(std::filesystem::is_symlink(m_folder / "line1"));
        m_process->Send(signal);
        EXPECT_EQ(m_process->WaitForExit(), 0);
        EXPECT_FALSE(std::filesystem::is_symlink(m_folder / "line1"));
    }
}

TEST_F(PlantProcess, EndsWithItsInputWhenAsked)
{
    Start({"--until-eof"});
    m_process->CloseInput();
    EXPECT_EQ(m_process->WaitForExit(), 0);
}

TEST_F(PlantProcess, EndsAfterTheSecondsGiven)
{
    Start({"--for", "0.1"});
    EXPECT_EQ(m_process->WaitForExit(), 0);
}

TEST_F(PlantProcess, WritesItsEndpointsToTheReadyFile)
{
    Start({"--ready-file", (m_folder / "ready").string(), "--for", "0.1"});
    EXPECT_EQ(m_process->WaitForExit(), 0);
    EXPECT_EQ(m_folder.Read("ready"),
              "converter NORTH udp 127.0.0.1:" + std::to_string(m_port) + "\nserial LINE1 " + m_line + "\nready\n");
}

TEST_F(PlantProcess, EndsWithStatusTwoAndOneLineOnBadInput)
{
    const std::string good = m_folder.Write("good.xml", kPlant).string();
    const std::vector<std::vector<std::string>> rows = {
        {(m_folder / "missing.xml").string()},
        {m_folder.Write("empty.xml", "").string()},
        {m_folder.Write("cut.xml", kPlant.substr(0, 200)).string()},
        {m_folder.Write("other.xml", "<Cfg/>").string()},
        {good, "--start", "yesterday"},
        {good, "--fault", "M1 loud"},
        {good, "--truth", (m_folder / "none/truth.csv").string()},
        {good, "--link-dir", (m_folder / "none").string()},
        {good, "--ready-file", (m_folder / "none/ready").string()},
    };
    for (const std::vector<std::string>& row : rows) {
        std::vector<std::string> arguments = {ZR_PLANT};
        arguments.insert(arguments.end(), row.begin(), row.end());
        Process process(arguments);
        EXPECT_EQ(process.WaitForExit(), 2) << row.back();
        EXPECT_EQ(process.Errors().substr(0, 15), "kestrix-plant: ") << row.back();
        EXPECT_EQ(std::count(process.Errors().begin(), process.Errors().end(), '\n'), 1) << process.Errors();
    }
}

TEST_F(PlantProcess, EndsWithStatusTwoWhenItsPortIsTaken)
{
    Start();
    std::string text = kPlant;
    text.replace(text.find("Name=\"NORTH\""), 12, "Name=\"NORTH\" Port=\"" + std::to_string(m_port) + "\"");
    Process second({ZR_PLANT, m_folder.Write("second.xml", text).string()});
    EXPECT_EQ(second.WaitForExit(), 2);
    EXPECT_NE(second.Errors().find("converter NORTH: 127.0.0.1:" + std::to_string(m_port)), std::string::npos);
}

}  // namespace
