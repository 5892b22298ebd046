#include "controls/ShownText.h"

#include "siblings/tools/Numbers.h"

#include <cmath>

namespace zr::controls {

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
