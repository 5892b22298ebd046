#include "devices/simulation/MeterModel.h"

#include "SmallSeries.h"

#include <gtest/gtest.h>
#include <cmath>

namespace {

using zr::HouseholdSeries;
using zr::MeterModel;
using zr::MeterSetup;
using zr::MeterState;
using zr::test::LoadHouse;
using zr::test::LoadSeries;

// Every rule that ties quantities of one instant together.
void ExpectConsistent(const MeterState& state)
{
    double active = 0.0;
    double reactive = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        active += state.active[i];
        reactive += state.reactive[i];
        EXPECT_NEAR(state.apparent[i] * state.apparent[i],
                    state.active[i] * state.active[i] + state.reactive[i] * state.reactive[i], 1e-6);
        EXPECT_NEAR(state.current[i] * state.phaseVoltage[i], state.apparent[i], 1e-9);
        EXPECT_NEAR(std::abs(state.powerFactor[i]) * state.apparent[i], state.active[i], 1e-9);
        EXPECT_EQ(state.powerFactor[i] < 0.0, state.reactive[i] < 0.0);
        EXPECT_NEAR(state.lineVoltage[i] / state.phaseVoltage[i], std::sqrt(3.0), 0.02);
    }
    EXPECT_NEAR(state.totalActive, active, 1e-9);
    EXPECT_NEAR(state.totalReactive, reactive, 1e-9);
    EXPECT_NEAR(state.totalApparent, std::hypot(active, reactive), 1e-9);
    EXPECT_NEAR(std::abs(state.totalPowerFactor) * state.totalApparent, state.totalActive, 1e-9);
    EXPECT_NEAR(state.frequency, 50.0, 0.03);
}

TEST(MeterModel, SharesTheHouseOverThreePhases)
{
    HouseholdSeries series;
    LoadSeries(series);
    MeterSetup setup;
    setup.scale = 2.0;
    const MeterState state = MeterModel(series, setup).At(0.0);
    EXPECT_DOUBLE_EQ(state.active[0], 2.0 * 1200.0 * 0.42);
    EXPECT_DOUBLE_EQ(state.reactive[1], 2.0 * 600.0 * 0.45);
    EXPECT_DOUBLE_EQ(state.phaseVoltage[2], 240.0 * 1.001);
    EXPECT_NEAR(state.totalActive, 2400.0, 1e-9);
    EXPECT_NEAR(state.totalReactive, 1200.0, 1e-9);
    ExpectConsistent(state);
}

TEST(MeterModel, IsConsistentAtEveryHourOfTheHouse)
{
    HouseholdSeries series;
    LoadHouse(series);
    MeterSetup setup;
    setup.scale = 6.0;
    setup.capacitorVar = 900.0;
    const MeterModel model(series, setup);
    for (double position = 0.0; position < 60'000.0; position += 60.3) {
        ExpectConsistent(model.At(position));
        ASSERT_FALSE(HasFailure()) << position;
    }
}

TEST(MeterModel, GivesANegativePowerFactorWhileCapacitive)
{
    HouseholdSeries series;
    LoadSeries(series);
    MeterSetup setup;
    setup.capacitorVar = 300.0;
    const MeterModel model(series, setup);
    EXPECT_GT(model.At(0.0).totalPowerFactor, 0.0);
    EXPECT_LT(model.At(1.0).totalPowerFactor, 0.0);
}

TEST(MeterModel, CountsEnergyAsTheIntegralOfPower)
{
    HouseholdSeries series;
    LoadHouse(series);
    MeterSetup setup;
    setup.scale = 4.0;
    setup.capacitorVar = 500.0;
    setup.activeWhBefore = 1000.0;
    const MeterModel model(series, setup);
    double active = 0.0;
    double inductive = 0.0;
    double capacitive = 0.0;
    constexpr double kStep = 1.0 / 64.0;
    constexpr double kFrom = 47'900.0;  // across the seam of two passes
    const MeterState start = model.At(kFrom);
    for (double at = kFrom; at < kFrom + 200.0; at += kStep) {
        const MeterState state = model.At(at + kStep / 2.0);
        active += state.totalActive * kStep / 60.0;
        inductive += std::max(state.totalReactive, 0.0) * kStep / 60.0;
        capacitive += std::max(-state.totalReactive, 0.0) * kStep / 60.0;
    }
    const MeterState end = model.At(kFrom + 200.0);
    EXPECT_NEAR(end.activeWh - start.activeWh, active, active * 1e-9);
    EXPECT_NEAR(end.inductiveVarh - start.inductiveVarh, inductive, inductive * 1e-3);
    EXPECT_NEAR(end.capacitiveVarh - start.capacitiveVarh, capacitive, capacitive * 1e-3);
    EXPECT_GT(capacitive, 0.0);
    EXPECT_GT(inductive, 0.0);
}

TEST(MeterModel, NeverCountsBackwards)
{
    HouseholdSeries series;
    LoadHouse(series);
    MeterSetup setup;
    setup.capacitorVar = 100.0;
    setup.activeWhBefore = 5.0;
    const MeterModel model(series, setup);
    MeterState before = model.At(0.0);
    EXPECT_DOUBLE_EQ(before.activeWh, 5.0);
    for (double position = 0.0; position < 100'000.0; position += 37.7) {
        const MeterState state = model.At(position);
        ASSERT_GE(state.activeWh, before.activeWh);
        ASSERT_GE(state.inductiveVarh, before.inductiveVarh);
        ASSERT_GE(state.capacitiveVarh, before.capacitiveVarh);
        before = state;
    }
}

TEST(MeterModel, AddsTheSplitEnergiesOfAMeterWithAndWithoutCapacitor)
{
    HouseholdSeries series;
    LoadHouse(series);
    const MeterModel plain(series, MeterSetup());
    MeterSetup setup;
    setup.capacitorVar = 80.0;
    const MeterModel compensated(series, setup);
    const double hours = 1000.0 / 60.0;
    const MeterState with = compensated.At(1000.0);
    EXPECT_NEAR(with.inductiveVarh - with.capacitiveVarh, plain.At(1000.0).inductiveVarh - 80.0 * hours, 1e-6);
    EXPECT_EQ(plain.At(1000.0).capacitiveVarh, 0.0);
}

TEST(MeterModel, TakesDemandFromTheLastWholeQuarterOfTheWallClock)
{
    HouseholdSeries series;
    LoadHouse(series);  // begins at 17:24
    const MeterModel model(series, MeterSetup());
    const double quarter = (series.ActiveWh(36.0) - series.ActiveWh(21.0)) * 4.0;  // 17:45 to 18:00
    EXPECT_NEAR(model.At(36.0).demand, quarter, 1e-9);
    EXPECT_NEAR(model.At(50.9).demand, quarter, 1e-9);
    EXPECT_NE(model.At(51.1).demand, model.At(50.9).demand);
    EXPECT_EQ(model.At(10.0).demand, 0.0);
    EXPECT_GE(model.At(500.0).maximumDemand, model.At(36.0).demand);
}

TEST(MeterModel, KeepsTheExtremesOfTheDay)
{
    HouseholdSeries series;
    LoadSeries(series);  // midnight is position 2
    const MeterModel model(series, MeterSetup());
    const zr::DayExtremes evening = model.ExtremesAt(1.5);
    EXPECT_DOUBLE_EQ(evening.highestVoltage[0], 240.0 * 1.002);
    EXPECT_DOUBLE_EQ(evening.lowestVoltage[0], 230.0 * 1.002);
    const zr::DayExtremes morning = model.ExtremesAt(2.5);
    EXPECT_DOUBLE_EQ(morning.lowestVoltage[0], 235.0 * 1.002);
    EXPECT_DOUBLE_EQ(morning.highestVoltage[0], 237.5 * 1.002);
    EXPECT_DOUBLE_EQ(morning.highestCurrent[0], model.At(2.0).current[0]);
}

TEST(MeterModel, ShiftsTheHouseButNotTheFrequency)
{
    HouseholdSeries series;
    LoadHouse(series);
    MeterSetup setup;
    setup.shiftMinutes = 120.0;
    const MeterModel shifted(series, setup);
    const MeterModel plain(series, MeterSetup());
    EXPECT_DOUBLE_EQ(shifted.At(30.0).totalActive, plain.At(150.0).totalActive);
    EXPECT_DOUBLE_EQ(shifted.At(30.0).frequency, plain.At(30.0).frequency);
    EXPECT_DOUBLE_EQ(shifted.MinuteOfDay(30.0), plain.MinuteOfDay(150.0));
}

TEST(MeterModel, SumsTheHarmonicsToTheDistortion)
{
    HouseholdSeries series;
    LoadHouse(series);
    const MeterState state = MeterModel(series, MeterSetup()).At(77.0);
    for (std::size_t phase = 0; phase < 3; ++phase) {
        double squares = 0.0;
        for (const double harmonic : state.currentHarmonic[phase]) {
            squares += harmonic * harmonic;
        }
        EXPECT_NEAR(state.currentDistortion[phase], std::sqrt(squares), 1e-12);
        EXPECT_LT(state.voltageDistortion[phase], 8.0);  // limit of EN 50160
    }
}

TEST(MeterModel, AddsThePhasorsOfTheCurrentsInTheNeutral)
{
    HouseholdSeries series;
    LoadSeries(series);
    const MeterState state = MeterModel(series, MeterSetup()).At(0.0);
    // The phasors by hand: current in phase and in quadrature of each voltage, at 0, -120 and 120 degrees.
    double real = 0.0;
    double imaginary = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double angle = -2.0943951023931953 * static_cast<double>(i);
        const double inPhase = state.active[i] / state.phaseVoltage[i];
        const double quadrature = -state.reactive[i] / state.phaseVoltage[i];
        real += inPhase * std::cos(angle) - quadrature * std::sin(angle);
        imaginary += inPhase * std::sin(angle) + quadrature * std::cos(angle);
    }
    EXPECT_NEAR(state.neutralCurrent, std::hypot(real, imaginary), 1e-9);
    EXPECT_GT(state.neutralCurrent, 0.1);
}

}  // namespace
