// The coloured zones of a bar, as stretches along its scale.
#pragma once

#include "controls/BarScale.h"
#include "controls/BarShading.h"
#include "controls/LimitChecks.h"

#include <vector>

namespace zr::controls {

// Colours of the zones.
struct BarColours {
    Rgb green = MakeRgb(0, 200, 50);
    Rgb yellow = MakeRgb(220, 220, 0);
    Rgb red = MakeRgb(220, 0, 0);
};
// Of a bar whose device is out of use.
inline constexpr BarColours kDisabledBarColours = {MakeRgb(173, 173, 173), MakeRgb(214, 214, 214),
                                                   MakeRgb(111, 111, 111)};

// All the zones append to the list, in the coordinates of the range.

// From first to last in one colour; nothing if last isn't beyond first.
void AddFlatZone(std::vector<BarStretch>& stretches, int first, int last, Rgb colour);
// Green, yellow and red from the inner end outwards, with soft edges where there is room; all green without checks,
// and no yellow where the range has one limit.
void AddRangeZones(std::vector<BarStretch>& stretches, const BarRange& range, bool isEnabled, bool isOneLimit,
                   const BarColours& colours);
// The ranges of both sides.
void AddZones(std::vector<BarStretch>& stretches, const BarScales& scales, const LimitChecks& limits,
              const BarColours& colours);
// Of a power factor between left and right: green around the middle of the two warning limits, outwards of that as for
// a range. Limits out of order on the folded scale aren't guarded: what the numbers say is painted.
void AddPowerFactorZones(std::vector<BarStretch>& stretches, int left, int right, const LimitChecks& limits,
                         const BarColours& colours);

}  // namespace zr::controls
