#include "siblings/graphsupport/StrokeStrip.h"

#include <cmath>
#include <limits>

namespace zr::graph {

namespace {

constexpr float kNever = 1e9F;
constexpr float kNowhere = std::numeric_limits<float>::infinity();

Floats Chosen(Floats isChosen, Floats one, Floats other)
{
    return isChosen > Floats{} ? one : other;
}

float LeastOf(Floats numbers)
{
    return std::min({numbers[0], numbers[1], numbers[2], numbers[3]});
}

float LargestOf(Floats numbers)
{
    return std::max({numbers[0], numbers[1], numbers[2], numbers[3]});
}

}  // namespace

struct StrokeStrip::Reach {
    Floats upperFirst = Floats{} + kNever;
    Floats upperLast = Floats{} - kNever;
    Floats lowerFirst = Floats{} + kNever;
    Floats lowerLast = Floats{} - kNever;
};

void StrokeStrip::Edge::Set(std::size_t place, const Slant& slant, Floats drawn)
{
    const Floats low = Least(slant.one, slant.other);
    const Floats high = Largest(slant.one, slant.other);
    const Floats middle = (low + high) * 0.5F;
    const Floats height = Largest(high - low, Floats{} + 1.0F);
    begins[place] = Chosen(drawn, middle - height * 0.5F, Floats{});
    middles[place] = Chosen(drawn, middle, Floats{});
    ends[place] = Chosen(drawn, middle + height * 0.5F, Floats{});
    steepness[place] = Chosen(drawn, 1.0F / height, Floats{});
}

StrokeStrip::StrokeStrip(const StrokeOutline& outline, std::size_t first, std::size_t columns)
{
    std::array<Slant, kPlaces + 1> rows;  // upper and lower edge, between the places
    for (Slant& row : rows) {
        row = {Floats{} + kNowhere, Floats{} + kNowhere};
    }
    for (std::size_t lane = 0; lane < columns; ++lane) {
        const StrokeOutline::Edges edges = outline.Of(first + lane);
        for (std::size_t i = 0; i <= kPlaces; ++i) {
            rows[i].one[lane] = edges.top[i];
            rows[i].other[lane] = -edges.bottom[i];
        }
    }
    Reach reach;
    for (std::size_t i = 0; i < kPlaces; ++i) {
        Set(i, {rows[i].one, rows[i + 1].one}, {rows[i].other, rows[i + 1].other}, reach);
    }
    Take(reach);
}

StrokeStrip::StrokeStrip(std::span<const RowSpan> spans)
{
    Slant upper{Floats{} + kNowhere, {}};
    Slant lower{Floats{} + kNowhere, {}};
    for (std::size_t lane = 0; lane < spans.size(); ++lane) {
        if (spans[lane].top <= spans[lane].bottom) {
            upper.one[lane] = spans[lane].top;
            lower.one[lane] = spans[lane].bottom;
        }
    }
    upper.other = upper.one;
    lower.other = lower.one;
    Reach reach;
    for (std::size_t i = 0; i < kPlaces; ++i) {
        Set(i, upper, lower, reach);
    }
    Take(reach);
}

void StrokeStrip::Set(std::size_t place, const Slant& upper, const Slant& lower, Reach& reach)
{
    const Floats never = Floats{} + kNever;
    const Floats isDrawn = Largest(upper.one, upper.other) < never ? Floats{} + 1.0F : Floats{};
    m_upper.Set(place, upper, isDrawn);
    m_lower.Set(place, lower, isDrawn);
    m_half += isDrawn * 0.5F;
    reach.upperFirst = Least(reach.upperFirst, Chosen(isDrawn, Least(upper.one, upper.other), never));
    reach.upperLast = Largest(reach.upperLast, Chosen(isDrawn, Largest(upper.one, upper.other), -never));
    reach.lowerFirst = Least(reach.lowerFirst, Chosen(isDrawn, Least(lower.one, lower.other), never));
    reach.lowerLast = Largest(reach.lowerLast, Chosen(isDrawn, Largest(lower.one, lower.other), -never));
}

void StrokeStrip::Take(const Reach& reach)
{
    m_top = static_cast<int>(std::floor(LeastOf(reach.upperFirst)));
    m_bottom = static_cast<int>(std::ceil(LargestOf(reach.lowerLast)));
    m_upperEnd = std::min(static_cast<int>(std::ceil(LargestOf(reach.upperLast))), m_bottom);
    m_lowerBegin = std::min(static_cast<int>(std::floor(LeastOf(reach.lowerFirst))), m_bottom);
    m_isWhole = 2.0F * LeastOf(m_half) == static_cast<float>(kPlaces);
}

}  // namespace zr::graph
