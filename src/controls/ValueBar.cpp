#include "controls/ValueBar.h"

#include "controls/DrawHelp.h"
#include "controls/ShownText.h"
#include "controls/TextOn.h"

#include <algorithm>

namespace zr::controls {

namespace {

constexpr int kLeastBarHeight = 10;
constexpr int kLeastFontSize = 90;
// No window is larger; keeps all sums in range.
constexpr int kLargestClient = 32767;

int HeldToClient(int extent)
{
    return std::clamp(extent, 0, kLargestClient);
}

}  // namespace

void ValueBar::SetupBar(int barHeight, int fontSize)
{
    m_barHeight = std::max(barHeight, kLeastBarHeight);
    m_fontSize = std::max(fontSize, kLeastFontSize);
    m_colours = {};
}

void ValueBar::FontsChanged(const TextMeasure& measure)
{
    m_measured.Forget();
    m_idealHeight = m_barHeight + 2 * measure.Measure(FontRole::Value, u"8").cy + 6;
}

void ValueBar::SetupChecks(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                           double nominal)
{
    m_limits.Setup(flags, lowWarning, lowAlarm, highWarning, highAlarm, nominal);
    for (int slot = 0; slot < kBarSlots; ++slot) {
        m_slots[slot].side = m_limits.Has(kCheckLowLimits) ? BarSide::Lower : BarSide::Upper;
    }
}

bool ValueBar::BeginCompose(const BarPaint& paint)
{
    m_list.clear();
    m_content.stretches.clear();
    for (int slot = 0; slot < kBarSlots; ++slot) {
        m_slots[slot].textRect = {};
    }
    m_client = {0, 0, HeldToClient(paint.client.cx), HeldToClient(paint.client.cy)};
    return !m_client.IsEmpty();
}

void ValueBar::AddPicture(BarAxis axis, const Rect& bar, const SystemColours& colours)
{
    const int origin = axis == BarAxis::Horizontal ? bar.left : bar.top;
    for (BarStretch& stretch : m_content.stretches) {
        stretch.from -= origin;
        stretch.to -= origin;
    }
    m_content.size = {bar.Width(), bar.Height()};
    m_content.axis = axis;
    m_content.background = colours.face;
    m_picture.Paint(m_content);

    m_list.emplace_back(BumpFrame{FrameOf(bar)});
    m_list.emplace_back(Picture{bar});
}

void ValueBar::ComposeNumberOnly(const BarPaint& paint, const TextMeasure& measure)
{
    BarSlotState& present = m_slots[kPresentSlot];
    if (present.locked) {
        const ZRBasicString text = SlotText(kPresentSlot, paint);
        const Size size = m_measured.Measure(MeasuredTexts::Present, measure, FontRole::Value, text);
        present.textRect = RectAt((m_client.right - size.cx) / 2, 0, size);
        AddNumber(kPresentSlot, text, paint.colours);
    }
    if (m_dirty) {
        m_dirty = false;
        AddFillAround(m_list, m_client, present.textRect, {}, paint.colours.face);
    }
}

ZRBasicString ValueBar::SlotText(int slot, const BarPaint& paint) const
{
    if (!m_slots[slot].valid) {
        return u"-";
    }
    return ShownText(m_slots[slot].value, paint.info.at(static_cast<std::size_t>(slot)));
}

void ValueBar::AddNumber(int slot, const ZRBasicString& text, const SystemColours& colours)
{
    const bool isSelected = m_slots[slot].selected;
    m_list.emplace_back(Text{m_slots[slot].textRect, text, FontRole::Value, isSelected ? kWhite : TextOn(colours.face),
                             isSelected ? colours.activeCaption : colours.face});
}

Rect ValueBar::FrameOf(const Rect& bar)
{
    return {bar.left - 2, bar.top - 2, bar.right + 2, bar.bottom + 2};
}

}  // namespace zr::controls
