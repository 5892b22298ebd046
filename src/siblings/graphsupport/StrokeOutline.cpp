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
    const auto tipOf = [&](std::size_t i) { return sign > 0.0F ? piece[i].top : -piece[i].bottom; };
    m_curve.assign((piece.size() + 2 * m_reach) * kPlaces + 1, kNowhere);
    float* places = m_curve.data() + m_reach * kPlaces;
    float left = tipOf(0);
    for (std::size_t i = 0; i < piece.size(); ++i, places += kPlaces) {
        const float tip = tipOf(i);
        // On the edge between two columns is what both hold.
        const float right = i + 1 < piece.size() ? std::max(tip, tipOf(i + 1)) : tip;
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
