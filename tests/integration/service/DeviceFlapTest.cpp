// Devices that come and go, and stops at any moment, over real sockets.
#include "integration/service/RegistryFixture.h"
#include "siblings/tools/Utf.h"
#include "support/ModbusResponder.h"

#include <array>
#include <map>
#include <random>

namespace zr::test {
namespace {

constexpr std::size_t kDevices = 10;

class DeviceFlapTest : public RegistryFixture {
protected:
    static std::string Name(std::size_t device) { return "D" + std::to_string(device); }

    void LoadDevices(int timeOut)
    {
        std::string lines;
        std::vector<DeviceLine> devices;
        for (std::size_t i = 0; i < kDevices; ++i) {
            lines += UdpLine("L" + std::to_string(i), m_responders[i].Port(), timeOut);
            devices.push_back({Name(i), "ORL1", "L" + std::to_string(i), "Period=\"0.02\""});
        }
        Load(DocumentText(lines, devices));
    }

    // Takes notices until each device has had one more of that type.
    bool EachTold(DeviceWarning type, int wanted)
    {
        return Eventually([&] {
            for (const DeviceNotice& notice : zr::TakeNotices()) {
                ++m_told[{static_cast<int>(notice.type), Utf16ToUtf8(notice.name)}];
            }
            for (std::size_t i = 0; i < kDevices; ++i) {
                if (m_told[{static_cast<int>(type), Name(i)}] < wanted) {
                    return false;
                }
            }
            return true;
        });
    }

    std::array<ModbusResponder, kDevices> m_responders;
    std::map<std::pair<int, std::string>, int> m_told;  // by type and device
};

TEST_F(DeviceFlapTest, TwoHundredFlapsGiveOneWarningOnLossAndOneEventOnReturnEach)
{
    constexpr int kFlaps = 20;  // of each device
    LoadDevices(60);
    m_system.Start();
    std::vector<ZRDriverVariable> relays;
    for (std::size_t i = 0; i < kDevices; ++i) {
        relays.push_back(Locked(Utf8ToUtf16(Name(i) + ".K1")));
        EXPECT_TRUE(Eventually([&] { return relays.back().IsValid(); }));
    }
    const Holdings before = HoldingsOf("self");
    for (int flap = 1; flap <= kFlaps; ++flap) {
        for (ModbusResponder& responder : m_responders) {
            responder.SetMuted(true);
        }
        ASSERT_TRUE(EachTold(DeviceWarning::DeviceSilent, flap));
        for (ZRDriverVariable& relay : relays) {
            EXPECT_FALSE(relay.IsValid());
        }
        for (ModbusResponder& responder : m_responders) {
            responder.SetMuted(false);
        }
        ASSERT_TRUE(EachTold(DeviceWarning::DeviceAnswersAgain, flap));
        for (ZRDriverVariable& relay : relays) {
            EXPECT_TRUE(Eventually([&] { return relay.IsValid(); }));
        }
    }
    EXPECT_EQ(HoldingsOf("self"), before);
    m_system.Stop();
    EachTold(DeviceWarning::DeviceSilent, 0);  // what came last
    EXPECT_EQ(m_told.size(), 2 * kDevices) << "something else was told";
    for (const auto& [what, times] : m_told) {
        EXPECT_EQ(times, kFlaps) << what.second << ", type " << what.first;
    }
}

TEST_F(DeviceFlapTest, StopsAtTwoHundredMomentsWhateverTheDevicesDo)
{
    const Holdings before = HoldingsOf("self");
    std::mt19937 random(20261121);
    // A stop that waits for the time-out of a mute device is seen by that time-out, and by a test that doesn't end.
    LoadDevices(60000);
    for (int round = 0; round < 200; ++round) {
        for (ModbusResponder& responder : m_responders) {
            responder.SetMuted(random() % 3 == 0);
        }
        m_system.Start();
        ModbusResponder& any = m_responders[random() % kDevices];
        any.WaitForRequests(random() % 4, std::chrono::milliseconds(20));
        // Not a wait for anything: the moment is what varies.
        std::this_thread::sleep_until(std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 3000));
        m_system.Stop();
        for (auto connection = m_system.ConnectionsBegin(); connection != m_system.ConnectionsEnd(); ++connection) {
            ASSERT_EQ((*connection)->Counters().timeouts, 0u) << "round " << round;
        }
        for (auto group = m_system.GroupsBegin(); group != m_system.GroupsEnd(); ++group) {
            ASSERT_TRUE((*group)->Stopped());
        }
        for (auto driver = m_system.DriversBegin(); driver != m_system.DriversEnd(); ++driver) {
            ASSERT_FALSE((*driver)->Online());
        }
    }
    m_system.Reset();
    Holdings after;
    EXPECT_TRUE(Eventually([&] { return (after = HoldingsOf("self")) == before; })) << before << "; " << after;
}

}  // namespace
}  // namespace zr::test
