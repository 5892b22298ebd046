#include "devices/simulation/PlantModel.h"

#include "support/ManualClock.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace {

using zr::Delivery;
using zr::PlantModel;
using zr::PlantOptions;
using zr::test::ManualClock;
using zr::test::TempFolder;
namespace modbus = zr::modbus;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kUdp = 0;
constexpr std::size_t kSerial = 1;

const std::string kPlant =
    "<Plant Series=\"" ZR_RESOURCES "/demo/household/household_1min.csv\" Profiles=\"" ZR_RESOURCES
    "/devices\">\n"
    "<Converter Name=\"NORTH\"><Device Name=\"M1\" Profile=\"EM3\" Unit=\"1\"/><Device Name=\"M2\" Profile=\"EM3\" "
    "Unit=\"2\" Scale=\"3\"/></Converter>\n"
    "<SerialLine Name=\"LINE1\"><Device Name=\"NA\" Profile=\"NA3\" Unit=\"1\"/><Device Name=\"IO\" Profile=\"IO8\" "
    "Unit=\"2\"/></SerialLine>\n"
    "</Plant>\n";

Bytes Frame(const modbus::Request& request)
{
    Bytes frame(modbus::kMaxFrame);
    frame.resize(modbus::EncodeRequest(modbus::Framing::Rtu, request, frame));
    return frame;
}

class PlantModelTest : public testing::Test {
protected:
    void Load(PlantOptions options = {})
    {
        options.start = options.start.empty() ? "2006-12-17T12:00" : options.start;
        options.truth = m_folder / "truth.csv";
        std::string error;
        ASSERT_TRUE(m_plant.Load(m_folder.Write("plant.xml", kPlant), options, error)) << error;
    }
    std::string LoadError(const PlantOptions& options, const std::string& text = kPlant)
    {
        PlantModel plant;
        std::string error;
        EXPECT_FALSE(plant.Load(m_folder.Write("plant.xml", text), options, error));
        return error;
    }
    modbus::Reply Ask(std::size_t line, const modbus::Request& request)
    {
        Bytes frame = Frame(request);
        std::vector<Delivery> deliveries =
            line == kUdp ? m_plant.AnswerDatagram(line, frame) : m_plant.AnswerStream(line, frame);
        EXPECT_EQ(deliveries.size(), 1u);
        m_reply = deliveries.empty() ? Bytes() : deliveries[0].bytes;
        const auto verdict = modbus::ExamineReply(modbus::Framing::Rtu, request, m_reply);
        EXPECT_EQ(verdict.kind, modbus::Verdict::Kind::Accept);
        EXPECT_EQ(verdict.size, m_reply.size());
        return verdict.kind == modbus::Verdict::Kind::Accept ? modbus::ReadReply(modbus::Framing::Rtu, m_reply)
                                                             : modbus::Reply();
    }
    std::vector<std::string> Truth()
    {
        std::istringstream text(m_folder.Read("truth.csv"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    ManualClock m_clock;
    TempFolder m_folder;
    PlantModel m_plant;
    Bytes m_reply;
};

TEST_F(PlantModelTest, ServesWhatTheModelSaysInTheRegistersOfTheProfile)
{
    Load();
    const modbus::Reply reply = Ask(kUdp, modbus::ReadInputRegisters(1, 0, 54));
    ASSERT_EQ(reply.data.size(), 108u);
    const auto word = [&](std::size_t at) { return modbus::RegisterAt(reply.data, at); };
    zr::HouseholdSeries series;
    std::string error;
    ASSERT_TRUE(series.Load(ZR_RESOURCES "/demo/household/household_1min.csv", error));
    const zr::HouseholdSample house = series.At(*series.Find("2006-12-17T12:00"));
    EXPECT_EQ(word(0), std::lround(house.voltageV * 1.002 * 10.0));
    EXPECT_EQ(word(21), std::lround(house.activeW));
    EXPECT_EQ(word(29), std::lround(house.reactiveVar));
    EXPECT_EQ(word(7), 0);  // a gap of the profile
}

TEST_F(PlantModelTest, MovesOnWithTheClockAndItsSpeed)
{
    PlantOptions options;
    options.speed = 30.0;
    Load(options);
    const double start = m_plant.Position();
    m_clock.Advance(std::chrono::milliseconds(10'000));
    EXPECT_NEAR(m_plant.Position() - start, 5.0, 1e-9);
}

TEST_F(PlantModelTest, StandsStillAtSpeedZero)
{
    PlantOptions options;
    options.speed = 0.0;
    Load(options);
    const double start = m_plant.Position();
    m_clock.Advance(std::chrono::milliseconds(10'000));
    EXPECT_EQ(m_plant.Position(), start);
}

TEST_F(PlantModelTest, WritesALineOfTruthForEveryVariableOfAReply)
{
    Load();
    Ask(kUdp, modbus::ReadInputRegisters(2, 0, 3));
    const std::vector<std::string> truth = Truth();
    ASSERT_EQ(truth.size(), 4u);
    EXPECT_EQ(truth[0], "time,device,variable,value,raw,fate");
    EXPECT_EQ(truth[1].substr(0, 34), "2024-01-01T00:00:00.000000Z,M2,U1,");
    EXPECT_TRUE(truth[3].ends_with(",sent"));
    const auto value = modbus::RegisterAt(modbus::ReadReply(modbus::Framing::Rtu, m_reply).data, 0);
    std::ostringstream expected;
    expected << "M2,U1," << value / 10.0 << ",0" << std::hex << std::uppercase << value << ",sent";
    EXPECT_NE(truth[1].find(expected.str()), std::string::npos) << truth[1] << " " << expected.str();
}

TEST_F(PlantModelTest, LeavesOutOfTheTruthWhatWasReadInPart)
{
    Load();
    Ask(kUdp, modbus::ReadInputRegisters(1, 9, 2));  // second half of I1, first half of I2
    EXPECT_EQ(Truth().size(), 1u);
}

TEST_F(PlantModelTest, AnswersExceptionsOutsideItsRegisters)
{
    Load();
    EXPECT_EQ(Ask(kUdp, modbus::ReadInputRegisters(1, 53, 2)).exception, modbus::Exception::IllegalDataAddress);
    EXPECT_EQ(Ask(kUdp, modbus::ReadHoldingRegisters(1, 0, 1)).exception, modbus::Exception::IllegalDataAddress);
    EXPECT_EQ(Ask(kUdp, modbus::WriteSingleRegister(1, 0, 7)).exception, modbus::Exception::IllegalDataAddress);
    Bytes tooMany = {1, 4, 0, 0, 0, 126};
    const std::uint16_t crc = modbus::Crc16(tooMany);
    tooMany.push_back(static_cast<std::uint8_t>(crc & 0xFFu));
    tooMany.push_back(static_cast<std::uint8_t>(crc >> 8u));
    const auto deliveries = m_plant.AnswerDatagram(kUdp, tooMany);
    ASSERT_EQ(deliveries.size(), 1u);
    EXPECT_EQ(deliveries[0].bytes.at(1), 0x84);
    EXPECT_EQ(deliveries[0].bytes.at(2), 3);  // illegal data value
}

TEST_F(PlantModelTest, SaysNothingToWhatIsNoRequestOfItsOwn)
{
    Load();
    Bytes frame = Frame(modbus::ReadInputRegisters(1, 0, 2));
    frame.back() = static_cast<std::uint8_t>(frame.back() ^ 1u);
    EXPECT_TRUE(m_plant.AnswerDatagram(kUdp, frame).empty());
    EXPECT_TRUE(m_plant.AnswerDatagram(kUdp, Frame(modbus::ReadInputRegisters(9, 0, 2))).empty());
    EXPECT_TRUE(m_plant.AnswerDatagram(kUdp, Bytes{1, 4}).empty());
    EXPECT_TRUE(m_plant.AnswerDatagram(kUdp, Bytes()).empty());
    Bytes two = Frame(modbus::ReadInputRegisters(1, 0, 2));
    const Bytes one = two;
    two.insert(two.end(), one.begin(), one.end());
    EXPECT_TRUE(m_plant.AnswerDatagram(kUdp, two).empty());
    EXPECT_EQ(m_plant.Replies(), 0u);
}

TEST_F(PlantModelTest, KeepsWhatWasWrittenToOutputs)
{
    Load();
    EXPECT_FALSE(modbus::BitAt(Ask(kSerial, modbus::ReadCoils(2, 0, 8)).data, 2));
    Ask(kSerial, modbus::WriteSingleCoil(2, 2, true));
    EXPECT_TRUE(modbus::BitAt(Ask(kSerial, modbus::ReadCoils(2, 0, 8)).data, 2));
    EXPECT_NE(m_folder.Read("truth.csv").find(",IO,O3,1,1,set\n"), std::string::npos);
    const Bytes bits = {0x81};
    Ask(kSerial, modbus::WriteMultipleCoils(2, 0, 8, bits));
    EXPECT_EQ(Ask(kSerial, modbus::ReadCoils(2, 0, 8)).data[0], 0x81);
    EXPECT_EQ(Ask(kSerial, modbus::WriteSingleCoil(2, 8, true)).exception, modbus::Exception::IllegalDataAddress);
}

TEST_F(PlantModelTest, CarriesOutABroadcastWithoutAnAnswer)
{
    Load();
    Bytes frame = Frame(modbus::WriteSingleCoil(0, 0, true));
    EXPECT_TRUE(m_plant.AnswerStream(kSerial, frame).empty());
    EXPECT_TRUE(frame.empty());
    EXPECT_TRUE(modbus::BitAt(Ask(kSerial, modbus::ReadCoils(2, 0, 1)).data, 0));
}

TEST_F(PlantModelTest, FindsRequestsInAStreamByteByByteAndAmongNoise)
{
    Load();
    Bytes received;
    std::size_t replies = 0;
    for (const std::uint8_t byte : Frame(modbus::ReadHoldingRegisters(1, 0, 4))) {
        EXPECT_EQ(replies, 0u);
        received.push_back(byte);
        replies += m_plant.AnswerStream(kSerial, received).size();
    }
    EXPECT_EQ(replies, 1u);
    EXPECT_TRUE(received.empty());
    const Bytes good = Frame(modbus::ReadHoldingRegisters(1, 0, 4));
    received = good;
    received.insert(received.end(), good.begin(), good.end());
    EXPECT_EQ(m_plant.AnswerStream(kSerial, received).size(), 2u);
}

TEST_F(PlantModelTest, ReadsTheSerialNumberAsText)
{
    Load();
    Ask(kSerial, modbus::ReadHoldingRegisters(1, 200, 24));
    EXPECT_NE(m_folder.Read("truth.csv").find(",NA,SERIAL,ZR"), std::string::npos);
}

TEST_F(PlantModelTest, SwitchesFaultsWhileItRuns)
{
    Load();
    const Bytes request = Frame(modbus::ReadInputRegisters(1, 0, 2));
    std::string answer;
    EXPECT_TRUE(m_plant.Command("fault M1 mute", answer));
    EXPECT_EQ(answer, "fault M1 mute");
    EXPECT_TRUE(m_plant.AnswerDatagram(kUdp, request).empty());
    EXPECT_EQ(m_plant.AnswerDatagram(kUdp, Frame(modbus::ReadInputRegisters(2, 0, 2))).size(), 1u);
    EXPECT_TRUE(m_plant.Command("fault all none", answer));
    EXPECT_TRUE(m_plant.Command("fault all late 40", answer));
    EXPECT_EQ(m_plant.AnswerDatagram(kUdp, request).at(0).delay.count(), 40);
    EXPECT_TRUE(Truth().back().ends_with(",late"));
}

TEST_F(PlantModelTest, DoesNotSwitchAnOutputWhileMute)
{
    Load();
    std::string answer;
    ASSERT_TRUE(m_plant.Command("fault IO mute", answer));
    Bytes frame = Frame(modbus::WriteSingleCoil(2, 0, true));
    EXPECT_TRUE(m_plant.AnswerStream(kSerial, frame).empty());
    ASSERT_TRUE(m_plant.Command("fault IO none", answer));
    EXPECT_FALSE(modbus::BitAt(Ask(kSerial, modbus::ReadCoils(2, 0, 1)).data, 0));
}

TEST_F(PlantModelTest, TellsWhichCommandsItDoesNotUnderstand)
{
    Load();
    std::string answer;
    EXPECT_FALSE(m_plant.Command("fault XX mute", answer));
    EXPECT_EQ(answer, "there is no device \"XX\"");
    EXPECT_FALSE(m_plant.Command("faults all mute", answer));
    EXPECT_EQ(answer.substr(0, 15), "not understood;");
    EXPECT_TRUE(m_plant.Command("help", answer));
}

TEST_F(PlantModelTest, TellsWhatIsWrongWithItsOptionsAndFiles)
{
    PlantOptions options;
    options.start = "2006-12-16T17:23";
    EXPECT_EQ(LoadError(options).substr(0, 48), "there is no row of the time \"2006-12-16T17:23\" i");
    options = {};
    options.faults = {"M1 mute", "M9 mute"};
    EXPECT_EQ(LoadError(options), "fault \"M9 mute\": there is no device \"M9\"");
    options = {};
    options.truth = m_folder / "no-folder/truth.csv";
    EXPECT_NE(LoadError(options).find("truth.csv: can't be written: "), std::string::npos);
    std::string text = kPlant;
    text.replace(text.find("EM3"), 3, "XX9");
    EXPECT_EQ(LoadError({}, text).find((m_folder / "plant.xml").string() + ":2: profile of M1: "), 0u);
    text = kPlant;
    text.replace(text.find("NA3"), 3, "EM3T");
    EXPECT_EQ(LoadError({}, text),
              (m_folder / "plant.xml").string() + ":3: the framing of EM3T doesn't suit the line LINE1");
}

TEST_F(PlantModelTest, LoadsTheDemoPlantWithoutAWarning)
{
    PlantModel plant;
    std::string error;
    ASSERT_TRUE(plant.Load(ZR_RESOURCES "/demo/plant.xml", {}, error)) << error;
    EXPECT_TRUE(plant.Warnings().empty());
    std::size_t devices = 0;
    for (const zr::PlantLine& line : plant.Lines()) {
        devices += line.devices.size();
    }
    EXPECT_EQ(plant.Lines().size(), 3u);
    EXPECT_EQ(devices, 12u);
    EXPECT_TRUE(plant.Find("METER-SILENT")->Faults().IsOn(zr::FaultKind::Mute));
}

}  // namespace
