// The curves of a graph with what is known of their variables, in runs that share a value scale.
#pragma once

#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/graphsupport/CurveInfo.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zr::graph {

inline constexpr int kMostZones = 6;

// A plain value.
struct GraphCurve {
    CurveInfo info;
    CurveColumn column;
    ZRBasicString title;
    ZRBasicString unit;
    int measureUnits = 0;
    int unitsExponent = 0;
    int decimals = 0;  // of a value in that unit
    int zone = 0;      // without gaps between the zones there are, at most kMostZones
    int run = 0;       // position among the runs
};

// Neighbouring curves of one zone and one unit.
struct CurveRun {
    int zone = 0;
    int firstCurve = 0;
    int curves = 0;
    ZRBasicString unit;
    double minimum = kNoLimit;  // the first limit that a curve of it has
    double maximum = kNoLimit;  // likewise
    bool isFolded = false;
    bool hasBars = false;
    bool isOfStates = false;  // all curves of it are
};

// A plain value.
struct GraphCurves {
    std::vector<GraphCurve> curves;
    std::vector<CurveRun> runs;
    int zones = 0;

    [[nodiscard]] std::vector<CurveColumn> Columns() const;
};

// What becomes of the curves given; the list of variables must be locked. One whose index isn't in the list is left
// out. Of a variable that can't be described the full name is known and its stored values are shown. Titles name the
// device where there are several. Counters are bars of consumption in a group that has a period, readings else; states
// are steps, all others lines.
GraphCurves MakeGraphCurves(std::span<const CurveInfo> given, const ZRLoggerInfo& info, bool hasPeriod);

// A value of a curve as read from GraphData, with its unit: "231.4 V"; a power factor unfolded, and, as everywhere, 1
// below -0.995. What needs too many digits has an exponent.
ZRBasicString ValueText(const GraphCurve& curve, double value);
// A difference of two of them, or a sum: as it is.
ZRBasicString PlainValueText(const GraphCurve& curve, double value);
// Stands for a value that isn't there.
inline constexpr const wchar* kNoValue = u"-";

}  // namespace zr::graph
