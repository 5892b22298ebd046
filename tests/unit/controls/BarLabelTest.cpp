#include "controls/BarLabel.h"

#include "controls/TextOn.h"

#include <gtest/gtest.h>

namespace zr::controls {
namespace {

constexpr int kBoth = kCheckLowLimits | kCheckHighLimits;
constexpr BarColours kColours;
constexpr Rgb kFace = MakeRgb(240, 240, 240);
constexpr LabelColours kPlain = {kFace, kBlack};
constexpr LabelColours kYellow = {kColours.yellow, kBlack};
constexpr LabelColours kRed = {kColours.red, kWhite};

BarSlotState Valid(double value)
{
    BarSlotState slot;
    slot.value = value;
    slot.valid = true;
    return slot;
}

LimitChecks Limits(int flags, double nominal = 230.0)
{
    LimitChecks limits;
    limits.Setup(flags, 207.0, 184.0, 253.0, 276.0, nominal);
    return limits;
}

LabelColours ColoursAt(double value, const LimitChecks& limits)
{
    return LabelColoursOf(limits, Valid(value), kColours, kFace);
}

TEST(BarLabel, TurnsYellowBeyondAWarningAndRedBeyondAnAlarmLimit)
{
    const std::pair<double, LabelColours> rows[] = {{183.0, kRed},    {184.0, kYellow}, {206.9, kYellow},
                                                    {207.0, kPlain},  {230.0, kPlain},  {253.0, kPlain},
                                                    {253.1, kYellow}, {276.0, kYellow}, {277.0, kRed}};
    for (const auto& [value, colours] : rows) {
        EXPECT_EQ(ColoursAt(value, Limits(kBoth)), colours) << value;
    }
}

TEST(BarLabel, LooksAtTheLimitsOfItsFlagsOnly)
{
    EXPECT_EQ(ColoursAt(300.0, Limits(kCheckLowLimits)), kPlain);
    EXPECT_EQ(ColoursAt(100.0, Limits(kCheckHighLimits)), kPlain);
    EXPECT_EQ(ColoursAt(100.0, Limits(kCheckLowLimits)), kRed);
    EXPECT_EQ(ColoursAt(300.0, Limits(kCheckHighLimits)), kRed);
    EXPECT_EQ(ColoursAt(300.0, Limits(0)), kPlain);
}

TEST(BarLabel, StaysPlainWithoutChecksOrAValidValue)
{
    EXPECT_EQ(ColoursAt(300.0, Limits(kBoth, 0.0)), kPlain);
    BarSlotState invalid = Valid(300.0);
    invalid.valid = false;
    EXPECT_EQ(LabelColoursOf(Limits(kBoth), invalid, kColours, kFace), kPlain);
}

TEST(BarLabel, LetsTheLowLimitsWinWhereBothAreBroken)
{
    LimitChecks limits;
    limits.Setup(kBoth, 300.0, 150.0, 100.0, 120.0, 230.0);
    EXPECT_EQ(ColoursAt(200.0, limits), kYellow);
}

TEST(BarLabel, IsReadableOnADarkFace)
{
    const Rgb dark = MakeRgb(40, 40, 40);
    EXPECT_EQ(LabelColoursOf(Limits(kBoth), Valid(230.0), kColours, dark), (LabelColours{dark, kWhite}));
    EXPECT_EQ(LabelColoursOf(Limits(kBoth), Valid(200.0), kColours, dark), kYellow);
}

LabelColours PowerFactorAt(double value, double nominal = 1.0)
{
    LimitChecks limits;
    limits.Setup(kPowerFactor, 0.8, 0.7, -0.8, -0.7, nominal);
    return PowerFactorLabelColoursOf(limits, Valid(value), kColours, kFace);
}

TEST(PowerFactorLabel, ComparesOnTheFoldedScaleWhateverTheOtherFlags)
{
    const std::pair<double, LabelColours> rows[] = {{1.0, kPlain},   {-1.0, kPlain}, {0.9, kPlain},   {-0.9, kPlain},
                                                    {0.75, kYellow}, {0.5, kRed},    {0.0, kRed},     {-0.75, kYellow},
                                                    {-0.5, kRed},    {-0.01, kRed},  {-0.85, kPlain}, {0.8, kPlain}};
    for (const auto& [value, colours] : rows) {
        EXPECT_EQ(PowerFactorAt(value), colours) << value;
    }
}

TEST(PowerFactorLabel, StaysPlainWithoutChecksOrAValidValue)
{
    EXPECT_EQ(PowerFactorAt(0.1, 0.0), kPlain);
    LimitChecks limits;
    limits.Setup(kPowerFactor, 0.8, 0.7, -0.8, -0.7, 1.0);
    EXPECT_EQ(PowerFactorLabelColoursOf(limits, BarSlotState{}, kColours, kFace), kPlain);
}

TEST(PowerFactorLabel, LetsTheHighLimitsWinWhereBothAreBroken)
{
    LimitChecks limits;
    // Above the high warning limit alone, and far below the low alarm limit.
    limits.Setup(kPowerFactor, 1.8, 1.7, 0.2, 1.9, 1.0);
    EXPECT_EQ(PowerFactorLabelColoursOf(limits, Valid(0.5), kColours, kFace), kYellow);
}

}  // namespace
}  // namespace zr::controls
