#include "siblings/graphsupport/CurveColours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace zr::graph {

namespace {

constexpr double kContrastOfLine = 2.6;  // more would bring the colours closer to each other
constexpr double kContrastOfText = 4.5;
constexpr double kDarkGround = 0.18;  // luminance: black and white contrast with it alike
constexpr int kSteps = 32;

using Parts = std::array<double, 3>;  // red, green, blue, 0 to 255

Parts PartsOf(unsigned long colour)
{
    return {static_cast<double>(colour & 0xff), static_cast<double>(colour >> 8 & 0xff),
            static_cast<double>(colour >> 16 & 0xff)};
}

unsigned long ColourOfParts(const Parts& parts)
{
    unsigned long colour = 0;
    for (std::size_t i = parts.size(); i-- > 0;) {
        colour = colour << 8 | static_cast<unsigned long>(std::lround(std::clamp(parts[i], 0.0, 255.0)));
    }
    return colour;
}

// Of a byte of a colour: proportional to light (IEC 61966-2-1).
double LightOf(unsigned long byte)
{
    static const std::array<double, 256> lights = [] {
        std::array<double, 256> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            const double part = static_cast<double>(i) / 255.0;
            table[i] = part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        }
        return table;
    }();
    return lights[byte & 0xff];
}

double LuminanceOf(unsigned long colour)
{
    return 0.2126 * LightOf(colour) + 0.7152 * LightOf(colour >> 8) + 0.0722 * LightOf(colour >> 16);
}

// A part of the way from a colour to black.
unsigned long Darker(unsigned long colour, double part)
{
    Parts parts = PartsOf(colour);
    for (double& value : parts) {
        value *= 1.0 - part;
    }
    return ColourOfParts(parts);
}

// A part of the way from a colour over the brightest of its hue to white.
unsigned long Lighter(unsigned long colour, double part)
{
    Parts parts = PartsOf(colour);
    const double most = *std::max_element(parts.begin(), parts.end());
    const double brightest = most > 0.0 ? 255.0 / most : 1.0;
    const double factor = 1.0 + (brightest - 1.0) * std::min(part * 2.0, 1.0);
    const double toWhite = std::max(part * 2.0 - 1.0, 0.0);
    for (double& value : parts) {
        value *= factor;
        value += (255.0 - value) * toWhite;
    }
    return ColourOfParts(parts);
}

unsigned long WithContrast(unsigned long ground, unsigned long colour, double least)
{
    const bool isDark = LuminanceOf(ground) < kDarkGround;
    unsigned long seen = colour;
    for (int step = 1; step <= kSteps && ContrastOf(seen, ground) < least; ++step) {
        const double part = static_cast<double>(step) / kSteps;
        seen = isDark ? Lighter(colour, part) : Darker(colour, part);
    }
    return seen;
}

}  // namespace

double ContrastOf(unsigned long one, unsigned long other)
{
    const auto [less, more] = std::minmax({LuminanceOf(one), LuminanceOf(other)});
    return (more + 0.05) / (less + 0.05);
}

unsigned long LineColourOn(unsigned long ground, unsigned long colour)
{
    return LuminanceOf(ground) < kDarkGround ? WithContrast(ground, colour, kContrastOfLine) : colour;
}

unsigned long TextColourOn(unsigned long ground, unsigned long colour)
{
    return WithContrast(ground, colour, kContrastOfText);
}

}  // namespace zr::graph
