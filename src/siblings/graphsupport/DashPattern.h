// How the styles of pens are dashed.
#pragma once

#include <array>
#include <cstddef>

namespace zr::graph {

// Lengths along the curve in pixels, from 0 at its beginning on.
class DashPattern {
public:
    // A style of zr::graph::PS_...; an unknown one is solid. Dashes are in proportion to the pen.
    DashPattern(unsigned style, int penWidth);

    [[nodiscard]] bool IsSolid() const { return m_count == 0; }
    // Which part of a stretch is drawn, 0 to 1; of one without length whether the place is.
    [[nodiscard]] float DrawnPart(double begin, double end) const;

private:
    // Of the stretch from 0 to a place, at least 0.
    [[nodiscard]] double DrawnLength(double place) const;

    std::array<double, 6> m_lengths{};  // drawn, not drawn, and so on
    std::size_t m_count = 0;
    double m_period = 0.0;
    double m_drawnOfPeriod = 0.0;
};

}  // namespace zr::graph
