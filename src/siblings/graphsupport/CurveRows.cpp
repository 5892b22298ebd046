#include "siblings/graphsupport/CurveRows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

namespace zr::graph {

namespace {

// How far a curve may stand out of its panel.
double MarginFor(int penWidth)
{
    return 2.0 * std::max(penWidth, 1) + 2.0;
}

PathPoint Break()
{
    return {0.0, std::numeric_limits<double>::quiet_NaN()};
}

// Where the way from one point to another, of different rows, crosses a row.
PathPoint Crossing(const PathPoint& from, const PathPoint& to, double row)
{
    const double share = (row - from.y) / (to.y - from.y);
    return {from.x + (to.x - from.x) * share, row};
}

struct Rows {
    double top = 0.0;
    double bottom = 0.0;

    [[nodiscard]] bool Holds(double row) const { return row >= top && row <= bottom; }
    // The edge that a row lies beyond.
    [[nodiscard]] double Edge(double row) const { return row < top ? top : bottom; }
};

// Appends the part of a way that lies within the rows; a break before it where it doesn't begin where the last ended.
void AppendWay(const PathPoint& from, const PathPoint& to, const Rows& rows, std::vector<PathPoint>& out)
{
    const bool isFromWithin = rows.Holds(from.y);
    const bool isToWithin = rows.Holds(to.y);
    if (!isFromWithin && !isToWithin && rows.Edge(from.y) == rows.Edge(to.y)) {
        return;
    }
    if (!isFromWithin) {
        if (!out.empty() && !std::isnan(out.back().y)) {
            out.push_back(Break());
        }
        out.push_back(Crossing(from, to, rows.Edge(from.y)));
    } else if (out.empty() || std::isnan(out.back().y)) {
        out.push_back(from);
    }
    out.push_back(isToWithin ? to : Crossing(from, to, rows.Edge(to.y)));
    if (!isToWithin) {
        out.push_back(Break());
    }
}

}  // namespace

double RowOf(double value, const ValueMap& map, int height)
{
    // Further out nothing is told apart, and where a line crosses an edge can still be reckoned.
    constexpr double kFarthest = 1e12;
    return std::clamp((map.high - value) / (map.high - map.low) * height, -kFarthest, kFarthest);
}

void RowsOf(std::span<const ValueRange> ranges, const ValueMap& map, int height, int penWidth, std::span<RowSpan> out)
{
    const double margin = MarginFor(penWidth);
    const double bottomEdge = height + margin;
    const std::size_t count = std::min(ranges.size(), out.size());
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = RowSpan();
        if (ranges[i].IsEmpty()) {
            continue;
        }
        const double top = RowOf(ranges[i].high, map, height);
        const double bottom = RowOf(ranges[i].low, map, height);
        if (bottom >= -margin && top <= bottomEdge) {
            out[i].top = static_cast<float>(std::max(top, -margin));
            out[i].bottom = static_cast<float>(std::min(bottom, bottomEdge));
        }
    }
}

void PathOf(std::span<const CurvePoint> points, std::int64_t from, std::int64_t to, const CurvePanel& panel,
            std::vector<PathPoint>& out)
{
    out.clear();
    if (to <= from) {
        return;
    }
    const double margin = MarginFor(panel.pen.lopnWidth);
    const Rows rows{panel.rect.top - margin, panel.rect.bottom + margin};
    const double perMicro = panel.rect.Width() / static_cast<double>(to - from);
    std::optional<PathPoint> before;
    for (const CurvePoint& point : points) {
        const PathPoint at{panel.rect.left + static_cast<double>(point.time - from) * perMicro,
                           panel.rect.top + RowOf(point.value, panel.map, panel.rect.Height())};
        if (std::isnan(at.y)) {
            if (!out.empty() && !std::isnan(out.back().y)) {
                out.push_back(Break());
            }
            before.reset();
            continue;
        }
        if (before) {
            AppendWay(*before, at, rows, out);
        } else if (rows.Holds(at.y)) {
            // A sample without neighbours is a dot.
            out.push_back(at);
        }
        before = at;
    }
    if (!out.empty() && std::isnan(out.back().y)) {
        out.pop_back();
    }
}

}  // namespace zr::graph
