#include "controls/ui/DrawListPainter.h"

#include "platform/ui/SystemColours.h"

#include <QImage>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QWidget>

namespace zr::controls {

namespace {

QRect ToQt(const Rect& rect)
{
    return {rect.left, rect.top, rect.Width(), rect.Height()};
}

Rgb FromQt(const QColor& colour)
{
    return colour.rgb() & 0xffffffu;
}

// One pixel along the inside of the four sides: the left and upper ones in one colour, the others in another.
void PaintEdge(QPainter& painter, const QRect& rect, const QColor& upper, const QColor& lower)
{
    painter.fillRect(QRect(rect.left(), rect.top(), rect.width() - 1, 1), upper);
    painter.fillRect(QRect(rect.left(), rect.top(), 1, rect.height() - 1), upper);
    painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), lower);
    painter.fillRect(QRect(rect.right(), rect.top(), 1, rect.height()), lower);
}

class ItemPainter {
public:
    ItemPainter(QPainter& painter, const QWidget& window, const ControlFonts& fonts, const Bitmap* picture)
        : m_painter(painter), m_window(window), m_fonts(fonts), m_picture(picture)
    {
    }

    void operator()(const Fill& fill) const { m_painter.fillRect(ToQt(fill.rect), QColor::fromRgb(fill.colour)); }
    // Raised outside and sunken inside.
    void operator()(const BumpFrame& frame) const
    {
        const QRect rect = ToQt(frame.rect);
        const QPalette& palette = m_window.palette();
        const QColor light = palette.color(QPalette::Light);
        const QColor dark = palette.color(QPalette::Dark);
        PaintEdge(m_painter, rect, light, dark);
        PaintEdge(m_painter, rect.adjusted(1, 1, -1, -1), dark, light);
    }
    void operator()(const Picture& picture) const
    {
        if (m_picture == nullptr || m_picture->width <= 0 || m_picture->height <= 0) {
            return;
        }
        const auto* bytes = reinterpret_cast<const uchar*>(m_picture->pixels.data());
        const QImage image(bytes, m_picture->width, m_picture->height, m_picture->width * 4, QImage::Format_RGB32);
        m_painter.drawImage(QPoint(picture.rect.left, picture.rect.top), image);
    }
    void operator()(const Text& text) const
    {
        if (text.background) {
            m_painter.fillRect(ToQt(text.rect), QColor::fromRgb(*text.background));
        }
        m_fonts.Line(text.font).Paint(m_painter, text.rect, text.text.Text(), text.colour);
    }

private:
    QPainter& m_painter;
    const QWidget& m_window;
    const ControlFonts& m_fonts;
    const Bitmap* m_picture;
};

}  // namespace

SystemColours ColoursOf(const QWidget& window)
{
    return {FromQt(ui::GetSysColor(ui::COLOR_3DFACE, window)),
            FromQt(ui::GetSysColor(ui::COLOR_ACTIVECAPTION, window))};
}

void PaintDrawList(QPainter& painter, const QWidget& window, const DrawList& list, const ControlFonts& fonts,
                   const Bitmap* picture)
{
    const ItemPainter paint(painter, window, fonts, picture);
    for (const DrawItem& item : list) {
        std::visit(paint, item);
    }
}

void PaintFocus(QPainter& painter, const QWidget& window, const Rect& rect)
{
    QStyleOptionFocusRect option;
    option.initFrom(&window);
    option.rect = ToQt(rect);
    option.backgroundColor = window.palette().color(QPalette::Window);
    window.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, &window);
}

}  // namespace zr::controls
