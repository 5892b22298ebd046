#include "controls/BarLabel.h"

#include "controls/TextOn.h"

namespace zr::controls {

namespace {

LabelColours Beyond(bool isAlarm, const BarColours& colours)
{
    return isAlarm ? LabelColours{colours.red, kWhite} : LabelColours{colours.yellow, kBlack};
}

}  // namespace

LabelColours LabelColoursOf(const LimitChecks& limits, const BarSlotState& present, const BarColours& colours, Rgb face)
{
    LabelColours label = {face, TextOn(face)};
    if (!limits.enabled || !present.valid) {
        return label;
    }
    const double value = present.value;
    if (limits.Has(kCheckHighLimits) && value > limits.highWarning) {
        label = Beyond(value > limits.highAlarm, colours);
    }
    if (limits.Has(kCheckLowLimits) && value < limits.lowWarning) {
        label = Beyond(value < limits.lowAlarm, colours);
    }
    return label;
}

LabelColours PowerFactorLabelColoursOf(const LimitChecks& limits, const BarSlotState& present,
                                       const BarColours& colours, Rgb face)
{
    const LabelColours plain = {face, TextOn(face)};
    if (!limits.enabled || !present.valid) {
        return plain;
    }
    const double value = FoldPowerFactor(present.value);
    if (value > FoldPowerFactor(limits.highWarning)) {
        return Beyond(value > FoldPowerFactor(limits.highAlarm), colours);
    }
    if (value < FoldPowerFactor(limits.lowWarning)) {
        return Beyond(value < FoldPowerFactor(limits.lowAlarm), colours);
    }
    return plain;
}

}  // namespace zr::controls
