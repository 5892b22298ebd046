#include "siblings/tools/Numbers.h"

#include <gtest/gtest.h>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(TextToInt, ReadsTheDigitsAtTheStart)
{
    EXPECT_EQ(TextToInt(u"42"), 42);
    EXPECT_EQ(TextToInt(u" \t-7x9"), -7);
    EXPECT_EQ(TextToInt(u"+007"), 7);
    EXPECT_EQ(TextToInt(u"12.9"), 12);
}

TEST(TextToInt, IsZeroWithoutDigits)
{
    for (const char16_t* text : {u"", u"abc", u"-", u"--1", u"+-1", u".5", u"\u0661"}) {
        EXPECT_EQ(TextToInt(text), 0);
    }
}

TEST(TextToInt, IsHeldAtItsLimits)
{
    EXPECT_EQ(TextToInt(u"2147483647"), INT_MAX);
    EXPECT_EQ(TextToInt(u"2147483648"), INT_MAX);
    EXPECT_EQ(TextToInt(u"-2147483648"), INT_MIN);
    EXPECT_EQ(TextToInt(u"-99999999999999999999999"), INT_MIN);
    EXPECT_EQ(TextToInt(u"99999999999999999999999"), INT_MAX);
}

TEST(TextToDouble, ReadsTheNumberAtTheStart)
{
    EXPECT_EQ(TextToDouble(u"12.5"), 12.5);
    EXPECT_EQ(TextToDouble(u"\n -1e3kWh"), -1000.0);
    EXPECT_EQ(TextToDouble(u"+.25"), 0.25);
    EXPECT_EQ(TextToDouble(u"1,5"), 1.0);
    EXPECT_EQ(TextToDouble(u"3e"), 3.0);
    EXPECT_TRUE(std::signbit(TextToDouble(u"-0")));
}

TEST(TextToDouble, IsZeroWithoutDigits)
{
    for (const char16_t* text : {u"", u"abc", u"-", u".", u"+-1", u"inf", u"-nan", u"e5", u"\u0661"}) {
        EXPECT_EQ(TextToDouble(text), 0.0);
    }
    EXPECT_EQ(TextToDouble(u"0x10"), 0.0);
}

TEST(TextToDouble, IsInfiniteOrZeroBeyondTheRangeOfADouble)
{
    EXPECT_EQ(TextToDouble(u"1e309"), kInfinity);
    EXPECT_EQ(TextToDouble(u"-1e99999999999999999999"), -kInfinity);
    EXPECT_EQ(TextToDouble(u"1e-400"), 0.0);
    EXPECT_EQ(TextToDouble(u"0.0001e-400"), 0.0);
    EXPECT_EQ(TextToDouble(std::u16string(400, u'9')), kInfinity);
    EXPECT_EQ(TextToDouble(u"0." + std::u16string(400, u'0') + u"1"), 0.0);
    EXPECT_EQ(TextToDouble(u"0." + std::u16string(400, u'0') + u"1e400"), 0.1);
    EXPECT_EQ(TextToDouble(u"1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(ParseInteger, WantsTheWholeText)
{
    std::int64_t value = 5;
    EXPECT_TRUE(ParseInteger(u"-9223372036854775808", value));
    EXPECT_EQ(value, INT64_MIN);
    for (const char16_t* text : {u"", u" 1", u"1 ", u"+1", u"1.0", u"9223372036854775808", u"\u0661"}) {
        EXPECT_FALSE(ParseInteger(text, value));
    }
    EXPECT_EQ(value, INT64_MIN);
}

TEST(ParseDouble, WantsTheWholeTextAndAFiniteNumber)
{
    double value = 5.0;
    EXPECT_TRUE(ParseDouble(u"-1.5e-3", value));
    EXPECT_EQ(value, -0.0015);
    for (const char16_t* text : {u"", u" 1", u"1 ", u"+1", u"1,5", u"1e999", u"inf", u"nan", u"0x1p3"}) {
        EXPECT_FALSE(ParseDouble(text, value));
    }
    EXPECT_EQ(value, -0.0015);
}

TEST(DoubleToText, ReadsBackAsTheSameValue)
{
    EXPECT_EQ(DoubleToText(0.1), u"0.1");
    EXPECT_EQ(DoubleToText(-230.0), u"-230");
    std::mt19937_64 random(1);
    int failures = 0;
    for (int i = 0; i < 10000; ++i) {
        const std::uint64_t bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        double again = 0.0;
        failures += !std::isfinite(value) || (ParseDouble(DoubleToText(value), again) && again == value) ? 0 : 1;
    }
    EXPECT_EQ(failures, 0);
}

TEST(HtoB, ReadsTwoDigitsInEitherCase)
{
    EXPECT_EQ(HtoB(u"00"), 0);
    EXPECT_EQ(HtoB(u"fF"), 255);
    EXPECT_EQ(HtoB(u"1A-22"), 0x1A);
}

TEST(HtoB, CountsWhatIsNoDigitAsZero)
{
    EXPECT_EQ(HtoB(u"-1"), 0x01);
    EXPECT_EQ(HtoB(u"1-"), 0x10);
    EXPECT_EQ(HtoB(u"g\u0141"), 0);
    EXPECT_EQ(HtoB(u"5"), 0x50);
    EXPECT_EQ(HtoB(u""), 0);
    EXPECT_EQ(HtoB(nullptr), 0);
}

TEST(HtoL, ReadsSoManyDigits)
{
    EXPECT_EQ(HtoL(u"00FF80", 6), 0x00FF80u);
    EXPECT_EQ(HtoL(u"00ff80", 6), 0x00FF80u);
    EXPECT_EQ(HtoL(u"12345", 2), 0x12u);
    EXPECT_EQ(HtoL(u"12", 6), 0x12u);
    EXPECT_EQ(HtoL(u"1FFFFFFFF", 9), 0xFFFFFFFFu);
    EXPECT_EQ(HtoL(u"", 0), 0u);
}

}  // namespace
