#include "controls/ValueReading.h"

#include "controls/ShownText.h"
#include "controls/TextOn.h"
#include "siblings/tools/ZRLoadString.h"

#include <optional>

namespace zr::controls {

namespace {

// Differs from any first reading that a device is likely to give.
constexpr double kNoValueYet = 4294967295.0;

std::optional<std::uint32_t> DrawFlagsOf(int alignment)
{
    switch (alignment) {
        case 2:
            return 0u;
        case 4:
            return kAlignCentre;
        case 8:
            return kAlignRight;
        case 32:
            return kSingleLine | kAlignVCentre;
        case 64:
            return kSingleLine | kAlignVCentre | kAlignCentre;
        case 128:
            return kSingleLine | kAlignVCentre | kAlignRight;
        default:
            return std::nullopt;
    }
}

// The high side comes last and overrides the low one when both hold.
ValueState StateOf(const LimitChecks& limits, double number)
{
    const bool isFolded = limits.Has(kPowerFactor);
    const auto scale = [isFolded](double x) { return isFolded ? FoldPowerFactor(x) : x; };
    ValueState state = ValueState::Normal;
    const double value = scale(number);
    // A power factor is tested on both sides, whatever the flags of the sides: that is meant.
    if ((isFolded || limits.Has(kCheckLowLimits)) && value < scale(limits.lowWarning)) {
        state = value < scale(limits.lowAlarm) ? ValueState::Alarm : ValueState::Warning;
    }
    if ((isFolded || limits.Has(kCheckHighLimits)) && value > scale(limits.highWarning)) {
        state = value > scale(limits.highAlarm) ? ValueState::Alarm : ValueState::Warning;
    }
    return state;
}

}  // namespace

Rect PlaceText(Size client, Size text, std::uint32_t drawFlags)
{
    Rect rect{0, 0, text.cx, text.cy};
    if ((drawFlags & kAlignRight) != 0) {
        rect.left = client.cx - text.cx;
    } else if ((drawFlags & kAlignCentre) != 0) {
        rect.left = (client.cx - text.cx) / 2;
    }
    if ((drawFlags & kSingleLine) != 0 && (drawFlags & kAlignVCentre) != 0) {
        rect.top = (client.cy - text.cy) / 2;
    }
    rect.right = rect.left + text.cx;
    rect.bottom = rect.top + text.cy;
    return rect;
}

ValueColours ColoursOf(ValueState state, bool isSelected, const SystemColours& system)
{
    switch (state) {
        case ValueState::Warning:
            return isSelected ? ValueColours{kWarningYellow, system.activeCaption}
                              : ValueColours{kBlack, kWarningYellow};
        case ValueState::Alarm:
            return isSelected ? ValueColours{kAlarmRed, system.activeCaption} : ValueColours{kWhite, kAlarmRed};
        default:
            return isSelected ? ValueColours{kWhite, system.activeCaption}
                              : ValueColours{TextOn(system.face), system.face};
    }
}

ValueReading::ValueReading() : m_value(kNoValueYet)
{
    m_variable.Unlock();
}

void ValueReading::SetupVariable(const ZRBasicString& name, int alignment)
{
    m_variable.Setup(name);
    m_variable.Lock();
    m_drawFlags = DrawFlagsOf(alignment).value_or(m_drawFlags);
}

void ValueReading::SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                               double nominal)
{
    m_limits.Setup(flags, lowWarning, lowAlarm, highWarning, highAlarm, nominal);
}

bool ValueReading::Update()
{
    if (!m_variable.IsLocked()) {
        return false;
    }
    const bool wasValid = m_valid;
    m_valid = m_variable.IsValid();
    if (!m_valid) {
        // No repaint, and that is meant: the last value stays on the screen until the next one.
        return false;
    }
    tagSVariableValue fresh;
    m_variable.Value(fresh);
    const double number = NumberOf(fresh);
    if (wasValid && IsSameReading(number, m_value)) {
        return false;
    }
    m_value = number;
    m_state = m_limits.enabled ? StateOf(m_limits, number) : ValueState::Normal;
    return true;
}

ZRBasicString ValueReading::CurrentText() const
{
    ZRBasicString text(u"-");
    if (!m_valid) {
        return text;
    }
    ZRDeviceDriver::tagSVariableInfo info;
    m_variable.Info(info);
    if (m_digital) {
        return ZRLoadString(ShownNumber(m_value, info) > 0 ? kTextDigitalOn : kTextDigitalOff, text);
    }
    return ShownText(m_value, info);
}

Rgb ValueReading::Background(const SystemColours& system) const
{
    return m_selected ? system.activeCaption : system.face;
}

DrawList ValueReading::Layout(Size client, const SystemColours& system, const TextMeasure& measure) const
{
    if (!m_variable.IsLocked()) {
        return {};
    }
    ZRBasicString text = CurrentText();
    const Rect all{0, 0, client.cx, client.cy};
    const Rect place = PlaceText(client, measure.Measure(FontRole::Value, text), m_drawFlags);
    const ValueColours colours = ColoursOf(m_state, m_selected, system);
    DrawList list;
    list.reserve(3);
    list.emplace_back(Fill{all, system.face});
    list.emplace_back(Fill{m_selected ? all : place, colours.background});
    list.emplace_back(Text{place, std::move(text), FontRole::Value, colours.text, std::nullopt});
    return list;
}

}  // namespace zr::controls
