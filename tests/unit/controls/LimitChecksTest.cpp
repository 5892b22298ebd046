#include "controls/LimitChecks.h"

#include <gtest/gtest.h>
#include <limits>

namespace zr::controls {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(LimitChecks, StartsWithoutChecks)
{
    const LimitChecks limits;
    EXPECT_EQ(limits.flags, 0);
    EXPECT_FALSE(limits.enabled);
    EXPECT_EQ(limits.lowWarning, 0.0);
    EXPECT_EQ(limits.highAlarm, 0.0);
}

TEST(LimitChecks, TakesAbsoluteLimitsAsGiven)
{
    LimitChecks limits;
    limits.Setup(kCheckHighLimits | kCheckLowLimits, 207.5, 184.0, 253.0, 276.25, 230.0);
    EXPECT_EQ(limits.lowWarning, 207.5);
    EXPECT_EQ(limits.lowAlarm, 184.0);
    EXPECT_EQ(limits.highWarning, 253.0);
    EXPECT_EQ(limits.highAlarm, 276.25);
    EXPECT_EQ(limits.nominal, 230.0);
    EXPECT_TRUE(limits.enabled);
    EXPECT_TRUE(limits.Has(kCheckHighLimits));
    EXPECT_TRUE(limits.Has(kCheckLowLimits));
    EXPECT_FALSE(limits.Has(kPowerFactor));
}

TEST(LimitChecks, TakesPercentagesOfTheNominalValue)
{
    LimitChecks limits;
    limits.Setup(kCheckHighLimits | kCheckLowLimits | kPercentLimits, 10.0, 20.0, 10.0, 20.0, 230.0);
    EXPECT_DOUBLE_EQ(limits.lowWarning, 207.0);
    EXPECT_DOUBLE_EQ(limits.lowAlarm, 184.0);
    EXPECT_DOUBLE_EQ(limits.highWarning, 253.0);
    EXPECT_DOUBLE_EQ(limits.highAlarm, 276.0);
}

TEST(LimitChecks, SwitchesAllChecksOffWithoutAPositiveNominalValue)
{
    for (const int flags : {kCheckHighLimits | kCheckLowLimits, kPercentLimits | kCheckLowLimits, kPowerFactor}) {
        for (const double nominal : {0.0, -0.0, -230.0, kNan}) {
            LimitChecks limits;
            limits.Setup(flags, 1.0, 2.0, 3.0, 4.0, nominal);
            EXPECT_FALSE(limits.enabled) << flags << " " << nominal;
            EXPECT_EQ(limits.flags, flags);
        }
    }
}

TEST(LimitChecks, SwitchesThemOnAgain)
{
    LimitChecks limits;
    limits.Setup(kCheckLowLimits, 1.0, 2.0, 3.0, 4.0, 0.0);
    limits.Setup(kCheckLowLimits, 1.0, 2.0, 3.0, 4.0, 1e-300);
    EXPECT_TRUE(limits.enabled);
}

TEST(FoldPowerFactor, ContinuesThePositiveSignByTheNegativeOne)
{
    EXPECT_EQ(FoldPowerFactor(0.0), 0.0);
    EXPECT_EQ(FoldPowerFactor(-0.0), 0.0);
    EXPECT_EQ(FoldPowerFactor(0.5), 0.5);
    EXPECT_EQ(FoldPowerFactor(1.0), 1.0);
    EXPECT_EQ(FoldPowerFactor(-1.0), 1.0);
    EXPECT_EQ(FoldPowerFactor(-0.5), 1.5);
    EXPECT_DOUBLE_EQ(FoldPowerFactor(-0.9), 1.1);
    EXPECT_LT(FoldPowerFactor(0.8), FoldPowerFactor(-0.9));
}

TEST(IsSameReading, TakesANanOnEitherSideForEqual)
{
    EXPECT_TRUE(IsSameReading(1.5, 1.5));
    EXPECT_FALSE(IsSameReading(1.5, 1.25));
    EXPECT_TRUE(IsSameReading(kNan, kNan));
    EXPECT_TRUE(IsSameReading(1.5, kNan));
    EXPECT_TRUE(IsSameReading(kNan, 1.5));
    EXPECT_TRUE(IsSameReading(0.0, -0.0));
}

}  // namespace
}  // namespace zr::controls
