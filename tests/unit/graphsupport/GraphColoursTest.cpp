#include "siblings/graphsupport/GraphColours.h"

#include "unit/graphsupport/ColourVision.h"

#include <gtest/gtest.h>
#include <cstddef>
#include <limits>

namespace zr::graph {
namespace {

// Between the two nearest of the first so many colours, as that eye sees them.
double LeastDifference(const Vision& vision, std::size_t count)
{
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            least = std::min(least, Difference(LabOf(Seen(vision, LinearOf(kPredefinedColors[i]))),
                                               LabOf(Seen(vision, LinearOf(kPredefinedColors[j])))));
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
        EXPECT_GE(LeastDifference(vision, kPredefinedColors.size()), 13.3) << vision.name;
    }
}

TEST(GraphColoursTest, TheFirstSixAreToldApartEasily)
{
    for (const Vision& vision : kVisions) {
        EXPECT_GE(LeastDifference(vision, 6), 23.5) << vision.name;
    }
}

TEST(GraphColoursTest, AllShowOnLightAndOnDarkGround)
{
    for (const unsigned long colour : kPredefinedColors) {
        EXPECT_GE(Contrast(LinearOf(colour), LinearOf(0xFFFFFF)), 2.2) << std::hex << colour;
        EXPECT_GE(Contrast(LinearOf(colour), LinearOf(0x1E1E1E)), 2.2) << std::hex << colour;
    }
}

}  // namespace
}  // namespace zr::graph
