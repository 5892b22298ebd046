#include "controls/BarScale.h"

#include <algorithm>
#include <cmath>

namespace zr::controls {

int ToPixel(double position)
{
    if (std::isnan(position)) {
        return 0;
    }
    return static_cast<int>(std::clamp<double>(position, -kFarPixel, kFarPixel));
}

BarBoundaries BoundariesOf(const BarRange& range, bool isOneLimit)
{
    const double length = range.Length();
    const double step = range.Step();
    if (isOneLimit) {
        const int both = ToPixel(range.inner + step * (0.8 * length));
        return {both, both};
    }
    const int warning = ToPixel(range.inner + step * (0.4 * length));
    return {warning, ToPixel(warning + step * (0.4 * length))};
}

BarScale BarScale::Lower(const BarRange& range, const LimitChecks& limits)
{
    const bool isOneLimit = limits.lowWarning == limits.lowAlarm;
    const double pixels = (isOneLimit ? 0.8 : 0.4) * range.Length();
    const double k = pixels / ((isOneLimit ? limits.nominal : limits.lowWarning) - limits.lowAlarm);

    BarScale scale;
    scale.m_range = range;
    scale.m_boundaries = BoundariesOf(range, isOneLimit);
    scale.m_isLower = true;
    scale.m_warning = limits.lowWarning;
    scale.m_alarm = limits.lowAlarm;
    scale.m_pixelsPerUnit = k;
    scale.m_start = limits.lowAlarm - 0.2 * range.Length() / k;
    scale.m_innerValue = limits.lowWarning + pixels / k;  // both limits are the same where there is one
    scale.m_isStep = !(k > 0.0) || !std::isfinite(k) || !std::isfinite(scale.m_start + scale.m_innerValue);
    if (scale.m_isStep) {
        scale.m_innerValue = limits.lowAlarm;
    }
    return scale;
}

BarScale BarScale::Upper(const BarRange& range, const LimitChecks& limits)
{
    const bool isOneLimit = limits.highWarning == limits.highAlarm;
    const double pixels = (isOneLimit ? 0.8 : 0.4) * range.Length();
    const double k = pixels / (limits.highAlarm - (isOneLimit ? limits.nominal : limits.highWarning));

    BarScale scale;
    scale.m_range = range;
    scale.m_boundaries = BoundariesOf(range, isOneLimit);
    scale.m_warning = limits.highWarning;
    scale.m_alarm = limits.highAlarm;
    scale.m_pixelsPerUnit = k;
    scale.m_start = limits.highWarning - pixels / k;
    scale.m_innerValue = scale.m_start;
    scale.m_isStep = !(k > 0.0) || !std::isfinite(k) || !std::isfinite(scale.m_start);
    if (scale.m_isStep) {
        scale.m_innerValue = limits.highAlarm;
    }
    return scale;
}

int BarScale::PlaceOf(double value) const
{
    // The lower scale starts at its outer end and the upper one at its inner end: both grow the same way.
    const int start = m_isLower ? m_range.outer : m_range.inner;
    if (std::isnan(value)) {
        return start;
    }
    if (m_isStep) {
        return PlaceOnStep(value);
    }
    const int way = m_isLower ? -m_range.Step() : m_range.Step();
    return ToPixel(start + way * ((value - m_start) * m_pixelsPerUnit));
}

int BarScale::PlaceOnStep(double value) const
{
    if (value == m_alarm) {
        return m_boundaries.alarm;
    }
    const bool isBeyond = m_isLower ? value < m_alarm : value > m_alarm;
    return isBeyond ? m_range.outer : m_range.inner;
}

namespace {

void AddScales(BarScales& scales, const LimitChecks& limits)
{
    if (!limits.enabled) {
        return;
    }
    if (scales.lowerRange) {
        scales.lower = BarScale::Lower(*scales.lowerRange, limits);
    }
    if (scales.upperRange) {
        scales.upper = BarScale::Upper(*scales.upperRange, limits);
    }
}

}  // namespace

BarScales HorizontalScales(int left, int right, const LimitChecks& limits)
{
    BarScales scales;
    const bool isSplit = limits.Has(kCheckLowLimits) && limits.Has(kCheckHighLimits);
    const int middle = right - (right - left) / 2;
    if (limits.Has(kCheckLowLimits)) {
        scales.lowerRange = BarRange{isSplit ? std::max(middle - 1, left) : right, left};
    }
    if (limits.Has(kCheckHighLimits)) {
        scales.upperRange = BarRange{isSplit ? std::min(middle + 1, right) : left, right};
    }
    AddScales(scales, limits);
    return scales;
}

BarScales UprightScales(int top, int bottom, const LimitChecks& limits)
{
    BarScales scales;
    const bool isSplit = limits.Has(kCheckLowLimits) && limits.Has(kCheckHighLimits);
    const int middle = top + (bottom - top) / 2;
    if (limits.Has(kCheckLowLimits)) {
        scales.lowerRange = BarRange{isSplit ? std::min(middle + 1, bottom) : top, bottom};
    }
    if (limits.Has(kCheckHighLimits)) {
        scales.upperRange = BarRange{isSplit ? std::max(middle - 1, top) : bottom, top};
    }
    AddScales(scales, limits);
    return scales;
}

BarSide NextSide(BarSide side, double value, const BarScales& scales)
{
    if (!scales.lower && !scales.upper) {
        return side;
    }
    if (!scales.lower || !scales.upper) {
        return scales.lower ? BarSide::Lower : BarSide::Upper;
    }
    const double lowTop = scales.lower->InnerValue();
    const double base = scales.upper->InnerValue();
    // The scales may leave a gap or overlap: only a value past both inner ends changes sides, so that the marker
    // doesn't jump at every paint.
    if (side == BarSide::Lower) {
        return value > lowTop && value >= base ? BarSide::Upper : BarSide::Lower;
    }
    return value < base && value <= lowTop ? BarSide::Lower : BarSide::Upper;
}

double PowerFactorPosition(double value, int left, int right)
{
    const int half = (right - left) / 2;
    return left + FoldPowerFactor(value) * half;
}

}  // namespace zr::controls
