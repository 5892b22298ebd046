// A graph's picture worked out but for the pointer: places, scales, legend.
#pragma once

#include "siblings/graphsupport/GraphLayout.h"
#include "siblings/graphsupport/GraphLegend.h"
#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/GraphState.h"
#include "siblings/graphsupport/TimeScale.h"
#include "siblings/graphsupport/ValueScale.h"

#include <cstdint>
#include <span>
#include <vector>

namespace zr::graph {

struct GraphPlan {
    GraphTarget target;
    int lineHeight = 0;  // 0: no texts
    int tableRows = 0;   // of the markers, as wanted
    GraphLayout layout;
    std::vector<ValueScale> scales;  // one a run
    TimeScale time;
    Legend legend;

    // The columns of all panels; empty when there is no room.
    [[nodiscard]] Rect Columns() const;
    // The zone whose rows hold a place, its legend and axes included; -1 for none.
    [[nodiscard]] int ZoneAt(Point at) const;
};

GraphPlan MakePlan(const GraphState& state, const GraphTarget& target, std::span<const int> valueWidths);

// Of a run, with the power of ten of its scale: "x10^6 W"; empty for none.
ZRBasicString UnitOf(const CurveRun& run, const ValueScale& scale);

// Of a column of the panels, microseconds, at least 1.
std::int64_t ColumnLength(const GraphPlan& plan, const GraphState& state);

// The parts of a scene, from back to front.
void AppendUnder(const GraphPlan& plan, const GraphState& state, SceneLayer& out);
void AppendPanels(const GraphPlan& plan, const GraphState& state, std::vector<CurvePanel>& out);
void AppendOver(const GraphPlan& plan, const GraphState& state, SceneLayer& out);

// The curve within five pixels of scale 1 of a place, the nearest; -1 for none.
int CurveAt(const GraphPlan& plan, const GraphState& state, Point at);

}  // namespace zr::graph
