#include "siblings/graphsupport/ui/ScenePainter.h"

#include "platform/ui/UiText.h"

#include <algorithm>
#include <cmath>
#include <QPainter>
#include <utility>

namespace zr::graph {

namespace {

// In widths of the line.
constexpr int kDash = 4;
constexpr int kGap = 3;

QRect ToQt(const Rect& rect)
{
    return {rect.left, rect.top, rect.Width(), rect.Height()};
}

int AlignmentOf(TextAlign align)
{
    switch (align) {
        case TextAlign::Centre:
            return Qt::AlignHCenter;
        case TextAlign::Right:
            return Qt::AlignRight;
        case TextAlign::Left:
            break;
    }
    return Qt::AlignLeft;
}

class LayerPainter {
public:
    LayerPainter(QPainter& painter, const ScenePaint& paint)
        : m_painter(painter), m_paint(paint), m_lineWidth(std::max(static_cast<int>(std::lround(paint.scale)), 1))
    {
    }

    void operator()(const SceneRect& item) const
    {
        const QColor colour = ColourFor(item.role, item.curve);
        if (item.role != SceneRole::Point) {
            m_painter.fillRect(ToQt(item.rect), colour);
            return;
        }
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setPen(QPen(m_paint.colours.Of(SceneRole::Panel), m_lineWidth));
        m_painter.setBrush(colour);
        m_painter.drawEllipse(QRectF(ToQt(item.rect)));
        m_painter.setRenderHint(QPainter::Antialiasing, false);
    }
    void operator()(const SceneLine& item) const
    {
        const QColor colour = ColourFor(item.role, item.curve);
        const QRect line = RectOf(item);
        if (!item.isDashed) {
            m_painter.fillRect(line, colour);
            return;
        }
        const bool isUpright = item.from.x == item.to.x;
        const int length = isUpright ? line.height() : line.width();
        for (int at = 0; at < length; at += (kDash + kGap) * m_lineWidth) {
            const int size = std::min(kDash * m_lineWidth, length - at);
            m_painter.fillRect(isUpright ? QRect(line.left(), line.top() + at, line.width(), size)
                                         : QRect(line.left() + at, line.top(), size, line.height()),
                               colour);
        }
    }
    void operator()(const SceneText& item) const
    {
        QString text = ui::ToQt(item.text);
        const QFontMetrics& metrics = m_paint.fonts.Metrics(item.font);
        if (metrics.horizontalAdvance(text) > item.rect.Width()) {
            text = metrics.elidedText(text, Qt::ElideRight, item.rect.Width());
        }
        m_painter.setFont(m_paint.fonts.Font(item.font));
        m_painter.setPen(ColourFor(item.role, item.curve));
        m_painter.drawText(ToQt(item.rect), AlignmentOf(item.align) | Qt::AlignVCenter | Qt::TextSingleLine, text);
    }

private:
    [[nodiscard]] QColor ColourFor(SceneRole role, int curve) const
    {
        return curve < 0 ? m_paint.colours.Of(role) : m_paint.colours.OfCurve(role, m_paint.curveColour(curve));
    }
    // About the pixel that it is given by, where it is wider than one.
    [[nodiscard]] QRect RectOf(const SceneLine& line) const
    {
        const int before = (m_lineWidth - 1) / 2;
        const auto [left, right] = std::minmax(line.from.x, line.to.x);
        const auto [top, bottom] = std::minmax(line.from.y, line.to.y);
        return line.from.x == line.to.x ? QRect(left - before, top, m_lineWidth, bottom - top + 1)
                                        : QRect(left, top - before, right - left + 1, m_lineWidth);
    }

    QPainter& m_painter;
    const ScenePaint& m_paint;
    int m_lineWidth;
};

}  // namespace

void PaintLayer(QPainter& painter, const SceneLayer& layer, const ScenePaint& paint)
{
    const LayerPainter visitor(painter, paint);
    for (const SceneItem& item : layer) {
        std::visit(visitor, item);
    }
}

}  // namespace zr::graph
