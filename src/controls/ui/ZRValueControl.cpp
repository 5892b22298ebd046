#include "controls/ui/ZRValueControl.h"

#include "platform/ui/UiText.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

using zr::controls::FontRole;

ZRValueControl::ZRValueControl(QWidget* parent, unsigned id)
    : CWnd(parent, id), m_usedFont(font()), m_fonts(m_usedFont, m_usedFont)
{
    SetEnableSelection(true);
}

void ZRValueControl::SetupVariable(const wchar* name, int alignment)
{
    m_reading.SetupVariable(name, alignment);
    TakeFont();
    setAccessibleName(zr::ui::ToQt(m_reading.Name().Text()));
}

void ZRValueControl::SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                                 double nominal)
{
    m_reading.SetupChecks(flags, lowWarning, lowAlarm, highWarning, highAlarm, nominal);
}

void ZRValueControl::SetFont(CFont* font)
{
    m_font = font;
    TakeFont();
}

void ZRValueControl::TakeFont()
{
    m_usedFont = m_font != nullptr ? m_font->Font() : font();
    m_fonts = zr::controls::ControlFonts(m_usedFont, m_usedFont);
    m_idealHeight = m_fonts.Measure(FontRole::Value, u"8").cy;
    updateGeometry();
}

void ZRValueControl::SetEnableSelection(bool isEnabled)
{
    m_reading.SetEnableSelection(isEnabled);
    setFocusPolicy(isEnabled ? Qt::StrongFocus : Qt::NoFocus);
    if (isEnabled) {
        setCursor(Qt::PointingHandCursor);
    } else {
        unsetCursor();
    }
}

void ZRValueControl::Select(bool isSelected)
{
    m_reading.Select(isSelected);
    Invalidate();
}

void ZRValueControl::Update()
{
    if (m_reading.Update()) {
        Invalidate();
        zr::controls::TellSpokenTextChanged(*this);
    }
}

QString ZRValueControl::SpokenText() const
{
    return m_reading.IsLocked() ? zr::ui::ToQt(m_reading.CurrentText().Text()) : QString();
}

QSize ZRValueControl::sizeHint() const
{
    const zr::controls::Size size = m_fonts.Measure(FontRole::Value, u"-888,888.88");
    return {size.cx, size.cy};
}

void ZRValueControl::OnEraseBkgnd(QPainter& painter)
{
    painter.fillRect(rect(), QColor::fromRgb(m_reading.Background(zr::controls::ColoursOf(*this))));
}

void ZRValueControl::OnPaint(QPainter& painter)
{
    if (m_font != nullptr && !m_usedFont.isCopyOf(m_font->Font())) {
        TakeFont();
    }
    const zr::controls::Size client{width(), height()};
    PaintDrawList(painter, *this, m_reading.Layout(client, zr::controls::ColoursOf(*this), m_fonts), m_fonts, nullptr);
    if (hasFocus()) {
        zr::controls::PaintFocus(painter, *this, {0, 0, client.cx, client.cy});
    }
}

void ZRValueControl::OnLButtonUp()
{
    m_reading.Toggle();
    Invalidate();
    zr::ui::SendCommand(parentWidget(), GetDlgCtrlID(), 0, this);
}

void ZRValueControl::mousePressEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
}

void ZRValueControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !rect().contains(event->pos())) {
        event->ignore();
        return;
    }
    OnLButtonUp();
}

void ZRValueControl::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Space || event->isAutoRepeat() || !m_reading.SelectionEnabled()) {
        CWnd::keyPressEvent(event);
        return;
    }
    OnLButtonUp();
}

void ZRValueControl::changeEvent(QEvent* event)
{
    CWnd::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_font == nullptr) {
        TakeFont();
        Invalidate();
    }
}
