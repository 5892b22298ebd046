// The three values of a bar: what was read, which are selected, and where their numbers stand.
#pragma once

#include "controls/DrawList.h"
#include "siblings/driversupport/ZRDriverVariable.h"
#include "siblings/tools/ZRBasicString.h"

#include <array>

namespace zr::controls {

// Slots of a bar. Zero-based.
inline constexpr int kPresentSlot = 0;
inline constexpr int kHighMarkSlot = 1;
inline constexpr int kLowMarkSlot = 2;
inline constexpr int kBarSlots = 3;

// The range of the scale that a marker stands in.
enum class BarSide { Upper = 2, Lower = 4 };

// A variable at one Update.
struct BarReading {
    bool locked = false;
    bool valid = false;   // false unless locked
    double number = 0.0;  // 0.0 unless valid
};
using BarReadings = std::array<BarReading, kBarSlots>;

// Asks a variable in the fixed order: IsLocked, IsValid, Value.
[[nodiscard]] BarReading ReadVariable(ZRVariable& variable);

struct BarSlotState {
    bool locked = false;
    bool selected = false;
    double value = 4294967295.0;  // a mark that differs from any first reading
    Rect textRect;                // where the number was last placed, client coordinates; empty when it wasn't
    BarSide side = BarSide::Lower;
    bool valid = false;
    ZRBasicString units;  // of an upright bar; empty when not locked
};

// What the mouse pointer becomes over a bar.
enum class BarCursor { Untouched, Arrow, Hand };

// The three slots with the rules of reading and of selecting them. Slots out of range do nothing and are never
// selected. UI thread only.
class BarSlots {
public:
    // Whether a slot that becomes valid counts as changed, though its number may be the old one.
    enum class NewlyValid { IsChange, IsNoChange };

    // Takes new readings; whether any slot noted a change. A slot that isn't locked stays as it is, and one that falls
    // invalid notes no change, which is meant.
    bool Update(const BarReadings& readings, NewlyValid newlyValid);
    // After a variable was locked or let go outside Update.
    void SetLocked(int slot, bool locked);

    void SetEnableSelection(bool present, bool highMark, bool lowMark);
    // Whether a click or a key may select the slot: it is enabled and locked.
    [[nodiscard]] bool IsSelectable(int slot) const;
    // Whether the selection changed: the window is then invalidated with erasing. Nothing unless the slot is locked.
    bool Select(int slot, bool selected);
    [[nodiscard]] bool Selected(int slot) const;
    // The left button came up there; with Shift all three slots become what the one that was hit becomes. Returns as
    // Select().
    bool Click(Point point, bool withShift);
    [[nodiscard]] BarCursor CursorAt(Point point) const;

    [[nodiscard]] BarSlotState& operator[](int slot) { return m_slots.at(static_cast<std::size_t>(slot)); }
    [[nodiscard]] const BarSlotState& operator[](int slot) const { return m_slots.at(static_cast<std::size_t>(slot)); }

private:
    // kBarSlots when the point hits none.
    [[nodiscard]] int SlotAt(Point point) const;

    std::array<BarSlotState, kBarSlots> m_slots;
    std::array<bool, kBarSlots> m_enableSelection = {true, true, true};
};

}  // namespace zr::controls
