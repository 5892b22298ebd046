// What lies between an upper and a lower edge, of columns of pixels side by side.
#pragma once

#include "siblings/graphsupport/PixelInk.h"
#include "siblings/graphsupport/SpanPainter.h"
#include "siblings/graphsupport/StrokeOutline.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace zr::graph {

// Of kLanes columns, a lane each, so that a row of them is found and painted at once. Each edge is, at every place of a
// column, a slant from one row to another; a pixel is covered by the part of it that is below the upper edge and above
// the lower one.
class StrokeStrip {
public:
    // Of a stroke: so many columns, at most kLanes, from one of the outline on.
    StrokeStrip(const StrokeOutline& outline, std::size_t first, std::size_t columns);
    // Of the spans themselves, at most kLanes; finite, or empty.
    explicit StrokeStrip(std::span<const RowSpan> spans);

    // The rows that aren't empty; none unless the first comes before the second. They may lie anywhere.
    [[nodiscard]] int Top() const { return m_top; }
    [[nodiscard]] int Bottom() const { return m_bottom; }  // Exclusive.

    // Calls paint(row, coverage) for the rows of [begin, end) that aren't empty, from the top; coverage is from 0 to 1,
    // and 0 for lanes beyond the columns. Rows that are covered wholly come as fill(row).
    template <typename Paint, typename Fill>
    void ForRows(int begin, int end, const Paint& paint, const Fill& fill) const
    {
        const auto held = [begin, end](int row) { return std::clamp(row, begin, end); };
        const int upperEnd = held(m_upperEnd);
        const int lowerBegin = held(m_lowerBegin);
        const int bottom = held(m_bottom);
        int row = held(m_top);
        for (const int both = std::min(upperEnd, lowerBegin); row < both; ++row) {
            paint(row, Covered(m_upper.Passed(row) + m_half));
        }
        for (; row < upperEnd; ++row) {
            paint(row, Covered(m_upper.Passed(row) - m_lower.Passed(row)));
        }
        for (; m_isWhole && row < lowerBegin; ++row) {
            fill(row);
        }
        for (; row < lowerBegin; ++row) {
            paint(row, Covered(m_half + m_half));
        }
        for (; row < bottom; ++row) {
            paint(row, Covered(m_half - m_lower.Passed(row)));
        }
    }

private:
    static constexpr std::size_t kPlaces = StrokeOutline::kPlaces;

    // Rows at the left and the right end of a place, a lane each; infinite where nothing is.
    struct Slant {
        Floats one;
        Floats other;
    };
    struct Edge {
        std::array<Floats, kPlaces> begins{};  // of a slant, a row high at least
        std::array<Floats, kPlaces> middles{};
        std::array<Floats, kPlaces> ends{};
        std::array<Floats, kPlaces> steepness{};  // 1 / height; 0: there is none

        void Set(std::size_t place, const Slant& slant, Floats drawn);
        // Of each slant from -0.5, while the row is above it, to 0.5, summed.
        [[nodiscard]] Floats Passed(int row) const
        {
            const Floats middle = Floats{} + (static_cast<float>(row) + 0.5F);
            Floats sum{};
            for (std::size_t i = 0; i < kPlaces; ++i) {
                sum += (Least(Largest(middle, begins[i]), ends[i]) - middles[i]) * steepness[i];
            }
            return sum;
        }
    };
    // The rows that the edges lie in, of any lane.
    struct Reach;

    static Floats Covered(Floats sum) { return Largest(sum * (1.0F / static_cast<float>(kPlaces)), Floats{}); }
    void Set(std::size_t place, const Slant& upper, const Slant& lower, Reach& reach);
    void Take(const Reach& reach);

    Edge m_upper;
    Edge m_lower;
    Floats m_half{};  // of the number of slants
    int m_top = 0;
    int m_upperEnd = 0;  // the first row that is below all of the upper edge
    int m_lowerBegin = 0;
    int m_bottom = 0;
    bool m_isWhole = false;  // every place of every lane has its slants
};

}  // namespace zr::graph
