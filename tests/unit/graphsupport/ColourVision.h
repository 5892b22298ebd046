// How colours look to people, and how far apart they are.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zr::graph {

using Triple = std::array<double, 3>;

// To red, green and blue in 0 to 1, proportional to light (IEC 61966-2-1). The colour has blue in the high byte of
// three.
inline Triple LinearOf(unsigned long colour)
{
    Triple linear{};
    for (std::size_t i = 0; i < linear.size(); ++i) {
        const double part = static_cast<double>((colour >> (8 * i)) & 0xFFU) / 255.0;
        linear[i] = part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    }
    return linear;
}

// Relative luminance and contrast ratio, 1 to 21 (W3C, Web Content Accessibility Guidelines 2.1).
inline double Luminance(const Triple& linear)
{
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2];
}
inline double Contrast(const Triple& one, const Triple& other)
{
    const double a = Luminance(one) + 0.05;
    const double b = Luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

// What an eye makes of linear colours.
struct Vision {
    const char* name;
    std::array<double, 9> matrix;
};
// G. M. Machado, M. M. Oliveira, L. A. F. Fernandes: A Physiologically-based Model for Simulation of Color Vision
// Deficiency, IEEE TVCG 15(6), 2009; severity 1.0.
inline constexpr std::array<Vision, 4> kVisions = {
    {{"full", {1, 0, 0, 0, 1, 0, 0, 0, 1}},
     {"protanopia", {0.152286, 1.052583, -0.204868, 0.114503, 0.786281, 0.099216, -0.003882, -0.048116, 1.051998}},
     {"deuteranopia", {0.367322, 0.860646, -0.227968, 0.280085, 0.672501, 0.047413, -0.011820, 0.042940, 0.968881}},
     {"tritanopia", {1.255528, -0.076749, -0.178779, -0.078411, 0.930809, 0.147602, 0.004733, 0.691367, 0.303900}}}};

inline Triple Seen(const Vision& vision, const Triple& linear)
{
    Triple seen{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            seen[row] += vision.matrix[3 * row + column] * linear[column];
        }
        seen[row] = std::clamp(seen[row], 0.0, 1.0);
    }
    return seen;
}

// CIE 1976 L*a*b* under D65.
inline Triple LabOf(const Triple& linear)
{
    const auto f = [](double t) { return t > 216.0 / 24389.0 ? std::cbrt(t) : (24389.0 / 27.0 * t + 16.0) / 116.0; };
    const double x = f((0.4124564 * linear[0] + 0.3575761 * linear[1] + 0.1804375 * linear[2]) / 0.95047);
    const double y = f(0.2126729 * linear[0] + 0.7151522 * linear[1] + 0.0721750 * linear[2]);
    const double z = f((0.0193339 * linear[0] + 0.1191920 * linear[1] + 0.9503041 * linear[2]) / 1.08883);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

// CIEDE2000 (CIE 142-2001), as written out by G. Sharma, W. Wu, E. N. Dalal, Color Research and Application 30(1),
// 2005. About 2 is seen side by side.
inline double Difference(const Triple& one, const Triple& other)
{
    constexpr double kDegree = std::numbers::pi / 180.0;
    const auto pull = [](double chroma) {
        const double seventh = std::pow(chroma, 7.0);
        return std::sqrt(seventh / (seventh + 6103515625.0));
    };
    const double meanChroma = (std::hypot(one[1], one[2]) + std::hypot(other[1], other[2])) / 2.0;
    const double stretch = 1.0 + 0.5 * (1.0 - pull(meanChroma));
    const auto hueOf = [&](const Triple& lab) {
        const double hue = std::atan2(lab[2], lab[1] * stretch) / kDegree;
        return lab[1] == 0.0 && lab[2] == 0.0 ? 0.0 : hue < 0.0 ? hue + 360.0 : hue;
    };
    const double c1 = std::hypot(one[1] * stretch, one[2]);
    const double c2 = std::hypot(other[1] * stretch, other[2]);
    const bool isGrey = c1 * c2 == 0.0;
    const double h1 = hueOf(one);
    const double h2 = hueOf(other);
    double turn = isGrey ? 0.0 : h2 - h1;
    turn += turn > 180.0 ? -360.0 : turn < -180.0 ? 360.0 : 0.0;
    double hue = h1 + h2;
    if (!isGrey) {
        hue = std::abs(h1 - h2) <= 180.0 ? hue / 2.0 : (hue < 360.0 ? hue + 360.0 : hue - 360.0) / 2.0;
    }
    const double l = (one[0] + other[0]) / 2.0;
    const double c = (c1 + c2) / 2.0;
    const double t = 1.0 - 0.17 * std::cos((hue - 30.0) * kDegree) + 0.24 * std::cos(2.0 * hue * kDegree) +
                     0.32 * std::cos((3.0 * hue + 6.0) * kDegree) - 0.20 * std::cos((4.0 * hue - 63.0) * kDegree);
    const double lightness =
        (other[0] - one[0]) / (1.0 + 0.015 * (l - 50.0) * (l - 50.0) / std::sqrt(20.0 + (l - 50.0) * (l - 50.0)));
    const double chroma = (c2 - c1) / (1.0 + 0.045 * c);
    const double hueDifference = 2.0 * std::sqrt(c1 * c2) * std::sin(turn / 2.0 * kDegree) / (1.0 + 0.015 * c * t);
    const double around = (hue - 275.0) / 25.0;
    const double rotation = -std::sin(60.0 * std::exp(-around * around) * kDegree) * 2.0 * pull(c);
    return std::sqrt(lightness * lightness + chroma * chroma + hueDifference * hueDifference +
                     rotation * chroma * hueDifference);
}

}  // namespace zr::graph
