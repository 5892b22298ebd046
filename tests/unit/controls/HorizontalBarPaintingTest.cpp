// What stands around the zones: labels, numbers and markers.
#include "HorizontalBarFixture.h"

namespace zr::controls {
namespace {

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

TEST_F(HorizontalBarTest, PushesNumbersApartThatAreCloserThanFivePixels)
{
    CheckBoth();
    // The marks at 122 and 123, five apart, and then at 122 and 124, four apart.
    ReadAll(230.0, 190.0, 190.25);
    Compose();
    EXPECT_EQ(TextRect(kLowMarkSlot), (Rect{102, 50, 120, 60}));
    EXPECT_EQ(TextRect(kHighMarkSlot), (Rect{125, 50, 143, 60}));
    ReadAll(230.0, 190.0, 190.5);
    Compose();
    EXPECT_EQ(TextRect(kLowMarkSlot).right, 120);
    EXPECT_EQ(TextRect(kHighMarkSlot).left, 126);
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

}  // namespace
}  // namespace zr::controls
