#include "controls/HorizontalBar.h"

#include "controls/BarLabel.h"
#include "controls/BarZones.h"
#include "controls/DrawHelp.h"

#include <algorithm>

namespace zr::controls {

namespace {

// The numbers of the two marks keep this distance from each other.
constexpr int kNumberGap = 5;

void Shift(Rect& rect, int dx)
{
    rect.left += dx;
    rect.right += dx;
}

// A text wider than the room begins at its left end.
void PushInside(Rect& rect, const Rect& room)
{
    Shift(rect, -std::max(rect.right - room.right, 0));
    Shift(rect, std::max(room.left - rect.left, 0));
}

// Keeps the number of the high mark in the client, at the cost of the low mark's.
void PushApart(Rect& low, Rect& high, const Rect& client)
{
    const int overlap = low.right + kNumberGap - high.left;
    if (overlap <= 0) {
        return;
    }
    Shift(low, -(overlap / 2 + 1));
    Shift(high, overlap / 2 + 1);
    if (high.right > client.right) {
        const int excess = high.right - client.right;
        Shift(low, -(excess + 1));
        Shift(high, -(excess + 1));
    }
    if (low.left < client.left) {
        // Negative, so that both go further left: it is meant.
        const int beyond = low.left - client.left + 1;
        Shift(low, beyond);
        Shift(high, beyond);
    }
}

}  // namespace

bool HorizontalBar::Update(const BarReadings& readings)
{
    const bool isChanged = m_slots.Update(readings, BarSlots::NewlyValid::IsChange);
    m_dirty = m_dirty || isChanged;
    return isChanged;
}

const DrawList& HorizontalBar::Compose(const BarPaint& paint, const TextMeasure& measure)
{
    m_bar = {};
    if (!BeginCompose(paint)) {
        return m_list;
    }
    const Size sample = m_measured.Measure(MeasuredTexts::Sample, measure, FontRole::Value, u"888.888");
    m_bar = {sample.cx, sample.cy + 3, m_client.right - sample.cx, m_client.bottom - sample.cy - 3};
    if (m_bar.IsEmpty()) {
        m_bar = {};
        ComposeNumberOnly(paint, measure);
        return m_list;
    }
    if (m_limits.Has(kPowerFactor)) {
        PlaceByPowerFactor();
    } else {
        PlaceByScale();
    }
    AddPicture(BarAxis::Horizontal, m_bar, paint.colours);
    AddLabel(paint, measure, sample);
    AddNumbers(paint, measure);
    AddStrips(paint);
    AddTicks(paint);
    return m_list;
}

void HorizontalBar::PlaceByScale()
{
    const BarScales scales = HorizontalScales(m_bar.left, m_bar.right, m_limits);
    if (m_limits.flags == 0) {
        AddFlatZone(m_content.stretches, m_bar.left, m_bar.right, m_colours.green);
    } else {
        AddZones(m_content.stretches, scales, m_limits, m_colours);
    }
    if (!scales.lowerRange && !scales.upperRange) {
        // Also with kPercentLimits alone: no range, no zone, and the marks alone give a scale.
        PlaceByMarks();
    } else if (m_limits.enabled) {
        PlaceByLimits(scales);
    } else {
        PlaceWithoutChecks(scales);
    }
}

void HorizontalBar::PlaceByMarks()
{
    const double low = m_slots[kLowMarkSlot].value;
    const double span = m_slots[kHighMarkSlot].value - low;
    const int margin = m_bar.Width() / 10;
    if (span == 0.0) {
        m_markers.fill(m_bar.left + margin);
        return;
    }
    const double place = m_bar.left + margin + (m_slots[kPresentSlot].value - low) * 0.8 * m_bar.Width() / span;
    // Not held on the right, which is meant.
    m_markers = {std::max(ToPixel(place), m_bar.left), m_bar.right - margin, m_bar.left + margin};
}

void HorizontalBar::PlaceWithoutChecks(const BarScales& scales)
{
    const std::optional<BarRange>& lower = scales.lowerRange;
    const std::optional<BarRange>& upper = scales.upperRange;
    if (lower && (m_slots[kPresentSlot].side == BarSide::Lower || !upper)) {
        m_markers[kPresentSlot] = lower->inner;
    } else {
        m_markers[kPresentSlot] = lower ? upper->inner : upper->inner + upper->Length() / 2;
    }
    m_markers[kHighMarkSlot] = upper ? upper->outer : lower->inner;
    m_markers[kLowMarkSlot] = lower ? lower->outer : upper->inner;
}

void HorizontalBar::PlaceByLimits(const BarScales& scales)
{
    for (int index = 0; index < kBarSlots; ++index) {
        BarSlotState& slot = m_slots[index];
        slot.side = NextSide(slot.side, slot.value, scales);
        const BarScale& scale = slot.side == BarSide::Lower ? *scales.lower : *scales.upper;
        m_markers[static_cast<std::size_t>(index)] = scale.Range().Clamp(scale.PlaceOf(slot.value));
    }
}

void HorizontalBar::PlaceByPowerFactor()
{
    if (!m_limits.enabled) {
        AddFlatZone(m_content.stretches, m_bar.left, m_bar.right, m_colours.green);
        m_markers = {m_bar.left + m_bar.Width() / 2, m_bar.right, m_bar.left};
        return;
    }
    AddPowerFactorZones(m_content.stretches, m_bar.left, m_bar.right, m_limits, m_colours);
    for (int slot = 0; slot < kBarSlots; ++slot) {
        const int place = ToPixel(PowerFactorPosition(m_slots[slot].value, m_bar.left, m_bar.right));
        m_markers[static_cast<std::size_t>(slot)] = std::clamp(place, m_bar.left, m_bar.right);
    }
}

void HorizontalBar::AddLabel(const BarPaint& paint, const TextMeasure& measure, Size sample)
{
    const LabelColours colours = (m_limits.Has(kPowerFactor) ? PowerFactorLabelColoursOf : LabelColoursOf)(
        m_limits, m_slots[kPresentSlot], m_colours, paint.colours.face);
    // A label wider than its column is shortened, so that it leaves the bar alone.
    const Rect frame = FrameOf(m_bar);
    Size size;
    const ZRBasicString& text =
        m_measured.Fit(MeasuredTexts::Label, measure, FontRole::Label, m_label, frame.left, size);
    const int left = sample.cx / 2 - size.cx / 2;
    m_list.emplace_back(
        Fill{{std::max(left - 2, 0), m_bar.top - 2, std::min(left + size.cx + 3, frame.left), m_bar.bottom + 2},
             colours.brush});
    if (!text.IsEmpty()) {
        const int bottom = m_bar.top + m_bar.Height() / 2 + sample.cy / 2;
        m_list.emplace_back(Text{RectAt(std::min(left, frame.left - size.cx), bottom - size.cy, size),
                                 text,
                                 FontRole::Label,
                                 colours.text,
                                 {}});
    }
}

void HorizontalBar::AddNumbers(const BarPaint& paint, const TextMeasure& measure)
{
    static constexpr std::array kUses = {MeasuredTexts::Present, MeasuredTexts::HighMark, MeasuredTexts::LowMark};
    std::array<ZRBasicString, kBarSlots> texts;
    std::array<Size, kBarSlots> sizes;
    for (int slot = 0; slot < kBarSlots; ++slot) {
        const auto index = static_cast<std::size_t>(slot);
        if (m_slots[slot].locked) {
            const ZRBasicString number = SlotText(slot, paint);
            texts[index] = slot == kPresentSlot ? u" " + number + u" " : number;
            sizes[index] = m_measured.Measure(kUses[index], measure, FontRole::Value, texts[index]);
        }
    }
    const Size present = sizes[kPresentSlot];
    if (m_slots[kPresentSlot].locked) {
        m_slots[kPresentSlot].textRect = RectAt(m_markers[kPresentSlot] - present.cx / 2, 0, present);
    }
    PlaceMarkNumbers(sizes[kHighMarkSlot], sizes[kLowMarkSlot]);
    for (int slot = 0; slot < kBarSlots; ++slot) {
        if (m_slots[slot].locked) {
            AddNumber(slot, texts[static_cast<std::size_t>(slot)], paint.colours);
        }
    }
}

void HorizontalBar::PlaceMarkNumbers(Size highMark, Size lowMark)
{
    const bool hasHigh = m_slots[kHighMarkSlot].locked;
    const bool hasLow = m_slots[kLowMarkSlot].locked;
    Rect high = RectAt(m_markers[kHighMarkSlot] + 2, m_client.bottom - highMark.cy, highMark);
    Rect low = RectAt(m_markers[kLowMarkSlot] - 2 - lowMark.cx, m_client.bottom - lowMark.cy, lowMark);
    PushInside(high, m_client);
    PushInside(low, m_client);
    // One pixel away from the marker, after being pushed: it is meant.
    Shift(high, 1);
    Shift(low, -1);
    if (hasHigh && hasLow) {
        PushApart(low, high, m_client);
    }
    m_slots[kHighMarkSlot].textRect = hasHigh ? high : Rect{};
    m_slots[kLowMarkSlot].textRect = hasLow ? low : Rect{};
}

// The window isn't erased for a new value: this is what clears the old numbers.
void HorizontalBar::AddStrips(const BarPaint& paint)
{
    if (!m_dirty) {
        return;
    }
    m_dirty = false;
    const Rect frame = FrameOf(m_bar);
    AddFillAround(m_list, {0, 0, m_client.right, frame.top}, m_slots[kPresentSlot].textRect, {}, paint.colours.face);
    AddFillAround(m_list, {0, frame.bottom, m_client.right, m_client.bottom}, m_slots[kLowMarkSlot].textRect,
                  m_slots[kHighMarkSlot].textRect, paint.colours.face);
}

void HorizontalBar::AddTicks(const BarPaint& paint)
{
    for (const int slot : {kPresentSlot, kLowMarkSlot, kHighMarkSlot}) {
        if (!m_slots[slot].locked) {
            continue;
        }
        const int x = MarkerOf(slot);
        const bool isPresent = slot == kPresentSlot;
        const Rect tick = {x - 1, isPresent ? m_bar.top - 3 : m_bar.bottom - 3, x + 1,
                           isPresent ? m_bar.bottom : m_bar.bottom + 3};
        AddMark(m_list, tick, m_bar, HasZones(), paint.colours.face);
    }
}

}  // namespace zr::controls
