// Where values stand along a bar.
#pragma once

#include "controls/BarSlots.h"
#include "controls/LimitChecks.h"

#include <array>
#include <optional>

namespace zr::controls {

// Pixels of the three markers along the scale.
using BarPlaces = std::array<int, kBarSlots>;

// A position truncated to a pixel. Held to kFarPixel on both sides of 0, so that sums of a few stay in range; a NaN is
// at 0.
inline constexpr int kFarPixel = 1 << 24;
[[nodiscard]] int ToPixel(double position);

// One range of a bar along its axis. The limits are counted from its inner end, the one at the middle of a bar of two
// ranges, to its outer end. Both ends are places where a marker may stand.
struct BarRange {
    int inner = 0;
    int outer = 0;

    [[nodiscard]] int First() const { return inner < outer ? inner : outer; }
    [[nodiscard]] int Last() const { return inner < outer ? outer : inner; }
    [[nodiscard]] int Length() const { return Last() - First(); }
    // 1 or -1: the way from the inner end to the outer one.
    [[nodiscard]] int Step() const { return inner < outer ? 1 : -1; }
    [[nodiscard]] int Clamp(int place) const { return place < First() ? First() : place > Last() ? Last() : place; }
};

// The boundaries of a range's zones: the alarm limit at 80 %, and the warning limit at 40 %, or at the alarm limit if
// the two are one.
struct BarBoundaries {
    int warning = 0;
    int alarm = 0;
};
[[nodiscard]] BarBoundaries BoundariesOf(const BarRange& range, bool isOneLimit);

// The scale of a range: pixels per unit, and the values at its ends.
//
// Where the limits give none (a limit that equals the nominal value, a warning limit beyond its alarm limit, numbers
// that aren't finite, a range without pixels), the scale is a step: what is beyond the alarm limit stands at the outer
// end, the limit itself at its boundary, and all else at the inner end.
class BarScale {
public:
    // From lowEnd at the outer end to lowTop at the inner end.
    static BarScale Lower(const BarRange& range, const LimitChecks& limits);
    // From base at the inner end upwards.
    static BarScale Upper(const BarRange& range, const LimitChecks& limits);

    [[nodiscard]] const BarRange& Range() const { return m_range; }
    // The value at the inner end: lowTop of a lower scale, base of an upper one.
    [[nodiscard]] double InnerValue() const { return m_innerValue; }
    // Truncated, not clamped. A NaN stands where the scale starts.
    [[nodiscard]] int PlaceOf(double value) const;
    // Of the range's own limits.
    [[nodiscard]] int PlaceOfWarning() const { return m_isStep ? m_boundaries.warning : PlaceOf(m_warning); }
    [[nodiscard]] int PlaceOfAlarm() const { return m_isStep ? m_boundaries.alarm : PlaceOf(m_alarm); }

private:
    [[nodiscard]] int PlaceOnStep(double value) const;

    BarRange m_range;
    BarBoundaries m_boundaries;
    bool m_isLower = false;
    bool m_isStep = false;
    double m_warning = 0.0;
    double m_alarm = 0.0;
    double m_pixelsPerUnit = 0.0;
    double m_start = 0.0;  // value at the scale's start: lowEnd or base
    double m_innerValue = 0.0;
};

// The ranges that the flags ask for, and their scales where the checks are on.
struct BarScales {
    std::optional<BarRange> lowerRange;  // with kCheckLowLimits
    std::optional<BarRange> upperRange;  // with kCheckHighLimits
    std::optional<BarScale> lower;
    std::optional<BarScale> upper;
};
// Of a bar from left to right; the lower range is the left one.
[[nodiscard]] BarScales HorizontalScales(int left, int right, const LimitChecks& limits);
// Of an upright bar; the lower range is the lower one.
[[nodiscard]] BarScales UprightScales(int top, int bottom, const LimitChecks& limits);

// The side of a slot for a value. Between the inner ends of two scales a slot stays where it was, the only memory that
// a marker has. With one scale the side is that scale's; with none it stays.
[[nodiscard]] BarSide NextSide(BarSide side, double value, const BarScales& scales);

// The place of a power factor: 0 at left, 1 and -1 at left + (right - left) / 2, what is just below 0 at right.
[[nodiscard]] double PowerFactorPosition(double value, int left, int right);

}  // namespace zr::controls
