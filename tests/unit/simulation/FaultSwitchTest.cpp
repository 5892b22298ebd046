#include "devices/simulation/FaultSwitch.h"

#include "devices/modbus/ModbusFrame.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <vector>

namespace {

using std::chrono::milliseconds;
using zr::Delivery;
using zr::Fault;
using zr::FaultKind;
using zr::FaultOrder;
using zr::FaultSwitch;
namespace modbus = zr::modbus;

std::vector<std::uint8_t> GoodReply()
{
    const std::vector<std::uint8_t> data = {1, 2, 3, 4, 5, 6, 7, 8};
    std::vector<std::uint8_t> frame(modbus::kMaxFrame);
    frame.resize(modbus::EncodeReply(modbus::Framing::Rtu, modbus::ReadInputRegisters(7, 0, 4), data, frame));
    return frame;
}

bool IsBelieved(const std::vector<std::uint8_t>& frame)
{
    const auto request = modbus::ReadInputRegisters(7, 0, 4);
    return modbus::ExamineReply(modbus::Framing::Rtu, request, frame).kind == modbus::Verdict::Kind::Accept;
}

FaultOrder Parsed(const std::string& text)
{
    FaultOrder order;
    std::string error;
    EXPECT_TRUE(zr::ParseFaultOrder(text, order, error)) << error;
    return order;
}

std::string Refusal(const std::string& text)
{
    FaultOrder order;
    order.target = "untouched";
    std::string error;
    EXPECT_FALSE(zr::ParseFaultOrder(text, order, error)) << text;
    EXPECT_EQ(order.target, "untouched");
    return error;
}

TEST(FaultSwitch, ReadsOrders)
{
    EXPECT_EQ(Parsed("METER-1 mute").fault->kind, FaultKind::Mute);
    EXPECT_EQ(Parsed("METER-1 mute").fault->probability, 1.0);
    EXPECT_EQ(Parsed("  all\tcorrupt  0.25 ").fault->probability, 0.25);
    EXPECT_EQ(Parsed("M late").fault->delay, milliseconds(1500));
    EXPECT_EQ(Parsed("M late 20").fault->delay, milliseconds(20));
    EXPECT_EQ(Parsed("M late 20 0.5").fault->probability, 0.5);
    EXPECT_FALSE(Parsed("M none").fault);
}

TEST(FaultSwitch, RefusesOrdersThatMakeNoSense)
{
    EXPECT_EQ(Refusal(""), "a fault needs a device (or \"all\") and a kind");
    EXPECT_EQ(Refusal("M"), "a fault needs a device (or \"all\") and a kind");
    EXPECT_EQ(Refusal("M loud"), "unknown fault \"loud\": mute, late, doubled, corrupt, cut and none are known");
    EXPECT_EQ(Refusal("M late 0"), "a delay is 1 to 600000 milliseconds");
    EXPECT_EQ(Refusal("M late 1.5"), "a delay is 1 to 600000 milliseconds");
    EXPECT_EQ(Refusal("M mute 0"), "a probability is above 0 and at most 1");
    EXPECT_EQ(Refusal("M mute nan"), "a probability is above 0 and at most 1");
    EXPECT_EQ(Refusal("M mute 1 2"), "\"2\" is too much");
    EXPECT_EQ(Refusal("M none 1"), "\"none\" takes nothing behind it");
}

TEST(FaultSwitch, LetsFramesPassUntouchedWhileNoneIsOn)
{
    FaultSwitch faults(1);
    std::string fate;
    const auto deliveries = faults.Apply(GoodReply(), fate);
    ASSERT_EQ(deliveries.size(), 1u);
    EXPECT_EQ(deliveries[0].bytes, GoodReply());
    EXPECT_EQ(deliveries[0].delay, milliseconds(0));
    EXPECT_EQ(fate, "sent");
    EXPECT_FALSE(faults.MissesRequest());
}

TEST(FaultSwitch, MutesUntilItIsCleared)
{
    FaultSwitch faults(1);
    faults.Set(*Parsed("M mute").fault);
    EXPECT_TRUE(faults.MissesRequest());
    faults.Clear();
    EXPECT_FALSE(faults.MissesRequest());
}

TEST(FaultSwitch, DelaysAndDoubles)
{
    FaultSwitch faults(1);
    faults.Set(*Parsed("M late 30").fault);
    faults.Set(*Parsed("M doubled").fault);
    std::string fate;
    const auto deliveries = faults.Apply(GoodReply(), fate);
    ASSERT_EQ(deliveries.size(), 2u);
    EXPECT_EQ(deliveries[0].bytes, GoodReply());
    EXPECT_EQ(deliveries[1].bytes, GoodReply());
    EXPECT_EQ(deliveries[1].delay, milliseconds(30));
    EXPECT_EQ(fate, "late+doubled");
}

TEST(FaultSwitch, TurnsOneToThreeBitsAndIsNeverBelieved)
{
    FaultSwitch faults(7);
    faults.Set(*Parsed("M corrupt").fault);
    const auto good = GoodReply();
    std::array<int, 4> seen = {};
    for (int i = 0; i < 20'000; ++i) {
        std::string fate;
        const auto bytes = faults.Apply(good, fate).at(0).bytes;
        ASSERT_EQ(bytes.size(), good.size());
        std::size_t turned = 0;
        for (std::size_t at = 0; at < good.size(); ++at) {
            turned += static_cast<std::size_t>(std::popcount(static_cast<unsigned>(bytes[at] ^ good[at])));
        }
        ASSERT_TRUE(turned >= 1 && turned <= 3);
        ++seen[turned];
        ASSERT_FALSE(IsBelieved(bytes));
    }
    EXPECT_TRUE(seen[1] > 0 && seen[2] > 0 && seen[3] > 0);
}

TEST(FaultSwitch, CutsToAtLeastOneByteAndIsNeverBelieved)
{
    FaultSwitch faults(3);
    faults.Set(*Parsed("M cut").fault);
    const auto good = GoodReply();
    for (int i = 0; i < 2'000; ++i) {
        std::string fate;
        const auto bytes = faults.Apply(good, fate).at(0).bytes;
        ASSERT_TRUE(!bytes.empty() && bytes.size() < good.size());
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), good.begin()));
        ASSERT_FALSE(IsBelieved(bytes));
    }
}

TEST(FaultSwitch, StrikesAsOftenAsItsProbabilitySays)
{
    FaultSwitch faults(11);
    faults.Set(*Parsed("M doubled 0.3").fault);
    int doubled = 0;
    for (int i = 0; i < 10'000; ++i) {
        std::string fate;
        doubled += faults.Apply(GoodReply(), fate).size() == 2 ? 1 : 0;
    }
    EXPECT_NEAR(doubled, 3000, 200);  // over four standard deviations; the seed is fixed
}

TEST(FaultSwitch, RepeatsItselfForTheSameSeed)
{
    const auto run = [](std::uint64_t seed) {
        FaultSwitch faults(seed);
        faults.Set(*Parsed("M corrupt 0.5").fault);
        faults.Set(*Parsed("M cut 0.5").fault);
        std::vector<std::vector<std::uint8_t>> frames;
        for (int i = 0; i < 100; ++i) {
            std::string fate;
            frames.push_back(faults.Apply(GoodReply(), fate).at(0).bytes);
        }
        return frames;
    };
    EXPECT_EQ(run(5), run(5));
    EXPECT_NE(run(5), run(6));
}

}  // namespace
