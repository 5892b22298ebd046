// A graph on paper, in a document or on the clipboard.
#pragma once

#include <memory>
#include <QRect>

class QFont;
class QMimeData;
class QPainter;
class QSize;

namespace zr::graph {

class GraphModel;

enum class PaperColours { Coloured, BlackAndWhite };

// As lines and texts, into a rectangle of the painter's units, of which there are so many for each pixel of a screen of
// 96 dpi.
void DrawOnPaper(QPainter& painter, const QRect& rect, double scale, const GraphModel& model, const QFont& font,
                 PaperColours colours);

// As pixels, so many for each of a screen of 96 dpi, as a drawing (image/svg+xml) and as a page of its size
// (application/pdf). The size is that of the picture at 96 dpi. Null when
// there is no memory for the pixels.
std::unique_ptr<QMimeData> GraphMimeData(const GraphModel& model, const QSize& size, double scale, const QFont& font,
                                         PaperColours colours);

}  // namespace zr::graph
