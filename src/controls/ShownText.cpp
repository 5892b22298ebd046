#include "controls/ShownText.h"

#include "siblings/tools/Numbers.h"

#include <cmath>
#include <limits>

namespace zr::controls {

double NumberOf(const tagSVariableValue& value)
{
    switch (value.type) {
        case tagSVariableValue::kBoolean:
            return value.boolean != 0 ? 1.0 : 0.0;
        case tagSVariableValue::kText:
        case tagSVariableValue::kWords:
            return std::numeric_limits<double>::quiet_NaN();
        default:
            return value.number;
    }
}

double ShownNumber(double value, const ZRDeviceDriver::tagSVariableInfo& info)
{
    if (info.valueExponent == info.unitsExponent) {
        return value;
    }
    return value * std::pow(10.0, static_cast<double>(info.valueExponent) - info.unitsExponent);
}

ZRBasicString ShownText(double value, const ZRDeviceDriver::tagSVariableInfo& info)
{
    ZRBasicString text;
    FormatNumber(text, ShownNumber(value, info), info.unitsDecimals, true);
    return text;
}

}  // namespace zr::controls
