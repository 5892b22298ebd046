// What an electrical meter in the plant measures at one instant.
#pragma once

#include "devices/simulation/HouseholdSeries.h"

#include <array>
#include <cstddef>
#include <vector>

namespace zr {

// Orders of the harmonics that the plant knows; see MeterState::voltageHarmonic.
inline constexpr std::array<int, 6> kHarmonicOrders = {3, 5, 7, 9, 11, 13};

// How one meter differs from the others.
struct MeterSetup {
    double scale = 1.0;               // of the house's powers; above 0
    double shiftMinutes = 0.0;        // ahead of the plant's position; at least 0
    double capacitorVar = 0.0;        // compensation switched on all the time; at least 0
    double activeWhBefore = 0.0;      // reading of the active energy at position 0
    double reactiveVarhBefore = 0.0;  // reading of the inductive energy at position 0
};

// In SI units: V, A, W, var, VA, Hz, Wh, varh; ratios as numbers, harmonics and distortion in per cent of the
// fundamental. Consumed power and inductive reactive power are positive. The sign of a power factor is that of the
// reactive power: positive for inductive, negative for capacitive.
struct MeterState {
    std::array<double, 3> phaseVoltage = {};
    std::array<double, 3> lineVoltage = {};  // L1-L2, L2-L3, L3-L1
    std::array<double, 3> current = {};
    double neutralCurrent = 0.0;
    std::array<double, 3> active = {};
    std::array<double, 3> reactive = {};
    std::array<double, 3> apparent = {};
    std::array<double, 3> powerFactor = {};
    double totalActive = 0.0;
    double totalReactive = 0.0;
    double totalApparent = 0.0;  // square root of the sum of the squares of the totals
    double totalPowerFactor = 0.0;
    double frequency = 0.0;
    double activeWh = 0.0;
    double inductiveVarh = 0.0;
    double capacitiveVarh = 0.0;
    double demand = 0.0;                                        // W, mean of the last whole quarter of an hour
    double maximumDemand = 0.0;                                 // W, largest of the last 96 quarters
    std::array<std::array<double, 6>, 3> voltageHarmonic = {};  // [phase][order as in kHarmonicOrders]
    std::array<std::array<double, 6>, 3> currentHarmonic = {};
    std::array<double, 3> voltageDistortion = {};  // square root of the sum of the squares of the harmonics
    std::array<double, 3> currentDistortion = {};
};

// The extremes since midnight, or since the first row when that is later.
struct DayExtremes {
    std::array<double, 3> highestVoltage = {};  // V
    std::array<double, 3> lowestVoltage = {};   // V
    std::array<double, 3> highestCurrent = {};  // A
};

// Derives the state of a meter from the measured rows by the formulas of docs/plant.md. Immutable: any thread.
class MeterModel {
public:
    // The series isn't owned and must outlive this; it must not be empty.
    MeterModel(const HouseholdSeries& series, const MeterSetup& setup);
    // At a position of the plant, in minutes, at least 0.
    [[nodiscard]] MeterState At(double position) const;
    // Looks at every minute since midnight.
    [[nodiscard]] DayExtremes ExtremesAt(double position) const;
    // The house at the shifted position.
    [[nodiscard]] HouseholdSample HouseAt(double position) const
    {
        return m_series.At(position + m_setup.shiftMinutes);
    }
    // Minutes since midnight on the wall clock of the series, 0 to below 1440.
    [[nodiscard]] double MinuteOfDay(double position) const;

private:
    struct ReactiveWork {
        double inductive = 0.0;   // varh
        double capacitive = 0.0;  // varh, positive
    };
    [[nodiscard]] double NetReactive(double houseVar) const;
    [[nodiscard]] ReactiveWork ReactiveWorkAt(double position) const;
    [[nodiscard]] double QuarterDemand(double quarterEnd) const;
    void FillPhases(const HouseholdSample& sample, MeterState& state) const;
    void FillTotals(MeterState& state) const;
    void FillEnergies(double position, MeterState& state) const;
    void FillHarmonics(double position, MeterState& state) const;

    const HouseholdSeries& m_series;
    MeterSetup m_setup;
    // From the first row to the start of each row; then the total. Empty without a capacitor: all is inductive then.
    std::vector<ReactiveWork> m_reactiveBefore;
};

}  // namespace zr
