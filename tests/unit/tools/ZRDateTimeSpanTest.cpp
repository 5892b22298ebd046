#include "siblings/tools/ZRDateTime.h"

#include <gtest/gtest.h>
#include <climits>

namespace {

ZRDateTimeSpan Span(int days, int hours, int minutes, int seconds, int milliseconds, int micros)
{
    ZRDateTimeSpan span;
    span.SetDateTimeSpan(days, hours, minutes, seconds, milliseconds, micros);
    return span;
}

TEST(ZRDateTimeSpan, AddsItsParts)
{
    EXPECT_EQ(Span(31, 0, 0, 0, 0, 0), ZRDateTimeSpan(2678400, 0));
    EXPECT_EQ(Span(0, 24, 0, 0, 0, 0), ZRDateTimeSpan(86400, 0));
    EXPECT_EQ(Span(1, 2, 3, 4, 5, 6), ZRDateTimeSpan(93784, 5006));
}

TEST(ZRDateTimeSpan, IsBelowZeroForTheAutomaticPeriod)
{
    EXPECT_EQ(Span(-1, -1, -1, -1, 0, 0), ZRDateTimeSpan(-90061, 0));
}

TEST(ZRDateTimeSpan, CountsMicrosecondsUpwardsWhenPartsAreBelowZero)
{
    EXPECT_EQ(Span(0, 0, 0, 0, -500, 0), ZRDateTimeSpan(-1, 500000));
    EXPECT_EQ(Span(0, 0, 0, 0, 0, -1), ZRDateTimeSpan(-1, 999999));
    EXPECT_EQ(Span(0, 0, 0, 1, -1000, 0), ZRDateTimeSpan(0, 0));
    EXPECT_EQ(Span(0, 0, 0, -1, 2500, 0), ZRDateTimeSpan(1, 500000));
}

TEST(ZRDateTimeSpan, CarriesMillisecondsAndMicroseconds)
{
    EXPECT_EQ(Span(0, 0, 0, 0, 999, 1000), ZRDateTimeSpan(1, 0));
    EXPECT_EQ(Span(0, 0, 0, 0, 0, INT_MAX), ZRDateTimeSpan(2147, 483647));
}

TEST(ZRDateTimeSpan, IsHeldAtItsLimits)
{
    EXPECT_EQ(Span(INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX), ZRDateTimeSpan(INT32_MAX, 999999));
    EXPECT_EQ(Span(INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN), ZRDateTimeSpan(INT32_MIN, 0));
    EXPECT_EQ(Span(0, 0, 0, INT_MIN, 0, -1), ZRDateTimeSpan(INT32_MIN, 0));
}

TEST(ZRDateTimeSpan, IsOrderedWithNegativeOnesFirst)
{
    EXPECT_LT(ZRDateTimeSpan(-1, 500000), ZRDateTimeSpan(0, 0));
    EXPECT_LT(ZRDateTimeSpan(-1, 0), ZRDateTimeSpan(-1, 500000));
}

}  // namespace
