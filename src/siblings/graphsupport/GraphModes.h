// What the mouse does in a graph.
#pragma once

namespace zr::graph {

// What the left button does. As ZRGraph::SetMode takes it.
inline constexpr int kTooltipMode = 0;
inline constexpr int kZoomMode = 1;
inline constexpr int kPanMode = 2;

enum class PointerShape { Arrow, Cross, OpenHand, ClosedHand, SizeMarker };

}  // namespace zr::graph
