// What the windows of the horizontal and the upright bar have in common.
#pragma once

#include "controls/ui/DrawListPainter.h"
#include "controls/ui/ValueAccessibility.h"
#include "controls/ValueBar.h"
#include "platform/ui/CFont.h"
#include "platform/ui/CWnd.h"
#include "siblings/driversupport/ZRDriverVariable.h"

#include <array>

namespace zr::controls {

// Holds the variables and the fonts, and passes mouse and keys on. A click on a number selects it, with Shift all
// three. With the focus, the arrow keys go from number to number and the space bar selects like a click. UI thread
// only.
class BarWindow : public CWnd, public SpokenValue {
public:
    // slot: 0 the present value, 1 the high mark, 2 the low mark. name: `driver.variable`; one that isn't there leaves
    // the slot without number and marker.
    void SetupVariable(int slot, const wchar* name);
    // flags: see LimitChecks. Limits are in units of the stored value, or percentages of nominal with flag 8. A nominal
    // of 0 or below switches all checks off.
    void SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                     double nominal);
    void SetLabel(const wchar* label);
    void SetEnableSelection(bool present, bool highMark, bool lowMark);
    // Nothing unless the slot is locked.
    void Select(int slot, bool isSelected);
    [[nodiscard]] bool Selected(int slot) const;
    // The variable's handle at its driver; 0 when not locked.
    [[nodiscard]] unsigned VarId(int slot) const;
    // In device-independent pixels; 0 before SetupBar.
    [[nodiscard]] int IdealHeight() const;
    // Reads the variables; repaints only when something has changed.
    void Update();

    [[nodiscard]] QString SpokenText() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    BarWindow(QWidget* parent, unsigned id);

    [[nodiscard]] virtual ValueBar& Bar() = 0;
    [[nodiscard]] virtual const ValueBar& Bar() const = 0;
    virtual bool TakeReadings(const BarReadings& readings) = 0;
    virtual const DrawList& Compose(const BarPaint& paint, const TextMeasure& measure) = 0;
    // After a variable was set up.
    virtual void VariableChanged(int) {}

    [[nodiscard]] const ZRDriverVariable& Variable(int slot) const
    {
        return m_variables.at(static_cast<std::size_t>(slot));
    }
    void SetFonts(const CFont& value, const CFont& label);

    void OnPaint(QPainter& painter) override;
    // The left button was let go at that point of the client area.
    virtual void OnLButtonUp(bool isShift, Point point);
    virtual void OnSetCursor(Point point);

    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] BarPaint PreparePaint() const;
    // From the slot in the focus, 1 or -1 in the order of the slots; stays where no other can be selected.
    void MoveFocus(int step);
    void ToggleFocused(bool isShift);

    std::array<ZRDriverVariable, kBarSlots> m_variables;
    CFont m_valueFont;
    CFont m_labelFont;
    ControlFonts m_fonts;
    int m_focusSlot = kPresentSlot;
};

}  // namespace zr::controls
