// What stands around the zones: labels, numbers and markers.
#include "VerticalBarFixture.h"

namespace zr::controls {
namespace {

// --- numbers ---

TEST_F(VerticalBarTest, PutsTheValueRightOfTheBarAndTheMarksLeftOfIt)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{" 190 ", "250", "175"}));
    EXPECT_EQ(TextRect(kPresentSlot), (Rect{95, 321, 125, 331}));
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{47, 120, 65, 130}));
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{47, 392, 65, 402}));
}

TEST_F(VerticalBarTest, AddsUnitsOnlyWhereItsFlagSaysSo)
{
    for (int slot = 0; slot < kBarSlots; ++slot) {
        bar.SetUnits(slot, u"V");
    }
    bar.SetUnits(7, u"X");
    ReadAll(190.0, 250.0, 175.0);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{" 190 ", "250", "175"}));
    SetupBar(kShowUnits);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{" 190 V", "250V", "175V"}));
    Read(kInvalid, kInvalid, kInvalid);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{" - ", "-", "-"}));
}

TEST_F(VerticalBarTest, ShowsNothingOfASlotThatIsntLocked)
{
    CheckBoth();
    Read(kUnlocked, Valid(250.0), kUnlocked);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{"250"}));
    EXPECT_TRUE(TextRect(kPresentSlot).IsEmpty());
    EXPECT_TRUE(TextRect(kLowMarkSlot).IsEmpty());
}

TEST_F(VerticalBarTest, ColoursASelectedNumber)
{
    ReadAll(1.0, 2.0, 3.0);
    bar.Slots().Select(kPresentSlot, true);
    EXPECT_EQ(TextLike(Compose(), u" 1 ").colour, kWhite);
    EXPECT_EQ(TextLike(Compose(), u" 1 ").background, paint.colours.activeCaption);
    EXPECT_EQ(TextLike(Compose(), u"2").colour, kBlack);
}

// --- markers ---

TEST_F(VerticalBarTest, MarksTheValuesWithTwoRows)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    EXPECT_TRUE(HasFill(Compose(), {70, 332, 125, 334}, kBlack));  // to the right end of its number
    EXPECT_TRUE(HasFill(Compose(), {65, 129, 95, 131}, kBlack));
    EXPECT_TRUE(HasFill(Compose(), {65, 391, 95, 393}, kBlack));
}

TEST_F(VerticalBarTest, IsReadableOnADarkDesktop)
{
    SetupBar(kShowLimits);
    CheckBoth();
    SetupLimits(u"V");
    paint.colours.face = MakeRgb(45, 45, 45);
    ReadAll(190.0, 250.0, 175.0);
    const DrawList& list = Compose();
    for (const Text& text : ItemsOf<Text>(list)) {
        EXPECT_EQ(text.colour, kWhite);
    }
    EXPECT_TRUE(HasFill(list, {65, 129, 70, 131}, kWhite));
    EXPECT_TRUE(HasFill(list, {70, 129, 90, 131}, kBlack));
    EXPECT_TRUE(HasFill(list, {90, 129, 95, 131}, kWhite));
    EXPECT_TRUE(HasFill(list, {90, 332, 125, 334}, kWhite));
    ReadAll(1e6, 250.0, 175.0);
    EXPECT_TRUE(HasFill(Compose(), {98, 11, 100, 22}, kWhite));
}

// --- label ---

TEST_F(VerticalBarTest, ShowsTheLabelAboveTheBarWhereItsFlagSaysSo)
{
    bar.SetLabel(u"L1");
    EXPECT_TRUE(TextsOf(Compose()).empty());
    SetupBar(kShowLabel);
    const Text label = TextLike(Compose(), u"L1");
    EXPECT_EQ(label.rect, (Rect{73, 0, 87, 12}));
    EXPECT_FALSE(label.background);
    EXPECT_TRUE(HasFill(Compose(), {68, 0, 92, 12}, paint.colours.face));
}

TEST_F(VerticalBarTest, ColoursTheLabelWithThePresentValueAlone)
{
    SetupBar(kShowLabel);
    CheckBoth();
    bar.SetLabel(u"L1");
    Read(Valid(255.0), kInvalid);
    EXPECT_TRUE(HasFill(Compose(), {68, 0, 92, 12}, kBarColours.yellow));
    Read(Valid(170.0), kInvalid);
    EXPECT_TRUE(HasFill(Compose(), {68, 0, 92, 12}, kBarColours.red));
    EXPECT_EQ(TextLike(Compose(), u"L1").colour, kWhite);
}

TEST_F(VerticalBarTest, WidensTheCellForALabelUnlessANumberStandsThere)
{
    SetupBar(kShowLabel);
    CheckBoth();
    bar.SetLabel(u"Voltage");
    Read(Valid(190.0));
    EXPECT_EQ(TextLike(Compose(), u"Voltage").rect, (Rect{55, 0, 104, 12}));
    EXPECT_TRUE(HasFill(Compose(), {53, 0, 107, 12}, kBarColours.yellow));
    // Its number at the top of the bar, 4 to 14.
    Read(Valid(1e6));
    EXPECT_TRUE(HasFill(Compose(), {68, 0, 92, 12}, kBarColours.red));
    EXPECT_EQ(TextLike(Compose(), u"Vo\u2026").rect.Width(), 21);
}

TEST_F(VerticalBarTest, ShortensALabelWiderThanTheClient)
{
    SetupBar(kShowLabel);
    bar.SetLabel(ZRBasicString(std::u16string(5000, u'W')));
    const Text label = ItemsOf<Text>(Compose()).at(0);
    EXPECT_EQ(label.text.Length(), 28u);
    EXPECT_GE(label.rect.left, 0);
    EXPECT_LE(label.rect.right, 200);
}

// --- limits beside the bar ---

TEST_F(VerticalBarTest, ShowsTheLimitsAtTheirRows)
{
    SetupBar(kShowLimits);
    CheckBoth();
    SetupLimits(u"V");
    const DrawList& list = Compose();
    EXPECT_EQ(TextsOf(list), (std::vector<std::string>{"180", "200", "260", "250"}));
    EXPECT_EQ(TextLike(list, u"180").rect, (Rect{46, 367, 64, 377}));
    EXPECT_EQ(TextLike(list, u"200").rect, (Rect{46, 287, 64, 297}));
    EXPECT_EQ(TextLike(list, u"260").rect, (Rect{46, 45, 64, 55}));
    EXPECT_EQ(TextLike(list, u"250").rect, (Rect{46, 125, 64, 135}));
    for (const int row : {372, 292, 50, 130}) {
        EXPECT_TRUE(HasFill(list, {65, row - 1, 95, row + 1}, kBlack)) << row;
    }
}

TEST_F(VerticalBarTest, ShowsTheLimitsOfItsFlagsOnly)
{
    SetupBar(kShowLimits);
    SetupLimits(u"V");
    bar.SetupChecks(kCheckLowLimits, 200, 180, 250, 260, 230.0);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{"180", "200"}));
    bar.SetupChecks(kCheckHighLimits, 200, 180, 250, 260, 230.0);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{"260", "250"}));
    bar.SetupChecks(kBothLimits, 200, 180, 250, 260, 0.0);
    EXPECT_TRUE(TextsOf(Compose()).empty());
    SetupBar(0);
    CheckBoth();
    EXPECT_TRUE(TextsOf(Compose()).empty());
}

TEST_F(VerticalBarTest, KeepsTheNumericLimitsApartFromTheirTexts)
{
    CheckBoth();
    bar.SetupLimits(u"V", 1.0, 2.0, 3.0, 4.0, 0, 0, 0, 0);
    EXPECT_EQ(bar.Limits().lowWarning, 200.0);
    EXPECT_EQ(bar.Limits().highAlarm, 260.0);
}

TEST_F(VerticalBarTest, FormatsEachLimitWithItsOwnDecimals)
{
    SetupBar(kShowLimits);
    CheckBoth();
    bar.SetupLimits(u"", 1.0, 2.0, 3.0, 4.0, 1, 2, 3, 0);
    const auto texts = TextsOf(Compose());
    EXPECT_EQ(texts.at(0).size(), 4u);  // lowAlarm, 2.00
    EXPECT_EQ(texts.at(1).size(), 3u);  // lowWarning, 1.0
    EXPECT_EQ(texts.at(2), "4");        // highAlarm
    EXPECT_EQ(texts.at(3).size(), 5u);  // highWarning, 3.000
}

TEST_F(VerticalBarTest, AddsUnitsToTheHighLimitsOnly)
{
    SetupBar(kShowLimits | kShowUnits);
    CheckBoth();
    SetupLimits(u"V");
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{"180", "200", "260 V", "250 V"}));
    EXPECT_EQ(TextLike(Compose(), u"260 V").rect, (Rect{34, 45, 64, 55}));
}

TEST_F(VerticalBarTest, BreaksAHighLimitInTwoThatIsTooWide)
{
    SetupBar(kShowLimits | kShowUnits);
    CheckBoth();
    SetupLimits(u"kilovolts");  // 13 characters in 64 pixels
    const DrawList& list = Compose();
    EXPECT_EQ(TextsOf(list), (std::vector<std::string>{"180", "200", "260", "kilovolts", "250", "kilovolts"}));
    EXPECT_EQ(TextLike(list, u"260").rect, (Rect{46, 40, 64, 50}));
    EXPECT_EQ(TextLike(list, u"kilovolts").rect, (Rect{10, 50, 64, 60}));
    EXPECT_TRUE(HasFill(list, {65, 49, 95, 51}, kBlack));
}

TEST_F(VerticalBarTest, BreaksNoHighLimitWithoutTheFlagForUnits)
{
    SetupBar(kShowLimits);
    CheckBoth();
    bar.SetupLimits(u"V", 1.0, 2.0, 3.0, 4.0, 0, 0, 0, 12);
    const Text limit = ItemsOf<Text>(Compose()).at(2);
    EXPECT_EQ(limit.rect, (Rect{64 - 14 * 6, 45, 64, 55}));
}

TEST_F(VerticalBarTest, DropsALowLimitThatWouldRunIntoAMarkAndKeepsItsTick)
{
    SetupBar(kShowLimits);
    CheckBoth();
    SetupLimits(u"V");
    // The low mark's number at 367 to 377 and the high mark's at 282 to 292.
    ReadAll(230.0, 200.0, 181.25);
    const DrawList& list = Compose();
    EXPECT_EQ(TextsOf(list), (std::vector<std::string>{" 230 ", "200", "181", "260", "250"}));
    EXPECT_TRUE(HasFill(list, {65, 371, 95, 373}, kBlack));
    EXPECT_TRUE(HasFill(list, {65, 291, 95, 293}, kBlack));
}

TEST_F(VerticalBarTest, CountsAMarkAgainstALowLimitOnlyWhileItIsLocked)
{
    SetupBar(kShowLimits);
    CheckBoth();
    SetupLimits(u"V");
    ReadAll(230.0, 200.0, 181.25);
    Compose();
    Read(Valid(230.0), kUnlocked, kUnlocked);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{" 230 ", "180", "200", "260", "250"}));
}

TEST_F(VerticalBarTest, KeepsAHighLimitThatRunsIntoAMark)
{
    SetupBar(kShowLimits);
    CheckBoth();
    SetupLimits(u"V");
    ReadAll(230.0, 250.0, 175.0);
    EXPECT_EQ(TextsOf(Compose()).back(), "250");
    EXPECT_EQ(TextsOf(Compose()).size(), 7u);
}

}  // namespace
}  // namespace zr::controls
