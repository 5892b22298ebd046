// The upper and the lower edge of a stroke along a curve.
#pragma once

#include "siblings/graphsupport/SpanPainter.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zr::graph {

// What a pen, a disc, covers that is drawn along one piece of a curve. Both edges are kept at several places of each
// column, straight in between. Keeps its memory from piece to piece.
class StrokeOutline {
public:
    // So many places to a column; the last of one is the first of the next.
    static constexpr std::size_t kPlaces = 4;
    struct Edges {
        const float* top;     // kPlaces + 1 rows; infinite where the stroke isn't
        const float* bottom;  // likewise, turned in sign
    };

    explicit StrokeOutline(int penWidth);

    // Columns that a stroke reaches beyond the ends of its piece.
    [[nodiscard]] std::size_t Reach() const { return m_reach; }
    // Spans are finite, not empty, and each touches the next.
    void Trace(std::span<const RowSpan> piece);
    // Of a column from 0, Reach() before the piece, to its end and Reach() more.
    [[nodiscard]] Edges Of(std::size_t column) const
    {
        return {m_top.data() + column * kPlaces, m_bottom.data() + column * kPlaces};
    }

private:
    // The upper edge of the curve; of its lower one with sign -1, turned.
    void TraceCurve(std::span<const RowSpan> piece, float sign);
    void Widen(std::vector<float>& edge) const;

    float m_radius;
    std::size_t m_reach;
    std::vector<float> m_heights;  // of the disc, from the middle out, a place apart
    std::vector<float> m_curve;
    std::vector<float> m_top;
    std::vector<float> m_bottom;
};

}  // namespace zr::graph
