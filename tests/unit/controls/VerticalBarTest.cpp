#include "controls/VerticalBar.h"

#include "BarFixture.h"

namespace zr::controls {
namespace {

// The bar lies from 70 to 90 and from 10 to 412, its frame from 68 to 92. With both limits, four pixels are a unit
// upwards from 170 at 412 to 220 at 212, and eight from 240 at 210 to 265 at 10.
class VerticalBarTest : public BarTest<VerticalBar> {
protected:
    VerticalBarTest()
    {
        SetupBar(0);
        paint.client = {200, 417};
    }
    void SetupBar(int displayFlags)
    {
        bar.SetupBar(displayFlags, 34, 90);
        bar.FontsChanged(measure);
    }
    void CheckBoth() { bar.SetupChecks(kBothLimits, 200.0, 180.0, 250.0, 260.0, 230.0); }
    BarPlaces Markers()
    {
        Compose();
        return {bar.MarkerOf(0), bar.MarkerOf(1), bar.MarkerOf(2)};
    }
    // Limit texts without decimals.
    void SetupLimits(const ZRBasicString& units) { bar.SetupLimits(units, 200.0, 180.0, 250.0, 260.0, 0, 0, 0, 0); }
};

TEST_F(VerticalBarTest, RaisesHeightAndFontToTheirLeast)
{
    bar.SetupBar(0, 5, 60);
    bar.FontsChanged(measure);
    EXPECT_EQ(bar.BarHeight(), 10);
    EXPECT_EQ(bar.FontSize(), 90);
    EXPECT_EQ(bar.IdealHeight(), 10 + 2 * 10 + 6);
}

TEST_F(VerticalBarTest, TakesTheTenthOfTheWidthThatStartsAtThirtyFivePercent)
{
    Compose();
    EXPECT_EQ(bar.BarRect(), (Rect{70, 10, 90, 412}));
    EXPECT_EQ(ItemsOf<BumpFrame>(Compose()).at(0).rect, (Rect{68, 8, 92, 414}));
    EXPECT_EQ(ItemsOf<Picture>(Compose()).at(0).rect, (Rect{70, 10, 90, 412}));
    // 0.35 * 199 = 69.65 and 0.55 * 199 = 109.45.
    paint.client = {199, 100};
    Compose();
    EXPECT_EQ(bar.BarRect(), (Rect{69, 10, 90, 95}));
}

TEST_F(VerticalBarTest, LeavesRoomForWhatItsDisplayFlagsShow)
{
    SetupBar(kShowLabel);
    Compose();
    EXPECT_EQ(bar.BarRect(), (Rect{70, 15, 90, 412}));
    SetupBar(kRoomForLabelInfo);
    Compose();
    EXPECT_EQ(bar.BarRect(), (Rect{70, 10, 90, 402}));
    SetupBar(kShowLimits | kShowUnits);
    Compose();
    EXPECT_EQ(bar.BarRect(), (Rect{70, 10, 90, 412}));
}

// --- without checks ---

TEST_F(VerticalBarTest, PutsEqualMarksBelowTheBarAndTheValueNearItsTopWithoutFlags)
{
    ReadAll(150.0, 200.0, 200.0);
    EXPECT_EQ(Markers(), (BarPlaces{50, 452, 452}));
}

TEST_F(VerticalBarTest, LetsTheValueGrowDownwardsWithoutFlags)
{
    ReadAll(150.0, 200.0, 100.0);
    EXPECT_EQ(Markers(), (BarPlaces{612, 50, 372}));  // 452 + 160.8
    EXPECT_TRUE(bar.IsOnScale());
}

TEST_F(VerticalBarTest, HoldsAValueAboveTheBarOnePixelBelowItsTopWithoutFlags)
{
    // 452 - 321.6 is still on it, 452 - 482.4 isn't.
    ReadAll(0.0, 200.0, 100.0);
    EXPECT_EQ(Markers()[0], 130);
    ReadAll(-50.0, 200.0, 100.0);
    EXPECT_EQ(Markers()[0], 11);
}

TEST_F(VerticalBarTest, IsGreenFromLeftToRightAndFromTopToBottomWithoutFlags)
{
    Compose();
    for (const int y : {0, 200, 401}) {
        EXPECT_EQ(PixelAt(0, y), 0xff000000 | MakeRgb(0, 240, 60));
        EXPECT_EQ(PixelAt(10, y), 0xff000000 | MakeRgb(0, 200, 50));
    }
}

TEST_F(VerticalBarTest, HasMarksButNoZonesForPercentagesAlone)
{
    bar.SetupChecks(kPercentLimits, 10, 20, 10, 20, 230.0);
    ReadAll(150.0, 200.0, 100.0);
    EXPECT_EQ(Markers(), (BarPlaces{612, 50, 372}));
    EXPECT_EQ(PixelAt(10, 200), 0xff000000 | paint.colours.face);
}

TEST_F(VerticalBarTest, TakesThePowerFactorFlagForNothing)
{
    bar.SetupChecks(kPowerFactor, 0.8, 0.7, -0.8, -0.7, 1.0);
    ReadAll(150.0, 200.0, 100.0);
    EXPECT_EQ(Markers(), (BarPlaces{612, 50, 372}));
    EXPECT_EQ(PixelAt(10, 200), 0xff000000 | MakeRgb(0, 200, 50));
    bar.SetupChecks(kPowerFactor | kBothLimits, 200, 180, 250, 260, 230);
    ReadAll(190.0, 250.0, 175.0);
    EXPECT_EQ(Markers(), (BarPlaces{332, 130, 392}));
}

// --- with checks ---

TEST_F(VerticalBarTest, PlacesTheThreeValuesOnTheirScales)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    EXPECT_EQ(Markers(), (BarPlaces{332, 130, 392}));
    EXPECT_TRUE(bar.IsOnScale());
}

TEST_F(VerticalBarTest, ClampsTheMarksToTheirRanges)
{
    CheckBoth();
    ReadAll(230.0, 1e9, -1e9);
    EXPECT_EQ(Markers()[1], 10);
    EXPECT_EQ(Markers()[2], 412);
    ReadAll(230.0, 241.0, 200.0);
    Compose();
    ReadAll(230.0, 230.0, 230.0);
    EXPECT_EQ(Markers()[1], 210);
    EXPECT_EQ(Markers()[2], 212);
}

TEST_F(VerticalBarTest, OnlyClampsAValueBeyondTheLowerRange)
{
    CheckBoth();
    EXPECT_EQ(PlaceAt(-1e9), 410);
    EXPECT_TRUE(bar.IsOnScale());
    EXPECT_EQ(PlaceAt(170.25), 410);  // 411 is too low already
    EXPECT_EQ(PlaceAt(225.0), 212);
    EXPECT_TRUE(bar.IsOnScale());
}

TEST_F(VerticalBarTest, TakesAValueAboveTheBarOffTheScale)
{
    CheckBoth();
    EXPECT_EQ(PlaceAt(265.0), 10);
    EXPECT_TRUE(bar.IsOnScale());
    EXPECT_EQ(PlaceAt(266.0), 10);
    EXPECT_FALSE(bar.IsOnScale());
    EXPECT_EQ(PlaceAt(250.0), 130);
    EXPECT_TRUE(bar.IsOnScale());
}

TEST_F(VerticalBarTest, TakesAValueBelowTheUpperRangeOffTheScaleTenRowsAboveItsBottom)
{
    CheckBoth();
    PlaceAt(250.0);
    EXPECT_EQ(PlaceAt(235.0), 200);
    EXPECT_FALSE(bar.IsOnScale());
    EXPECT_EQ(PlaceAt(240.25), 208);  // two above the bottom: still on it
    EXPECT_TRUE(bar.IsOnScale());
}

TEST_F(VerticalBarTest, ShowsTheArrowTenRowsAboveTheBottomBelowALoneUpperRange)
{
    bar.SetupChecks(kCheckHighLimits, 200, 180, 250, 260, 230.0);
    EXPECT_EQ(PlaceAt(100.0), 402);
    EXPECT_FALSE(bar.IsOnScale());
    // Its head points down: shaft, then rows 412, 411 and 410.
    const DrawList& list = Compose();
    EXPECT_TRUE(HasFill(list, {98, 403, 100, 414}, kBlack));
    EXPECT_TRUE(HasFill(list, {97, 412, 101, 413}, kBlack));
    EXPECT_TRUE(HasFill(list, {96, 411, 102, 412}, kBlack));
    EXPECT_TRUE(HasFill(list, {95, 410, 103, 411}, kBlack));
}

TEST_F(VerticalBarTest, PointsTheArrowUpInTheUpperHalf)
{
    CheckBoth();
    EXPECT_EQ(PlaceAt(1e9), 10);
    const DrawList& list = Compose();
    EXPECT_TRUE(HasFill(list, {98, 11, 100, 22}, kBlack));
    EXPECT_TRUE(HasFill(list, {97, 12, 101, 13}, kBlack));
    EXPECT_TRUE(HasFill(list, {96, 13, 102, 14}, kBlack));
    EXPECT_TRUE(HasFill(list, {95, 14, 103, 15}, kBlack));
    EXPECT_FALSE(HasFill(list, {70, 10, TextRect(0).right, 12}, kBlack));
}

TEST_F(VerticalBarTest, PaintsTheZonesOutwardsFromTheMiddle)
{
    CheckBoth();
    Compose();
    const auto zone = [&](int y) { return PixelAt(0, y - 10) & 0xffffff; };
    const Rgb red = MakeRgb(255, 0, 0);
    const Rgb yellow = MakeRgb(255, 255, 0);
    const Rgb green = MakeRgb(0, 240, 60);
    // Upper: 130 and 50; lower: 292 and 372; soft edges of 10.
    for (const int y : {10, 39, 383, 411}) {
        EXPECT_EQ(zone(y), red) << y;
    }
    for (const int y : {61, 119, 303, 361}) {
        EXPECT_EQ(zone(y), yellow) << y;
    }
    for (const int y : {141, 209, 212, 281}) {
        EXPECT_EQ(zone(y), green) << y;
    }
    EXPECT_EQ(zone(210), paint.colours.face);
    EXPECT_EQ(zone(211), paint.colours.face);
}

TEST_F(VerticalBarTest, StandsAtFixedPlacesWithoutANominalValue)
{
    const std::pair<int, BarPlaces> rows[] = {
        {kBothLimits, {212, 10, 412}},
        {kCheckLowLimits, {10, 10, 412}},
        {kCheckHighLimits, {20, 10, 412}},  // half the bar's width below its top
    };
    for (const auto& [flags, places] : rows) {
        bar.SetupChecks(flags, 200, 180, 250, 260, 0.0);
        ReadAll(500.0, 1.0, 900.0);
        EXPECT_EQ(Markers(), places) << flags;
        EXPECT_EQ(PixelAt(10, 0), 0xff000000 | MakeRgb(0, 200, 50));
    }
}

TEST_F(VerticalBarTest, PutsAValueOnTheUpperSideAboveItsInnerEndWithoutANominalValue)
{
    bar.SetupChecks(kBothLimits, 200, 180, 250, 260, 0.0);
    bar.Slots()[0].side = BarSide::Upper;
    ReadAll(1.0, 2.0, 3.0);
    EXPECT_EQ(Markers()[0], 208);
}

TEST_F(VerticalBarTest, StandsStillAtEveryPaintWithLimitsOutOfOrder)
{
    bar.SetupChecks(kBothLimits, 180, 200, 260, 250, 230.0);
    for (const double value : {100.0, 190.0, 200.0, 230.0, 255.0, 300.0}) {
        const int place = PlaceAt(value);
        EXPECT_EQ(Markers()[0], place) << value;
        EXPECT_EQ(Markers()[0], place) << value;
    }
}

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

// --- values from outside, and the second label ---

TEST_F(VerticalBarTest, NotesNoSlotThatBecomesValidWithTheSameNumber)
{
    EXPECT_FALSE(Read(Valid(4294967295.0)));
    EXPECT_TRUE(Read(Valid(5.0)));
    EXPECT_FALSE(Read(kInvalid));
    EXPECT_FALSE(Read(Valid(5.0)));
    EXPECT_FALSE(Read(Valid(kNan)));
}

TEST_F(VerticalBarTest, ShowsAValueFromOutsideUntilTheNextUpdate)
{
    CheckBoth();
    Read(kInvalid);
    EXPECT_TRUE(bar.SetInstValue(190.0));
    EXPECT_EQ(TextsOf(Compose()).at(0), " 190 ");
    EXPECT_TRUE(Read(Valid(200.0)));
    EXPECT_EQ(TextsOf(Compose()).at(0), " 200 ");
}

TEST_F(VerticalBarTest, RepaintsNothingForTheSameValueFromOutsideButShowsTheSecondLabelNext)
{
    SetupBar(kRoomForLabelInfo);
    bar.SetLabelInfo(u"12:30");
    Read(Valid(190.0));
    EXPECT_EQ(TextsOf(Compose()).size(), 1u);
    EXPECT_FALSE(bar.SetInstValue(190.0));
    const Text info = TextLike(Compose(), u"12:30");
    EXPECT_EQ(info.rect, (Rect{85, 405, 115, 415}));  // in the middle of 404 to 417
    EXPECT_EQ(info.colour, kBlack);
    EXPECT_FALSE(info.background);
    Read(Valid(190.0));
    EXPECT_EQ(TextsOf(Compose()).size(), 1u);
}

TEST_F(VerticalBarTest, ShowsTheSecondLabelOnlyWithItsFlagAndAText)
{
    bar.SetLabelInfo(u"12:30");
    bar.SetInstValue(1.0);
    EXPECT_TRUE(TextsOf(Compose()).empty());  // no slot is locked
    SetupBar(kRoomForLabelInfo);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{"12:30"}));
    bar.SetLabelInfo(u"");
    EXPECT_TRUE(TextsOf(Compose()).empty());
}

TEST_F(VerticalBarTest, KeepsAValueFromOutsideWhileTheSlotIsntLocked)
{
    bar.SetInstValue(190.0);
    EXPECT_FALSE(Read(kUnlocked));
    EXPECT_EQ(bar.Slots()[0].value, 190.0);
    EXPECT_TRUE(bar.Slots()[0].valid);
}

// --- out of use ---

TEST_F(VerticalBarTest, KeepsNumbersAndMarkersWhenDisabledByItselfAlone)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    const std::size_t items = Compose().size();
    bar.Disable();
    EXPECT_EQ(bar.Colours().green, MakeRgb(173, 173, 173));
    ReadAll(191.0, 250.0, 175.0);
    EXPECT_EQ(TextsOf(Compose()).size(), 3u);
    EXPECT_GE(items, Compose().size());
    EXPECT_EQ(PixelAt(10, 190), 0xff000000 | MakeRgb(172, 172, 172));  // 207 less ten steps of 3.45
}

TEST_F(VerticalBarTest, ShowsTheBareBarInADisabledWindow)
{
    SetupBar(kShowLabel | kShowLimits | kRoomForLabelInfo);
    CheckBoth();
    bar.SetLabel(u"L1");
    bar.SetInstValue(190.0);
    ReadAll(190.0, 250.0, 175.0);
    paint.isEnabled = false;
    const DrawList& list = Compose();
    EXPECT_EQ(list.size(), 2u);
    EXPECT_EQ(ItemsOf<BumpFrame>(list).size(), 1u);
    EXPECT_EQ(ItemsOf<Picture>(list).size(), 1u);
    EXPECT_TRUE(TextRect(kPresentSlot).IsEmpty());
    paint.isEnabled = true;
    EXPECT_GT(Compose().size(), 2u);
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

// --- repainting ---

TEST_F(VerticalBarTest, ClearsWhatTheNumbersLeaveFreeAfterAChange)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 172.0);
    const DrawList list = Compose();
    for (int y = 0; y < 417; ++y) {
        for (const int x : {0, 30, 50, 64, 67, 92, 94, 95, 110, 130, 199}) {
            bool isNumber = false;
            for (int slot = 0; slot < kBarSlots; ++slot) {
                isNumber = isNumber || TextRect(slot).Contains({x, y});
            }
            // Below the frame all is cleared, before the numbers come.
            EXPECT_EQ(IsFilled(list, {x, y}, paint.colours.face), !isNumber || y >= 414) << x << "," << y;
        }
    }
    EXPECT_FALSE(IsFilled(Compose(), {0, 0}, paint.colours.face));
}

TEST_F(VerticalBarTest, ClearsAfterAValueFromOutsideToo)
{
    bar.SetInstValue(5.0);
    EXPECT_TRUE(IsFilled(Compose(), {0, 0}, paint.colours.face));
}

TEST_F(VerticalBarTest, KeepsItsPictureWhenOnlyValuesMove)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    Compose();
    const auto version = bar.PictureVersion();
    ReadAll(195.0, 255.0, 170.0);
    bar.SetInstValue(3.0);
    Compose();
    EXPECT_EQ(bar.PictureVersion(), version);
    bar.Disable();
    Compose();
    EXPECT_NE(bar.PictureVersion(), version);
}

// --- room ---

TEST_F(VerticalBarTest, ShowsThePresentValueAloneWhereThereIsNoRoomForABar)
{
    SetupBar(kShowLabel | kShowLimits | kRoomForLabelInfo);
    CheckBoth();
    for (const Size client : {Size{1, 1}, Size{200, 30}, Size{5000, 1}}) {
        paint.client = client;
        ReadAll(190.0, 250.0, 175.0);
        EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{"190"})) << client.cx;
        EXPECT_TRUE(ItemsOf<Picture>(Compose()).empty());
        EXPECT_TRUE(bar.BarRect().IsEmpty());
    }
    paint.isEnabled = false;
    EXPECT_TRUE(Compose().empty());
}

TEST_F(VerticalBarTest, PaintsNothingInAClientWithoutPixels)
{
    ReadAll(190.0, 250.0, 175.0);
    for (const Size client : {Size{0, 0}, Size{0, 60}, Size{486, 0}, Size{-5, -5}}) {
        paint.client = client;
        EXPECT_TRUE(Compose().empty());
    }
}

}  // namespace
}  // namespace zr::controls
