#include "siblings/graphsupport/ui/CurvePainter.h"

#include "platform/LargeMemory.h"
#include "siblings/graphsupport/GraphModel.h"
#include "siblings/graphsupport/SpanPainter.h"
#include "siblings/graphsupport/ui/SceneColours.h"

#include <cmath>
#include <memory>
#include <new>
#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <vector>

namespace zr::graph {

namespace {

// Of the ground of bars, so that those of other curves show through.
constexpr int kBarAlpha = 150;
// Records to a column from which on a line through all of them is no more than the columns that it fills.
constexpr double kDense = 4.0;

std::uint32_t PixelOf(QColor colour, int alpha = 255)
{
    colour.setAlpha(alpha);
    return colour.rgba();
}

bool IsWithin(const Rect& rect, const QImage& picture)
{
    return !rect.IsEmpty() && rect.left >= 0 && rect.top >= 0 && rect.right <= picture.width() &&
           rect.bottom <= picture.height();
}

// The end of a bar that its value is at: the one away from the row of zero.
std::vector<RowSpan> EndsOf(const std::vector<RowSpan>& bars, const CurvePanel& panel)
{
    const double rowOfZero = panel.map.high / (panel.map.high - panel.map.low) * panel.rect.Height();
    std::vector<RowSpan> ends(bars);
    for (RowSpan& span : ends) {
        if (span.top > span.bottom) {
            continue;  // nothing in this column
        }
        const bool isBelow = span.top >= static_cast<float>(rowOfZero) - 0.5F;
        (isBelow ? span.top : span.bottom) = isBelow ? span.bottom : span.top;
    }
    return ends;
}

void PaintBars(const PixelArea& area, const std::vector<RowSpan>& spans, const CurvePanel& panel,
               const SceneColours& colours)
{
    PaintFill(area, spans, PixelOf(colours.OfLine(panel.brush.lbColor), kBarAlpha));
    PaintLine(area, EndsOf(spans, panel),
              {PS_SOLID, panel.pen.lopnWidth, PixelOf(colours.OfLine(panel.pen.lopnColor))});
}

Qt::PenStyle StyleOf(unsigned style)
{
    switch (style) {
        case PS_DASH:
            return Qt::DashLine;
        case PS_DOT:
            return Qt::DotLine;
        case PS_DASHDOT:
            return Qt::DashDotLine;
        case PS_DASHDOTDOT:
            return Qt::DashDotDotLine;
        default:
            return Qt::SolidLine;
    }
}

// The unbroken pieces of a path.
std::vector<QPolygonF> PiecesOf(const std::vector<PathPoint>& points)
{
    std::vector<QPolygonF> pieces(1);
    for (const PathPoint& point : points) {
        if (!std::isnan(point.y)) {
            pieces.back().append(QPointF(point.x, point.y));
        } else if (!pieces.back().isEmpty()) {
            pieces.emplace_back();
        }
    }
    return pieces;
}

void DrawPiece(QPainter& painter, const QPolygonF& piece, bool isFilled)
{
    if (isFilled) {
        painter.drawPolygon(piece);
    } else if (piece.size() == 1) {
        painter.drawPoint(piece.front());
    } else {
        painter.drawPolyline(piece);
    }
}

}  // namespace

QImage MakePicture(const QSize& size)
{
    constexpr std::size_t kLine = 64;  // bytes, of a cache
    if (size.isEmpty()) {
        return {};
    }
    const std::size_t bytes = static_cast<std::size_t>(size.width()) * sizeof(std::uint32_t);
    const std::size_t stride = ((bytes + kLine - 1) / kLine | 1U) * kLine;
    try {
        auto memory = std::make_unique<LargeMemory>(stride * static_cast<std::size_t>(size.height()));
        auto* const pixels = reinterpret_cast<uchar*>(memory->Data());
        return {pixels,
                size.width(),
                size.height(),
                static_cast<qsizetype>(stride),
                QImage::Format_ARGB32_Premultiplied,
                [](void* held) { delete static_cast<LargeMemory*>(held); },
                memory.release()};
    } catch (const std::bad_alloc&) {
        return {};
    }
}

void PaintCurves(QImage& picture, const GraphModel& model, const GraphScene& scene, const SceneColours& colours)
{
    const std::ptrdiff_t stride = picture.bytesPerLine() / static_cast<std::ptrdiff_t>(sizeof(std::uint32_t));
    auto* const pixels = reinterpret_cast<std::uint32_t*>(picture.bits());
    const bool isDense = model.Status().recordsPerColumn >= kDense;
    std::vector<RowSpan> spans;
    for (const CurvePanel& panel : scene.panels) {
        if (!IsWithin(panel.rect, picture)) {
            continue;
        }
        spans.assign(static_cast<std::size_t>(panel.rect.Width()), RowSpan());
        model.Spans(panel, spans);
        const PixelArea area{pixels + panel.rect.top * stride + panel.rect.left, panel.rect.Width(),
                             panel.rect.Height(), stride};
        if (panel.shape == CurveShape::Bars) {
            PaintBars(area, spans, panel, colours);
        } else {
            PaintLine(
                area, spans,
                {panel.pen.lopnStyle, panel.pen.lopnWidth, PixelOf(colours.OfLine(panel.pen.lopnColor)), isDense});
        }
    }
}

void DrawCurves(QPainter& painter, const GraphModel& model, const GraphScene& scene, const SceneColours& colours)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    std::vector<PathPoint> points;
    for (const CurvePanel& panel : scene.panels) {
        points.clear();
        model.Path(panel, points);
        const bool isFilled = panel.shape == CurveShape::Bars;
        painter.setPen(QPen(colours.OfLine(panel.pen.lopnColor), panel.pen.lopnWidth, StyleOf(panel.pen.lopnStyle),
                            Qt::RoundCap, Qt::RoundJoin));
        QColor ground = colours.OfLine(panel.brush.lbColor);
        ground.setAlpha(kBarAlpha);
        painter.setBrush(isFilled ? QBrush(ground) : QBrush());
        for (const QPolygonF& piece : PiecesOf(points)) {
            if (!piece.isEmpty()) {
                DrawPiece(painter, piece, isFilled);
            }
        }
    }
    painter.restore();
}

}  // namespace zr::graph
