#include "siblings/graphsupport/ValueScale.h"

#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace zr::graph {
namespace {

class ValueScaleTest : public testing::Test {
protected:
    ValueScaleTest()
    {
        SetLocaleInformation("en");
        input.height = 200;
        input.labelHeight = 15;
    }
    ~ValueScaleTest() override { SetLocaleInformation(""); }

    ValueScale Of(double low, double high)
    {
        input.values = {low, high};
        return MakeValueScale(input);
    }
    static std::vector<std::string> Labels(const ValueScale& scale)
    {
        std::vector<std::string> labels;
        for (const ValueTick& tick : scale.ticks) {
            if (tick.isMajor) {
                labels.push_back(Utf16ToUtf8(tick.label));
            }
        }
        return labels;
    }

    ValueScaleInput input;
};

TEST_F(ValueScaleTest, LiesAroundTheValuesAtRoundPlaces)
{
    const ValueScale scale = Of(223.4, 236.9);
    EXPECT_DOUBLE_EQ(scale.map.low, 223.0);
    EXPECT_DOUBLE_EQ(scale.map.high, 237.5);
    EXPECT_EQ(Labels(scale), (std::vector<std::string>{"224", "226", "228", "230", "232", "234", "236"}));
}

TEST_F(ValueScaleTest, LabelsHaveTheDecimalsThatTheStepNeeds)
{
    EXPECT_EQ(Labels(Of(0.0, 0.9)), (std::vector<std::string>{"0.0", "0.2", "0.4", "0.6", "0.8"}));
    EXPECT_EQ(Of(1.0, 1.0009).decimals, 4);
    EXPECT_EQ(Of(0.0, 90.0).decimals, 0);
}

TEST_F(ValueScaleTest, LabelsAreInTheUsersNumberFormat)
{
    SetLocaleInformation("de");
    EXPECT_EQ(Labels(Of(0.0, 0.9)).at(1), "0,2");
    EXPECT_EQ(Labels(Of(0.0, 9000.0)).at(1), "2.000");
}

TEST_F(ValueScaleTest, StepsAreOneTwoOrFiveTimesAPowerOfTen)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        const double low = std::uniform_real_distribution<double>(-1000.0, 1000.0)(random);
        const double span = std::pow(10.0, std::uniform_real_distribution<double>(-6.0, 12.0)(random));
        input.height = std::uniform_int_distribution<int>(30, 2000)(random);
        const ValueScale scale = Of(low, low + span);
        std::vector<double> majors;
        for (std::size_t k = 0; k < scale.ticks.size(); ++k) {
            ASSERT_TRUE(k == 0 || scale.ticks[k - 1].value < scale.ticks[k].value);
            if (scale.ticks[k].isMajor) {
                majors.push_back(scale.ticks[k].value);
            }
        }
        ASSERT_LE(scale.map.low, low);
        ASSERT_GE(scale.map.high, low + span);
        ASSERT_LE(scale.map.high - scale.map.low, span * 2.1);
        if (majors.size() < 2) {
            continue;
        }
        const double step = majors[1] - majors[0];
        const double digits = step / std::pow(10.0, std::floor(std::log10(step) + 1e-6));
        ASSERT_TRUE(std::abs(digits - 1) < 1e-4 || std::abs(digits - 2) < 1e-4 || std::abs(digits - 5) < 1e-4) << step;
        // Labels don't touch.
        ASSERT_GE(step / (scale.map.high - scale.map.low) * input.height, input.labelHeight);
    }
}

TEST_F(ValueScaleTest, EqualValuesLieInTheMiddle)
{
    for (const double value : {230.0, -230.0, 1e-9, 1e300, -1e300, 5e12}) {
        const ValueScale scale = Of(value, value);
        EXPECT_LT(scale.map.low, value);
        EXPECT_GT(scale.map.high, value);
        EXPECT_NEAR((value - scale.map.low) / (scale.map.high - scale.map.low), 0.5, 0.2) << value;
    }
}

TEST_F(ValueScaleTest, ZeroAloneHasAScale)
{
    const ValueScale scale = Of(0.0, 0.0);
    EXPECT_DOUBLE_EQ(scale.map.low, -1.0);
    EXPECT_DOUBLE_EQ(scale.map.high, 1.0);
    EXPECT_FALSE(Labels(scale).empty());
}

TEST_F(ValueScaleTest, DenormalsAreAsZero)
{
    const ValueScale scale = Of(0.0, std::numeric_limits<double>::denorm_min());
    EXPECT_DOUBLE_EQ(scale.map.low, -1.0);
    EXPECT_DOUBLE_EQ(scale.map.high, 1.0);
}

TEST_F(ValueScaleTest, HugeValuesHaveShortLabelsWithAnExponent)
{
    const ValueScale scale = Of(-1e300, 1e300);
    EXPECT_TRUE(std::isfinite(scale.map.high - scale.map.low));
    EXPECT_EQ(scale.exponent, 300);
    for (const std::string& label : Labels(scale)) {
        EXPECT_LT(label.size(), 8u);
    }
    const double largest = std::numeric_limits<double>::max();
    const ValueScale whole = Of(-largest, largest);
    EXPECT_TRUE(std::isfinite(whole.map.high - whole.map.low));
    EXPECT_FALSE(Labels(whole).empty());
}

TEST_F(ValueScaleTest, SmallValuesHaveShortLabelsWithAnExponent)
{
    const ValueScale scale = Of(0.0, 9e-6);
    EXPECT_EQ(scale.exponent, -6);
    EXPECT_EQ(Labels(scale).at(1), "2");
}

TEST_F(ValueScaleTest, ValuesThatAreNoNumbersAreNone)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const auto& [low, high] :
         {std::pair(nan, nan), std::pair(-infinity, infinity), std::pair(infinity, -infinity)}) {
        const ValueScale scale = Of(low, high);
        EXPECT_DOUBLE_EQ(scale.map.low, -1.0);
        EXPECT_DOUBLE_EQ(scale.map.high, 1.0);
    }
}

TEST_F(ValueScaleTest, ValuesAboveZeroHaveNoScaleBelowIt)
{
    EXPECT_DOUBLE_EQ(Of(0.0, 97.0).map.low, 0.0);
    EXPECT_DOUBLE_EQ(Of(1.0, 97.0).map.low, 0.0);
    EXPECT_DOUBLE_EQ(Of(-97.0, 0.0).map.high, 0.0);
    EXPECT_LT(Of(-1.0, 97.0).map.low, -1.0);
}

TEST_F(ValueScaleTest, FixedLimitsStandAsTheyAre)
{
    input.minimum = 207.3;
    input.maximum = 253.1;
    const ValueScale scale = Of(229.0, 231.0);
    EXPECT_DOUBLE_EQ(scale.map.low, 207.3);
    EXPECT_DOUBLE_EQ(scale.map.high, 253.1);
    EXPECT_EQ(Labels(scale).front(), "210");
}

TEST_F(ValueScaleTest, OneFixedLimitLeavesTheOtherToTheValues)
{
    input.minimum = 200.0;
    const ValueScale low = Of(229.0, 231.0);
    EXPECT_DOUBLE_EQ(low.map.low, 200.0);
    EXPECT_GT(low.map.high, 231.0);
    EXPECT_LT(low.map.high, 240.0);
    input.minimum = kNoLimit;
    input.maximum = 260.0;
    const ValueScale high = Of(229.0, 231.0);
    EXPECT_LT(high.map.low, 229.0);
    EXPECT_DOUBLE_EQ(high.map.high, 260.0);
}

TEST_F(ValueScaleTest, AFixedLimitBeyondAllValuesStands)
{
    input.minimum = 300.0;
    const ValueScale scale = Of(229.0, 231.0);
    EXPECT_DOUBLE_EQ(scale.map.low, 300.0);
    EXPECT_GT(scale.map.high, 300.0);
}

TEST_F(ValueScaleTest, AFixedLimitBelowAllValuesStandsToo)
{
    input.maximum = 100.0;
    const ValueScale scale = Of(229.0, 231.0);
    EXPECT_DOUBLE_EQ(scale.map.high, 100.0);
    EXPECT_LT(scale.map.low, 100.0);
}

TEST_F(ValueScaleTest, LimitsInTheWrongOrderAreExchanged)
{
    input.minimum = 50.0;
    input.maximum = 10.0;
    const ValueScale scale = Of(0.0, 1.0);
    EXPECT_DOUBLE_EQ(scale.map.low, 10.0);
    EXPECT_DOUBLE_EQ(scale.map.high, 50.0);
}

TEST_F(ValueScaleTest, EqualLimitsAreWidened)
{
    for (const double limit : {0.0, 50.0, -3.0, 1e300}) {
        input.minimum = limit;
        input.maximum = limit;
        const ValueScale scale = Of(0.0, 1.0);
        EXPECT_LT(scale.map.low, limit);
        EXPECT_GT(scale.map.high, limit);
    }
}

TEST_F(ValueScaleTest, LimitsThatAreNoNumbersAreNone)
{
    const ValueScale automatic = Of(1.0, 2.0);
    input.minimum = std::numeric_limits<double>::quiet_NaN();
    input.maximum = std::numeric_limits<double>::infinity();
    EXPECT_DOUBLE_EQ(Of(1.0, 2.0).map.low, automatic.map.low);
    EXPECT_DOUBLE_EQ(Of(1.0, 2.0).map.high, automatic.map.high);
}

TEST_F(ValueScaleTest, TheNumberThatStandsForNoLimitIsNone)
{
    const ValueScale automatic = Of(1.0, 2.0);
    input.minimum = 2147483647.0;
    input.maximum = 2147483647.0;
    EXPECT_DOUBLE_EQ(Of(1.0, 2.0).map.low, automatic.map.low);
    EXPECT_DOUBLE_EQ(Of(1.0, 2.0).map.high, automatic.map.high);
    // Its neighbour is one.
    input.maximum = 2147483646.0;
    EXPECT_DOUBLE_EQ(Of(1.0, 2.0).map.high, 2147483646.0);
}

TEST_F(ValueScaleTest, BarsAlwaysIncludeZero)
{
    input.startsAtZero = true;
    EXPECT_DOUBLE_EQ(Of(90.0, 97.0).map.low, 0.0);
    EXPECT_DOUBLE_EQ(Of(-97.0, -90.0).map.high, 0.0);
    input.values = {};
    const ValueScale empty = MakeValueScale(input);
    EXPECT_DOUBLE_EQ(empty.map.low, 0.0);
    EXPECT_GT(empty.map.high, 0.0);
}

TEST_F(ValueScaleTest, APowerFactorIsLabelledUnfolded)
{
    input.isFolded = true;
    input.minimum = 0.6;
    input.maximum = 1.4;
    EXPECT_EQ(Labels(Of(0.9, 1.1)),
              (std::vector<std::string>{"0.60", "0.70", "0.80", "0.90", "1.00", "-0.90", "-0.80", "-0.70", "-0.60"}));
}

TEST_F(ValueScaleTest, BarsOfNothingStandOnZero)
{
    input.startsAtZero = true;
    const ValueScale scale = Of(0.0, 0.0);
    EXPECT_DOUBLE_EQ(scale.map.low, 0.0);
    EXPECT_DOUBLE_EQ(scale.map.high, 1.0);
}

TEST_F(ValueScaleTest, APowerFactorRunsFromZeroToTwo)
{
    input.isFolded = true;
    const ValueScale scale = Of(0.0, 2.0);
    EXPECT_DOUBLE_EQ(scale.map.low, 0.0);
    EXPECT_DOUBLE_EQ(scale.map.high, 2.0);
    EXPECT_EQ(Labels(scale).front(), "0.00");
    EXPECT_EQ(Labels(scale).back(), "0.00");
    input.minimum = -5.0;
    input.maximum = 7.0;
    EXPECT_DOUBLE_EQ(Of(0.9, 1.1).map.low, 0.0);
    EXPECT_DOUBLE_EQ(Of(0.9, 1.1).map.high, 2.0);
}

TEST_F(ValueScaleTest, APowerFactorAtAnEndOfItsScaleIsWidenedInwards)
{
    input.isFolded = true;
    for (const double value : {0.0, 1.0, 2.0}) {
        const ValueScale scale = Of(value, value);
        EXPECT_LT(scale.map.low, scale.map.high);
        EXPECT_GE(scale.map.low, 0.0);
        EXPECT_LE(scale.map.high, 2.0);
    }
}

TEST_F(ValueScaleTest, NoHeightHasAScaleTooAndFewTicks)
{
    for (const int height : {0, 1, 5}) {
        input.height = height;
        const ValueScale scale = Of(223.4, 236.9);
        EXPECT_LE(scale.map.low, 223.4);
        EXPECT_GE(scale.map.high, 236.9);
        EXPECT_LE(scale.ticks.size(), 4u);
    }
}

TEST_F(ValueScaleTest, AnyPairOfNumbersHasAScale)
{
    std::mt19937_64 random(99);
    const auto number = [&] {
        const double exponent = std::uniform_real_distribution<double>(-320.0, 308.0)(random);
        return (random() % 2 == 0 ? -1.0 : 1.0) * std::pow(10.0, exponent);
    };
    for (int i = 0; i < 5000; ++i) {
        input.isFolded = i % 5 == 0;
        input.startsAtZero = i % 7 == 0;
        input.minimum = i % 3 == 0 ? number() : kNoLimit;
        input.maximum = i % 4 == 0 ? number() : kNoLimit;
        const double a = number();
        const double b = i % 11 == 0 ? a : number();
        const ValueScale scale = Of(std::min(a, b), std::max(a, b));
        ASSERT_LT(scale.map.low, scale.map.high) << a << " " << b;
        ASSERT_TRUE(std::isfinite(scale.map.high - scale.map.low));
        ASSERT_LE(scale.ticks.size(), 100u);
        for (const std::string& label : Labels(scale)) {
            ASSERT_LT(label.size(), 40u) << label;
        }
    }
}

TEST_F(ValueScaleTest, ASmallHeightHasTwoLabelsWhereTheyDoNotTouch)
{
    input.height = 52;
    EXPECT_EQ(Labels(Of(0.438, 1.751)), (std::vector<std::string>{"0.5", "1.0", "1.5"}));
    EXPECT_EQ(Labels(Of(50.0, 50.0)), (std::vector<std::string>{"48", "50", "52"}));
    input.height = 20;
    EXPECT_LE(Labels(Of(50.0, 50.0)).size(), 1u);
}

TEST_F(ValueScaleTest, StatesHaveNoLabelsBetweenWholeNumbers)
{
    input.isWhole = true;
    const ValueScale scale = Of(0.0, 1.0);
    EXPECT_EQ(Labels(scale), (std::vector<std::string>{"0", "1"}));
    EXPECT_EQ(scale.ticks.size(), 2u);
    EXPECT_EQ(Labels(Of(2.0, 2.0)), (std::vector<std::string>{"2"}));
    EXPECT_EQ(Labels(Of(0.0, 60.0)).at(1), "10");
}

}  // namespace
}  // namespace zr::graph
