// A line of text that ends in dots where there is no room for all of it.
#pragma once

#include <QLabel>
#include <QPainter>

namespace zr::desktop {

// Plain text. UI thread only.
class ElidedLabel : public QLabel {
public:
    explicit ElidedLabel(QWidget* parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QRect room = contentsRect();
        painter.drawText(room, static_cast<int>(Qt::AlignVCenter) | Qt::TextSingleLine,
                         fontMetrics().elidedText(text(), Qt::ElideRight, room.width()));
    }
};

}  // namespace zr::desktop
