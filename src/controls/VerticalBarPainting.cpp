// What stands around the zones of an upright bar: numbers, markers, labels and limits.
#include "controls/BarLabel.h"
#include "controls/DrawHelp.h"
#include "controls/TextOn.h"
#include "controls/VerticalBar.h"

#include <algorithm>

namespace zr::controls {

void VerticalBar::AddNumbers(const BarPaint& paint, const TextMeasure& measure)
{
    static constexpr std::array kUses = {MeasuredTexts::Present, MeasuredTexts::HighMark, MeasuredTexts::LowMark};
    if (m_dirty && m_frame.bottom < m_client.bottom) {
        m_list.emplace_back(Fill{{0, m_frame.bottom, m_client.right, m_client.bottom}, paint.colours.face});
    }
    for (int index = 0; index < kBarSlots; ++index) {
        BarSlotState& slot = m_slots[index];
        if (!slot.locked) {
            continue;
        }
        const bool isPresent = index == kPresentSlot;
        ZRBasicString text = isPresent ? u" " + SlotText(index, paint) + u" " : SlotText(index, paint);
        if (slot.valid && Shows(kShowUnits)) {
            text += slot.units;
        }
        const Size size = m_measured.Measure(kUses[static_cast<std::size_t>(index)], measure, FontRole::Value, text);
        const int left = isPresent ? m_frame.right + 3 : m_frame.left - 3 - size.cx;
        const int row = MarkerOf(index);
        const int bottom = isPresent ? row - 1 : row;
        slot.textRect = RectAt(left, index == kLowMarkSlot ? row : bottom - size.cy, size);
        AddNumber(index, text, paint.colours);
    }
}

// The window isn't erased for a new value: this is what clears the old numbers.
void VerticalBar::AddStrips(const BarPaint& paint)
{
    if (!m_dirty) {
        return;
    }
    m_dirty = false;
    AddFillAround(m_list, {0, 0, m_frame.left, m_frame.bottom}, m_slots[kHighMarkSlot].textRect,
                  m_slots[kLowMarkSlot].textRect, paint.colours.face);
    AddFillAround(m_list, {m_frame.right, 0, m_client.right, m_frame.bottom}, m_slots[kPresentSlot].textRect, {},
                  paint.colours.face);
}

Rect VerticalBar::LabelCell(int labelWidth) const
{
    const Rect narrow = {m_frame.left, 0, m_frame.right, m_frame.top - 1};
    if (labelWidth <= narrow.Width()) {
        return narrow;
    }
    // A tenth of the window is too little for most labels.
    const int left = (narrow.left + narrow.right - labelWidth) / 2;
    const Rect wide = {std::max(left - 2, 0), 0, std::min(left + labelWidth + 3, m_client.right), narrow.bottom};
    for (int slot = 0; slot < kBarSlots; ++slot) {
        if (m_slots[slot].locked && wide.Meets(m_slots[slot].textRect)) {
            return narrow;
        }
    }
    return wide;
}

void VerticalBar::AddLabel(const BarPaint& paint, const TextMeasure& measure)
{
    if (!Shows(kShowLabel)) {
        return;
    }
    const Size whole = m_measured.Measure(MeasuredTexts::Label, measure, FontRole::Label, m_label);
    const Rect cell = LabelCell(whole.cx);
    if (cell.IsEmpty()) {
        return;
    }
    const LabelColours colours = LabelColoursOf(m_limits, m_slots[kPresentSlot], m_colours, paint.colours.face);
    m_list.emplace_back(Fill{cell, colours.brush});
    Size size;
    const ZRBasicString& text =
        m_measured.Fit(MeasuredTexts::Label, measure, FontRole::Label, m_label, cell.Width(), size);
    if (!text.IsEmpty()) {
        const int left = cell.left + (cell.Width() - size.cx) / 2;
        m_list.emplace_back(Text{RectAt(left, 0, size), text, FontRole::Label, colours.text, {}});
    }
}

void VerticalBar::AddMarkers(const BarPaint& paint)
{
    if (m_slots[kPresentSlot].locked) {
        const int row = MarkerOf(kPresentSlot);
        if (m_onScale) {
            const Rect line = {m_bar.left, row, m_slots[kPresentSlot].textRect.right, row + 2};
            AddMark(m_list, line, m_bar, HasZones(), paint.colours.face);
        } else {
            AddArrow(paint);
        }
    }
    for (const int slot : {kHighMarkSlot, kLowMarkSlot}) {
        if (m_slots[slot].locked) {
            AddLimitTick(MarkerOf(slot), paint);
        }
    }
}

// Points to where the value would be: the shaft is eleven rows high, the head three.
void VerticalBar::AddArrow(const BarPaint& paint)
{
    const int row = MarkerOf(kPresentSlot);
    const int right = m_frame.right;
    const Rgb colour = TextOn(paint.colours.face);
    m_list.emplace_back(Fill{{right + 6, row + 1, right + 8, row + 12}, colour});
    const bool isUp = row < m_bar.top + m_bar.Height() / 2;
    for (int line = 0; line < 3; ++line) {
        const int y = isUp ? row + 2 + line : row + 10 - line;
        m_list.emplace_back(Fill{{right + 5 - line, y, right + 9 + line, y + 1}, colour});
    }
}

void VerticalBar::AddLabelInfo(const BarPaint& paint, const TextMeasure& measure)
{
    if (!Shows(kRoomForLabelInfo) || !m_hasInstantValue || m_labelInfo.IsEmpty()) {
        return;
    }
    Size size;
    const ZRBasicString& text =
        m_measured.Fit(MeasuredTexts::Info, measure, FontRole::Value, m_labelInfo, m_client.right, size);
    if (!text.IsEmpty()) {
        const Rect rect =
            RectAt((m_client.right - size.cx) / 2, (m_frame.bottom + m_client.bottom - size.cy) / 2, size);
        m_list.emplace_back(Text{rect, text, FontRole::Value, TextOn(paint.colours.face), {}});
    }
}

void VerticalBar::AddLimits(const BarPaint& paint, const TextMeasure& measure)
{
    if (!Shows(kShowLimits) || !m_limits.enabled) {
        return;
    }
    if (m_scales.lower) {
        AddLowLimit(LowAlarm, m_scales.lower->PlaceOfAlarm(), paint, measure);
        AddLowLimit(LowWarning, m_scales.lower->PlaceOfWarning(), paint, measure);
    }
    if (m_scales.upper) {
        AddHighLimit(HighAlarm, m_scales.upper->PlaceOfAlarm(), paint, measure);
        AddHighLimit(HighWarning, m_scales.upper->PlaceOfWarning(), paint, measure);
    }
}

void VerticalBar::AddLimitTick(int row, const BarPaint& paint)
{
    AddMark(m_list, {m_frame.left - 3, row - 1, m_frame.right + 3, row + 1}, m_bar, HasZones(), paint.colours.face);
}

void VerticalBar::AddLowLimit(Limit limit, int row, const BarPaint& paint, const TextMeasure& measure)
{
    const ZRBasicString& text = m_limitTexts[limit];
    const Size size = m_measured.Measure(limit == LowAlarm ? MeasuredTexts::LowAlarm : MeasuredTexts::LowWarning,
                                         measure, FontRole::Value, text);
    const int bottom = row + size.cy / 2;
    const Rect room = {0, bottom - size.cy, m_frame.left - 4, bottom};
    const auto isTaken = [&](int slot) { return m_slots[slot].locked && room.Meets(m_slots[slot].textRect); };
    if (!isTaken(kHighMarkSlot) && !isTaken(kLowMarkSlot)) {
        AddLimitText(text, size, bottom, paint);
    }
    AddLimitTick(row, paint);
}

// Not held against the numbers of the marks, unlike a low limit: it is meant.
void VerticalBar::AddHighLimit(Limit limit, int row, const BarPaint& paint, const TextMeasure& measure)
{
    const bool isAlarm = limit == HighAlarm;
    const auto use = isAlarm ? MeasuredTexts::HighAlarm : MeasuredTexts::HighWarning;
    const auto numberUse = isAlarm ? MeasuredTexts::HighAlarmNumber : MeasuredTexts::HighWarningNumber;
    const bool hasUnits = Shows(kShowUnits);
    const ZRBasicString& number = m_limitTexts[limit];
    const ZRBasicString text = hasUnits ? number + u" " + m_limitUnits : number;
    const Size size = m_measured.Measure(use, measure, FontRole::Value, text);
    if (hasUnits && size.cx > m_frame.left - 4) {
        const Size units = m_measured.Measure(MeasuredTexts::Units, measure, FontRole::Value, m_limitUnits);
        AddLimitText(number, m_measured.Measure(numberUse, measure, FontRole::Value, number), row, paint);
        AddLimitText(m_limitUnits, units, row + units.cy, paint);
    } else {
        AddLimitText(text, size, row + size.cy / 2, paint);
    }
    AddLimitTick(row, paint);
}

void VerticalBar::AddLimitText(const ZRBasicString& text, Size size, int bottom, const BarPaint& paint)
{
    if (!text.IsEmpty()) {
        const Rect rect = RectAt(m_frame.left - 4 - size.cx, bottom - size.cy, size);
        m_list.emplace_back(Text{rect, text, FontRole::Value, TextOn(paint.colours.face), paint.colours.face});
    }
}

}  // namespace zr::controls
