#include "controls/HorizontalBar.h"

#include "BarFixture.h"

namespace zr::controls {
namespace {

// The bar lies from 42 to 444 and from 13 to 47. With both limits, four pixels are a unit from 170 at 42 to 220 at 242,
// and eight from 240 at 244 to 265 at 444.
class HorizontalBarTest : public BarTest<HorizontalBar> {
protected:
    HorizontalBarTest()
    {
        bar.SetupBar(34, 90);
        bar.FontsChanged(measure);
        paint.client = {486, 60};
    }
    void CheckBoth() { bar.SetupChecks(kBothLimits, 200.0, 180.0, 250.0, 260.0, 230.0); }
    // Marker of the present value after it was first read as one value and then as another.
    int PlaceAfter(double first, double then)
    {
        PlaceAt(first);
        return PlaceAt(then);
    }
    BarPlaces Markers()
    {
        Compose();
        return {bar.MarkerOf(0), bar.MarkerOf(1), bar.MarkerOf(2)};
    }
};

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

// --- label ---

TEST_F(HorizontalBarTest, CentresTheLabelLeftOfTheBar)
{
    bar.SetLabel(u"Volt");
    const Text label = TextLike(Compose(), u"Volt");
    EXPECT_EQ(label.rect, (Rect{7, 23, 35, 35}));
    EXPECT_EQ(label.font, FontRole::Label);
    EXPECT_EQ(label.colour, kBlack);
    EXPECT_FALSE(label.background);
    EXPECT_TRUE(HasFill(Compose(), {5, 11, 38, 49}, paint.colours.face));
}

TEST_F(HorizontalBarTest, MakesTheCellFivePixelsWiderThanTheLabel)
{
    bar.SetLabel(u"V");
    EXPECT_TRUE(HasFill(Compose(), {16, 11, 28, 49}, paint.colours.face));
    bar.SetLabel(u"");
    EXPECT_TRUE(HasFill(Compose(), {19, 11, 24, 49}, paint.colours.face));
}

TEST_F(HorizontalBarTest, ColoursTheLabelWithThePresentValueAlone)
{
    CheckBoth();
    bar.SetLabel(u"Volt");
    Read(Valid(255.0), kInvalid, kInvalid);
    EXPECT_TRUE(HasFill(Compose(), {5, 11, 38, 49}, kBarColours.yellow));
    Read(Valid(265.0), kInvalid, kUnlocked);
    EXPECT_TRUE(HasFill(Compose(), {5, 11, 38, 49}, kBarColours.red));
    EXPECT_EQ(TextLike(Compose(), u"Volt").colour, kWhite);
    Read(kInvalid, Valid(265.0), Valid(100.0));
    EXPECT_TRUE(HasFill(Compose(), {5, 11, 38, 49}, paint.colours.face));
}

TEST_F(HorizontalBarTest, ShortensALabelThatWouldCoverTheBar)
{
    for (const std::size_t length : {7u, 5000u}) {
        bar.SetLabel(ZRBasicString(std::u16string(length, u'W')));
        const Text label = ItemsOf<Text>(Compose()).at(0);
        EXPECT_EQ(label.text, u"WWWW\u2026");
        EXPECT_GE(label.rect.left, 0);
        EXPECT_LE(label.rect.right, 40);
        const Fill cell = ItemsOf<Fill>(Compose()).at(0);
        EXPECT_GE(cell.rect.left, 0);
        EXPECT_LE(cell.rect.right, 40);
    }
}

// --- numbers ---

TEST_F(HorizontalBarTest, CentresTheValueOverItsMarker)
{
    CheckBoth();
    Read(Valid(190.0));
    const Text number = TextLike(Compose(), u" 190 ");
    EXPECT_EQ(number.rect, (Rect{107, 0, 137, 10}));
    EXPECT_EQ(number.font, FontRole::Value);
    EXPECT_EQ(number.colour, kBlack);
    EXPECT_EQ(number.background, paint.colours.face);
    EXPECT_EQ(TextRect(kPresentSlot), number.rect);
}

TEST_F(HorizontalBarTest, PutsTheMarksBesideTheirMarkersAtTheBottom)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    Compose();
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{327, 50, 345, 60}));  // two right of 324, and one more
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{41, 50, 59, 60}));     // two left of 62, and one more
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{" 190 ", "250", "175"}));
}

TEST_F(HorizontalBarTest, ShowsADashForWhatIsNotValid)
{
    Read(kInvalid, kInvalid, kInvalid);
    EXPECT_EQ(TextsOf(Compose()), (std::vector<std::string>{" - ", "-", "-"}));
}

TEST_F(HorizontalBarTest, ShowsNothingOfASlotThatIsntLocked)
{
    CheckBoth();
    Read(kUnlocked, Valid(250.0), kUnlocked);
    const DrawList& list = Compose();
    EXPECT_EQ(TextsOf(list), (std::vector<std::string>{"250"}));
    EXPECT_TRUE(TextRect(kPresentSlot).IsEmpty());
    EXPECT_TRUE(TextRect(kLowMarkSlot).IsEmpty());
    EXPECT_TRUE(HasFill(list, {323, 44, 325, 50}, kBlack));
    EXPECT_EQ(std::count_if(list.begin(), list.end(),
                            [](const DrawItem& item) {
                                const Fill* const fill = std::get_if<Fill>(&item);
                                return fill != nullptr && fill->colour == kBlack;
                            }),
              1);
}

TEST_F(HorizontalBarTest, ShowsValuesInTheDisplayedUnit)
{
    paint.info[0].valueExponent = 3;
    Read(Valid(12.0));
    EXPECT_EQ(TextsOf(Compose()).at(0).find("12"), 1u);
    EXPECT_GE(TextsOf(Compose()).at(0).size(), 7u);
}

TEST_F(HorizontalBarTest, ColoursASelectedNumber)
{
    ReadAll(1.0, 2.0, 3.0);
    bar.Slots().Select(kHighMarkSlot, true);
    const DrawList& list = Compose();
    EXPECT_EQ(TextLike(list, u"2").colour, kWhite);
    EXPECT_EQ(TextLike(list, u"2").background, paint.colours.activeCaption);
    EXPECT_EQ(TextLike(list, u" 1 ").colour, kBlack);
    EXPECT_EQ(TextLike(list, u"3").background, paint.colours.face);
}

TEST_F(HorizontalBarTest, PushesTheMarksInsideTheClientBeforeTheirLastPixel)
{
    CheckBoth();
    ShowDecimals(4);
    ReadAll(230.0, 300.0, 100.0);
    Compose();
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{439, 50, 487, 60}));
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{-1, 50, 47, 60}));
}

TEST_F(HorizontalBarTest, LeavesNumbersAloneThatAreSixPixelsApart)
{
    CheckBoth();
    ReadAll(230.0, 190.0, 190.0);
    Compose();
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{101, 50, 119, 60}));
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{125, 50, 143, 60}));
}

TEST_F(HorizontalBarTest, PushesTheMarksApartByHalfTheirOverlapAndOne)
{
    CheckBoth();
    // The marks at 122 and 130: 109..127 and 125..143, seven too close.
    ReadAll(230.0, 190.0, 192.0);
    Compose();
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{105, 50, 123, 60}));
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{129, 50, 147, 60}));
}

TEST_F(HorizontalBarTest, MovesBothBackWhenTheHighMarkLeavesOnTheRight)
{
    CheckBoth();
    ShowDecimals(4);
    // At 430 and 444: 433..481 and 393..441, 13 too close; 440..488 leaves by 2, so both go back by 3.
    ReadAll(230.0, 263.25, 300.0);
    Compose();
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{437, 50, 485, 60}));
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{383, 50, 431, 60}));
}

TEST_F(HorizontalBarTest, MovesBothFurtherLeftWhenTheLowMarkLeavesThere)
{
    CheckBoth();
    ShowDecimals(4);
    // At 42 and 52: 45..93 and 1..49, nine too close; -4..44 lies 4 outside, so both go 3 further.
    ReadAll(230.0, 170.0, 172.5);
    Compose();
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{-7, 50, 41, 60}));
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{47, 50, 95, 60}));
}

TEST_F(HorizontalBarTest, PushesNothingApartWhenOneMarkIsMissing)
{
    CheckBoth();
    Read(kUnlocked, Valid(190.0), kUnlocked);
    Compose();
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{125, 50, 143, 60}));
}

// --- ticks ---

TEST_F(HorizontalBarTest, MarksTheValuesWithTicksTwoPixelsWide)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    EXPECT_TRUE(HasFill(Compose(), {121, 10, 123, 47}, kBlack));
    EXPECT_TRUE(HasFill(Compose(), {323, 44, 325, 50}, kBlack));
    EXPECT_TRUE(HasFill(Compose(), {61, 44, 63, 50}, kBlack));
}

TEST_F(HorizontalBarTest, MarksAValueThatIsNotValid)
{
    CheckBoth();
    ReadAll(190.0, 250.0, 175.0);
    Read(kInvalid, kInvalid, kInvalid);
    EXPECT_TRUE(HasFill(Compose(), {121, 10, 123, 47}, kBlack));
}

TEST_F(HorizontalBarTest, IsReadableOnADarkDesktop)
{
    CheckBoth();
    bar.SetLabel(u"Volt");
    paint.colours.face = MakeRgb(45, 45, 45);
    ReadAll(190.0, 250.0, 175.0);
    const DrawList& list = Compose();
    for (const Text& text : ItemsOf<Text>(list)) {
        EXPECT_EQ(text.colour, text.text == u"Volt" ? kBlack : kWhite);  // 190 is a warning: black on yellow
    }
    // White around the bar and black on its zones.
    EXPECT_TRUE(HasFill(list, {121, 10, 123, 13}, kWhite));
    EXPECT_TRUE(HasFill(list, {121, 13, 123, 47}, kBlack));
    EXPECT_TRUE(HasFill(list, {323, 44, 325, 47}, kBlack));
    EXPECT_TRUE(HasFill(list, {323, 47, 325, 50}, kWhite));
}

TEST_F(HorizontalBarTest, MarksABarWithoutZonesReadablyOnADarkDesktop)
{
    bar.SetupChecks(kPercentLimits, 10, 20, 10, 20, 230.0);
    paint.colours.face = MakeRgb(45, 45, 45);
    ReadAll(150.0, 200.0, 100.0);
    EXPECT_TRUE(HasFill(Compose(), {241, 10, 243, 47}, kWhite));
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

// --- power factor ---

// 0 at 42, 1 at 242, what is just below 0 at 442.
class PowerFactorBarTest : public HorizontalBarTest {
protected:
    PowerFactorBarTest()
    {
        paint.client = {484, 60};
        bar.SetupChecks(kPowerFactor, 0.8, 0.7, -0.8, -0.7, 1.0);
        ShowDecimals(1);
    }
};

TEST_F(PowerFactorBarTest, PutsOneAndMinusOneAtTheSamePixel)
{
    EXPECT_EQ(PlaceAt(1.0), 242);
    EXPECT_EQ(PlaceAt(-1.0), 242);
}

TEST_F(PowerFactorBarTest, PutsMinusOneHalfAtThreeQuartersAndOneHalfAtOne)
{
    EXPECT_EQ(PlaceAt(-0.5), 342);
    EXPECT_EQ(PlaceAt(0.5), 142);
}

TEST_F(PowerFactorBarTest, PutsZeroAtTheLeftEndWhateverItsSign)
{
    EXPECT_EQ(PlaceAt(0.0), 42);
    EXPECT_EQ(PlaceAt(-0.0), 42);
    EXPECT_EQ(PlaceAt(-0.001), 441);
}

TEST_F(PowerFactorBarTest, HoldsValuesThatAreNoPowerFactorsAtTheEnds)
{
    EXPECT_EQ(PlaceAt(7.0), 442);
    EXPECT_EQ(PlaceAt(-7.0), 42);
    EXPECT_EQ(PlaceAt(kInfinity), 442);
    EXPECT_EQ(PlaceAt(kNan), 42);
}

TEST_F(PowerFactorBarTest, PlacesTheMarksAsItDoesTheValue)
{
    ReadAll(0.9, -0.9, 0.6);
    EXPECT_EQ(Markers(), (BarPlaces{222, 262, 162}));
    EXPECT_EQ(bar.Slots()[1].side, BarSide::Upper);  // as SetupChecks left it: sides aren't used
}

TEST_F(PowerFactorBarTest, IsGreenAroundOneAndYellowAndRedOutwards)
{
    Compose();
    const auto zone = [&](int x) { return PixelAt(x - 42, 0) & 0xffffff; };
    const Rgb red = MakeRgb(255, 0, 0);
    const Rgb yellow = MakeRgb(255, 255, 0);
    const Rgb green = MakeRgb(0, 240, 60);
    for (const int x : {42, 177, 307, 441}) {
        EXPECT_EQ(zone(x), red) << x;
    }
    for (const int x : {187, 197, 287, 297}) {
        EXPECT_EQ(zone(x), yellow) << x;
    }
    for (const int x : {207, 242, 243, 277}) {
        EXPECT_EQ(zone(x), green) << x;
    }
}

TEST_F(PowerFactorBarTest, TakesTheOtherFlagsForNothing)
{
    ReadAll(0.9, -0.9, 0.6);
    Compose();
    const Bitmap pixels = bar.PicturePixels();
    bar.SetupChecks(kPowerFactor | kBothLimits, 0.8, 0.7, -0.8, -0.7, 1.0);
    EXPECT_EQ(Markers(), (BarPlaces{222, 262, 162}));
    EXPECT_EQ(bar.PicturePixels().pixels, pixels.pixels);
}

TEST_F(PowerFactorBarTest, IsGreenWithSlotsAtFixedPlacesWithoutANominalValue)
{
    bar.SetupChecks(kPowerFactor, 0.8, 0.7, -0.8, -0.7, 0.0);
    ReadAll(0.1, 0.2, 0.3);
    EXPECT_EQ(Markers(), (BarPlaces{242, 442, 42}));
    EXPECT_EQ(PixelAt(0, 0), 0xff000000 | MakeRgb(0, 240, 60));
    EXPECT_EQ(PixelAt(399, 0), 0xff000000 | MakeRgb(0, 240, 60));
}

TEST_F(PowerFactorBarTest, ColoursItsLabelOnTheFoldedScale)
{
    bar.SetLabel(u"PF");
    Read(Valid(-0.75));
    EXPECT_TRUE(HasFill(Compose(), {12, 11, 31, 49}, kBarColours.yellow));
    Read(Valid(-0.9));
    EXPECT_TRUE(HasFill(Compose(), {12, 11, 31, 49}, paint.colours.face));
    Read(Valid(0.3));
    EXPECT_TRUE(HasFill(Compose(), {12, 11, 31, 49}, kBarColours.red));
}

TEST_F(PowerFactorBarTest, HasTheNumbersAndTicksOfAnyBar)
{
    Read(Valid(-0.5));
    const DrawList& list = Compose();
    EXPECT_EQ(TextRect(kPresentSlot), (Rect{324, 0, 360, 10}));  // " -0.5 "
    EXPECT_TRUE(HasFill(list, {341, 10, 343, 47}, kBlack));
}

}  // namespace
}  // namespace zr::controls
