// A device whose values a test writes.
#pragma once

#include "siblings/driversupport/ZRDeviceDriver.h"

#include <memory>
#include <utility>
#include <vector>

namespace zr::test {

class WatchedDevice : public ZRDeviceDriver {
public:
    WatchedDevice(const ZRBasicString& deviceName, std::vector<VariableDescription> variables)
    {
        SetVariables(std::make_shared<const VariableTable>(std::move(variables)));
        SetName(deviceName);
        SetOnline(true);
    }

    void Write(std::size_t variable, double value) { Store()->At(variable).WriteNumber(value); }
};

inline VariableDescription Number(const wchar* name, int unit)
{
    VariableDescription variable;
    variable.name = name;
    variable.description = ZRBasicString(u"The ") + name;
    variable.measureUnits = unit;
    return variable;
}

inline VariableDescription Limited(VariableDescription variable, double nominal, double lowWarning, double lowAlarm,
                                   double highWarning, double highAlarm)
{
    variable.limits = VariableLimits{nominal, true, lowWarning, lowAlarm, true, highWarning, highAlarm};
    return variable;
}

}  // namespace zr::test
