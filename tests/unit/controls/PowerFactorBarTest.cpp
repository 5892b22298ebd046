#include "HorizontalBarFixture.h"

namespace zr::controls {
namespace {

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
