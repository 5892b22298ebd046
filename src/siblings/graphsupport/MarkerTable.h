// The figures of all curves between two markers, as a table below the graph.
#pragma once

#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/GraphState.h"

namespace zr::graph {

// With its heading; 0 unless both markers stand.
int MarkerTableRows(const GraphState& state);
// The table in its place; curves without room are told of in its last row.
void AppendMarkerTable(const GraphState& state, const GraphTarget& target, const Rect& place, SceneLayer& out);

}  // namespace zr::graph
