// What a window paints, as pixels.
#pragma once

#include "controls/DrawList.h"

#include <QImage>

class QWidget;

namespace zr::test {

// The window painted at a scale factor. Landmarks are asked for in device-independent pixels.
class WindowPicture {
public:
    WindowPicture(QWidget& window, int scale);

    // 0x00RRGGBB, of the middle of the pixel.
    [[nodiscard]] controls::Rgb At(int x, int y) const;
    // How many device pixels of the rectangle have that colour.
    [[nodiscard]] int Count(const controls::Rect& rect, controls::Rgb colour) const;
    [[nodiscard]] int CountAll(controls::Rgb colour) const;
    // Device pixels of the rectangle.
    [[nodiscard]] int Area(const controls::Rect& rect) const
    {
        return rect.Width() * rect.Height() * m_scale * m_scale;
    }
    [[nodiscard]] const QImage& Image() const { return m_image; }

private:
    int m_scale;
    QImage m_image;
};

// A palette with a dark face and light text.
void SetDark(QWidget& window);
// Moves the mouse to a point of the window, no button held.
void Hover(QWidget& window, QPoint point);
// Lets everything happen that waits in the event queue, paints included.
void Settle();

}  // namespace zr::test
