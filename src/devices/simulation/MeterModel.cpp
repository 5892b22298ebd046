#include "devices/simulation/MeterModel.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

namespace zr {
namespace {

// The share of each phase. Active and reactive power are shared differently, so that the power factors differ.
constexpr std::array<double, 3> kActiveShare = {0.42, 0.33, 0.25};
constexpr std::array<double, 3> kReactiveShare = {0.30, 0.45, 0.25};
// The phase voltages beside the measured one.
constexpr std::array<double, 3> kVoltageFactor = {1.002, 0.997, 1.001};

constexpr double kNominalHz = 50.0;
constexpr double kQuarter = 15.0;       // minutes
constexpr int kQuartersOfMaximum = 96;  // one day
constexpr double kMinutesPerHour = 60.0;
constexpr double kMinutesPerDay = 1440.0;

// Typical of low voltage in Europe, well inside the limits of EN 50160; per cent of the fundamental.
constexpr std::array<double, 6> kVoltageHarmonic = {0.6, 2.1, 1.3, 0.3, 0.7, 0.5};
constexpr std::array<double, 6> kCurrentHarmonic = {11.0, 7.5, 4.5, 2.2, 1.6, 1.1};

// A slow swing between -1 and 1; the period is in minutes.
double Swing(double position, double periodMinutes, double phase = 0.0)
{
    return std::sin(2.0 * std::numbers::pi * std::fmod(position, periodMinutes) / periodMinutes + phase);
}

double PowerFactor(double active, double reactive, double apparent)
{
    if (apparent <= 0.0) {
        return 1.0;
    }
    return std::copysign(active / apparent, reactive < 0.0 ? -1.0 : 1.0);
}

double RootOfSquares(const std::array<double, 6>& values)
{
    double sum = 0.0;
    for (const double value : values) {
        sum += value * value;
    }
    return std::sqrt(sum);
}

// Integral of the part above zero of a straight line from `from` to `to` over one unit.
double PositiveArea(double from, double to)
{
    if (from >= 0.0 && to >= 0.0) {
        return (from + to) / 2.0;
    }
    if (from <= 0.0 && to <= 0.0) {
        return 0.0;
    }
    const double high = std::max(from, to);
    return high / 2.0 * (high / std::abs(to - from));
}

}  // namespace

MeterModel::MeterModel(const HouseholdSeries& series, const MeterSetup& setup) : m_series(series), m_setup(setup)
{
    if (setup.capacitorVar <= 0.0) {
        return;
    }
    const std::size_t rows = series.Size();
    m_reactiveBefore.reserve(rows + 1);
    ReactiveWork sum;
    m_reactiveBefore.push_back(sum);
    for (std::size_t row = 0; row < rows; ++row) {
        const double from = NetReactive(series.ReactiveVar(row));
        const double to = NetReactive(series.ReactiveVar(row + 1 == rows ? 0 : row + 1));
        sum.inductive += PositiveArea(from, to) / kMinutesPerHour;
        sum.capacitive += PositiveArea(-from, -to) / kMinutesPerHour;
        m_reactiveBefore.push_back(sum);
    }
}

double MeterModel::NetReactive(double houseVar) const
{
    return m_setup.scale * houseVar - m_setup.capacitorVar;
}

MeterModel::ReactiveWork MeterModel::ReactiveWorkAt(double position) const
{
    if (m_reactiveBefore.empty()) {
        return {m_setup.scale * m_series.ReactiveVarh(position), 0.0};
    }
    const std::size_t rows = m_series.Size();
    const double passes = std::floor(position / static_cast<double>(rows));
    const double within = position - passes * static_cast<double>(rows);
    const std::size_t row = std::min(static_cast<std::size_t>(within), rows - 1);
    const double fraction = within - static_cast<double>(row);
    const double from = NetReactive(m_series.ReactiveVar(row));
    const double to = NetReactive(m_series.ReactiveVar(row + 1 == rows ? 0 : row + 1));
    const double end = from + (to - from) * fraction;
    const ReactiveWork& before = m_reactiveBefore[row];
    const ReactiveWork& total = m_reactiveBefore.back();
    ReactiveWork work;
    work.inductive = passes * total.inductive + before.inductive + PositiveArea(from, end) * fraction / kMinutesPerHour;
    work.capacitive =
        passes * total.capacitive + before.capacitive + PositiveArea(-from, -end) * fraction / kMinutesPerHour;
    return work;
}

MeterState MeterModel::At(double position) const
{
    const double shifted = position + m_setup.shiftMinutes;
    MeterState state;
    FillPhases(m_series.At(shifted), state);
    FillTotals(state);
    FillEnergies(shifted, state);
    FillHarmonics(shifted, state);
    // One net has one frequency: not shifted.
    state.frequency = kNominalHz + 0.020 * Swing(position, 10.2) + 0.008 * Swing(position, 1.7);
    return state;
}

double MeterModel::MinuteOfDay(double position) const
{
    const double within = std::fmod(position + m_setup.shiftMinutes, static_cast<double>(m_series.Size()));
    return std::fmod(within + m_series.FirstMinuteOfDay(), kMinutesPerDay);
}

DayExtremes MeterModel::ExtremesAt(double position) const
{
    const double shifted = position + m_setup.shiftMinutes;
    const double intoSeries = std::fmod(shifted, static_cast<double>(m_series.Size()));
    const double start = shifted - std::min(MinuteOfDay(position), intoSeries);
    DayExtremes extremes;
    extremes.lowestVoltage.fill(std::numeric_limits<double>::max());
    // Between two rows voltage runs straight and current bends upwards at most: both have their extremes at the ends.
    for (double at = start;; at = std::min(at + 1.0, shifted)) {
        MeterState state;
        FillPhases(m_series.At(at), state);
        for (std::size_t i = 0; i < 3; ++i) {
            extremes.highestVoltage[i] = std::max(extremes.highestVoltage[i], state.phaseVoltage[i]);
            extremes.lowestVoltage[i] = std::min(extremes.lowestVoltage[i], state.phaseVoltage[i]);
            extremes.highestCurrent[i] = std::max(extremes.highestCurrent[i], state.current[i]);
        }
        if (at >= shifted) {
            return extremes;
        }
    }
}

void MeterModel::FillPhases(const HouseholdSample& sample, MeterState& state) const
{
    for (std::size_t i = 0; i < 3; ++i) {
        state.phaseVoltage[i] = sample.voltageV * kVoltageFactor[i];
        state.active[i] = m_setup.scale * sample.activeW * kActiveShare[i];
        state.reactive[i] = m_setup.scale * sample.reactiveVar * kReactiveShare[i] - m_setup.capacitorVar / 3.0;
        state.apparent[i] = std::hypot(state.active[i], state.reactive[i]);
        state.current[i] = state.phaseVoltage[i] > 0.0 ? state.apparent[i] / state.phaseVoltage[i] : 0.0;
        state.powerFactor[i] = PowerFactor(state.active[i], state.reactive[i], state.apparent[i]);
    }
    for (std::size_t i = 0; i < 3; ++i) {
        // Law of cosines at 120 degrees.
        const double first = state.phaseVoltage[i];
        const double second = state.phaseVoltage[(i + 1) % 3];
        state.lineVoltage[i] = std::sqrt(first * first + second * second + first * second);
    }
}

void MeterModel::FillTotals(MeterState& state) const
{
    std::complex<double> neutral;
    for (std::size_t i = 0; i < 3; ++i) {
        state.totalActive += state.active[i];
        state.totalReactive += state.reactive[i];
        const double lag = std::atan2(state.reactive[i], state.active[i]);
        const double voltageAngle = -2.0 * std::numbers::pi / 3.0 * static_cast<double>(i);
        neutral += std::polar(state.current[i], voltageAngle - lag);
    }
    state.neutralCurrent = std::abs(neutral);
    state.totalApparent = std::hypot(state.totalActive, state.totalReactive);
    state.totalPowerFactor = PowerFactor(state.totalActive, state.totalReactive, state.totalApparent);
}

double MeterModel::QuarterDemand(double quarterEnd) const
{
    const double wh = m_series.ActiveWh(quarterEnd) - m_series.ActiveWh(quarterEnd - kQuarter);
    return m_setup.scale * wh / (kQuarter / kMinutesPerHour);
}

void MeterModel::FillEnergies(double position, MeterState& state) const
{
    state.activeWh = m_setup.activeWhBefore + m_setup.scale * m_series.ActiveWh(position);
    const ReactiveWork work = ReactiveWorkAt(position);
    state.inductiveVarh = m_setup.reactiveVarhBefore + work.inductive;
    state.capacitiveVarh = work.capacitive;
    // Quarters end on the quarters of the wall clock. Those before position 0 don't count.
    const double offset = std::fmod(m_series.FirstMinuteOfDay(), kQuarter);
    const double lastEnd = std::floor((position + offset) / kQuarter) * kQuarter - offset;
    for (int quarter = 0; quarter < kQuartersOfMaximum; ++quarter) {
        const double end = lastEnd - kQuarter * quarter;
        if (end < kQuarter) {
            break;
        }
        const double demand = QuarterDemand(end);
        if (quarter == 0) {
            state.demand = demand;
        }
        state.maximumDemand = std::max(state.maximumDemand, demand);
    }
}

void MeterModel::FillHarmonics(double position, MeterState& state) const
{
    for (std::size_t phase = 0; phase < 3; ++phase) {
        const double angle = static_cast<double>(phase);
        // The more the load, the smaller the share of what electronic loads distort.
        const double light = 1.0 / (1.0 + state.active[phase] / 1000.0);
        for (std::size_t i = 0; i < kHarmonicOrders.size(); ++i) {
            const double swing = Swing(position, 47.0 + 10.0 * static_cast<double>(i), angle);
            state.voltageHarmonic[phase][i] = kVoltageHarmonic[i] * (1.0 + 0.1 * swing);
            state.currentHarmonic[phase][i] = kCurrentHarmonic[i] * (0.4 + light) * (1.0 + 0.1 * swing);
        }
        state.voltageDistortion[phase] = RootOfSquares(state.voltageHarmonic[phase]);
        state.currentDistortion[phase] = RootOfSquares(state.currentHarmonic[phase]);
    }
}

}  // namespace zr
