#include "platform/ui/CWnd.h"

#include "platform/ui/SystemColours.h"

#include <QPainter>

namespace zr::ui {

void SetControlId(QWidget& widget, unsigned id)
{
    widget.setObjectName(QString::number(id));
}

unsigned ControlId(const QWidget& widget)
{
    return widget.objectName().toUInt();
}

QWidget* FindControl(const QWidget& window, unsigned id)
{
    return window.findChild<QWidget*>(QString::number(id));
}

}  // namespace zr::ui

CWnd::CWnd(QWidget* parent, unsigned id) : QWidget(parent)
{
    zr::ui::SetControlId(*this, id);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CWnd::OnEraseBkgnd(QPainter& painter)
{
    painter.fillRect(rect(), zr::ui::GetSysColor(zr::ui::COLOR_3DFACE, *this));
}

void CWnd::OnPaint(QPainter&) {}

void CWnd::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    OnEraseBkgnd(painter);
    OnPaint(painter);
}

bool CWnd::event(QEvent* event)
{
    return Dispatch(*event) || QWidget::event(event);
}
