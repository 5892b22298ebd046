#include "WindowPicture.h"

#include <algorithm>
#include <QApplication>
#include <QMouseEvent>
#include <QPalette>
#include <QWidget>

namespace zr::test {

WindowPicture::WindowPicture(QWidget& window, int scale)
    : m_scale(scale),
      m_image(std::max(window.width(), 1) * scale, std::max(window.height(), 1) * scale, QImage::Format_RGB32)
{
    m_image.setDevicePixelRatio(scale);
    m_image.fill(Qt::magenta);
    window.render(&m_image);
}

controls::Rgb WindowPicture::At(int x, int y) const
{
    return m_image.pixel(x * m_scale + m_scale / 2, y * m_scale + m_scale / 2) & 0xffffffu;
}

int WindowPicture::Count(const controls::Rect& rect, controls::Rgb colour) const
{
    int count = 0;
    for (int y = std::max(rect.top * m_scale, 0); y < std::min(rect.bottom * m_scale, m_image.height()); ++y) {
        for (int x = std::max(rect.left * m_scale, 0); x < std::min(rect.right * m_scale, m_image.width()); ++x) {
            count += (m_image.pixel(x, y) & 0xffffffu) == colour ? 1 : 0;
        }
    }
    return count;
}

int WindowPicture::CountAll(controls::Rgb colour) const
{
    return Count({0, 0, m_image.width() / m_scale, m_image.height() / m_scale}, colour);
}

void SetDark(QWidget& window)
{
    QPalette palette(QColor(45, 45, 48));
    palette.setColor(QPalette::Window, QColor(45, 45, 48));
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(38, 79, 120));
    window.setPalette(palette);
}

void Hover(QWidget& window, QPoint point)
{
    QMouseEvent event(QEvent::MouseMove, point, window.mapToGlobal(point), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &event);
}

void Settle()
{
    for (int round = 0; round < 3; ++round) {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
}

}  // namespace zr::test
