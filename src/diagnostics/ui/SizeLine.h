// The line that shows where a dragged edge will be.
#pragma once

#include <QWidget>

// A dotted line over all that a window shows. It stands in for drawing twice in exclusive-or mode on the frame: drawing
// once is to show it, drawing once more at the same place is to hide it, and what is below it stays as it is. Takes no
// mouse. UI thread only.
class SizeLine : public QWidget {
public:
    explicit SizeLine(QWidget* window);

    // In the window's coordinates.
    void Show(const QRect& rectangle);

protected:
    void paintEvent(QPaintEvent* event) override;
};
