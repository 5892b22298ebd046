// What stands behind the name of a variable.
#pragma once

#include "devices/simulation/MeterModel.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace zr {

// What one device measures at one instant; computed when it is first asked for. Not thread-safe.
class Snapshot {
public:
    // The model isn't owned and must outlive this. Position in minutes, at least 0.
    Snapshot(const MeterModel& model, double position) : m_model(model), m_position(position) {}
    [[nodiscard]] const MeterState& Meter();
    [[nodiscard]] const DayExtremes& Extremes();
    [[nodiscard]] const HouseholdSample& House();
    [[nodiscard]] double Position() const { return m_position; }
    [[nodiscard]] double MinuteOfDay() const { return m_model.MinuteOfDay(m_position); }

private:
    const MeterModel& m_model;
    double m_position;
    std::optional<MeterState> m_meter;
    std::optional<DayExtremes> m_extremes;
    std::optional<HouseholdSample> m_house;
};

// One quantity of the plant: its index picks the phase, the input or the counter, its order the harmonic.
struct Quantity {
    using Getter = double (*)(Snapshot& snapshot, std::size_t index, std::size_t order);
    Getter get = nullptr;
    std::size_t index = 0;
    std::size_t order = 0;

    // In SI units (V, A, W, var, VA, Hz, Wh, varh), per cent, or as a count; an input gives 0 or 1.
    [[nodiscard]] double Of(Snapshot& snapshot) const { return get(snapshot, index, order); }
};

// The quantity of a numeric variable of that name; a bit's name means another thing than a number's ("I1" is an input,
// or a current). Empty when the plant knows none.
std::optional<Quantity> FindQuantity(std::string_view name, bool isBit);

}  // namespace zr
