#include "diagnostics/ui/SizeLine.h"

#include <QPainter>

SizeLine::SizeLine(QWidget* window) : QWidget(window)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void SizeLine::Show(const QRect& rectangle)
{
    setGeometry(rectangle);
    raise();
    show();
}

void SizeLine::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    QPen pen(palette().color(QPalette::WindowText), 1, Qt::DotLine);
    for (int y = 0; y < height(); ++y) {
        // Each row a dot further, so that they make a pattern of diamonds rather than of bars.
        pen.setDashOffset(y);
        painter.setPen(pen);
        painter.drawLine(0, y, width(), y);
    }
}
