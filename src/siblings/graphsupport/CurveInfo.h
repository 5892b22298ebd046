// What a graph is told about one of its curves.
#pragma once

namespace zr::graph {

// Styles of pens and brushes, numbered as the system numbers them.
inline constexpr unsigned PS_SOLID = 0;
inline constexpr unsigned PS_DASH = 1;
inline constexpr unsigned PS_DOT = 2;
inline constexpr unsigned PS_DASHDOT = 3;
inline constexpr unsigned PS_DASHDOTDOT = 4;
inline constexpr unsigned BS_SOLID = 0;

// Colours have blue in the high byte of three and red in the low one.
struct LOGPEN {
    unsigned lopnStyle = PS_SOLID;
    int lopnWidth = 1;  // pixels
    unsigned long lopnColor = 0;
};

struct LOGBRUSH {
    unsigned lbStyle = BS_SOLID;
    unsigned long lbColor = 0;
    unsigned long lbHatch = 0;
};

// A limit that isn't there. Meant: nobody can have this number as a limit.
inline constexpr double kNoLimit = 2147483647.0;

// A plain value.
struct CurveInfo {
    int index = -1;             // position of the variable in the ZRLoggerInfo
    double maximum = kNoLimit;  // of the axis, in the unit shown; of a power factor on the folded scale
    double minimum = kNoLimit;  // likewise
    LOGPEN pen;
    LOGBRUSH brush;
    int zone = 0;  // the horizontal strip that the curve is drawn in, counted from the top
};

}  // namespace zr::graph
