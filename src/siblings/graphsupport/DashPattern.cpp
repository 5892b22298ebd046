#include "siblings/graphsupport/DashPattern.h"

#include "siblings/graphsupport/CurveInfo.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace zr::graph {

namespace {

// Of a pen of one pixel.
std::initializer_list<double> LengthsOf(unsigned style)
{
    static constexpr std::initializer_list<double> kDash = {8.0, 4.0};
    static constexpr std::initializer_list<double> kDot = {2.0, 3.0};
    static constexpr std::initializer_list<double> kDashDot = {8.0, 3.0, 2.0, 3.0};
    static constexpr std::initializer_list<double> kDashDotDot = {8.0, 3.0, 2.0, 3.0, 2.0, 3.0};
    switch (style) {
        case PS_DASH:
            return kDash;
        case PS_DOT:
            return kDot;
        case PS_DASHDOT:
            return kDashDot;
        case PS_DASHDOTDOT:
            return kDashDotDot;
        default:
            return {};
    }
}

}  // namespace

DashPattern::DashPattern(unsigned style, int penWidth)
{
    for (const double length : LengthsOf(style)) {
        const double scaled = length * penWidth;
        m_drawnOfPeriod += m_count % 2 == 0 ? scaled : 0.0;
        m_period += scaled;
        m_lengths[m_count++] = scaled;
    }
}

float DashPattern::DrawnPart(double begin, double end) const
{
    constexpr double kPoint = 1e-3;
    if (IsSolid()) {
        return 1.0F;
    }
    end = std::max(end, begin + kPoint);
    return static_cast<float>((DrawnLength(end) - DrawnLength(begin)) / (end - begin));
}

double DashPattern::DrawnLength(double place) const
{
    const double periods = std::floor(place / m_period);
    double rest = place - periods * m_period;
    double drawn = periods * m_drawnOfPeriod;
    for (std::size_t i = 0; i < m_count && rest > 0.0; ++i) {
        drawn += i % 2 == 0 ? std::min(rest, m_lengths[i]) : 0.0;
        rest -= m_lengths[i];
    }
    return drawn;
}

}  // namespace zr::graph
