// From the values of a curve to rows of its panel.
#pragma once

#include "siblings/graphsupport/GraphData.h"
#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/SpanPainter.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zr::graph {

// One point of a curve as a line, in pixels of the picture. A break where y is NaN.
struct PathPoint {
    double x = 0.0;
    double y = 0.0;
};

// The row of a value, from the top of a panel so high; not held to the panel. NaN for NaN.
double RowOf(double value, const ValueMap& map, int height);

// Spans for ranges, as many as both hold. What lies wholly out of the panel is empty, what stands out is cut so far
// outside that a pen so wide doesn't reach in.
void RowsOf(std::span<const ValueRange> ranges, const ValueMap& map, int height, int penWidth, std::span<RowSpan> out);

// The line through points, cut where it leaves the panel, so that values of any size keep their slope.
void PathOf(std::span<const CurvePoint> points, std::int64_t from, std::int64_t to, const CurvePanel& panel,
            std::vector<PathPoint>& out);

}  // namespace zr::graph
