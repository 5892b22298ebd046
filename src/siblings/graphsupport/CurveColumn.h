// Where a curve has its samples, what becomes of them, and what they are then.
#pragma once

#include <cstdint>
#include <limits>

namespace zr::graph {

enum class CurveShape {
    Line,   // from sample to sample
    Steps,  // a sample holds until the next
    Bars,   // one a period, from 0: consumption
};

// A shown value is the stored one times the factor, folded where the curve is.
struct CurveColumn {
    int column = 0;  // position among the values of a record
    CurveShape shape = CurveShape::Line;
    double factor = 1.0;
    bool isFolded = false;  // a power factor: below 0 it continues from 1 to 2 as -1 to 0
};

// A time and the shown value there; times are UTC, microseconds since 1970. NaN: the line breaks here.
struct CurvePoint {
    std::int64_t time = 0;
    double value = 0.0;
};

struct ValueRange {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    [[nodiscard]] bool IsEmpty() const { return !(low <= high); }
    void Add(double value)
    {
        low = value < low ? value : low;
        high = value > high ? value : high;
    }
    void Add(const ValueRange& other)
    {
        low = other.low < low ? other.low : low;
        high = other.high > high ? other.high : high;
    }
};

}  // namespace zr::graph
