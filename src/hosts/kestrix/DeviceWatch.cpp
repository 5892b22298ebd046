#include "hosts/kestrix/DeviceWatch.h"

#include "siblings/driversupport/MeasureUnits.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zr::desktop {
namespace {

// Behind the device's name: no name of a device holds it, so that none is taken for another.
constexpr const wchar* kMarksSuffix = u"\u0001marks";
constexpr const wchar* kHighSuffix = u" HIGH";
constexpr const wchar* kLowSuffix = u" LOW";

// On the folded scale -1 to 0 continues 0 to 1.
double Folded(double value, bool isPowerFactor)
{
    return isPowerFactor && value < 0.0 ? value + 2.0 : value;
}

std::vector<VariableDescription> DescribeMarks(const VariableTable& table)
{
    std::vector<VariableDescription> marks;
    for (std::size_t i = 0; i < table.Size(); ++i) {
        for (const wchar* const suffix : {kHighSuffix, kLowSuffix}) {
            marks.push_back(table[i]);
            marks.back().name = table[i].name + suffix;
            marks.back().output = false;
        }
    }
    return marks;
}

}  // namespace

void HistoryMark::Take(double value, bool isPowerFactor)
{
    if (!std::isfinite(value)) {
        return;
    }
    if (!any || Folded(value, isPowerFactor) < Folded(low, isPowerFactor)) {
        low = value;
    }
    if (!any || Folded(value, isPowerFactor) > Folded(high, isPowerFactor)) {
        high = value;
    }
    any = true;
}

LimitState StateOf(const VariableLimits& limits, bool isPowerFactor, double value)
{
    const double x = Folded(value, isPowerFactor);
    const auto beyond = [&](double low, double high) {
        return (limits.hasLow && x < Folded(low, isPowerFactor)) || (limits.hasHigh && x > Folded(high, isPowerFactor));
    };
    if (beyond(limits.lowAlarm, limits.highAlarm)) {
        return LimitState::Alarm;
    }
    return beyond(limits.lowWarning, limits.highWarning) ? LimitState::Warning : LimitState::Normal;
}

bool IsPowerFactor(const VariableDescription& variable)
{
    return variable.measureUnits == static_cast<std::int32_t>(MeasureUnit::PowerFactor);
}

// Two variables for each of the device's: the high mark and the low one.
class DeviceWatch::MarkDriver : public ZRDeviceDriver {
public:
    MarkDriver(const ZRBasicString& deviceName, const VariableTable& table)
    {
        SetVariables(std::make_shared<const VariableTable>(DescribeMarks(table)));
        SetName(deviceName + kMarksSuffix);
    }
};

DeviceWatch::DeviceWatch(ZRDeviceDriver& driver) : m_driver(driver), m_store(driver.Store())
{
    if (m_store != nullptr) {
        m_marks.resize(m_store->Table().Size());
        m_markDriver = std::make_unique<MarkDriver>(driver.name, m_store->Table());
    }
}

DeviceWatch::~DeviceWatch() = default;

void DeviceWatch::Update(bool isPolled)
{
    const LimitState limits = ReadValues();
    if (!isPolled) {
        m_state = DeviceState::NotPolled;
        return;
    }
    if (m_driver.Online()) {
        m_wasOnline = true;
        m_fellSilent = false;
        m_state = limits == LimitState::Alarm ? DeviceState::Alarm : DeviceState::OnLine;
        return;
    }
    m_state = m_fellSilent || m_wasOnline ? DeviceState::Silent : DeviceState::NotAsked;
}

LimitState DeviceWatch::ReadValues()
{
    LimitState worst = LimitState::Normal;
    tagSVariableValue value;
    for (std::size_t i = 0; i < m_marks.size(); ++i) {
        if (!m_store->At(i).IsValid()) {
            continue;
        }
        m_store->At(i).Read(value);
        if (value.type != tagSVariableValue::kNumber) {
            continue;
        }
        const VariableDescription& variable = m_store->Table()[i];
        const HistoryMark before = m_marks[i];
        m_marks[i].Take(value.number, IsPowerFactor(variable));
        if (m_marks[i].any && (!before.any || m_marks[i].low != before.low || m_marks[i].high != before.high)) {
            WriteMark(i);
        }
        if (variable.limits) {
            worst = std::max(worst, StateOf(*variable.limits, IsPowerFactor(variable), value.number));
        }
    }
    return worst;
}

void DeviceWatch::WriteMark(std::size_t variable)
{
    m_markDriver->Store()->At(2 * variable).WriteNumber(m_marks[variable].high);
    m_markDriver->Store()->At(2 * variable + 1).WriteNumber(m_marks[variable].low);
}

void DeviceWatch::Forget(std::size_t variable)
{
    m_marks[variable] = {};
    m_markDriver->Store()->At(2 * variable).Invalidate();
    m_markDriver->Store()->At(2 * variable + 1).Invalidate();
}

ZRBasicString DeviceWatch::HighName(const ZRBasicString& device, const ZRBasicString& variable)
{
    return device + kMarksSuffix + u"." + variable + kHighSuffix;
}

ZRBasicString DeviceWatch::LowName(const ZRBasicString& device, const ZRBasicString& variable)
{
    return device + kMarksSuffix + u"." + variable + kLowSuffix;
}

}  // namespace zr::desktop
