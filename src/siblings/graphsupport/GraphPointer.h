// What presses, moves and releases of the mouse do to a graph.
#pragma once

#include "siblings/graphsupport/GraphModes.h"
#include "siblings/graphsupport/GraphPlan.h"
#include "siblings/graphsupport/GraphState.h"

#include <cstdint>

namespace zr::graph {

// What an operation has changed.
struct PointerEffect {
    bool view = false;     // the stretch in view
    bool markers = false;  //
    bool over = false;     // only cursor, band or highlight
};

// Knows at most one drag. The plan is that of the picture that the user sees. A state that changes otherwise meanwhile
// ends the drag by Cancel.
class GraphPointer {
public:
    PointerEffect Press(GraphState& state, const GraphPlan& plan, Point at, bool isShift);
    PointerEffect Move(GraphState& state, const GraphPlan& plan, Point at);
    PointerEffect Release(GraphState& state, const GraphPlan& plan, Point at);
    PointerEffect Leave(GraphState& state);
    // What the drag did so far is taken back.
    PointerEffect Cancel(GraphState& state);

    [[nodiscard]] bool IsDragging() const { return m_drag != Drag::None; }
    [[nodiscard]] PointerShape Shape(const GraphState& state, const GraphPlan& plan) const;

private:
    enum class Drag { None, Band, Pan, Marker };

    PointerEffect Follow(GraphState& state, const GraphPlan& plan, Point at) const;
    PointerEffect PanTo(GraphState& state, const GraphPlan& plan, Point at) const;

    Drag m_drag = Drag::None;
    Point m_pressed;
    Zoom m_viewBefore;
    int m_marker = 0;
    GraphMarkers m_markersBefore;
};

}  // namespace zr::graph
