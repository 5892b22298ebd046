#include "controls/BarZones.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include <ostream>

namespace zr::controls {

// For readable failures.
static std::ostream& operator<<(std::ostream& out, const BarStretch& stretch)
{
    return out << stretch.from << ".." << stretch.to << std::hex << " " << stretch.first << " " << stretch.last
               << std::dec << (stretch.isBlend ? " blend" : "");
}

namespace {

constexpr BarColours kColours;
constexpr Rgb kGreen = kColours.green;
constexpr Rgb kYellow = kColours.yellow;
constexpr Rgb kRed = kColours.red;

BarStretch Flat(int from, int to, Rgb colour)
{
    return {from, to, colour, colour, false};
}
BarStretch Soft(int from, int to, Rgb first, Rgb last)
{
    return {from, to, first, last, true};
}

using Stretches = std::vector<BarStretch>;

// From left to right.
Stretches Sorted(Stretches stretches)
{
    std::stable_sort(stretches.begin(), stretches.end(),
                     [](const BarStretch& left, const BarStretch& right) { return left.from < right.from; });
    return stretches;
}

Stretches RangeZones(const BarRange& range, bool isOneLimit, bool isEnabled = true)
{
    Stretches stretches;
    AddRangeZones(stretches, range, isEnabled, isOneLimit, kColours);
    return Sorted(stretches);
}

Stretches PowerFactorZones(int left, int right, double lowWarning, double lowAlarm, double highWarning,
                           double highAlarm)
{
    LimitChecks limits;
    limits.Setup(kPowerFactor, lowWarning, lowAlarm, highWarning, highAlarm, 1.0);
    Stretches stretches;
    AddPowerFactorZones(stretches, left, right, limits, kColours);
    return Sorted(stretches);
}

TEST(BarZones, HaveTheGivenColours)
{
    EXPECT_EQ(kGreen, MakeRgb(0, 200, 50));
    EXPECT_EQ(kYellow, MakeRgb(220, 220, 0));
    EXPECT_EQ(kRed, MakeRgb(220, 0, 0));
    EXPECT_EQ(kDisabledBarColours.green, MakeRgb(173, 173, 173));
    EXPECT_EQ(kDisabledBarColours.yellow, MakeRgb(214, 214, 214));
    EXPECT_EQ(kDisabledBarColours.red, MakeRgb(111, 111, 111));
}

TEST(BarZones, AreAllGreenWithoutChecks)
{
    EXPECT_EQ(RangeZones({442, 42}, false, false), (Stretches{Flat(42, 442, kGreen)}));
    EXPECT_EQ(RangeZones({42, 442}, true, false), (Stretches{Flat(42, 442, kGreen)}));
}

TEST(BarZones, RunFromTheRightEndOfTheLowerRange)
{
    // 160 pixels between the limits: soft edges of 18 to each side.
    EXPECT_EQ(RangeZones({442, 42}, false),
              (Stretches{Flat(42, 104, kRed), Soft(104, 140, kRed, kYellow), Flat(140, 264, kYellow),
                         Soft(264, 300, kYellow, kGreen), Flat(300, 442, kGreen)}));
}

TEST(BarZones, RunFromTheLeftEndOfTheUpperRange)
{
    EXPECT_EQ(RangeZones({42, 442}, false),
              (Stretches{Flat(42, 184, kGreen), Soft(184, 220, kGreen, kYellow), Flat(220, 344, kYellow),
                         Soft(344, 380, kYellow, kRed), Flat(380, 442, kRed)}));
}

TEST(BarZones, HaveNoYellowForASingleLimit)
{
    // 320 pixels from the inner end to the limit: a soft edge of 18 to each side.
    EXPECT_EQ(RangeZones({442, 42}, true),
              (Stretches{Flat(42, 104, kRed), Soft(104, 140, kRed, kGreen), Flat(140, 442, kGreen)}));
    EXPECT_EQ(RangeZones({42, 442}, true),
              (Stretches{Flat(42, 344, kGreen), Soft(344, 380, kGreen, kRed), Flat(380, 442, kRed)}));
}

TEST(BarZones, TruncateTheirBoundaries)
{
    // 199 * 0.4 = 79.6: 241 - 79.6 = 161.4, then 161 - 79.6 = 81.4; 243 + 79.6 = 322.6, then 322 + 79.6 = 401.6.
    const BarBoundaries lower = BoundariesOf({241, 42}, false);
    EXPECT_EQ(lower.warning, 161);
    EXPECT_EQ(lower.alarm, 81);
    const BarBoundaries upper = BoundariesOf({243, 442}, false);
    EXPECT_EQ(upper.warning, 322);
    EXPECT_EQ(upper.alarm, 401);
    // 199 * 0.8 = 159.2.
    EXPECT_EQ(BoundariesOf({241, 42}, true).alarm, 81);
    EXPECT_EQ(BoundariesOf({243, 442}, true).alarm, 402);
}

TEST(BarZones, MeetInAHardEdgeWhereTheZonesAreNarrow)
{
    // Ten pixels: the limits at 4 and 8; an edge of 2 to each side needs more than 4 between them.
    EXPECT_EQ(RangeZones({0, 10}, false), (Stretches{Flat(0, 4, kGreen), Flat(4, 8, kYellow), Flat(8, 10, kRed)}));
    // Thirteen: 5 and 10, five apart; three are left beyond the alarm limit.
    EXPECT_EQ(RangeZones({0, 13}, false),
              (Stretches{Flat(0, 3, kGreen), Soft(3, 7, kGreen, kYellow), Flat(7, 8, kYellow),
                         Soft(8, 12, kYellow, kRed), Flat(12, 13, kRed)}));
}

TEST(BarZones, MeetInAHardEdgeWhereASingleLimitHasNoRoom)
{
    // Half of the way to the limit must exceed 4, and the room beyond it 2.
    EXPECT_EQ(RangeZones({0, 10}, true), (Stretches{Flat(0, 8, kGreen), Flat(8, 10, kRed)}));
    // 12 * 0.8 = 9.6: half of 9 exceeds 4, and three are left beyond.
    EXPECT_EQ(RangeZones({0, 12}, true),
              (Stretches{Flat(0, 7, kGreen), Soft(7, 11, kGreen, kRed), Flat(11, 12, kRed)}));
    // 8.8: half of 8 doesn't.
    EXPECT_EQ(RangeZones({0, 11}, true), (Stretches{Flat(0, 8, kGreen), Flat(8, 11, kRed)}));
    // From the right, 13 - 10.4 = 2.6 leaves two, and that isn't enough.
    EXPECT_EQ(RangeZones({13, 0}, true), (Stretches{Flat(0, 2, kRed), Flat(2, 13, kGreen)}));
    EXPECT_EQ(RangeZones({0, 15}, true),
              (Stretches{Flat(0, 10, kGreen), Soft(10, 14, kGreen, kRed), Flat(14, 15, kRed)}));
}

TEST(BarZones, BearARangeWithoutPixels)
{
    EXPECT_TRUE(RangeZones({42, 42}, false).empty());
    EXPECT_TRUE(RangeZones({42, 42}, true).empty());
    EXPECT_TRUE(RangeZones({42, 42}, true, false).empty());
}

TEST(PowerFactorZones, AreGreenBetweenTheWarningLimitsAndYellowAndRedOutwards)
{
    // 0.8 at 202, 0.7 at 182, -0.8 at 282 (1.2 on the fold), -0.7 at 302; soft edges of 4 to each side.
    EXPECT_EQ(PowerFactorZones(42, 442, 0.8, 0.7, -0.8, -0.7),
              (Stretches{Flat(42, 178, kRed), Soft(178, 186, kRed, kYellow), Flat(186, 198, kYellow),
                         Soft(198, 206, kYellow, kGreen), Flat(206, 243, kGreen), Flat(242, 278, kGreen),
                         Soft(278, 286, kGreen, kYellow), Flat(286, 298, kYellow), Soft(298, 306, kYellow, kRed),
                         Flat(306, 442, kRed)}));
}

TEST(PowerFactorZones, HaveNoYellowForASingleLimit)
{
    EXPECT_EQ(PowerFactorZones(42, 442, 0.8, 0.8, -0.8, -0.8),
              (Stretches{Flat(42, 198, kRed), Soft(198, 206, kRed, kGreen), Flat(206, 243, kGreen),
                         Flat(242, 278, kGreen), Soft(278, 286, kGreen, kRed), Flat(286, 442, kRed)}));
}

TEST(PowerFactorZones, TakeTheirSoftEdgesFromPlacesThatArentTruncated)
{
    // 0.7 at 132.30 and 0.55 at 112.95 are 19.35 apart: 3 to each side, where 132 and 112 would give 4. Likewise 210.99
    // and 230.34 on the right.
    EXPECT_EQ(PowerFactorZones(42, 300, 0.7, 0.55, -0.69, -0.54),
              (Stretches{Flat(42, 109, kRed), Soft(109, 115, kRed, kYellow), Flat(115, 129, kYellow),
                         Soft(129, 135, kYellow, kGreen), Flat(135, 172, kGreen), Flat(171, 207, kGreen),
                         Soft(207, 213, kGreen, kYellow), Flat(213, 227, kYellow), Soft(227, 233, kYellow, kRed),
                         Flat(233, 300, kRed)}));
    // 92.90 is 79.15 from the middle and one at 172.05: 5 to each side, where 92 and 172 would give 6.
    EXPECT_EQ(PowerFactorZones(42, 300, 0.3946, 0.3946, -0.3938, -0.3938),
              (Stretches{Flat(42, 87, kRed), Soft(87, 97, kRed, kGreen), Flat(97, 172, kGreen), Flat(171, 244, kGreen),
                         Soft(244, 254, kGreen, kRed), Flat(254, 300, kRed)}));
}

TEST(PowerFactorZones, MayHaveOneLimitOnOneSideOnly)
{
    EXPECT_EQ(PowerFactorZones(42, 442, 0.8, 0.8, -0.8, -0.7).size(), 3u + 5u);
    EXPECT_EQ(PowerFactorZones(42, 442, 0.8, 0.7, -0.8, -0.8).size(), 5u + 3u);
}

TEST(PowerFactorZones, MeetInAHardEdgeWhereTheLimitsAreClose)
{
    // 0.8 and 0.785 are three pixels apart.
    EXPECT_EQ(PowerFactorZones(42, 442, 0.8, 0.785, -0.8, -0.785),
              (Stretches{Flat(42, 199, kRed), Flat(199, 202, kYellow), Flat(202, 243, kGreen), Flat(242, 282, kGreen),
                         Flat(282, 285, kYellow), Flat(285, 442, kRed)}));
}

TEST(PowerFactorZones, PaintWhatLimitsOutOfOrderSay)
{
    // Warning limits outside the alarm limits: no yellow stretch has a width, green and red overlap.
    const Stretches stretches = PowerFactorZones(42, 442, 0.7, 0.8, -0.7, -0.8);
    EXPECT_EQ(stretches,
              (Stretches{Flat(42, 202, kRed), Flat(182, 243, kGreen), Flat(242, 302, kGreen), Flat(282, 442, kRed)}));
}

TEST(PowerFactorZones, BearLimitsThatAreNoNumbers)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const BarStretch& stretch : PowerFactorZones(42, 442, kNan, -kInfinity, kInfinity, kNan)) {
        EXPECT_LE(std::abs(stretch.from), 2 * kFarPixel);
        EXPECT_LE(std::abs(stretch.to), 2 * kFarPixel);
    }
}

}  // namespace
}  // namespace zr::controls
