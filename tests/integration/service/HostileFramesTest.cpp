// Frames that are late, stale, doubled, cut, damaged or foreign, over real sockets.
#include "integration/service/RegistryFixture.h"
#include "siblings/tools/Utf.h"
#include "support/ModbusResponder.h"

#include <array>

namespace zr::test {
namespace {

// Six registers that no request may join, so that every reply has the same shape.
constexpr std::size_t kRegisters = 6;
constexpr std::uint16_t kApart = 10;
constexpr std::size_t kLines = 4;
constexpr unsigned kNumberBits = 12;

// The register is told by the upper bits, the request by the lower: each reply is like no other for a long time.
std::uint16_t ServedValue(std::uint16_t address, std::uint32_t request)
{
    return static_cast<std::uint16_t>(address / kApart << kNumberBits | (request & ((1u << kNumberBits) - 1)));
}

class HostileFramesTest : public RegistryFixture {
protected:
    HostileFramesTest()
    {
        std::string profile = "<deviceProfile version=\"1\" type=\"T\" description=\"Test\">\n";
        for (std::size_t i = 0; i < kRegisters; ++i) {
            profile += "<variable name=\"R" + std::to_string(i) +
                       "\" description=\"Register\" function=\"3\" register=\"" + std::to_string(i * kApart) +
                       "\" type=\"u16\"/>\n";
        }
        std::filesystem::create_directory(m_folder / "profiles");
        m_folder.Write("profiles/T.xml", profile + "</deviceProfile>\n");
        UseProfiles(m_folder / "profiles");
    }

    // Reads all variables until every line has had so many requests.
    void Run(const ModbusResponder::Faults& faults, std::uint32_t requests)
    {
        std::string lines;
        std::vector<DeviceLine> devices;
        for (std::size_t i = 0; i < kLines; ++i) {
            m_responders[i].SetSource(ServedValue);
            m_responders[i].SetFaults(faults);
            lines += UdpLine("L" + std::to_string(i), m_responders[i].Port(), 100);
            devices.push_back({"D" + std::to_string(i), "T", "L" + std::to_string(i), "Period=\"0\""});
        }
        Load(DocumentText(lines, devices));
        m_system.Start();
        std::vector<ZRDriverVariable> variables;
        for (std::size_t i = 0; i < kLines * kRegisters; ++i) {
            variables.push_back(
                Locked(Utf8ToUtf16("D" + std::to_string(i / kRegisters) + ".R" + std::to_string(i % kRegisters))));
        }
        std::vector<std::uint32_t> latest(variables.size(), 0);
        EXPECT_TRUE(Eventually(
            [&] {
                bool done = true;
                for (std::size_t i = 0; i < variables.size(); ++i) {
                    Look(variables[i], i, latest[i]);
                    done = done && m_responders[i / kRegisters].Requests() >= requests;
                }
                return done || HasFailure();
            },
            std::chrono::seconds(60)));
        m_system.Stop();
        EXPECT_GT(m_read, kLines * kRegisters);
    }

    // The value was served for that register, and never by an earlier request than the one before it.
    void Look(ZRDriverVariable& variable, std::size_t index, std::uint32_t& latest)
    {
        if (!variable.IsValid()) {
            return;
        }
        const double number = Number(variable);
        const auto value = static_cast<std::uint16_t>(number);
        const auto address = static_cast<std::uint16_t>(index % kRegisters * kApart);
        EXPECT_EQ(static_cast<double>(value), number);
        EXPECT_EQ(value >> kNumberBits, static_cast<int>(index % kRegisters)) << "the value of another register";
        EXPECT_TRUE(m_responders[index / kRegisters].HasServed(address, value));
        const std::uint32_t request = value & ((1u << kNumberBits) - 1);
        EXPECT_GE(request, latest) << "a value of the past";
        m_read += request != latest ? 1u : 0u;
        latest = request;
    }

    [[nodiscard]] std::uint64_t Dropped()
    {
        std::uint64_t dropped = 0;
        for (auto connection = m_system.ConnectionsBegin(); connection != m_system.ConnectionsEnd(); ++connection) {
            dropped += (*connection)->Counters().droppedFrames;
        }
        return dropped;
    }
    [[nodiscard]] std::uint64_t Struck()
    {
        std::uint64_t struck = 0;
        for (ModbusResponder& responder : m_responders) {
            struck += responder.Struck();
        }
        return struck;
    }

    std::array<ModbusResponder, kLines> m_responders{ModbusResponder(1), ModbusResponder(2), ModbusResponder(3),
                                                     ModbusResponder(4)};
    std::size_t m_read = 0;  // values that were new
};

TEST_F(HostileFramesTest, LateRepliesNeverBecomeValues)
{
    ModbusResponder::Faults faults;
    faults.late = 0.1;
    Run(faults, 100);
    EXPECT_GT(Struck(), 10u);
    EXPECT_GT(Dropped(), 0u);
}

TEST_F(HostileFramesTest, DoubledRepliesNeverBecomeValuesOfAnotherRegister)
{
    ModbusResponder::Faults faults;
    faults.doubled = 0.5;
    Run(faults, 300);
    EXPECT_GT(Dropped(), 0u);
}

TEST_F(HostileFramesTest, CutAndDamagedRepliesAreDroppedAndCounted)
{
    ModbusResponder::Faults faults;
    faults.cut = 0.05;
    faults.corrupt = 0.05;
    Run(faults, 100);
    EXPECT_GE(Dropped(), Struck() - kLines) << "the last of each line may not have been seen";
}

TEST_F(HostileFramesTest, ForeignFramesAreDroppedAndCountedAndDoNoHarm)
{
    ModbusResponder::Faults faults;
    faults.foreign = 0.5;
    Run(faults, 1000);
    EXPECT_GE(Dropped(), 2 * (Struck() - kLines));
    std::uint64_t timeouts = 0;
    for (auto connection = m_system.ConnectionsBegin(); connection != m_system.ConnectionsEnd(); ++connection) {
        timeouts += (*connection)->Counters().timeouts;
    }
    EXPECT_LT(timeouts, 40u) << "the right replies behind them were not taken";
}

TEST_F(HostileFramesTest, AllFaultsTogetherNeverMakeAValue)
{
    ModbusResponder::Faults faults;
    faults.mute = 0.03;
    faults.late = 0.03;
    faults.corrupt = 0.03;
    faults.cut = 0.03;
    faults.doubled = 0.1;
    faults.foreign = 0.1;
    Run(faults, 150);
    EXPECT_GT(Dropped(), 0u);
}

}  // namespace
}  // namespace zr::test
