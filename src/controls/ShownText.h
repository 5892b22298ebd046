// A reading as the value controls show it: in the displayed unit and the user's number format.
#pragma once

#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/ZRBasicString.h"

namespace zr::controls {

// The number in a variable's value: 0 or 1 of a boolean, NaN of a text or a pair of words, which are no numbers.
[[nodiscard]] double NumberOf(const tagSVariableValue& value);
// The value in the displayed unit: value * 10 to the power (valueExponent - unitsExponent); the value itself where the
// two are equal.
[[nodiscard]] double ShownNumber(double value, const ZRDeviceDriver::tagSVariableInfo& info);
// That number by FormatNumber with the unitsDecimals of the variable.
[[nodiscard]] ZRBasicString ShownText(double value, const ZRDeviceDriver::tagSVariableInfo& info);

}  // namespace zr::controls
