#include "controls/BarSlots.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <string>

namespace zr::controls {
namespace {

using NewlyValid = BarSlots::NewlyValid;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr BarReading kUnlocked = {};
constexpr BarReading kInvalid = {true, false, 0.0};

BarReading Valid(double number)
{
    return {true, true, number};
}

// Remembers what it was asked, a letter a question.
class AskedVariable final : public ZRVariable {
public:
    bool Lock() override { return true; }
    void Unlock() override {}
    bool IsLocked() const override
    {
        asked += 'L';
        return locked;
    }
    bool Info(ZRDeviceDriver::tagSVariableInfo&) const override { return false; }
    bool IsValid() override
    {
        asked += 'V';
        return valid;
    }
    void Value(tagSVariableValue& value) override
    {
        asked += 'N';
        value.type = type;
        value.number = 12.5;
        value.boolean = 1;
    }

    bool locked = true;
    bool valid = true;
    std::int32_t type = tagSVariableValue::kNumber;
    mutable std::string asked;
};

TEST(ReadVariable, AsksLockedThenValidThenTheValue)
{
    AskedVariable variable;
    const BarReading reading = ReadVariable(variable);
    EXPECT_EQ(variable.asked, "LVN");
    EXPECT_TRUE(reading.locked);
    EXPECT_TRUE(reading.valid);
    EXPECT_EQ(reading.number, 12.5);
}

TEST(ReadVariable, AsksNoFurtherThanItMust)
{
    AskedVariable unlocked;
    unlocked.locked = false;
    EXPECT_FALSE(ReadVariable(unlocked).valid);
    EXPECT_EQ(unlocked.asked, "L");
    AskedVariable invalid;
    invalid.valid = false;
    EXPECT_TRUE(ReadVariable(invalid).locked);
    EXPECT_EQ(invalid.asked, "LV");
}

TEST(ReadVariable, TakesABooleanForZeroOrOne)
{
    AskedVariable variable;
    variable.type = tagSVariableValue::kBoolean;
    EXPECT_EQ(ReadVariable(variable).number, 1.0);
}

class BarSlotsTest : public ::testing::Test {
protected:
    bool Update(BarReading present, BarReading high = kUnlocked, BarReading low = kUnlocked,
                NewlyValid newlyValid = NewlyValid::IsChange)
    {
        return slots.Update({present, high, low}, newlyValid);
    }
    // All three locked, their numbers side by side, ten pixels each.
    void LockAndPlace()
    {
        for (int slot = 0; slot < kBarSlots; ++slot) {
            slots.SetLocked(slot, true);
            slots[slot].textRect = {slot * 10, 0, slot * 10 + 10, 10};
        }
    }
    [[nodiscard]] std::array<bool, kBarSlots> Selected() const
    {
        return {slots.Selected(0), slots.Selected(1), slots.Selected(2)};
    }

    BarSlots slots;
};

using Three = std::array<bool, kBarSlots>;

TEST_F(BarSlotsTest, StartsUnlockedInvalidAndUnselectedOnTheLowerSide)
{
    for (int slot = 0; slot < kBarSlots; ++slot) {
        EXPECT_FALSE(slots[slot].locked);
        EXPECT_FALSE(slots[slot].valid);
        EXPECT_FALSE(slots.Selected(slot));
        EXPECT_EQ(slots[slot].side, BarSide::Lower);
        EXPECT_EQ(slots[slot].value, 4294967295.0);
        EXPECT_TRUE(slots[slot].textRect.IsEmpty());
    }
}

TEST_F(BarSlotsTest, LeavesAnUnlockedSlotAlone)
{
    EXPECT_FALSE(Update(kUnlocked));
    EXPECT_EQ(slots[0].value, 4294967295.0);
    Update(Valid(5.0));
    EXPECT_FALSE(Update(kUnlocked));
    EXPECT_FALSE(slots[0].locked);
    EXPECT_TRUE(slots[0].valid);
    EXPECT_EQ(slots[0].value, 5.0);
}

TEST_F(BarSlotsTest, NotesAChangedNumber)
{
    EXPECT_TRUE(Update(Valid(5.0)));
    EXPECT_FALSE(Update(Valid(5.0)));
    EXPECT_TRUE(Update(Valid(6.0)));
    EXPECT_EQ(slots[0].value, 6.0);
}

TEST_F(BarSlotsTest, NotesAChangeOfAnySlot)
{
    Update(Valid(1.0), Valid(2.0), Valid(3.0));
    EXPECT_FALSE(Update(Valid(1.0), Valid(2.0), Valid(3.0)));
    EXPECT_TRUE(Update(Valid(1.0), Valid(2.5), Valid(3.0)));
    EXPECT_TRUE(Update(Valid(1.0), Valid(2.5), Valid(3.5)));
    EXPECT_EQ(slots[1].value, 2.5);
    EXPECT_EQ(slots[2].value, 3.5);
}

TEST_F(BarSlotsTest, NotesASlotThatBecomesValidWhereThatIsAChange)
{
    EXPECT_TRUE(Update(Valid(4294967295.0)));
    Update(kInvalid);
    EXPECT_TRUE(Update(Valid(4294967295.0)));
}

TEST_F(BarSlotsTest, NotesNoSlotThatBecomesValidWhereThatIsNone)
{
    EXPECT_FALSE(Update(Valid(4294967295.0), kUnlocked, kUnlocked, NewlyValid::IsNoChange));
    EXPECT_TRUE(slots[0].valid);
    EXPECT_TRUE(Update(Valid(1.0), kUnlocked, kUnlocked, NewlyValid::IsNoChange));
}

TEST_F(BarSlotsTest, NotesNoSlotThatFallsInvalid)
{
    Update(Valid(5.0));
    EXPECT_FALSE(Update(kInvalid));
    EXPECT_FALSE(slots[0].valid);
    EXPECT_EQ(slots[0].value, 5.0);
}

TEST_F(BarSlotsTest, StoresANanWithoutNotingIt)
{
    Update(Valid(5.0));
    EXPECT_FALSE(Update(Valid(kNan)));
    EXPECT_TRUE(std::isnan(slots[0].value));
    EXPECT_FALSE(Update(Valid(7.0)));
    EXPECT_EQ(slots[0].value, 7.0);
    EXPECT_TRUE(Update(Valid(8.0)));
}

TEST_F(BarSlotsTest, SelectsLockedSlotsOnly)
{
    EXPECT_FALSE(slots.Select(1, true));
    EXPECT_FALSE(slots.Selected(1));
    slots.SetLocked(1, true);
    EXPECT_TRUE(slots.Select(1, true));
    EXPECT_TRUE(slots.Selected(1));
    slots.SetLocked(1, false);
    EXPECT_FALSE(slots.Select(1, false));
    EXPECT_TRUE(slots.Selected(1));
}

TEST_F(BarSlotsTest, ReportsASelectionOnlyWhenItChanges)
{
    slots.SetLocked(0, true);
    EXPECT_FALSE(slots.Select(0, false));
    EXPECT_TRUE(slots.Select(0, true));
    EXPECT_FALSE(slots.Select(0, true));
    EXPECT_TRUE(slots.Select(0, false));
}

TEST_F(BarSlotsTest, SelectsNoSlotWhoseSelectionIsDisabled)
{
    LockAndPlace();
    slots.SetEnableSelection(true, false, true);
    EXPECT_FALSE(slots.Select(1, true));
    EXPECT_FALSE(slots.Selected(1));
    EXPECT_TRUE(slots.Select(2, true));
}

TEST_F(BarSlotsTest, TellsWhatMayBeSelected)
{
    Update(Valid(1.0), kUnlocked, kInvalid);
    slots.SetEnableSelection(true, true, true);
    EXPECT_TRUE(slots.IsSelectable(0));
    EXPECT_FALSE(slots.IsSelectable(1));
    EXPECT_TRUE(slots.IsSelectable(2));
    slots.SetEnableSelection(false, true, true);
    EXPECT_FALSE(slots.IsSelectable(0));
    for (const int slot : {-1, 3}) {
        EXPECT_FALSE(slots.IsSelectable(slot));
    }
}

TEST_F(BarSlotsTest, UnselectsASlotWhoseSelectionWasDisabledSince)
{
    LockAndPlace();
    slots.Select(1, true);
    slots.SetEnableSelection(true, false, true);
    EXPECT_TRUE(slots.Select(1, true));
    EXPECT_FALSE(slots.Selected(1));
}

TEST_F(BarSlotsTest, IgnoresSlotsThatArentThere)
{
    for (const int slot : {-1, 3, 1000}) {
        slots.SetLocked(slot, true);
        EXPECT_FALSE(slots.Select(slot, true));
        EXPECT_FALSE(slots.Selected(slot));
    }
}

TEST_F(BarSlotsTest, TogglesTheSlotThatWasHit)
{
    LockAndPlace();
    EXPECT_TRUE(slots.Click({15, 5}, false));
    EXPECT_EQ(Selected(), (Three{false, true, false}));
    EXPECT_TRUE(slots.Click({15, 5}, false));
    EXPECT_EQ(Selected(), (Three{false, false, false}));
}

TEST_F(BarSlotsTest, TakesTheFirstOfTwoSlotsThatOverlap)
{
    LockAndPlace();
    slots[2].textRect = slots[1].textRect;
    slots.Click({12, 2}, false);
    EXPECT_EQ(Selected(), (Three{false, true, false}));
}

TEST_F(BarSlotsTest, HitsInsideTheTextOnly)
{
    LockAndPlace();
    EXPECT_TRUE(slots.Click({0, 0}, false));
    EXPECT_TRUE(slots.Click({29, 9}, false));
    EXPECT_FALSE(slots.Click({30, 5}, false));
    EXPECT_FALSE(slots.Click({5, 10}, false));
    EXPECT_FALSE(slots.Click({-1, 5}, false));
    EXPECT_EQ(Selected(), (Three{true, false, true}));
}

TEST_F(BarSlotsTest, GivesAllSlotsTheSameStateWithShift)
{
    LockAndPlace();
    slots.Select(2, true);
    EXPECT_TRUE(slots.Click({5, 5}, true));
    EXPECT_EQ(Selected(), (Three{true, true, true}));
    EXPECT_TRUE(slots.Click({15, 5}, true));
    EXPECT_EQ(Selected(), (Three{false, false, false}));
}

TEST_F(BarSlotsTest, LeavesWhatCantBeSelectedOutWithShift)
{
    LockAndPlace();
    slots.SetLocked(1, false);
    slots.SetEnableSelection(true, true, false);
    EXPECT_TRUE(slots.Click({5, 5}, true));
    EXPECT_EQ(Selected(), (Three{true, false, false}));
}

TEST_F(BarSlotsTest, ShowsAHandOverWhatCanBeSelectedAndAnArrowElsewhere)
{
    LockAndPlace();
    slots.SetEnableSelection(false, true, false);
    EXPECT_EQ(slots.CursorAt({15, 5}), BarCursor::Hand);
    EXPECT_EQ(slots.CursorAt({5, 5}), BarCursor::Arrow);
    EXPECT_EQ(slots.CursorAt({50, 50}), BarCursor::Arrow);
}

TEST_F(BarSlotsTest, LeavesTheCursorAloneWhereNothingCanBeSelected)
{
    LockAndPlace();
    slots.SetEnableSelection(false, false, false);
    EXPECT_EQ(slots.CursorAt({15, 5}), BarCursor::Untouched);
}

}  // namespace
}  // namespace zr::controls
