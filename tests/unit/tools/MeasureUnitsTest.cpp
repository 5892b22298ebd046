#include "siblings/driversupport/MeasureUnits.h"

#include <gtest/gtest.h>

namespace {

using zr::MeasureUnit;

ZRBasicString Text(MeasureUnit unit, int exponent)
{
    ZRBasicString text = u"old";
    zr::MeasureUnitsText(text, static_cast<int>(unit), exponent);
    return text;
}

TEST(MeasureUnits, GivesCode7ToThePowerFactor)
{
    EXPECT_EQ(static_cast<int>(MeasureUnit::PowerFactor), 7);
    EXPECT_EQ(Text(MeasureUnit::PowerFactor, 0), u"PF");
}

TEST(MeasureUnits, PutsThePrefixBeforeTheSymbol)
{
    EXPECT_EQ(Text(MeasureUnit::Volt, -9), u"nV");
    EXPECT_EQ(Text(MeasureUnit::Ampere, -6), u"\u00B5A");
    EXPECT_EQ(Text(MeasureUnit::Second, -3), u"ms");
    EXPECT_EQ(Text(MeasureUnit::Hertz, 0), u"Hz");
    EXPECT_EQ(Text(MeasureUnit::WattHour, 3), u"kWh");
    EXPECT_EQ(Text(MeasureUnit::VarHour, 6), u"Mvarh");
    EXPECT_EQ(Text(MeasureUnit::VoltAmpere, 9), u"GVA");
    EXPECT_EQ(Text(MeasureUnit::Watt, 12), u"TW");
}

TEST(MeasureUnits, WritesTheExponentThatHasNoPrefix)
{
    EXPECT_EQ(Text(MeasureUnit::Volt, 2), u"x10^2 V");
    EXPECT_EQ(Text(MeasureUnit::Volt, -1), u"x10^-1 V");
    EXPECT_EQ(Text(MeasureUnit::Volt, 15), u"x10^15 V");
    EXPECT_EQ(Text(MeasureUnit::Volt, -2147483647 - 1), u"x10^-2147483648 V");
}

TEST(MeasureUnits, GivesNoPrefixToUnitsThatTakeNone)
{
    EXPECT_EQ(Text(MeasureUnit::Percent, 0), u"%");
    EXPECT_EQ(Text(MeasureUnit::Percent, 3), u"x10^3 %");
    EXPECT_EQ(Text(MeasureUnit::PowerFactor, -3), u"x10^-3 PF");
    EXPECT_EQ(Text(MeasureUnit::DegreeCelsius, -3), u"x10^-3 \u00B0C");
    EXPECT_EQ(Text(MeasureUnit::Hour, 3), u"x10^3 h");
    EXPECT_EQ(Text(MeasureUnit::Pulse, 0), u"imp");
}

TEST(MeasureUnits, IsEmptyWithoutUnit)
{
    EXPECT_EQ(Text(MeasureUnit::None, 0), u"");
    EXPECT_EQ(Text(MeasureUnit::None, 3), u"x10^3");
}

TEST(MeasureUnits, IsEmptyForAnUnknownCode)
{
    EXPECT_EQ(Text(static_cast<MeasureUnit>(-1), 0), u"");
    EXPECT_EQ(Text(static_cast<MeasureUnit>(999), 3), u"");
}

}  // namespace
