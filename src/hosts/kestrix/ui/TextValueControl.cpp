#include "hosts/kestrix/ui/TextValueControl.h"

#include "hosts/kestrix/ui/UiTexts.h"
#include "hosts/supervision/ValueText.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace zr::desktop {

TextValueControl::TextValueControl(QWidget* parent, unsigned id) : CWnd(parent, id)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void TextValueControl::SetupVariable(const wchar* name)
{
    m_variable.Setup(name);
    m_variable.Lock();
}

void TextValueControl::Describe(const QString& tip)
{
    m_tip = tip;
    setToolTip(PlainTip(m_text.isEmpty() ? tip : m_text + QLatin1Char('\n') + tip));
}

void TextValueControl::Update()
{
    if (!m_variable.IsLocked()) {
        return;
    }
    const QString text = QString::fromStdString(supervision::ValueText(m_variable));
    if (text != m_text) {
        m_text = text;
        Describe(m_tip);
        Invalidate();
    }
}

void TextValueControl::Select(bool isSelected)
{
    m_isSelected = isSelected;
    Invalidate();
}

void TextValueControl::OnPaint(QPainter& painter)
{
    const QPalette& colours = palette();
    if (m_isSelected) {
        painter.fillRect(rect(), colours.color(QPalette::Highlight));
    }
    painter.setPen(colours.color(m_isSelected ? QPalette::HighlightedText : QPalette::WindowText));
    const QRect room = rect().adjusted(0, 0, -2, 0);
    painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_text, Qt::ElideRight, room.width()));
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void TextValueControl::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void TextValueControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->pos())) {
        Toggle();
    }
}

void TextValueControl::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space) {
        Toggle();
    } else {
        CWnd::keyPressEvent(event);
    }
}

void TextValueControl::Toggle()
{
    Select(!m_isSelected);
    ui::SendCommand(parentWidget(), ui::ControlId(*this), 0, this);
}

}  // namespace zr::desktop
