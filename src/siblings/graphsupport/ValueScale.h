// The scale of values beside a graph's zone.
#pragma once

#include "siblings/graphsupport/CurveInfo.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/graphsupport/GraphScene.h"
#include "siblings/tools/ZRBasicString.h"

#include <vector>

namespace zr::graph {

struct ValueTick {
    double value = 0.0;  // as mapped: folded where the scale is
    bool isMajor = false;
    ZRBasicString label;  // of major ones, in the user's number format
};

struct ValueScaleInput {
    ValueRange values;          // of all that is in view; empty when nothing is
    double minimum = kNoLimit;  // fixed limits; what is no finite number is none
    double maximum = kNoLimit;  //
    bool startsAtZero = false;  // bars: 0 is always within
    bool isFolded = false;      // a power factor
    bool isWhole = false;       // states: nothing lies between whole numbers
    int height = 0;             // pixels
    int labelHeight = 0;        // likewise
    double scale = 1.0;
};

// A plain value.
struct ValueScale {
    ValueMap map;
    std::vector<ValueTick> ticks;  // ascending
    int exponent = 0;              // labels are to be taken times ten to this power; a multiple of 3
    int decimals = 0;              // of the labels
};

// Limits that are not fixed lie around the values with a margin, at a round place. Fixed ones in the wrong order are
// exchanged; equal limits, or values, are widened. Steps are 1, 2 or 5 times a power of ten, as narrow as labels allow,
// and narrower where a single label would leave the scale open.
// Anything finite is held to what a double can subtract, and a folded scale to 0 to 2.
ValueScale MakeValueScale(const ValueScaleInput& input);

}  // namespace zr::graph
