// The curves of a graph, as pixels and as lines.
#pragma once

#include "siblings/graphsupport/GraphScene.h"

#include <QImage>

class QPainter;

namespace zr::graph {

class GraphModel;
class SceneColours;

// Written into a picture of the format Format_ARGB32_Premultiplied; the scene's units are its pixels.
void PaintCurves(QImage& picture, const GraphModel& model, const GraphScene& scene, const SceneColours& colours);
// As lines, for printers and vector files; the painter's units are those of the scene.
void DrawCurves(QPainter& painter, const GraphModel& model, const GraphScene& scene, const SceneColours& colours);

}  // namespace zr::graph
