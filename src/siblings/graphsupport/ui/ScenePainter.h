// Walks the prepared geometry of a graph.
#pragma once

#include "siblings/graphsupport/GraphScene.h"
#include "siblings/graphsupport/ui/GraphFonts.h"
#include "siblings/graphsupport/ui/SceneColours.h"

#include <functional>

class QPainter;

namespace zr::graph {

// What layers are painted with. Nothing is owned.
struct ScenePaint {
    const SceneColours& colours;
    const GraphFonts& fonts;
    std::function<unsigned long(int)> curveColour;  // by the number of the curve
    double scale = 1.0;                             // as GraphTarget's
};

// The painter's units are pixels of the picture.
void PaintLayer(QPainter& painter, const SceneLayer& layer, const ScenePaint& paint);

}  // namespace zr::graph
