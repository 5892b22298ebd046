#include "siblings/graphsupport/GraphColours.h"

#include "siblings/graphsupport/CurveColours.h"
#include "unit/graphsupport/ColourVision.h"

#include <gtest/gtest.h>
#include <array>
#include <cstddef>
#include <limits>

namespace zr::graph {
namespace {

// Between the two nearest of the first so many colours, as that eye sees them.
double LeastDifference(const Vision& vision, const std::array<unsigned long, 12>& colours, std::size_t count)
{
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            least = std::min(least, Difference(LabOf(Seen(vision, LinearOf(colours[i]))),
                                               LabOf(Seen(vision, LinearOf(colours[j])))));
        }
    }
    return least;
}

// The published pairs that show where a wrong hue or rotation would tell.
TEST(GraphColoursTest, DifferencesAreThoseOfThePublishedPairs)
{
    EXPECT_NEAR(Difference({50.0, 2.6772, -79.7751}, {50.0, 0.0, -82.7485}), 2.0425, 0.0001);
    EXPECT_NEAR(Difference({50.0, 2.5, 0.0}, {50.0, 0.0, -2.5}), 4.3065, 0.0001);
    EXPECT_NEAR(Difference({50.0, 2.5, 0.0}, {73.0, 25.0, -18.0}), 27.1492, 0.0001);
    EXPECT_NEAR(Difference({2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}), 0.9082, 0.0001);
    EXPECT_NEAR(Contrast(LinearOf(0xFFFFFF), LinearOf(0x000000)), 21.0, 1e-9);
}

TEST(GraphColoursTest, AllAreToldApartByEverybody)
{
    for (const Vision& vision : kVisions) {
        EXPECT_GE(LeastDifference(vision, kPredefinedColors, kPredefinedColors.size()), 13.3) << vision.name;
    }
}

TEST(GraphColoursTest, TheFirstSixAreToldApartEasily)
{
    for (const Vision& vision : kVisions) {
        EXPECT_GE(LeastDifference(vision, kPredefinedColors, 6), 23.5) << vision.name;
    }
}

TEST(GraphColoursTest, AllShowOnLightAndOnDarkGround)
{
    for (const unsigned long colour : kPredefinedColors) {
        EXPECT_GE(Contrast(LinearOf(colour), LinearOf(0xFFFFFF)), 2.2) << std::hex << colour;
        EXPECT_GE(Contrast(LinearOf(colour), LinearOf(0x1E1E1E)), 2.2) << std::hex << colour;
    }
}

// On a ground so dark that black can't be seen.
TEST(GraphColoursTest, LinesAreLightEnoughOnADarkGround)
{
    constexpr unsigned long kDark = 0x1E1E1E;
    for (const unsigned long colour : {0x000000UL, 0xFF0000UL, 0x0000FFUL, 0x800000UL, 0x202020UL}) {
        EXPECT_GE(ContrastOf(LineColourOn(kDark, colour), kDark), 2.6) << std::hex << colour;
    }
    for (const unsigned long colour : kPredefinedColors) {
        EXPECT_GE(ContrastOf(LineColourOn(kDark, colour), kDark), 2.6) << std::hex << colour;
    }
    // What is seen well stays.
    EXPECT_EQ(LineColourOn(kDark, 0x00FFFF), 0x00FFFFU);
}

TEST(GraphColoursTest, LinesAreAsChosenOnALightGround)
{
    for (const unsigned long colour : {0x000000UL, 0x00FF00UL, 0x00FFFFUL, 0xFFFFFFUL}) {
        EXPECT_EQ(LineColourOn(0xFFFFFF, colour), colour);
    }
}

TEST(GraphColoursTest, LinesMadeLighterAreStillToldApart)
{
    std::array<unsigned long, kPredefinedColors.size()> seen{};
    for (std::size_t i = 0; i < seen.size(); ++i) {
        seen[i] = LineColourOn(0x1E1E1E, kPredefinedColors[i]);
    }
    for (const Vision& vision : kVisions) {
        EXPECT_GE(LeastDifference(vision, seen, seen.size()), 10.3) << vision.name;
        EXPECT_GE(LeastDifference(vision, seen, 6), 20.8) << vision.name;
    }
}

TEST(GraphColoursTest, TextsInTheColourOfACurveCanBeRead)
{
    for (const unsigned long ground : {0xFFFFFFUL, 0xF7F3F2UL, 0x2D2622UL, 0x1E1E1EUL}) {
        for (const unsigned long colour : kPredefinedColors) {
            EXPECT_GE(ContrastOf(TextColourOn(ground, colour), ground), 4.5) << std::hex << ground << ' ' << colour;
        }
        EXPECT_GE(ContrastOf(TextColourOn(ground, ground), ground), 4.5);
    }
}

}  // namespace
}  // namespace zr::graph
