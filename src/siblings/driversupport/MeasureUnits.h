// Units of measured values and their texts.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstdint>

namespace zr {

// Values are the unit code of a variable (`measureUnits`). They are stored in device profiles and viewer
// settings: a code keeps its meaning for ever, new ones are added at the end.
enum class MeasureUnit : std::int32_t {
    None = 0,
    Volt = 1,
    Ampere = 2,
    Watt = 3,
    Var = 4,
    VoltAmpere = 5,
    Hertz = 6,
    PowerFactor = 7,
    WattHour = 8,
    VarHour = 9,
    VoltAmpereHour = 10,
    Percent = 11,
    DegreeCelsius = 12,
    Hour = 13,
    Second = 14,
    Pulse = 15,
    Degree = 16,
    Ohm = 17,
    CubicMetre = 18,
    AmpereHour = 19,
};

// The text of a unit for a decimal exponent of the displayed unit: SI prefix (n, u as the micro sign, m, k, M, G, T)
// and symbol, such as "kWh". Exponents without a prefix, and any but 0 on units that take none (power factor,
// percent, degrees, hours, pulses, cubic metres), give "x10^n" before the symbol. Empty for an unknown code,
// whatever the exponent. Source of symbols: SI brochure, IEC 60027, IEC 62053 for pulses ("imp"). Any thread.
void MeasureUnitsText(ZRBasicString& out, int units, int exponent);

}  // namespace zr
