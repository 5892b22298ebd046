// A device whose values a test sets.
#pragma once

#include "siblings/driversupport/ZRDeviceDriver.h"

#include <memory>
#include <utility>
#include <vector>

namespace zr::test {

// A variable with this name and these figures.
inline VariableDescription Variable(const wchar* name, int unitsDecimals = 2, int valueExponent = 0,
                                    int unitsExponent = 0, int measureUnits = 1)
{
    VariableDescription variable;
    variable.name = name;
    variable.measureUnits = measureUnits;
    variable.valueExponent = valueExponent;
    variable.unitsExponent = unitsExponent;
    variable.unitsDecimals = unitsDecimals;
    return variable;
}

// Found by its name as long as it lives; its variables are invalid until written.
class LiveDevice final : public ZRDeviceDriver {
public:
    LiveDevice(const wchar* deviceName, std::vector<VariableDescription> variables)
    {
        SetName(deviceName);
        SetVariables(std::make_shared<const VariableTable>(std::move(variables)));
    }

    void Write(std::size_t index, double value) { Store()->At(index).WriteNumber(value); }
    void Invalidate(std::size_t index) { Store()->At(index).Invalidate(); }
    void InvalidateAll() { Store()->InvalidateAll(); }
};

}  // namespace zr::test
