// A window that shows one live variable as a number, or as one of two words.
#pragma once

#include "controls/ui/DrawListPainter.h"
#include "controls/ui/ValueAccessibility.h"
#include "controls/ValueReading.h"
#include "platform/ui/CFont.h"
#include "platform/ui/CWnd.h"

// Everything that is decided about the value lives in zr::controls::ValueReading. The host calls SetupVariable and
// SetupChecks once, then Update from its periodic work; the window paints itself only when something has changed. A
// click sends the control's number as a command to the parent; so does the space bar while the control has the focus.
// UI thread only.
class ZRValueControl : public CWnd, public zr::controls::SpokenValue {
public:
    explicit ZRValueControl(QWidget* parent = nullptr, unsigned id = 0);

    // name: `driver.variable`; one that isn't there leaves the control blank. alignment: 2, 4, 8 left, centred, right;
    // 32, 64, 128 likewise and centred in the height; any other changes nothing.
    void SetupVariable(const wchar* name, int alignment);
    // flags: see LimitChecks. Limits are in units of the stored value, or percentages of nominal with flag 8. A nominal
    // of 0 or below switches all checks off.
    void SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                     double nominal);
    // Not owned; must outlive this. Null: the font that the window inherits.
    void SetFont(CFont* font);
    void SetDigital(bool isDigital) { m_reading.SetDigital(isDigital); }
    // Without it the control takes no focus and can't be selected. Doesn't repaint.
    void SetEnableSelection(bool isEnabled);
    void Select(bool isSelected);
    [[nodiscard]] bool Selected() const { return m_reading.Selected(); }
    // The variable's handle at its driver; 0 when not locked.
    [[nodiscard]] unsigned VarId() const { return m_reading.VarId(); }
    // Height of a line in the control's font, in device-independent pixels.
    [[nodiscard]] int IdealHeight() const { return m_idealHeight; }
    void Update();

    [[nodiscard]] const zr::controls::ValueReading& Reading() const { return m_reading; }
    [[nodiscard]] QString SpokenText() const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    void OnEraseBkgnd(QPainter& painter) override;
    void OnPaint(QPainter& painter) override;
    // The left button was let go over the control.
    virtual void OnLButtonUp();

    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void TakeFont();

    zr::controls::ValueReading m_reading;
    CFont* m_font = nullptr;
    QFont m_usedFont;
    zr::controls::ControlFonts m_fonts;
    int m_idealHeight = 10;
};
