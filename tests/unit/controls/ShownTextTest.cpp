#include "controls/ShownText.h"

#include "controls/TextOn.h"

#include <gtest/gtest.h>
#include <limits>

namespace zr::controls {
namespace {

ZRDeviceDriver::tagSVariableInfo Info(int valueExponent, int unitsExponent, int unitsDecimals)
{
    ZRDeviceDriver::tagSVariableInfo info;
    info.valueExponent = valueExponent;
    info.unitsExponent = unitsExponent;
    info.unitsDecimals = unitsDecimals;
    return info;
}

TEST(ShownNumber, TakesTheValueAsItIsWhereTheExponentsAreEqual)
{
    EXPECT_EQ(ShownNumber(230.5, Info(-3, -3, 0)), 230.5);
    EXPECT_EQ(ShownNumber(-0.0, Info(7, 7, 0)), 0.0);
}

TEST(ShownNumber, MovesTheValueIntoTheDisplayedUnit)
{
    EXPECT_DOUBLE_EQ(ShownNumber(12345.0, Info(0, 3, 0)), 12.345);
    EXPECT_DOUBLE_EQ(ShownNumber(2.5, Info(3, 0, 0)), 2500.0);
    EXPECT_DOUBLE_EQ(ShownNumber(2305.0, Info(-1, 0, 0)), 230.5);
}

TEST(ShownNumber, BearsExponentsOfAnySize)
{
    constexpr int kLeast = std::numeric_limits<int>::min();
    constexpr int kMost = std::numeric_limits<int>::max();
    EXPECT_EQ(ShownNumber(1.0, Info(kLeast, kMost, 0)), 0.0);
    EXPECT_EQ(ShownNumber(1.0, Info(kMost, kLeast, 0)), std::numeric_limits<double>::infinity());
}

TEST(ShownText, WritesTheDecimalsOfTheDisplayedUnit)
{
    EXPECT_EQ(ShownText(230.0, Info(0, 0, 0)), u"230");
    EXPECT_EQ(ShownText(12999.0, Info(0, 3, 0)), u"13");
    EXPECT_EQ(ShownText(12.0, Info(0, 0, 2)).Length(), 5u);
    EXPECT_EQ(ShownText(std::numeric_limits<double>::quiet_NaN(), Info(0, 0, 2)), u"NaN");
}

TEST(TextOn, IsBlackOnALightFaceAndWhiteOnADarkOne)
{
    EXPECT_EQ(TextOn(MakeRgb(240, 240, 240)), kBlack);
    EXPECT_EQ(TextOn(MakeRgb(255, 255, 255)), kBlack);
    EXPECT_EQ(TextOn(MakeRgb(128, 128, 128)), kBlack);
    EXPECT_EQ(TextOn(MakeRgb(127, 127, 127)), kWhite);
    EXPECT_EQ(TextOn(MakeRgb(50, 50, 50)), kWhite);
    EXPECT_EQ(TextOn(MakeRgb(0, 0, 255)), kWhite);
    EXPECT_EQ(TextOn(MakeRgb(0, 255, 0)), kBlack);
}

}  // namespace
}  // namespace zr::controls
