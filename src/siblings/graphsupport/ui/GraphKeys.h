// Which key does what in a graph.
#pragma once

#include "siblings/graphsupport/GraphModel.h"

#include <optional>

class QKeyEvent;

namespace zr::graph {

// None for a key that a graph has no use for.
std::optional<GraphAction> ActionOf(const QKeyEvent& event);

}  // namespace zr::graph
