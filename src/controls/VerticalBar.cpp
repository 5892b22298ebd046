#include "controls/VerticalBar.h"

#include "controls/BarZones.h"
#include "siblings/tools/Numbers.h"

#include <algorithm>

namespace zr::controls {

void VerticalBar::SetupBar(int displayFlags, int barHeight, int fontSize)
{
    m_displayFlags = displayFlags;
    ValueBar::SetupBar(barHeight, fontSize);
}

void VerticalBar::SetUnits(int slot, const ZRBasicString& units)
{
    if (slot >= 0 && slot < kBarSlots) {
        m_slots[slot].units = units;
    }
}

void VerticalBar::SetupLimits(const ZRBasicString& units, double lowWarning, double lowAlarm, double highWarning,
                              double highAlarm, int lowWarningDecimals, int lowAlarmDecimals, int highWarningDecimals,
                              int highAlarmDecimals)
{
    m_limitUnits = units;
    FormatNumber(m_limitTexts[LowWarning], lowWarning, lowWarningDecimals, true);
    FormatNumber(m_limitTexts[LowAlarm], lowAlarm, lowAlarmDecimals, true);
    FormatNumber(m_limitTexts[HighWarning], highWarning, highWarningDecimals, true);
    FormatNumber(m_limitTexts[HighAlarm], highAlarm, highAlarmDecimals, true);
}

void VerticalBar::Disable()
{
    m_colours = kDisabledBarColours;
}

bool VerticalBar::Update(const BarReadings& readings)
{
    m_hasInstantValue = false;
    const bool isChanged = m_slots.Update(readings, BarSlots::NewlyValid::IsNoChange);
    m_dirty = m_dirty || isChanged;
    return isChanged;
}

bool VerticalBar::SetInstValue(double value)
{
    BarSlotState& present = m_slots[kPresentSlot];
    const bool isChanged = !IsSameReading(present.value, value);
    m_hasInstantValue = true;
    present.valid = true;
    present.value = value;
    m_dirty = m_dirty || isChanged;
    return isChanged;
}

const DrawList& VerticalBar::Compose(const BarPaint& paint, const TextMeasure& measure)
{
    m_bar = {};
    m_onScale = true;
    if (!BeginCompose(paint)) {
        return m_list;
    }
    PlaceBar(measure);
    if (m_bar.IsEmpty()) {
        m_bar = {};
        if (paint.isEnabled) {
            ComposeNumberOnly(paint, measure);
        }
        return m_list;
    }
    PlaceMarkers();
    AddPicture(BarAxis::Upright, m_bar, paint.colours);
    if (!paint.isEnabled) {
        return m_list;
    }
    AddNumbers(paint, measure);
    AddStrips(paint);
    AddLabel(paint, measure);
    AddMarkers(paint);
    AddLabelInfo(paint, measure);
    AddLimits(paint, measure);
    return m_list;
}

void VerticalBar::PlaceBar(const TextMeasure& measure)
{
    const int line = m_measured.Measure(MeasuredTexts::Sample, measure, FontRole::Value, u"888.888.888").cy;
    m_bar.left = ToPixel(0.35 * m_client.right);
    m_bar.right = m_client.right - ToPixel(0.55 * m_client.right);
    m_bar.top = Shows(kShowLabel) ? ToPixel(1.5 * line) : line;
    m_bar.bottom = m_client.bottom - ToPixel((Shows(kRoomForLabelInfo) ? 1.5 : 0.5) * line);
    m_frame = FrameOf(m_bar);
}

void VerticalBar::PlaceMarkers()
{
    m_scales = UprightScales(m_bar.top, m_bar.bottom, m_limits);
    if ((m_limits.flags & ~kPowerFactor) == 0) {
        AddFlatZone(m_content.stretches, m_bar.top, m_bar.bottom, m_colours.green);
    } else {
        AddZones(m_content.stretches, m_scales, m_limits, m_colours);
    }
    if (!m_scales.lowerRange && !m_scales.upperRange) {
        // Also with kPercentLimits alone: no range, no zone, and the marks alone give a scale.
        PlaceByMarks();
    } else if (m_limits.enabled) {
        PlaceByLimits();
    } else {
        PlaceWithoutChecks();
    }
}

void VerticalBar::PlaceByMarks()
{
    const double low = m_slots[kLowMarkSlot].value;
    const double span = m_slots[kHighMarkSlot].value - low;
    const int margin = m_bar.Height() / 10;
    if (span == 0.0) {
        m_markers = {m_bar.top + margin, m_bar.bottom + margin, m_bar.bottom + margin};
        return;
    }
    // The present value grows downwards and from below the bar, unlike the marks: it is meant.
    const double place = m_bar.bottom + margin + (m_slots[kPresentSlot].value - low) * 0.8 * m_bar.Height() / span;
    const int row = ToPixel(place);
    m_markers = {row < m_bar.top ? m_bar.top + 1 : row, m_bar.top + margin, m_bar.bottom - margin};
}

void VerticalBar::PlaceWithoutChecks()
{
    const std::optional<BarRange>& lower = m_scales.lowerRange;
    const std::optional<BarRange>& upper = m_scales.upperRange;
    if (lower && (m_slots[kPresentSlot].side == BarSide::Lower || !upper)) {
        m_markers[kPresentSlot] = lower->inner;
    } else {
        // Half the bar's width below its top, not half its height: it is meant.
        m_markers[kPresentSlot] = lower ? upper->inner - 2 : m_bar.top + m_bar.Width() / 2;
    }
    m_markers[kHighMarkSlot] = upper ? m_bar.top : lower->inner;
    m_markers[kLowMarkSlot] = lower ? lower->outer : upper->inner;
}

void VerticalBar::PlaceByLimits()
{
    for (int index = 0; index < kBarSlots; ++index) {
        BarSlotState& slot = m_slots[index];
        slot.side = NextSide(slot.side, slot.value, m_scales);
        const BarScale& scale = slot.side == BarSide::Lower ? *m_scales.lower : *m_scales.upper;
        int& marker = m_markers[static_cast<std::size_t>(index)];
        marker = scale.PlaceOf(slot.value);
        if (index == kPresentSlot) {
            ClampPresent(scale.Range());
        } else {
            marker = scale.Range().Clamp(marker);
        }
    }
}

// Only the upper side takes a value off the scale, while the lower one clamps it: the asymmetry is meant.
void VerticalBar::ClampPresent(const BarRange& range)
{
    int& row = m_markers[kPresentSlot];
    const bool isTooLow = row > range.Last() - 2;
    if (m_slots[kPresentSlot].side == BarSide::Lower) {
        row = std::max(isTooLow ? range.Last() - 2 : row, range.First());
        return;
    }
    if (isTooLow) {
        row = range.Last() - 10;
        m_onScale = false;
    }
    if (row < m_bar.top) {
        row = m_bar.top;
        m_onScale = false;
    }
}

}  // namespace zr::controls
