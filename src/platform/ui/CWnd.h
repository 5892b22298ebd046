// A window of the library's own making.
#pragma once

#include "platform/ui/WndMessage.h"

#include <QWidget>

class QPainter;

namespace zr::ui {

// The control number of a widget is its objectName, in decimal: GetDlgItem, tests and screen readers find it there.
void SetControlId(QWidget& widget, unsigned id);
// 0 when it has none.
unsigned ControlId(const QWidget& widget);
// The control of that number below a window, at any depth; null if there is none.
QWidget* FindControl(const QWidget& window, unsigned id);

}  // namespace zr::ui

// Paints itself by OnEraseBkgnd and OnPaint. UI thread only.
class CWnd : public QWidget, public zr::ui::WndMessageTarget {
public:
    explicit CWnd(QWidget* parent = nullptr, unsigned id = 0);

    [[nodiscard]] unsigned GetDlgCtrlID() const { return zr::ui::ControlId(*this); }
    [[nodiscard]] QWidget* GetDlgItem(unsigned id) const { return zr::ui::FindControl(*this, id); }
    // Asks for a repaint. What is painted goes through a back buffer, so that an erased background never flickers.
    void Invalidate() { update(); }

protected:
    virtual void OnEraseBkgnd(QPainter& painter);
    virtual void OnPaint(QPainter& painter);

    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
};
