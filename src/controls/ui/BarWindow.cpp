#include "controls/ui/BarWindow.h"

#include "controls/ShownText.h"
#include "platform/ui/UiText.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStringList>

namespace zr::controls {

BarWindow::BarWindow(QWidget* parent, unsigned id) : CWnd(parent, id), m_fonts(m_valueFont.Font(), m_labelFont.Font())
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    for (ZRDriverVariable& variable : m_variables) {
        variable.Unlock();
    }
}

void BarWindow::SetupVariable(int slot, const wchar* name)
{
    if (slot < 0 || slot >= kBarSlots) {
        return;
    }
    ZRDriverVariable& variable = m_variables[static_cast<std::size_t>(slot)];
    variable.Setup(name);
    variable.Lock();
    Bar().Slots().SetLocked(slot, variable.IsLocked());
    if (slot == kPresentSlot) {
        setAccessibleName(ui::ToQt(variable.fullName.Text()));
    }
    VariableChanged(slot);
}

void BarWindow::SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                            double nominal)
{
    Bar().SetupChecks(flags, lowWarning, lowAlarm, highWarning, highAlarm, nominal);
}

void BarWindow::SetLabel(const wchar* label)
{
    Bar().SetLabel(label);
}

void BarWindow::SetEnableSelection(bool present, bool highMark, bool lowMark)
{
    Bar().Slots().SetEnableSelection(present, highMark, lowMark);
    setFocusPolicy(present || highMark || lowMark ? Qt::StrongFocus : Qt::NoFocus);
}

void BarWindow::Select(int slot, bool isSelected)
{
    if (Bar().Slots().Select(slot, isSelected)) {
        Invalidate();
    }
}

bool BarWindow::Selected(int slot) const
{
    return Bar().Slots().Selected(slot);
}

unsigned BarWindow::VarId(int slot) const
{
    return slot >= 0 && slot < kBarSlots ? Variable(slot).Id() : 0;
}

int BarWindow::IdealHeight() const
{
    return Bar().IdealHeight();
}

void BarWindow::Update()
{
    BarReadings readings;
    for (std::size_t slot = 0; slot < readings.size(); ++slot) {
        readings[slot] = ReadVariable(m_variables[slot]);
    }
    if (TakeReadings(readings)) {
        Invalidate();
        TellSpokenTextChanged(*this);
    }
}

QString BarWindow::SpokenText() const
{
    QStringList texts;
    for (int slot = 0; slot < kBarSlots; ++slot) {
        ZRDeviceDriver::tagSVariableInfo info;
        if (!Variable(slot).Info(info)) {
            continue;
        }
        const BarSlotState& state = Bar().Slots()[slot];
        if (!state.valid) {
            texts += QStringLiteral("-");
            continue;
        }
        ZRBasicString units;
        ZRDeviceDriver::MeasureUnitsText(units, info.measureUnits, info.unitsExponent);
        texts += (ui::ToQt(ShownText(state.value, info).Text()) + QLatin1Char(' ') + ui::ToQt(units.Text())).trimmed();
    }
    return texts.join(QStringLiteral("; "));
}

void BarWindow::SetFonts(const CFont& value, const CFont& label)
{
    m_valueFont = value;
    m_labelFont = label;
    m_fonts = ControlFonts(m_valueFont.Font(), m_labelFont.Font());
    Bar().FontsChanged(m_fonts);
    updateGeometry();
}

BarPaint BarWindow::PreparePaint() const
{
    BarPaint paint;
    paint.client = {width(), height()};
    paint.colours = ColoursOf(*this);
    paint.isEnabled = isEnabled();
    for (int slot = 0; slot < kBarSlots; ++slot) {
        Variable(slot).Info(paint.info.at(static_cast<std::size_t>(slot)));
    }
    return paint;
}

void BarWindow::OnPaint(QPainter& painter)
{
    PaintDrawList(painter, *this, Compose(PreparePaint(), m_fonts), m_fonts, &Bar().PicturePixels());
    if (hasFocus()) {
        PaintFocus(painter, *this, Bar().Slots()[m_focusSlot].textRect);
    }
}

void BarWindow::OnLButtonUp(bool isShift, Point point)
{
    if (Bar().Slots().Click(point, isShift)) {
        Invalidate();
    }
}

void BarWindow::OnSetCursor(Point point)
{
    switch (Bar().Slots().CursorAt(point)) {
        case BarCursor::Hand:
            setCursor(Qt::PointingHandCursor);
            break;
        case BarCursor::Arrow:
            setCursor(Qt::ArrowCursor);
            break;
        case BarCursor::Untouched:
            unsetCursor();
            break;
    }
}

void BarWindow::mousePressEvent(QMouseEvent* event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
}

void BarWindow::mouseReleaseEvent(QMouseEvent* event)
{
    // A number may hang over the window's end, where a release counts for nothing.
    if (event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint())) {
        event->ignore();
        return;
    }
    const QPoint point = event->position().toPoint();
    OnLButtonUp(event->modifiers().testFlag(Qt::ShiftModifier), {point.x(), point.y()});
}

void BarWindow::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    OnSetCursor({point.x(), point.y()});
}

void BarWindow::MoveFocus(int step)
{
    for (int moved = 1; moved < kBarSlots; ++moved) {
        const int slot = (m_focusSlot + step * moved + kBarSlots * moved) % kBarSlots;
        if (Bar().Slots().IsSelectable(slot)) {
            m_focusSlot = slot;
            Invalidate();
            return;
        }
    }
}

void BarWindow::ToggleFocused(bool isShift)
{
    const bool isSelected = !Selected(m_focusSlot);
    for (int slot = 0; slot < kBarSlots; ++slot) {
        if (isShift || slot == m_focusSlot) {
            Select(slot, isSelected);
        }
    }
}

void BarWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
        case Qt::Key_Space:
            if (!event->isAutoRepeat()) {
                ToggleFocused(event->modifiers().testFlag(Qt::ShiftModifier));
            }
            break;
        case Qt::Key_Left:
        case Qt::Key_Up:
            MoveFocus(-1);
            break;
        case Qt::Key_Right:
        case Qt::Key_Down:
            MoveFocus(1);
            break;
        default:
            CWnd::keyPressEvent(event);
    }
}

}  // namespace zr::controls
