// A window that draws a measurement on an upright coloured scale.
#pragma once

#include "controls/ui/BarWindow.h"
#include "controls/VerticalBar.h"

// As ZRBarValueControl, with the numbers of the limits beside the bar, units, a label above and one below, and a value
// that may be set from outside, for a display that replays. What is decided lives in zr::controls::VerticalBar. While
// the window is disabled it shows the bare bar. UI thread only.
class ZRVerticalBarValueControl : public zr::controls::BarWindow {
public:
    explicit ZRVerticalBarValueControl(QWidget* parent = nullptr, unsigned id = 0);

    // displayFlags: 1 label, 2 limits, 4 units, 8 room for the lower label. barHeight in pixels, at least 10; fontSize
    // in tenths of a point, at least 90.
    void SetupBar(int displayFlags, int barHeight, int fontSize);
    // Copied; the given font stays the caller's. Null changes nothing.
    void SetFont(const CFont* font);
    // Shown while a value from outside is.
    void SetLabelInfo(const wchar* text);
    // The texts of the limits; those of SetupChecks stay as they are.
    void SetupLimits(const ZRBasicString& units, double lowWarning, double lowAlarm, double highWarning,
                     double highAlarm, int lowWarningDecimals, int lowAlarmDecimals, int highWarningDecimals,
                     int highAlarmDecimals);
    // A present value from outside, in units of the stored value, until the next Update.
    void SetInstValue(double value);
    // Greys the zones until the next SetupBar, for a device out of use; numbers and markers stay.
    void Disable();

    [[nodiscard]] QSize sizeHint() const override { return {160, IdealHeight()}; }

protected:
    [[nodiscard]] zr::controls::VerticalBar& Bar() override { return m_bar; }
    [[nodiscard]] const zr::controls::VerticalBar& Bar() const override { return m_bar; }
    bool TakeReadings(const zr::controls::BarReadings& readings) override { return m_bar.Update(readings); }
    const zr::controls::DrawList& Compose(const zr::controls::BarPaint& paint,
                                          const zr::controls::TextMeasure& measure) override
    {
        return m_bar.Compose(paint, measure);
    }
    void VariableChanged(int slot) override;

private:
    zr::controls::VerticalBar m_bar;
};
