// The drivers and a Modbus slave that isn't ours (libmodbus), on a serial line made of a pseudo-terminal.
#include "integration/service/RegistryFixture.h"
#include "platform/PseudoTerminal.h"
#include "siblings/driversupport/ZRRSDeviceConnection.h"

#include <modbus/modbus.h>
#include <array>
#include <atomic>
#include <mutex>
#include <thread>

namespace zr::test {
namespace {

constexpr int kUnit = 17;
constexpr std::size_t kAddresses = 200;

struct ContextEnd {
    void operator()(modbus_t* context) const { ::modbus_free(context); }
};
struct MappingEnd {
    void operator()(modbus_mapping_t* mapping) const { ::modbus_mapping_free(mapping); }
};

class IndependentSlaveTest : public RegistryFixture {
protected:
    void SetUp() override
    {
        std::string error;
        ASSERT_TRUE(m_line.Open(error)) << error;
        m_descriptor = m_line.DuplicateDescriptor();
        m_context.reset(::modbus_new_rtu(m_line.Name().c_str(), 19200, 'N', 8, 1));
        m_mapping.reset(::modbus_mapping_new(kAddresses, kAddresses, kAddresses, kAddresses));
        ASSERT_TRUE(m_context != nullptr && m_mapping != nullptr);
        ASSERT_EQ(::modbus_set_slave(m_context.get(), kUnit), 0);
        // It serves the device's end, where there is no port to set up.
        ASSERT_EQ(::modbus_set_socket(m_context.get(), m_descriptor), 0);
        ASSERT_EQ(::modbus_set_indication_timeout(m_context.get(), 0, 50000), 0);
        m_slave = std::thread([this] { Serve(); });
        SetPortMap({{1, m_line.Name()}});
    }
    void TearDown() override
    {
        m_system.Reset();
        SetPortMap({});
        m_ends = true;
        m_slave.join();
        ::close(m_descriptor);
    }

    void Serve()
    {
        std::array<std::uint8_t, MODBUS_RTU_MAX_ADU_LENGTH> request{};
        while (!m_ends) {
            const int size = ::modbus_receive(m_context.get(), request.data());
            if (size > 0) {
                const std::lock_guard lock(m_guard);
                ::modbus_reply(m_context.get(), request.data(), size, m_mapping.get());
            }
        }
    }

    void LoadDevice(const std::string& type)
    {
        Load(DocumentText("<Connection Name=\"LINE\" Type=\"RS\" Port=\"1\" BaudRate=\"19200\" TimeOut=\"1000\"/>\n",
                          {{"DEVICE", type, "LINE", "Unit=\"17\" Period=\"0.05\""}}));
    }
    void SetInput(std::size_t address, std::uint16_t value) { m_mapping->tab_input_registers[address] = value; }
    void SetWide(std::size_t address, std::uint32_t value)
    {
        SetInput(address, static_cast<std::uint16_t>(value >> 16));
        SetInput(address + 1, static_cast<std::uint16_t>(value & 0xFFFF));
    }
    [[nodiscard]] bool Coil(std::size_t address)
    {
        const std::lock_guard lock(m_guard);
        return m_mapping->tab_bits[address] != 0;
    }

    PseudoTerminal m_line;
    int m_descriptor = -1;
    std::unique_ptr<modbus_t, ContextEnd> m_context;
    std::unique_ptr<modbus_mapping_t, MappingEnd> m_mapping;
    std::mutex m_guard;  // of the mapping, while the slave runs
    std::atomic<bool> m_ends{false};
    std::thread m_slave;
};

struct Expected {
    const wchar* name;
    double value;
};

TEST_F(IndependentSlaveTest, AllVariablesOfAMeterAreReadRight)
{
    std::vector<Expected> expected;
    const auto narrow = [&](const wchar* name, std::size_t address, int raw, double scale) {
        SetInput(address, static_cast<std::uint16_t>(raw));
        expected.push_back({name, raw * scale});
    };
    const auto wide = [&](const wchar* name, std::size_t address, std::int64_t raw, double scale) {
        SetWide(address, static_cast<std::uint32_t>(raw));
        expected.push_back({name, static_cast<double>(raw) * scale});
    };
    {
        const std::lock_guard lock(m_guard);
        const wchar* const voltages[] = {u"U1", u"U2", u"U3", u"U12", u"U23", u"U31"};
        for (std::size_t i = 0; i < 6; ++i) {
            narrow(voltages[i], i, 2301 + static_cast<int>(i), 0.1);
        }
        narrow(u"F", 6, 4998, 0.01);
        const wchar* const currents[] = {u"I1", u"I2", u"I3"};
        for (std::size_t i = 0; i < 3; ++i) {
            wide(currents[i], 8 + 2 * i, 123456 + static_cast<int>(i), 0.001);
        }
        const wchar* const powers[] = {u"P1", u"P2", u"P3", u"P", u"Q1", u"Q2", u"Q3", u"Q"};
        for (std::size_t i = 0; i < 8; ++i) {
            wide(powers[i], 14 + 2 * i, -70000 + 30000 * static_cast<int>(i), 1.0);
        }
        const wchar* const apparent[] = {u"S1", u"S2", u"S3", u"S"};
        for (std::size_t i = 0; i < 4; ++i) {
            wide(apparent[i], 30 + 2 * i, 4000000000 + static_cast<int>(i), 1.0);
        }
        const wchar* const factors[] = {u"PF1", u"PF2", u"PF3", u"PF"};
        for (std::size_t i = 0; i < 4; ++i) {
            narrow(factors[i], 38 + i, -985 + 500 * static_cast<int>(i), 0.001);
        }
        const wchar* const energies[] = {u"EAI", u"EAE", u"ERI", u"ERC"};
        for (std::size_t i = 0; i < 4; ++i) {
            wide(energies[i], 42 + 2 * i, 3000000001 + static_cast<int>(i), 1.0);
        }
        wide(u"PD", 50, -1, 1.0);
        wide(u"PDMAX", 52, 65536, 1.0);
    }
    LoadDevice("EM3");
    ASSERT_EQ((*m_system.DriversBegin())->VariableCount(), expected.size());
    m_system.Start();
    for (const Expected& each : expected) {
        ZRDriverVariable variable = Locked(ZRBasicString(u"DEVICE.") + each.name);
        ASSERT_TRUE(Eventually([&] { return variable.IsValid(); }));
        EXPECT_NEAR(Number(variable), each.value, 1e-6) << each.value;
    }
    m_system.Stop();
    const auto counters = (*m_system.ConnectionsBegin())->Counters();
    EXPECT_EQ(counters.droppedFrames, 0u);
    EXPECT_EQ(counters.timeouts, 0u);
}

TEST_F(IndependentSlaveTest, AnOutputIsSwitchedInTheDeviceAndReadBack)
{
    LoadDevice("ORL4");
    m_system.Start();
    ZRDriverVariable relay = Locked(u"DEVICE.K3");
    ASSERT_TRUE(Eventually([&] { return relay.IsValid(); }));
    EXPECT_EQ(Number(relay), 0.0);
    VariableHandle handle = 0;
    ZRDeviceDriver& driver = **m_system.DriversBegin();
    ASSERT_TRUE(driver.LockVariable(u"K3", handle));
    for (const double state : {1.0, 0.0, 1.0}) {
        ASSERT_TRUE(driver.SetOutput(handle, state));
        EXPECT_TRUE(Eventually([&] { return Coil(2) == (state != 0.0); })) << state;
        EXPECT_TRUE(Eventually([&] { return Number(relay) == state; })) << state;
    }
    EXPECT_FALSE(driver.SetOutput(handle, 2.0));
    EXPECT_FALSE(Coil(0) || Coil(1) || Coil(3));
    driver.UnlockVariable(handle);
}

}  // namespace
}  // namespace zr::test
