// The limits of a value control, and the scale on which a power factor is compared with them.
#pragma once

#include <cmath>

namespace zr::controls {

// The flags given to SetupChecks.
inline constexpr int kCheckHighLimits = 2;
inline constexpr int kCheckLowLimits = 4;
inline constexpr int kPercentLimits = 8;  // the four limits are percentages of the nominal value
inline constexpr int kPowerFactor = 32;   // compared on the folded scale

// The folded scale of a power factor: 0 to 1 for the positive sign, continued from 1 to 2 by -1 to 0. Only what is
// below 0 is folded, so that 0 stands at the start whatever its sign.
[[nodiscard]] constexpr double FoldPowerFactor(double value)
{
    return value < 0.0 ? value + 2.0 : value;
}

// Whether a new reading counts as the old one. A NaN on either side compares as equal, which is meant: it never causes
// a repaint.
[[nodiscard]] inline bool IsSameReading(double left, double right)
{
    return left == right || std::isnan(left) || std::isnan(right);
}

// What SetupChecks leaves behind.
struct LimitChecks {
    int flags = 0;
    double lowWarning = 0.0;
    double lowAlarm = 0.0;
    double highWarning = 0.0;
    double highAlarm = 0.0;
    double nominal = 0.0;
    // A nominal value of 0 or below, or one that is no number, switches all checks off, also those of absolute limits.
    bool enabled = false;

    // Takes the limits as they are, in the variable's unit; with kPercentLimits as percentages of the nominal value
    // below it (low) and above it (high). Nothing is tested: they may stand in any order.
    void Setup(int newFlags, double newLowWarning, double newLowAlarm, double newHighWarning, double newHighAlarm,
               double newNominal);
    [[nodiscard]] bool Has(int flag) const { return (flags & flag) != 0; }
};

}  // namespace zr::controls
