#include "devices/simulation/Quantity.h"

#include "devices/modbus/DeviceProfile.h"
#include "siblings/tools/Utf.h"
#include "SmallSeries.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using zr::FindQuantity;
using zr::HouseholdSeries;
using zr::MeterModel;
using zr::MeterSetup;
using zr::Snapshot;

double Of(const std::string& name, bool isBit, const MeterModel& model, double position)
{
    const auto quantity = FindQuantity(name, isBit);
    EXPECT_TRUE(quantity) << name;
    Snapshot snapshot(model, position);
    return quantity ? quantity->Of(snapshot) : -1.0;
}

TEST(Quantity, FindsWhatTheNameMeans)
{
    HouseholdSeries series;
    zr::test::LoadHouse(series);
    const MeterModel model(series, MeterSetup());
    const zr::MeterState state = model.At(500.0);
    EXPECT_EQ(Of("U2", false, model, 500.0), state.phaseVoltage[1]);
    EXPECT_EQ(Of("U31", false, model, 500.0), state.lineVoltage[2]);
    EXPECT_EQ(Of("I3", false, model, 500.0), state.current[2]);
    EXPECT_EQ(Of("IN", false, model, 500.0), state.neutralCurrent);
    EXPECT_EQ(Of("PF", false, model, 500.0), state.totalPowerFactor);
    EXPECT_EQ(Of("HI2-11", false, model, 500.0), state.currentHarmonic[1][4]);
    EXPECT_EQ(Of("HU3-3", false, model, 500.0), state.voltageHarmonic[2][0]);
    EXPECT_EQ(Of("U1MIN", false, model, 500.0), model.ExtremesAt(500.0).lowestVoltage[0]);
    EXPECT_EQ(Of("EAI", false, model, 500.0), state.activeWh);
    EXPECT_EQ(Of("EAE", false, model, 500.0), 0.0);
}

TEST(Quantity, KnowsEveryVariableOfTheDemoProfiles)
{
    for (const char* type : {"EM3", "NA3", "IO8", "EM3T"}) {
        std::string error;
        const auto profile =
            zr::modbus::DeviceProfile::Load(std::string(ZR_RESOURCES "/devices/") + type + ".xml", error);
        ASSERT_NE(profile, nullptr) << error;
        for (std::size_t i = 0; i < profile->Variables()->Size(); ++i) {
            const zr::modbus::VariableLayout& layout = profile->Layout(i);
            const bool isKnown =
                layout.write || layout.type == zr::modbus::DataType::Text ||
                FindQuantity(Utf16ToUtf8((*profile->Variables())[i].name), layout.type == zr::modbus::DataType::Bit);
            EXPECT_TRUE(isKnown) << type << " " << Utf16ToUtf8((*profile->Variables())[i].name);
        }
    }
}

TEST(Quantity, RefusesNamesThatOnlyLookLikeOne)
{
    for (const char* name :
         {"", "U", "U4", "U0", "U13", "HU1-4", "HU4-3", "HU1-", "HU1-3x", "C9", "AI3", "u1", "U1MAXX"}) {
        EXPECT_FALSE(FindQuantity(name, false)) << name;
    }
    EXPECT_FALSE(FindQuantity("I9", true));
    EXPECT_FALSE(FindQuantity("U1", true));
}

TEST(Quantity, TakesInputsAndCountersFromTheHouse)
{
    HouseholdSeries series;
    zr::test::LoadSeries(series);  // 23:58, sub-meter 1 takes 360 W, 2 none, 3 720 W
    const MeterModel model(series, MeterSetup());
    EXPECT_EQ(Of("I1", true, model, 0.5), 1.0);
    EXPECT_EQ(Of("I2", true, model, 0.5), 0.0);
    EXPECT_EQ(Of("I3", true, model, 0.5), 1.0);
    EXPECT_EQ(Of("I4", true, model, 0.5), 0.0);
    EXPECT_EQ(Of("I4", true, model, 1.0), 1.0);
    EXPECT_EQ(Of("I7", true, model, 0.5), 1.0);  // night
    EXPECT_EQ(Of("C1", false, model, 0.5), 3.0);
    EXPECT_EQ(Of("C3", false, model, 1.5), 18.0);
    EXPECT_NEAR(Of("AI1", false, model, 0.0), 0.004 + 0.016 * 0.12, 1e-12);
}

}  // namespace
