#include "devices/simulation/Quantity.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace zr {
namespace {

// Levels of the inputs, see docs/plant.md.
constexpr double kSubMeterOnW = 120.0;
constexpr std::array<double, 2> kLoadOnW = {2000.0, 4000.0};
constexpr double kHighVoltageV = 245.0;
constexpr double kNightEnds = 6.0 * 60.0;
constexpr double kNightBegins = 22.0 * 60.0;
constexpr double kContactPeriod = 20.0;  // minutes, closed for the second half

bool ContactClosed(const Snapshot& snapshot)
{
    return std::fmod(snapshot.Position(), kContactPeriod) >= kContactPeriod / 2.0;
}

bool InputIsOn(Snapshot& snapshot, std::size_t index)
{
    switch (index) {
        case 0:
        case 1:
        case 2:
            return snapshot.House().subMeterW[index] >= kSubMeterOnW;
        case 3:
        case 4:
            return snapshot.Meter().totalActive >= kLoadOnW[index - 3];
        case 5:
            return snapshot.House().voltageV >= kHighVoltageV;
        case 6:
            return snapshot.MinuteOfDay() < kNightEnds || snapshot.MinuteOfDay() >= kNightBegins;
        default:
            return ContactClosed(snapshot);
    }
}

double Input(Snapshot& snapshot, std::size_t index, std::size_t)
{
    return InputIsOn(snapshot, index) ? 1.0 : 0.0;
}

double Counter(Snapshot& snapshot, std::size_t index, std::size_t)
{
    switch (index) {
        case 0:
        case 1:
        case 2:
            return std::floor(snapshot.House().subMeterWh[index]);
        case 3:
            return std::floor(snapshot.Meter().activeWh);
        case 4:
            return std::floor(snapshot.Meter().activeWh / 10.0);
        case 5:
            return std::floor(snapshot.Meter().inductiveVarh);
        case 6:
            return std::floor(snapshot.Position() / kContactPeriod);
        default:
            return std::floor(snapshot.Position());
    }
}

// A transmitter of 4 to 20 mA.
double Transmitted(double value, double low, double high)
{
    const double share = std::clamp((value - low) / (high - low), 0.0, 1.0);
    return 0.004 + 0.016 * share;
}

double AnalogueInput(Snapshot& snapshot, std::size_t index, std::size_t)
{
    return index == 0 ? Transmitted(snapshot.Meter().totalActive, 0.0, 10'000.0)
                      : Transmitted(snapshot.House().voltageV, 200.0, 260.0);
}

// A member of the meter's state, as a number or a number a phase.
template <double MeterState::*Member>
double Total(Snapshot& snapshot, std::size_t, std::size_t)
{
    return snapshot.Meter().*Member;
}

template <std::array<double, 3> MeterState::*Member>
double Phase(Snapshot& snapshot, std::size_t index, std::size_t)
{
    return (snapshot.Meter().*Member)[index];
}

template <std::array<double, 3> DayExtremes::*Member>
double Extreme(Snapshot& snapshot, std::size_t index, std::size_t)
{
    return (snapshot.Extremes().*Member)[index];
}

template <std::array<std::array<double, 6>, 3> MeterState::*Member>
double Harmonic(Snapshot& snapshot, std::size_t index, std::size_t order)
{
    return (snapshot.Meter().*Member)[index][order];
}

double Nothing(Snapshot&, std::size_t, std::size_t)
{
    return 0.0;
}

struct Named {
    std::string_view name;  // "#" stands for the number of the phase, input or counter
    std::size_t count;      // of them; 0 if there is no "#"
    Quantity::Getter get;
};

constexpr std::array kNumbers = {
    Named{"U#", 3, Phase<&MeterState::phaseVoltage>},
    Named{"I#", 3, Phase<&MeterState::current>},
    Named{"IN", 0, Total<&MeterState::neutralCurrent>},
    Named{"P#", 3, Phase<&MeterState::active>},
    Named{"Q#", 3, Phase<&MeterState::reactive>},
    Named{"S#", 3, Phase<&MeterState::apparent>},
    Named{"PF#", 3, Phase<&MeterState::powerFactor>},
    Named{"P", 0, Total<&MeterState::totalActive>},
    Named{"Q", 0, Total<&MeterState::totalReactive>},
    Named{"S", 0, Total<&MeterState::totalApparent>},
    Named{"PF", 0, Total<&MeterState::totalPowerFactor>},
    Named{"F", 0, Total<&MeterState::frequency>},
    Named{"EAI", 0, Total<&MeterState::activeWh>},
    Named{"EAE", 0, Nothing},  // the house feeds nothing back
    Named{"ERI", 0, Total<&MeterState::inductiveVarh>},
    Named{"ERC", 0, Total<&MeterState::capacitiveVarh>},
    Named{"PD", 0, Total<&MeterState::demand>},
    Named{"PDMAX", 0, Total<&MeterState::maximumDemand>},
    Named{"THDU#", 3, Phase<&MeterState::voltageDistortion>},
    Named{"THDI#", 3, Phase<&MeterState::currentDistortion>},
    Named{"U#MAX", 3, Extreme<&DayExtremes::highestVoltage>},
    Named{"U#MIN", 3, Extreme<&DayExtremes::lowestVoltage>},
    Named{"I#MAX", 3, Extreme<&DayExtremes::highestCurrent>},
    Named{"AI#", 2, AnalogueInput},
    Named{"C#", 8, Counter},
};

constexpr std::array<std::string_view, 3> kLineVoltages = {"U12", "U23", "U31"};

// The zero-based number that stands for "#"; 0 where there is none. Empty if the name doesn't fit.
std::optional<std::size_t> Fit(std::string_view name, const Named& named)
{
    const std::size_t mark = named.name.find('#');
    if (mark == std::string_view::npos) {
        return name == named.name ? std::optional<std::size_t>(0) : std::nullopt;
    }
    if (name.size() != named.name.size() || name.substr(0, mark) != named.name.substr(0, mark) ||
        name.substr(mark + 1) != named.name.substr(mark + 1)) {
        return std::nullopt;
    }
    const std::size_t index = static_cast<std::size_t>(name[mark]) - static_cast<std::size_t>('1');
    return name[mark] >= '1' && index < named.count ? std::optional(index) : std::nullopt;
}

// "HU2-11": harmonic 11 of the voltage of phase 2; "HI2-11" of its current.
std::optional<Quantity> FindHarmonic(std::string_view name)
{
    if (name.size() < 5 || name[0] != 'H' || (name[1] != 'U' && name[1] != 'I') || name[2] < '1' || name[2] > '3' ||
        name[3] != '-') {
        return std::nullopt;
    }
    int order = 0;
    const auto [end, code] = std::from_chars(name.data() + 4, name.data() + name.size(), order);
    const auto found = std::find(kHarmonicOrders.begin(), kHarmonicOrders.end(), order);
    if (code != std::errc() || end != name.data() + name.size() || found == kHarmonicOrders.end()) {
        return std::nullopt;
    }
    Quantity quantity;
    quantity.get = name[1] == 'U' ? Harmonic<&MeterState::voltageHarmonic> : Harmonic<&MeterState::currentHarmonic>;
    quantity.index = static_cast<std::size_t>(name[2] - '1');
    quantity.order = static_cast<std::size_t>(found - kHarmonicOrders.begin());
    return quantity;
}

}  // namespace

const MeterState& Snapshot::Meter()
{
    if (!m_meter) {
        m_meter = m_model.At(m_position);
    }
    return *m_meter;
}

const DayExtremes& Snapshot::Extremes()
{
    if (!m_extremes) {
        m_extremes = m_model.ExtremesAt(m_position);
    }
    return *m_extremes;
}

const HouseholdSample& Snapshot::House()
{
    if (!m_house) {
        m_house = m_model.HouseAt(m_position);
    }
    return *m_house;
}

std::optional<Quantity> FindQuantity(std::string_view name, bool isBit)
{
    if (isBit) {
        const auto input = Fit(name, Named{"I#", 8, Input});
        return input ? std::optional(Quantity{Input, *input, 0}) : std::nullopt;
    }
    for (std::size_t i = 0; i < kLineVoltages.size(); ++i) {
        if (name == kLineVoltages[i]) {
            return Quantity{Phase<&MeterState::lineVoltage>, i, 0};
        }
    }
    for (const Named& named : kNumbers) {
        if (const auto index = Fit(name, named)) {
            return Quantity{named.get, *index, 0};
        }
    }
    return FindHarmonic(name);
}

}  // namespace zr
