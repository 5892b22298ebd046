#include "siblings/graphsupport/GraphCurves.h"

#include "siblings/driversupport/MeasureUnits.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/driversupport/VariableStore.h"
#include "siblings/graphsupport/PowerFactorScale.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace zr::graph {

namespace {

CurveShape ShapeOf(int infoCode, bool hasPeriod)
{
    if (infoCode == static_cast<int>(VariableClass::Counter) && hasPeriod) {
        return CurveShape::Bars;
    }
    return infoCode == static_cast<int>(VariableClass::State) ? CurveShape::Steps : CurveShape::Line;
}

bool AreOfSeveralDevices(const std::vector<ZRDriverVariable*>& variables)
{
    return std::any_of(variables.begin(), variables.end(), [&](const ZRDriverVariable* variable) {
        return DriverOf(variable->fullName) != DriverOf(variables.front()->fullName);
    });
}

GraphCurve Describe(const CurveInfo& given, ZRDriverVariable& variable, int titleMode, bool hasPeriod)
{
    GraphCurve curve;
    curve.info = given;
    GetTitleVariable(variable, curve.title, titleMode);
    curve.column.column = given.index;
    curve.zone = std::clamp(given.zone, 0, kMostZones - 1);
    ZRDeviceDriver::tagSVariableInfo info;
    if (!variable.Info(info)) {
        return curve;
    }
    curve.measureUnits = info.measureUnits;
    curve.unitsExponent = info.unitsExponent;
    curve.decimals = std::clamp(info.unitsDecimals, 0, kMaxDecimals);
    curve.column.factor = std::pow(10.0, info.valueExponent - info.unitsExponent);
    curve.column.isFolded = info.measureUnits == static_cast<int>(MeasureUnit::PowerFactor);
    curve.column.shape = ShapeOf(info.infoCode, hasPeriod);
    MeasureUnitsText(curve.unit, info.measureUnits, info.unitsExponent);
    return curve;
}

// Numbers the zones that have curves 0, 1, 2, keeping their order.
int CloseGaps(std::vector<GraphCurve>& curves)
{
    std::array<int, kMostZones> number{};
    for (const GraphCurve& curve : curves) {
        number[static_cast<std::size_t>(curve.zone)] = 1;
    }
    int zones = 0;
    for (int& zone : number) {
        zone = zone != 0 ? zones++ : 0;
    }
    for (GraphCurve& curve : curves) {
        curve.zone = number[static_cast<std::size_t>(curve.zone)];
    }
    return zones;
}

bool IsFirst(double limit, double known)
{
    return known == kNoLimit && std::isfinite(limit);
}

std::vector<CurveRun> MakeRuns(std::vector<GraphCurve>& curves)
{
    std::vector<CurveRun> runs;
    const GraphCurve* before = nullptr;
    int position = 0;
    for (GraphCurve& curve : curves) {
        const bool isLike = before != nullptr && before->zone == curve.zone &&
                            before->measureUnits == curve.measureUnits && before->unitsExponent == curve.unitsExponent;
        if (!isLike) {
            runs.emplace_back();
            runs.back().zone = curve.zone;
            runs.back().firstCurve = position;
            runs.back().unit = curve.unit;
            runs.back().isFolded = curve.column.isFolded;
            runs.back().isOfStates = true;
        }
        CurveRun& run = runs.back();
        ++run.curves;
        run.hasBars = run.hasBars || curve.column.shape == CurveShape::Bars;
        run.isOfStates = run.isOfStates && curve.column.shape == CurveShape::Steps;
        run.minimum = IsFirst(curve.info.minimum, run.minimum) ? curve.info.minimum : run.minimum;
        run.maximum = IsFirst(curve.info.maximum, run.maximum) ? curve.info.maximum : run.maximum;
        curve.run = static_cast<int>(runs.size()) - 1;
        before = &curve;
        ++position;
    }
    return runs;
}

ZRBasicString WithUnit(ZRBasicString text, const GraphCurve& curve)
{
    if (!curve.unit.IsEmpty()) {
        text += u' ';
        text += curve.unit;
    }
    return text;
}

// "1.25E+300", with the user's decimal mark.
ZRBasicString WithExponent(double value)
{
    const ZRBasicString plain = FormatText(u"%.4E", {value});
    ZRBasicString text;
    for (const wchar character : plain.Text()) {
        if (character == u'.') {
            text += LocaleInformationWide().decimalSeparator;
        } else {
            text += character;
        }
    }
    return text;
}

}  // namespace

std::vector<CurveColumn> GraphCurves::Columns() const
{
    std::vector<CurveColumn> columns;
    columns.reserve(curves.size());
    for (const GraphCurve& curve : curves) {
        columns.push_back(curve.column);
    }
    return columns;
}

GraphCurves MakeGraphCurves(std::span<const CurveInfo> given, const ZRLoggerInfo& info, bool hasPeriod)
{
    const std::vector<ZRDriverVariable*> all(info.variables.begin(), info.variables.end());
    std::vector<const CurveInfo*> shown;
    std::vector<ZRDriverVariable*> variables;
    for (const CurveInfo& curve : given) {
        if (curve.index >= 0 && static_cast<std::size_t>(curve.index) < all.size()) {
            shown.push_back(&curve);
            variables.push_back(all[static_cast<std::size_t>(curve.index)]);
        }
    }
    const int titleMode = AreOfSeveralDevices(variables) ? kTitleAmongDevices : kTitleInDevice;
    GraphCurves result;
    result.curves.reserve(shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        result.curves.push_back(Describe(*shown[i], *variables[i], titleMode, hasPeriod));
    }
    result.zones = CloseGaps(result.curves);
    result.runs = MakeRuns(result.curves);
    return result;
}

ZRBasicString ValueText(const GraphCurve& curve, double value)
{
    if (!curve.column.isFolded) {
        return PlainValueText(curve, value);
    }
    // Meant, as in tables: what is so close to -1 reads 1.
    constexpr double kReadsOne = -0.995;
    const double factor = Unfold(value);
    return PlainValueText(curve, factor < kReadsOne ? 1.0 : factor);
}

ZRBasicString PlainValueText(const GraphCurve& curve, double value)
{
    constexpr double kLong = 1e15;
    ZRBasicString text;
    if (std::isfinite(value) && std::abs(value) >= kLong) {
        text = WithExponent(value);
    } else {
        FormatNumber(text, value, curve.decimals, true);
    }
    return WithUnit(std::move(text), curve);
}

}  // namespace zr::graph
