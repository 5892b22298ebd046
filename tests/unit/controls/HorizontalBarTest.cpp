#include "HorizontalBarFixture.h"

namespace zr::controls {
namespace {

TEST_F(HorizontalBarTest, RaisesHeightAndFontToTheirLeast)
{
    bar.SetupBar(5, 60);
    EXPECT_EQ(bar.BarHeight(), 10);
    EXPECT_EQ(bar.FontSize(), 90);
    bar.SetupBar(11, 91);
    EXPECT_EQ(bar.BarHeight(), 11);
    EXPECT_EQ(bar.FontSize(), 91);
}

TEST_F(HorizontalBarTest, IsIdeallyAsHighAsBarAndTwoNumbers)
{
    EXPECT_EQ(bar.IdealHeight(), 34 + 2 * 10 + 6);
    bar.SetupBar(5, 60);
    bar.FontsChanged(measure);
    EXPECT_EQ(bar.IdealHeight(), 36);
}

TEST_F(HorizontalBarTest, LeavesRoomForANumberOnEachSideOfTheBar)
{
    EXPECT_EQ(Compose().size(), 3u);  // frame, picture and the cell of the label
    EXPECT_EQ(bar.BarRect(), (Rect{42, 13, 444, 47}));
    EXPECT_EQ(ItemsOf<BumpFrame>(Compose()).at(0).rect, (Rect{40, 11, 446, 49}));
    EXPECT_EQ(ItemsOf<Picture>(Compose()).at(0).rect, (Rect{42, 13, 444, 47}));
    EXPECT_EQ(bar.PicturePixels().width, 402);
    EXPECT_EQ(bar.PicturePixels().height, 34);
}

// --- without checks: the marks give the scale ---

TEST_F(HorizontalBarTest, PutsEqualMarksAtATenthOfTheBarWithoutFlags)
{
    ReadAll(150.0, 200.0, 200.0);
    EXPECT_EQ(Markers(), (BarPlaces{82, 82, 82}));
}

TEST_F(HorizontalBarTest, PlacesTheValueBetweenTheMarksWithoutFlags)
{
    ReadAll(150.0, 200.0, 100.0);
    EXPECT_EQ(Markers(), (BarPlaces{242, 404, 82}));  // 82 + 160.8
}

TEST_F(HorizontalBarTest, HoldsAValueBelowTheMarksAtTheLeftEndAndNoneAboveThem)
{
    ReadAll(0.0, 200.0, 100.0);
    EXPECT_EQ(Markers()[0], 42);
    ReadAll(1000.0, 200.0, 100.0);
    EXPECT_EQ(Markers()[0], 2976);  // 82 + 2894.4
}

TEST_F(HorizontalBarTest, IsGreenAllOverWithoutFlags)
{
    Compose();
    for (const int x : {0, 100, 200, 201, 401}) {
        EXPECT_EQ(PixelAt(x, 0), 0xff000000 | MakeRgb(0, 240, 60));
    }
}

TEST_F(HorizontalBarTest, HasMarksButNoZonesForPercentagesAlone)
{
    bar.SetupChecks(kPercentLimits, 10, 20, 10, 20, 230.0);
    ReadAll(150.0, 200.0, 100.0);
    EXPECT_EQ(Markers(), (BarPlaces{242, 404, 82}));
    for (const int x : {0, 200, 401}) {
        EXPECT_EQ(PixelAt(x, 17), 0xff000000 | paint.colours.face);
    }
}

// --- with checks ---

TEST_F(HorizontalBarTest, StartsOnTheLowerSideWithLowLimitsAndElseOnTheUpperOne)
{
    const std::pair<int, BarSide> rows[] = {{kBothLimits, BarSide::Lower},
                                            {kCheckLowLimits, BarSide::Lower},
                                            {kCheckHighLimits, BarSide::Upper},
                                            {kPercentLimits, BarSide::Upper}};
    for (const auto& [flags, side] : rows) {
        bar.SetupChecks(flags, 200, 180, 250, 260, 230);
        for (int slot = 0; slot < kBarSlots; ++slot) {
            EXPECT_EQ(bar.Slots()[slot].side, side) << flags;
        }
    }
}

TEST_F(HorizontalBarTest, PlacesTheThreeValuesOnTheirScales)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    EXPECT_EQ(Markers(), (BarPlaces{122, 324, 62}));
}

TEST_F(HorizontalBarTest, StopsAValueFarBeyondTheScaleAtItsEnd)
{
    CheckBoth();
    EXPECT_EQ(PlaceAt(1e9), 444);
    EXPECT_EQ(PlaceAt(-1e9), 42);
    EXPECT_EQ(PlaceAt(kInfinity), 444);
    EXPECT_EQ(PlaceAt(-kInfinity), 42);
}

TEST_F(HorizontalBarTest, StaysAtTheLowerRangesEndInTheGapWhenItCameFromBelow)
{
    CheckBoth();
    EXPECT_EQ(PlaceAfter(219.0, 230.0), 242);
    EXPECT_EQ(bar.Slots()[0].side, BarSide::Lower);
    // However often it is painted.
    for (int paints = 0; paints < 3; ++paints) {
        EXPECT_EQ(Markers()[0], 242);
    }
}

TEST_F(HorizontalBarTest, StaysAtTheUpperRangesEndInTheGapWhenItCameFromAbove)
{
    CheckBoth();
    EXPECT_EQ(PlaceAfter(241.0, 230.0), 244);
    for (int paints = 0; paints < 3; ++paints) {
        EXPECT_EQ(Markers()[0], 244);
    }
}

TEST_F(HorizontalBarTest, GivesEachSlotItsOwnSide)
{
    CheckBoth();
    ReadAll(230.0, 250.0, 200.0);
    ReadAll(230.0, 230.0, 230.0);
    EXPECT_EQ(Markers()[1], 242);  // never painted at 250
    ReadAll(230.0, 250.0, 200.0);
    Compose();
    ReadAll(230.0, 230.0, 230.0);
    EXPECT_EQ(Markers(), (BarPlaces{242, 244, 242}));
}

TEST_F(HorizontalBarTest, LeavesAValueAboveALoneLowerScaleAtItsRightEnd)
{
    bar.SetupChecks(kCheckLowLimits, 200, 180, 250, 260, 230.0);
    EXPECT_EQ(PlaceAt(1e6), 444);
    EXPECT_EQ(bar.Slots()[0].side, BarSide::Lower);
    EXPECT_EQ(PlaceAt(170.0), 42);
}

TEST_F(HorizontalBarTest, HoldsAValueBelowALoneUpperScaleAtItsLeftEnd)
{
    bar.SetupChecks(kCheckHighLimits, 200, 180, 250, 260, 230.0);
    EXPECT_EQ(PlaceAt(-5.0), 42);
    EXPECT_EQ(bar.Slots()[0].side, BarSide::Upper);
}

TEST_F(HorizontalBarTest, PaintsTheZonesOfBothRangesAndTheFaceBetweenThem)
{
    CheckBoth();
    Compose();
    const auto zone = [&](int x) { return PixelAt(x, 0) & 0xffffff; };
    const Rgb red = MakeRgb(255, 0, 0);
    const Rgb yellow = MakeRgb(255, 255, 0);
    const Rgb green = MakeRgb(0, 240, 60);
    EXPECT_EQ(zone(0), red);
    EXPECT_EQ(zone(29), red);
    EXPECT_EQ(zone(51), yellow);
    EXPECT_EQ(zone(109), yellow);
    EXPECT_EQ(zone(131), green);
    EXPECT_EQ(zone(199), green);
    EXPECT_EQ(zone(200), paint.colours.face);
    EXPECT_EQ(zone(201), paint.colours.face);
    EXPECT_EQ(zone(202), green);
    EXPECT_EQ(zone(271), green);
    EXPECT_EQ(zone(293), yellow);
    EXPECT_EQ(zone(373), red);
    EXPECT_EQ(zone(401), red);
}

// --- with flags but no nominal value ---

TEST_F(HorizontalBarTest, IsGreenWithSlotsAtFixedPlacesWithoutANominalValue)
{
    const std::pair<int, BarPlaces> rows[] = {
        {kBothLimits, {242, 444, 42}}, {kCheckLowLimits, {444, 444, 42}}, {kCheckHighLimits, {243, 444, 42}}};
    for (const double nominal : {0.0, -230.0}) {
        for (const auto& [flags, places] : rows) {
            bar.SetupChecks(flags, 200, 180, 250, 260, nominal);
            ReadAll(500.0, 1.0, 900.0);
            EXPECT_EQ(Markers(), places) << flags;
            EXPECT_EQ(PixelAt(0, 0), 0xff000000 | MakeRgb(0, 240, 60));
            EXPECT_EQ(PixelAt(401, 0), 0xff000000 | MakeRgb(0, 240, 60));
        }
    }
}

TEST_F(HorizontalBarTest, PutsAValueOnTheUpperSideAtItsInnerEndWithoutANominalValue)
{
    bar.SetupChecks(kBothLimits, 200, 180, 250, 260, 0.0);
    bar.Slots()[0].side = BarSide::Upper;
    ReadAll(1.0, 2.0, 3.0);
    EXPECT_EQ(Markers()[0], 244);
}

// --- zero denominators ---

TEST_F(HorizontalBarTest, ShowsAlarmOrNotWhereALimitEqualsTheNominalValue)
{
    bar.SetupChecks(kBothLimits | kPercentLimits, 0, 0, 0, 0, 230.0);
    EXPECT_EQ(PlaceAt(229.0), 42);
    EXPECT_EQ(PlaceAt(231.0), 444);
}

TEST_F(HorizontalBarTest, StandsStillAtEveryPaintWithLimitsOutOfOrder)
{
    bar.SetupChecks(kBothLimits, 180, 200, 260, 250, 230.0);
    for (const double value : {100.0, 190.0, 200.0, 230.0, 255.0, 300.0}) {
        const int place = PlaceAt(value);
        EXPECT_EQ(Markers()[0], place) << value;
        EXPECT_EQ(Markers()[0], place) << value;
    }
}

// --- repainting ---

TEST_F(HorizontalBarTest, AsksForAPaintOnlyWhenSomethingChanged)
{
    EXPECT_TRUE(ReadAll(1.0, 2.0, 3.0));
    EXPECT_FALSE(ReadAll(1.0, 2.0, 3.0));
    EXPECT_FALSE(Read(kInvalid, Valid(2.0), Valid(3.0)));
    EXPECT_TRUE(ReadAll(1.0, 2.0, 3.0));
    EXPECT_FALSE(ReadAll(kNan, 2.0, 3.0));
}

TEST_F(HorizontalBarTest, ClearsWhatTheNumbersLeaveFreeAfterAChange)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    const DrawList list = Compose();
    for (int x = 0; x < 486; ++x) {
        for (const int y : {0, 5, 9, 10, 49, 50, 55, 59}) {
            bool isNumber = false;
            for (int slot = 0; slot < kBarSlots; ++slot) {
                isNumber = isNumber || TextRect(slot).Contains({x, y});
            }
            EXPECT_EQ(IsFilled(list, {x, y}, paint.colours.face), !isNumber) << x << "," << y;
        }
    }
}

TEST_F(HorizontalBarTest, ClearsOnceOnly)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    const std::size_t items = Compose().size();
    EXPECT_LT(Compose().size(), items);
    EXPECT_FALSE(IsFilled(Compose(), {0, 0}, paint.colours.face));
}

TEST_F(HorizontalBarTest, KeepsItsPictureWhenOnlyValuesMove)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    Compose();
    const auto version = bar.PictureVersion();
    EXPECT_NE(version, 0u);
    ReadAll(195.0, 255.0, 170.0);
    bar.Slots().Select(0, true);
    Compose();
    EXPECT_EQ(bar.PictureVersion(), version);
}

TEST_F(HorizontalBarTest, PaintsItsPictureAnewForSizeLimitsAndFace)
{
    CheckBoth();
    Compose();
    auto version = bar.PictureVersion();
    const auto isNew = [&] {
        Compose();
        return std::exchange(version, bar.PictureVersion()) != bar.PictureVersion();
    };
    EXPECT_FALSE(isNew());
    paint.client.cx += 1;
    EXPECT_TRUE(isNew());
    bar.SetupChecks(kCheckLowLimits, 200, 180, 250, 260, 230.0);
    EXPECT_TRUE(isNew());
    bar.SetupChecks(kCheckLowLimits, 200, 200, 250, 260, 230.0);
    EXPECT_TRUE(isNew());
    paint.colours.face = MakeRgb(45, 45, 45);
    EXPECT_TRUE(isNew());
}

TEST_F(HorizontalBarTest, MeasuresATextThatStaysOnlyOnce)
{
    CheckBoth();
    bar.SetLabel(u"Volt");
    ReadAll(190.0, 250.0, 175.0);
    Compose();
    measure.count = 0;
    Compose();
    EXPECT_EQ(measure.count, 0);
    ReadAll(191.0, 250.0, 175.0);
    Compose();
    EXPECT_EQ(measure.count, 1);
    bar.FontsChanged(measure);
    Compose();
    EXPECT_GT(measure.count, 4);
}

// --- room ---

TEST_F(HorizontalBarTest, ShowsThePresentValueAloneWhereThereIsNoRoomForABar)
{
    CheckBoth();
    for (const Size client : {Size{84, 60}, Size{1, 1}, Size{486, 26}, Size{60, 5000}}) {
        paint.client = client;
        ReadAll(190.0, 250.0, 175.0);
        const DrawList& list = Compose();
        EXPECT_EQ(TextsOf(list), (std::vector<std::string>{"190"}));
        EXPECT_TRUE(ItemsOf<Picture>(list).empty());
        EXPECT_TRUE(bar.BarRect().IsEmpty());
        EXPECT_EQ(TextRect(kPresentSlot).top, 0);
        EXPECT_TRUE(TextRect(kHighMarkSlot).IsEmpty());
    }
}

TEST_F(HorizontalBarTest, PaintsNothingInAClientWithoutPixels)
{
    ReadAll(190.0, 250.0, 175.0);
    for (const Size client : {Size{0, 0}, Size{0, 60}, Size{486, 0}, Size{-5, -5}}) {
        paint.client = client;
        EXPECT_TRUE(Compose().empty());
        EXPECT_TRUE(TextRect(kPresentSlot).IsEmpty());
    }
}

}  // namespace
}  // namespace zr::controls
