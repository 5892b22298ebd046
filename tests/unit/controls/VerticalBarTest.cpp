#include "VerticalBarFixture.h"

namespace zr::controls {
namespace {

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

TEST_F(VerticalBarTest, TakesItsUsualColoursAgainWhenItIsSetUp)
{
    bar.Disable();
    SetupBar(0);
    Compose();
    EXPECT_EQ(bar.Colours().green, MakeRgb(0, 200, 50));
    EXPECT_EQ(bar.Colours().red, MakeRgb(220, 0, 0));
    EXPECT_EQ(PixelAt(10, 200), 0xff000000 | MakeRgb(0, 200, 50));
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
