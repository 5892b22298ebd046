#include "hosts/supervision/ValueText.h"

#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <cmath>

namespace zr::supervision {
namespace {

std::string NamedValue(const ZRDriverVariable& variable, double number)
{
    ZRDeviceDriver::tagSVariableValueInfo info;
    if (!variable.ValueInfo(info)) {
        return {};
    }
    for (std::size_t i = 0; i < info.values.size() && i < info.valueTexts.size(); ++i) {
        if (static_cast<double>(info.values[i]) == number) {
            return Utf16ToUtf8(info.valueTexts[i]);
        }
    }
    return {};
}

std::string NumberText(const ZRDriverVariable& variable, double number)
{
    if (std::string named = NamedValue(variable, number); !named.empty()) {
        return named;
    }
    ZRDeviceDriver::tagSVariableInfo info;
    if (!variable.Info(info)) {
        return {};
    }
    ZRBasicString text;
    FormatNumber(text, number * std::pow(10.0, info.valueExponent - info.unitsExponent), info.unitsDecimals, true);
    ZRBasicString unit;
    ZRDeviceDriver::MeasureUnitsText(unit, info.measureUnits, info.unitsExponent);
    return Utf16ToUtf8(unit.IsEmpty() ? text : text + u" " + unit);
}

}  // namespace

std::string ValueText(ZRDriverVariable& variable)
{
    if (!variable.IsValid()) {
        return "--";
    }
    tagSVariableValue value;
    variable.Value(value);
    switch (value.type) {
        case tagSVariableValue::kBoolean: {
            std::string named = NamedValue(variable, value.boolean);
            return !named.empty() ? named : (value.boolean != 0 ? "on" : "off");
        }
        case tagSVariableValue::kNumber:
            return NumberText(variable, value.number);
        case tagSVariableValue::kText:
            return Utf16ToUtf8(value.text);
        case tagSVariableValue::kWords:
            return fmt::format("{}:{}", value.first, value.second);
        default:
            return "--";
    }
}

}  // namespace zr::supervision
