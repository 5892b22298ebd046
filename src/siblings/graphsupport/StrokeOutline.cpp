#include "siblings/graphsupport/StrokeOutline.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zr::graph {

namespace {

constexpr float kNowhere = std::numeric_limits<float>::infinity();
constexpr std::size_t kPlaces = StrokeOutline::kPlaces;

// From one edge of a column by its uppermost point to the other edge.
void TraceColumn(float left, float tip, float right, float* places)
{
    const float rise = left - tip;
    const float fall = right - tip;
    std::size_t at = 0;
    if (rise > 0.0F) {
        const float part = rise / (rise + fall) * static_cast<float>(kPlaces);
        at = std::min(static_cast<std::size_t>(part + 0.5F), kPlaces);
        // The tip isn't to be lost, nor to be moved to an edge that it doesn't lie on.
        at = fall > 0.0F ? std::clamp<std::size_t>(at, 1, kPlaces - 1) : kPlaces;
    }
    for (std::size_t i = 0; i < at; ++i) {
        places[i] = left - rise * static_cast<float>(i) / static_cast<float>(at);
    }
    places[at] = tip;
    for (std::size_t i = at + 1; i <= kPlaces; ++i) {
        places[i] = tip + fall * static_cast<float>(i - at) / static_cast<float>(kPlaces - at);
    }
}

// Where a curve begins at the outer edge of the last column of a piece, by the next column inwards: at the far end of a
// span that it runs through once, else anywhere in it.
RowSpan OuterEdge(const RowSpan& last, const RowSpan& inner)
{
    const float height = last.bottom - last.top;
    if (inner.top > last.bottom - height / 4.0F) {
        return {last.top, last.top};
    }
    if (inner.bottom < last.top + height / 4.0F) {
        return {last.bottom, last.bottom};
    }
    return last;
}

}  // namespace

StrokeOutline::StrokeOutline(int penWidth)
    : m_radius(static_cast<float>(penWidth) / 2.0F), m_reach(static_cast<std::size_t>(penWidth + 1) / 2)
{
    for (std::size_t i = 0; i <= kPlaces * m_reach; ++i) {
        const float aside = static_cast<float>(i) / static_cast<float>(kPlaces);
        if (aside <= m_radius) {
            m_heights.push_back(std::sqrt(m_radius * m_radius - aside * aside));
        }
    }
}

void StrokeOutline::Trace(std::span<const RowSpan> piece)
{
    TraceCurve(piece, 1.0F);
    Widen(m_top);
    TraceCurve(piece, -1.0F);
    Widen(m_bottom);
}

void StrokeOutline::TraceCurve(std::span<const RowSpan> piece, float sign)
{
    const auto edgeOf = [sign](const RowSpan& span) { return sign > 0.0F ? span.top : -span.bottom; };
    const std::size_t count = piece.size();
    const RowSpan begin = count > 1 ? OuterEdge(piece[0], piece[1]) : piece[0];
    const RowSpan end = count > 1 ? OuterEdge(piece[count - 1], piece[count - 2]) : piece[0];
    m_curve.assign((count + 2 * m_reach) * kPlaces + 1, kNowhere);
    float* places = m_curve.data() + m_reach * kPlaces;
    float left = edgeOf(begin);
    for (std::size_t i = 0; i < count; ++i, places += kPlaces) {
        const float tip = edgeOf(piece[i]);
        // On the edge between two columns is what both hold.
        const float right = i + 1 < count ? std::max(tip, edgeOf(piece[i + 1])) : edgeOf(end);
        TraceColumn(left, tip, right, places);
        left = right;
    }
}

void StrokeOutline::Widen(std::vector<float>& edge) const
{
    const std::size_t size = m_curve.size();
    edge.resize(size);
    const float* const curve = m_curve.data();
    float* const out = edge.data();
    for (std::size_t i = 0; i < size; ++i) {
        out[i] = curve[i] - m_heights[0];
    }
    for (std::size_t aside = 1; aside < m_heights.size(); ++aside) {
        const float height = m_heights[aside];
        for (std::size_t i = aside; i < size; ++i) {
            out[i] = std::min(out[i], curve[i - aside] - height);
        }
        for (std::size_t i = aside; i < size; ++i) {
            out[i - aside] = std::min(out[i - aside], curve[i] - height);
        }
    }
}

}  // namespace zr::graph
