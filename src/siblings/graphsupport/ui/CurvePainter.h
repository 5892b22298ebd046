// The curves of a graph, as pixels and as lines.
#pragma once

#include "siblings/graphsupport/GraphScene.h"

#include <QImage>

class QPainter;

namespace zr::graph {

class GraphModel;
class SceneColours;

// Memory to paint curves in, of the format Format_ARGB32_Premultiplied and no particular content; null when there is
// not enough. A few columns are painted at a time, row by row: so it is in large pages, and rows are padded so that
// they fall into different lines of the processor's caches.
QImage MakePicture(const QSize& size);
// Written into a picture of the format Format_ARGB32_Premultiplied; the scene's units are its pixels.
void PaintCurves(QImage& picture, const GraphModel& model, const GraphScene& scene, const SceneColours& colours);
// As lines, for printers and vector files; the painter's units are those of the scene.
void DrawCurves(QPainter& painter, const GraphModel& model, const GraphScene& scene, const SceneColours& colours);

}  // namespace zr::graph
