#include "controls/BarSlots.h"

#include "controls/LimitChecks.h"
#include "controls/ShownText.h"

namespace zr::controls {

namespace {

bool IsSlot(int slot)
{
    return slot >= 0 && slot < kBarSlots;
}

}  // namespace

BarReading ReadVariable(ZRVariable& variable)
{
    BarReading reading;
    reading.locked = variable.IsLocked();
    reading.valid = reading.locked && variable.IsValid();
    if (reading.valid) {
        tagSVariableValue value;
        variable.Value(value);
        reading.number = NumberOf(value);
    }
    return reading;
}

bool BarSlots::Update(const BarReadings& readings, NewlyValid newlyValid)
{
    bool isChanged = false;
    for (int index = 0; index < kBarSlots; ++index) {
        BarSlotState& slot = (*this)[index];
        const BarReading& reading = readings[static_cast<std::size_t>(index)];
        slot.locked = reading.locked;
        if (!reading.locked) {
            continue;
        }
        if (reading.valid) {
            const bool isNew = !slot.valid && newlyValid == NewlyValid::IsChange;
            isChanged = isChanged || isNew || !IsSameReading(slot.value, reading.number);
            slot.value = reading.number;
        }
        slot.valid = reading.valid;
    }
    return isChanged;
}

void BarSlots::SetLocked(int slot, bool locked)
{
    if (IsSlot(slot)) {
        (*this)[slot].locked = locked;
    }
}

void BarSlots::SetEnableSelection(bool present, bool highMark, bool lowMark)
{
    m_enableSelection = {present, highMark, lowMark};
}

bool BarSlots::IsSelectable(int slot) const
{
    return IsSlot(slot) && (*this)[slot].locked && m_enableSelection[static_cast<std::size_t>(slot)];
}

bool BarSlots::Select(int slot, bool selected)
{
    if (!IsSlot(slot) || !(*this)[slot].locked) {
        return false;
    }
    const bool isSelected = selected && IsSelectable(slot);
    if (isSelected == (*this)[slot].selected) {
        return false;
    }
    (*this)[slot].selected = isSelected;
    return true;
}

bool BarSlots::Selected(int slot) const
{
    return IsSlot(slot) && (*this)[slot].selected;
}

bool BarSlots::Click(Point point, bool withShift)
{
    const int hit = SlotAt(point);
    if (hit == kBarSlots) {
        return false;
    }
    const bool selected = !(*this)[hit].selected;
    bool isChanged = Select(hit, selected);
    for (int slot = 0; withShift && slot < kBarSlots; ++slot) {
        isChanged = Select(slot, selected) || isChanged;
    }
    return isChanged;
}

BarCursor BarSlots::CursorAt(Point point) const
{
    BarCursor cursor = BarCursor::Untouched;
    for (int slot = 0; slot < kBarSlots; ++slot) {
        if (!m_enableSelection[static_cast<std::size_t>(slot)]) {
            continue;
        }
        if ((*this)[slot].textRect.Contains(point)) {
            return BarCursor::Hand;
        }
        cursor = BarCursor::Arrow;
    }
    return cursor;
}

int BarSlots::SlotAt(Point point) const
{
    int slot = 0;
    while (slot < kBarSlots && !(*this)[slot].textRect.Contains(point)) {
        ++slot;
    }
    return slot;
}

}  // namespace zr::controls
