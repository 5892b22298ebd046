#include "controls/ui/ZRVerticalBarValueControl.h"

ZRVerticalBarValueControl::ZRVerticalBarValueControl(QWidget* parent, unsigned id) : BarWindow(parent, id) {}

void ZRVerticalBarValueControl::SetupBar(int displayFlags, int barHeight, int fontSize)
{
    m_bar.SetupBar(displayFlags, barHeight, fontSize);
    CFont font;
    font.CreatePointFont(m_bar.FontSize(), u"Smallfonts");
    SetFonts(font, font);
}

void ZRVerticalBarValueControl::SetFont(const CFont* font)
{
    if (font == nullptr) {
        return;
    }
    SetFonts(*font, *font);
    Invalidate();
}

void ZRVerticalBarValueControl::SetLabelInfo(const wchar* text)
{
    m_bar.SetLabelInfo(text);
}

void ZRVerticalBarValueControl::SetupLimits(const ZRBasicString& units, double lowWarning, double lowAlarm,
                                            double highWarning, double highAlarm, int lowWarningDecimals,
                                            int lowAlarmDecimals, int highWarningDecimals, int highAlarmDecimals)
{
    m_bar.SetupLimits(units, lowWarning, lowAlarm, highWarning, highAlarm, lowWarningDecimals, lowAlarmDecimals,
                      highWarningDecimals, highAlarmDecimals);
}

void ZRVerticalBarValueControl::SetInstValue(double value)
{
    if (m_bar.SetInstValue(value)) {
        Invalidate();
        zr::controls::TellSpokenTextChanged(*this);
    }
}

void ZRVerticalBarValueControl::Disable()
{
    m_bar.Disable();
    Invalidate();
}

void ZRVerticalBarValueControl::VariableChanged(int slot)
{
    ZRBasicString units;
    ZRDeviceDriver::tagSVariableInfo info;
    if (Variable(slot).Info(info)) {
        ZRDeviceDriver::MeasureUnitsText(units, info.measureUnits, info.unitsExponent);
    }
    m_bar.SetUnits(slot, units);
}
