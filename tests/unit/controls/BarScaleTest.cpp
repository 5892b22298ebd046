#include "controls/BarScale.h"

#include <gtest/gtest.h>
#include <limits>

namespace zr::controls {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kBoth = kCheckLowLimits | kCheckHighLimits;

LimitChecks Limits(int flags, double lowWarning, double lowAlarm, double highWarning, double highAlarm,
                   double nominal = 230.0)
{
    LimitChecks limits;
    limits.Setup(flags, lowWarning, lowAlarm, highWarning, highAlarm, nominal);
    return limits;
}

// Four pixels a unit below: 170 at the outer end, 220 at the inner one. Eight above: 240 at the inner end.
LimitChecks WithAGap()
{
    return Limits(kBoth, 200.0, 180.0, 250.0, 260.0);
}

TEST(ToPixel, TruncatesTowardsZero)
{
    EXPECT_EQ(ToPixel(12.9), 12);
    EXPECT_EQ(ToPixel(-12.9), -12);
    EXPECT_EQ(ToPixel(-0.5), 0);
}

TEST(ToPixel, HoldsWhatNoWindowReaches)
{
    EXPECT_EQ(ToPixel(kNan), 0);
    EXPECT_EQ(ToPixel(kInfinity), kFarPixel);
    EXPECT_EQ(ToPixel(-kInfinity), -kFarPixel);
    EXPECT_EQ(ToPixel(1e300), kFarPixel);
}

TEST(HorizontalScales, SplitTheBarAtItsMiddleForBothSides)
{
    const BarScales scales = HorizontalScales(42, 444, WithAGap());
    EXPECT_EQ(scales.lowerRange->First(), 42);
    EXPECT_EQ(scales.lowerRange->Last(), 242);
    EXPECT_EQ(scales.lowerRange->inner, 242);
    EXPECT_EQ(scales.upperRange->First(), 244);
    EXPECT_EQ(scales.upperRange->Last(), 444);
    EXPECT_EQ(scales.upperRange->inner, 244);
    // An odd width: half of it, 200, is taken from the right end.
    const BarScales odd = HorizontalScales(42, 443, WithAGap());
    EXPECT_EQ(odd.lowerRange->Last(), 242);
    EXPECT_EQ(odd.upperRange->First(), 244);
}

TEST(HorizontalScales, GiveOneSideTheWholeBar)
{
    const BarScales lower = HorizontalScales(42, 442, Limits(kCheckLowLimits, 200, 180, 0, 0));
    EXPECT_FALSE(lower.upperRange);
    EXPECT_FALSE(lower.upper);
    EXPECT_EQ(lower.lowerRange->outer, 42);
    EXPECT_EQ(lower.lowerRange->inner, 442);
    const BarScales upper = HorizontalScales(42, 442, Limits(kCheckHighLimits, 0, 0, 250, 260));
    EXPECT_FALSE(upper.lowerRange);
    EXPECT_EQ(upper.upperRange->inner, 42);
    EXPECT_EQ(upper.upperRange->outer, 442);
}

TEST(HorizontalScales, HaveNoRangeForPercentagesAlone)
{
    const BarScales scales = HorizontalScales(42, 442, Limits(kPercentLimits, 10, 20, 10, 20));
    EXPECT_FALSE(scales.lowerRange || scales.upperRange || scales.lower || scales.upper);
}

TEST(HorizontalScales, HaveRangesButNoScaleWithoutANominalValue)
{
    const BarScales scales = HorizontalScales(42, 442, Limits(kBoth, 200, 180, 250, 260, 0.0));
    EXPECT_TRUE(scales.lowerRange && scales.upperRange);
    EXPECT_FALSE(scales.lower || scales.upper);
}

TEST(HorizontalScales, StayInABarOfAFewPixels)
{
    for (int width = 0; width < 5; ++width) {
        const BarScales scales = HorizontalScales(10, 10 + width, WithAGap());
        for (const BarRange& range : {*scales.lowerRange, *scales.upperRange}) {
            EXPECT_GE(range.First(), 10) << width;
            EXPECT_LE(range.Last(), 10 + width) << width;
        }
    }
}

TEST(UprightScales, PutTheLowerRangeBelowTheMiddle)
{
    const BarScales scales = UprightScales(10, 412, WithAGap());
    EXPECT_EQ(scales.lowerRange->inner, 212);
    EXPECT_EQ(scales.lowerRange->outer, 412);
    EXPECT_EQ(scales.upperRange->inner, 210);
    EXPECT_EQ(scales.upperRange->outer, 10);
}

TEST(BarScale, PutsTheWarningLimitAtFortyAndTheAlarmLimitAtEightyPercent)
{
    const BarScales scales = HorizontalScales(42, 444, WithAGap());
    EXPECT_EQ(scales.lower->PlaceOfWarning(), 242 - 80);
    EXPECT_EQ(scales.lower->PlaceOfAlarm(), 242 - 160);
    EXPECT_EQ(scales.upper->PlaceOfWarning(), 244 + 80);
    EXPECT_EQ(scales.upper->PlaceOfAlarm(), 244 + 160);
    EXPECT_DOUBLE_EQ(scales.lower->InnerValue(), 220.0);
    EXPECT_DOUBLE_EQ(scales.upper->InnerValue(), 240.0);
}

TEST(BarScale, PutsASingleLimitAtEightyPercentAndTheNominalValueAtTheInnerEnd)
{
    const BarScales scales = HorizontalScales(42, 444, Limits(kBoth, 190, 190, 280, 280));
    EXPECT_EQ(scales.lower->PlaceOfAlarm(), 242 - 160);
    EXPECT_EQ(scales.lower->PlaceOfWarning(), 242 - 160);
    EXPECT_DOUBLE_EQ(scales.lower->InnerValue(), 230.0);
    EXPECT_EQ(scales.upper->PlaceOfAlarm(), 244 + 160);
    EXPECT_DOUBLE_EQ(scales.upper->InnerValue(), 230.0);
    // 4 pixels a unit below, 3.2 above.
    EXPECT_EQ(scales.lower->PlaceOf(200.0), 42 + 80);
    EXPECT_EQ(scales.upper->PlaceOf(240.0), 244 + 32);
}

TEST(BarScale, PlacesValuesInProportionAndTruncates)
{
    const BarScales scales = HorizontalScales(42, 444, WithAGap());
    const std::pair<double, int> lower[] = {{170.0, 42}, {175.0, 62}, {190.0, 122}, {190.2, 122}, {190.25, 123}};
    for (const auto& [value, place] : lower) {
        EXPECT_EQ(scales.lower->PlaceOf(value), place) << value;
    }
    EXPECT_EQ(scales.upper->PlaceOf(243.125), 244 + 25);
    EXPECT_EQ(scales.upper->PlaceOf(243.2), 244 + 25);
}

TEST(BarScale, GrowsUpwardsOnAnUprightBar)
{
    const BarScales scales = UprightScales(10, 412, WithAGap());
    EXPECT_EQ(scales.lower->PlaceOf(170.0), 412);
    EXPECT_EQ(scales.lower->PlaceOf(190.0), 412 - 80);
    EXPECT_EQ(scales.upper->PlaceOf(240.0), 210);
    EXPECT_EQ(scales.upper->PlaceOf(250.0), 210 - 80);
    EXPECT_EQ(scales.lower->PlaceOfAlarm(), 212 + 160);
    EXPECT_EQ(scales.upper->PlaceOfAlarm(), 210 - 160);
    // 412 - 80.8 and 210 - 80.8: truncated after the difference.
    EXPECT_EQ(scales.lower->PlaceOf(190.2), 331);
    EXPECT_EQ(scales.upper->PlaceOf(250.1), 129);
}

TEST(BarScale, IsAStepWhereTheLimitsGiveNoScale)
{
    const std::pair<const char*, LimitChecks> rows[] = {
        {"limit equals nominal", Limits(kBoth, 230, 230, 230, 230)},
        {"limit beyond nominal", Limits(kBoth, 240, 240, 220, 220)},
        {"limits out of order", Limits(kBoth, 180, 200, 260, 250)},
        {"limits without end", Limits(kBoth, 200, -kInfinity, 250, kInfinity)},
        {"nominal without end", Limits(kBoth, 190, 190, 250, 250, kInfinity)},
        {"no numbers", Limits(kBoth, kNan, kNan, kNan, kNan)},
        {"too close", Limits(kBoth, 1e-320, 0.0, 1e-320, 0.0)},
    };
    for (const auto& [name, limits] : rows) {
        const BarScales scales = HorizontalScales(42, 444, limits);
        for (const double value : {-1e300, -1.0, 0.0, 150.0, 225.0, 230.0, 235.0, 1e300, kInfinity, kNan}) {
            const int low = scales.lower->PlaceOf(value);
            EXPECT_TRUE(low == 42 || low == 242 || low == scales.lower->PlaceOfAlarm()) << name << value << low;
            const int high = scales.upper->PlaceOf(value);
            EXPECT_TRUE(high == 244 || high == 444 || high == scales.upper->PlaceOfAlarm()) << name << value << high;
        }
    }
}

TEST(BarScale, ShowsOnAStepWhichZoneAValueIsIn)
{
    const BarScales scales = HorizontalScales(42, 444, Limits(kBoth, 230, 230, 230, 230));
    EXPECT_EQ(scales.lower->PlaceOf(229.0), 42);
    EXPECT_EQ(scales.lower->PlaceOf(230.0), 242 - 160);
    EXPECT_EQ(scales.lower->PlaceOf(231.0), 242);
    EXPECT_EQ(scales.upper->PlaceOf(229.0), 244);
    EXPECT_EQ(scales.upper->PlaceOf(230.0), 244 + 160);
    EXPECT_EQ(scales.upper->PlaceOf(231.0), 444);
}

TEST(BarScale, KeepsLimitsAtTheirBoundariesOnAStep)
{
    const BarScales scales = HorizontalScales(42, 444, Limits(kBoth, 180, 200, 260, 250));
    EXPECT_EQ(scales.lower->PlaceOfWarning(), 162);
    EXPECT_EQ(scales.lower->PlaceOfAlarm(), 82);
    EXPECT_EQ(scales.upper->PlaceOfWarning(), 324);
    EXPECT_EQ(scales.upper->PlaceOfAlarm(), 404);
}

TEST(BarScale, PlacesANanWhereItStarts)
{
    const BarScales scales = HorizontalScales(42, 444, WithAGap());
    EXPECT_EQ(scales.lower->PlaceOf(kNan), 42);
    EXPECT_EQ(scales.upper->PlaceOf(kNan), 244);
}

TEST(BarScale, BearsARangeWithoutPixels)
{
    const BarScales scales = HorizontalScales(10, 10, WithAGap());
    EXPECT_EQ(scales.lower->PlaceOf(1e9), 10);
    EXPECT_EQ(scales.upper->PlaceOf(-1e9), 10);
}

TEST(NextSide, ChangesPastTheInnerEnds)
{
    // Both inner ends at the nominal value.
    const BarScales scales = HorizontalScales(42, 444, Limits(kBoth, 207, 184, 253, 276));
    EXPECT_EQ(NextSide(BarSide::Lower, 229.0, scales), BarSide::Lower);
    EXPECT_EQ(NextSide(BarSide::Lower, 231.0, scales), BarSide::Upper);
    EXPECT_EQ(NextSide(BarSide::Upper, 231.0, scales), BarSide::Upper);
    EXPECT_EQ(NextSide(BarSide::Upper, 229.0, scales), BarSide::Lower);
}

TEST(NextSide, StaysInTheGapBetweenTheScales)
{
    const BarScales scales = HorizontalScales(42, 444, WithAGap());
    EXPECT_EQ(NextSide(BarSide::Lower, 230.0, scales), BarSide::Lower);
    EXPECT_EQ(NextSide(BarSide::Upper, 230.0, scales), BarSide::Upper);
    EXPECT_EQ(NextSide(BarSide::Lower, 240.0, scales), BarSide::Upper);
    EXPECT_EQ(NextSide(BarSide::Upper, 219.0, scales), BarSide::Lower);
}

TEST(NextSide, StaysWhereTheScalesOverlap)
{
    // lowTop 240, base 220.
    const BarScales scales = HorizontalScales(42, 444, Limits(kBoth, 220, 200, 240, 260));
    EXPECT_EQ(NextSide(BarSide::Lower, 230.0, scales), BarSide::Lower);
    EXPECT_EQ(NextSide(BarSide::Upper, 230.0, scales), BarSide::Upper);
    EXPECT_EQ(NextSide(BarSide::Lower, 240.5, scales), BarSide::Upper);
    EXPECT_EQ(NextSide(BarSide::Upper, 219.5, scales), BarSide::Lower);
}

TEST(NextSide, IsThatOfTheOnlyScale)
{
    const BarScales lower = HorizontalScales(42, 444, Limits(kCheckLowLimits, 200, 180, 0, 0));
    EXPECT_EQ(NextSide(BarSide::Lower, 1e9, lower), BarSide::Lower);
    const BarScales upper = HorizontalScales(42, 444, Limits(kCheckHighLimits, 0, 0, 250, 260));
    EXPECT_EQ(NextSide(BarSide::Upper, -1e9, upper), BarSide::Upper);
}

TEST(NextSide, StaysWithoutAScaleAndForANan)
{
    const BarScales none = HorizontalScales(42, 444, Limits(kBoth, 200, 180, 250, 260, 0.0));
    const BarScales both = HorizontalScales(42, 444, WithAGap());
    for (const BarSide side : {BarSide::Lower, BarSide::Upper}) {
        EXPECT_EQ(NextSide(side, 1e9, none), side);
        EXPECT_EQ(NextSide(side, kNan, both), side);
    }
}

TEST(PowerFactorPosition, RunsFromTheLeftEndRoundToItself)
{
    EXPECT_EQ(PowerFactorPosition(0.0, 42, 442), 42.0);
    EXPECT_EQ(PowerFactorPosition(0.5, 42, 442), 142.0);
    EXPECT_EQ(PowerFactorPosition(1.0, 42, 442), 242.0);
    EXPECT_EQ(PowerFactorPosition(-1.0, 42, 442), 242.0);
    EXPECT_EQ(PowerFactorPosition(-0.5, 42, 442), 342.0);
    EXPECT_LT(PowerFactorPosition(-1e-9, 42, 442), 442.0);
    // Half of an odd width is truncated.
    EXPECT_EQ(PowerFactorPosition(1.0, 42, 443), 242.0);
}

}  // namespace
}  // namespace zr::controls
