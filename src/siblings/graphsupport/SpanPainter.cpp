#include "siblings/graphsupport/SpanPainter.h"

#include "siblings/graphsupport/DashPattern.h"
#include "siblings/graphsupport/StrokeOutline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace zr::graph {

namespace {

constexpr std::size_t kPlaces = StrokeOutline::kPlaces;
constexpr float kWhole = 255.0F;
// How far outside spans are still told apart, in rows. What they do there nobody sees.
constexpr float kOutside = 4096.0F;
constexpr int kWidestPen = 256;

// All four bytes times a part of 255, rounded to the nearest.
std::uint32_t Scaled(std::uint32_t pixel, std::uint32_t part)
{
    constexpr std::uint32_t kEven = 0x00FF00FFU;
    constexpr std::uint32_t kHalves = 0x00800080U;
    const std::uint32_t even = (pixel & kEven) * part + kHalves;
    const std::uint32_t odd = ((pixel >> 8U) & kEven) * part + kHalves;
    return (((even + ((even >> 8U) & kEven)) >> 8U) & kEven) | ((odd + ((odd >> 8U) & kEven)) & ~kEven);
}

// One colour, blended onto pixels.
class Ink {
public:
    explicit Ink(std::uint32_t colour) : m_colour(Scaled(colour | 0xFF000000U, colour >> 24U)) {}

    // Coverage from 0 to 1.
    void Blend(std::uint32_t& pixel, float coverage) const
    {
        const auto part = static_cast<std::uint32_t>(coverage * kWhole + 0.5F);
        const std::uint32_t source = Scaled(m_colour, part);
        pixel = source + Scaled(pixel, 255U - (source >> 24U));
    }
    void Fill(std::uint32_t* pixel, int rows, std::ptrdiff_t stride) const
    {
        const std::uint32_t rest = 255U - (m_colour >> 24U);
        for (int row = 0; row < rows; ++row, pixel += stride) {
            *pixel = rest == 0 ? m_colour : m_colour + Scaled(*pixel, rest);
        }
    }

private:
    std::uint32_t m_colour;  // multiplied
};

// The rows of an area from one row to another, exclusive.
struct Rows {
    int begin;
    int end;
};

Rows RowsOf(const PixelArea& area, float top, float bottom)
{
    const auto height = static_cast<float>(area.height);
    return {static_cast<int>(std::clamp(std::floor(top), 0.0F, height)),
            static_cast<int>(std::clamp(std::ceil(bottom), 0.0F, height))};
}

// One edge of a stroke within a column: slants side by side, each from one place to the next.
struct Slants {
    std::array<float, kPlaces> middles{};
    std::array<float, kPlaces> steepness{};  // 1 / height, at most 1; 0: there is none
    float first = kNever;                    // the uppermost row
    float last = -kNever;                    // the lowest one

    static constexpr float kNever = 1e9F;

    void Set(std::size_t i, float one, float other)
    {
        middles[i] = (one + other) * 0.5F;
        steepness[i] = 1.0F / std::max(std::abs(other - one), 1.0F);
        first = std::min({first, one, other});
        last = std::max({last, one, other});
    }
};

// The stroke within one column.
class StrokeColumn {
public:
    explicit StrokeColumn(const StrokeOutline::Edges& edges)
    {
        for (std::size_t i = 0; i < kPlaces; ++i) {
            if (std::isinf(edges.top[i]) || std::isinf(edges.top[i + 1])) {
                m_isWhole = false;
                continue;
            }
            m_tops.Set(i, edges.top[i], edges.top[i + 1]);
            m_bottoms.Set(i, -edges.bottom[i], -edges.bottom[i + 1]);
        }
    }

    [[nodiscard]] bool IsEmpty() const { return m_tops.first > m_bottoms.last; }
    [[nodiscard]] float Top() const { return m_tops.first; }
    [[nodiscard]] float Bottom() const { return m_bottoms.last; }
    // Between these every pixel is covered, if the first comes before the second.
    [[nodiscard]] float FullTop() const { return m_isWhole ? m_tops.last : m_bottoms.last; }
    [[nodiscard]] float FullBottom() const { return m_bottoms.first; }

    // The part of a row that is below the upper edge and above the lower one.
    [[nodiscard]] float Coverage(int row) const
    {
        const float middle = static_cast<float>(row) + 0.5F;
        std::array<float, kPlaces> covered{};
        for (std::size_t i = 0; i < kPlaces; ++i) {
            const float belowTop = Held((middle - m_tops.middles[i]) * m_tops.steepness[i]);
            const float belowBottom = Held((middle - m_bottoms.middles[i]) * m_bottoms.steepness[i]);
            covered[i] = belowTop - belowBottom;
        }
        const float sum = (covered[0] + covered[1]) + (covered[2] + covered[3]);
        return std::clamp(sum / static_cast<float>(kPlaces), 0.0F, 1.0F);
    }

private:
    static float Held(float part)
    {
        const float least = part < -0.5F ? -0.5F : part;
        return least > 0.5F ? 0.5F : least;
    }

    Slants m_tops;
    Slants m_bottoms;
    bool m_isWhole = true;
};

// Where in a column the dashes are: the curve's way through it.
class DashedColumn {
public:
    // The way so far, and whether it goes upwards here.
    DashedColumn(const DashPattern& pattern, const RowSpan& span, double way, bool isRising)
        : m_pattern(pattern), m_span(span), m_way(way), m_isRising(isRising)
    {
        const double height = static_cast<double>(span.bottom) - static_cast<double>(span.top);
        m_length = std::sqrt(1.0 + height * height);
        m_isSteep = height > 1.0;
        m_part = m_isSteep ? 0.0F : pattern.DrawnPart(way, way + m_length);
    }

    [[nodiscard]] double Length() const { return m_length; }
    [[nodiscard]] float DrawnPart(int row) const
    {
        if (!m_isSteep) {
            return m_part;
        }
        const double upper = WayAt(static_cast<float>(row));
        const double lower = WayAt(static_cast<float>(row + 1));
        return m_pattern.DrawnPart(std::min(upper, lower), std::max(upper, lower));
    }

private:
    [[nodiscard]] double WayAt(float row) const
    {
        const float height = m_span.bottom - m_span.top;
        const float down = std::clamp((row - m_span.top) / height, 0.0F, 1.0F);
        return m_way + m_length * static_cast<double>(m_isRising ? 1.0F - down : down);
    }

    const DashPattern& m_pattern;
    RowSpan m_span;
    double m_way;
    bool m_isRising;
    double m_length = 0.0;
    bool m_isSteep = false;
    float m_part = 1.0F;
};

// Draws the pieces of one curve, from left to right.
class LinePainter {
public:
    LinePainter(const PixelArea& area, const SpanPen& pen)
        : m_area(area), m_ink(pen.colour), m_pattern(pen.style, pen.width), m_outline(pen.width)
    {
    }

    // The column of the piece's first span.
    void PaintPiece(std::size_t first, std::span<const RowSpan> piece)
    {
        m_outline.Trace(piece);
        const std::size_t reach = m_outline.Reach();
        for (std::size_t i = 0; i < piece.size() + 2 * reach; ++i) {
            const std::size_t column = first + i;
            const bool isPast = column < reach || column - reach >= static_cast<std::size_t>(m_area.width);
            const std::size_t inPiece = std::clamp(i, reach, reach + piece.size() - 1) - reach;
            if (m_pattern.IsSolid()) {
                if (!isPast) {
                    PaintSolid(column - reach, StrokeColumn(m_outline.Of(i)));
                }
                continue;
            }
            const DashedColumn dashes(m_pattern, piece[inPiece], m_way, IsRising(piece, inPiece));
            if (!isPast) {
                PaintDashed(column - reach, StrokeColumn(m_outline.Of(i)), dashes);
            }
            if (i >= reach && i < reach + piece.size()) {
                m_way += dashes.Length();
            }
        }
    }

private:
    // Whether a curve goes upwards through a column, by its neighbour.
    static bool IsRising(std::span<const RowSpan> piece, std::size_t column)
    {
        const auto middle = [&](std::size_t i) { return piece[i].top + piece[i].bottom; };
        return column > 0 ? middle(column) < middle(column - 1) : piece.size() > 1 && middle(1) < middle(0);
    }

    void PaintSolid(std::size_t column, const StrokeColumn& stroke)
    {
        if (stroke.IsEmpty()) {
            return;
        }
        std::uint32_t* const top = m_area.pixels + column;
        const Rows rows = RowsOf(m_area, stroke.Top(), stroke.Bottom());
        // The wholly covered rows are most of a tall column.
        const Rows full = RowsOf(m_area, std::ceil(stroke.FullTop()), std::floor(stroke.FullBottom()));
        const bool hasFull = full.begin < full.end;
        for (int row = rows.begin; row < (hasFull ? full.begin : rows.end); ++row) {
            m_ink.Blend(top[row * m_area.stride], stroke.Coverage(row));
        }
        if (hasFull) {
            m_ink.Fill(top + full.begin * m_area.stride, full.end - full.begin, m_area.stride);
            for (int row = full.end; row < rows.end; ++row) {
                m_ink.Blend(top[row * m_area.stride], stroke.Coverage(row));
            }
        }
    }

    void PaintDashed(std::size_t column, const StrokeColumn& stroke, const DashedColumn& dashes)
    {
        if (stroke.IsEmpty()) {
            return;
        }
        std::uint32_t* const top = m_area.pixels + column;
        const Rows rows = RowsOf(m_area, stroke.Top(), stroke.Bottom());
        for (int row = rows.begin; row < rows.end; ++row) {
            m_ink.Blend(top[row * m_area.stride], stroke.Coverage(row) * dashes.DrawnPart(row));
        }
    }

    const PixelArea& m_area;
    Ink m_ink;
    DashPattern m_pattern;
    StrokeOutline m_outline;
    double m_way = 0.0;  // along the curve so far, pixels
};

bool IsArea(const PixelArea& area)
{
    return area.pixels != nullptr && area.width > 0 && area.height > 0;
}

bool IsEmpty(const RowSpan& span)
{
    return !(span.top <= span.bottom);
}

// Finite, and of a size that is counted in.
RowSpan Held(const RowSpan& span, int height)
{
    const float lowest = static_cast<float>(height) + kOutside;
    return {std::clamp(span.top, -kOutside, lowest), std::clamp(span.bottom, -kOutside, lowest)};
}

// Whether the curve goes on from one column to the next.
bool DoTouch(const RowSpan& one, const RowSpan& next)
{
    constexpr float kApart = 0.01F;
    return one.top <= next.bottom + kApart && next.top <= one.bottom + kApart;
}

}  // namespace

void PaintLine(const PixelArea& area, std::span<const RowSpan> spans, const SpanPen& pen)
{
    if (!IsArea(area)) {
        return;
    }
    SpanPen held = pen;
    held.width = std::clamp(pen.width, 1, kWidestPen);
    LinePainter painter(area, held);
    const std::size_t count = std::min(spans.size(), static_cast<std::size_t>(area.width));
    std::vector<RowSpan> piece;
    for (std::size_t i = 0; i < count; ++i) {
        if (IsEmpty(spans[i])) {
            continue;
        }
        piece.push_back(Held(spans[i], area.height));
        const bool goesOn =
            i + 1 < count && !IsEmpty(spans[i + 1]) && DoTouch(piece.back(), Held(spans[i + 1], area.height));
        if (goesOn) {
            continue;
        }
        if (piece.size() == 1) {
            // A dot, to be seen with a pen of one pixel too.
            const float missing = std::max(0.0F, 1.0F - static_cast<float>(held.width) / 2.0F);
            piece[0].top -= missing;
            piece[0].bottom += missing;
        }
        painter.PaintPiece(i + 1 - piece.size(), piece);
        piece.clear();
    }
}

void PaintFill(const PixelArea& area, std::span<const RowSpan> spans, std::uint32_t colour)
{
    if (!IsArea(area)) {
        return;
    }
    const Ink ink(colour);
    const std::size_t count = std::min(spans.size(), static_cast<std::size_t>(area.width));
    for (std::size_t i = 0; i < count; ++i) {
        if (IsEmpty(spans[i])) {
            continue;
        }
        const RowSpan span = Held(spans[i], area.height);
        const Rows rows = RowsOf(area, span.top, span.bottom);
        const Rows full = RowsOf(area, std::ceil(span.top), std::floor(span.bottom));
        for (int row = rows.begin; row < rows.end; ++row) {
            std::uint32_t* const pixel = area.pixels + row * area.stride + static_cast<std::ptrdiff_t>(i);
            if (row == full.begin && full.begin < full.end) {
                ink.Fill(pixel, full.end - full.begin, area.stride);
                row = full.end - 1;
                continue;
            }
            const float top = std::max(span.top, static_cast<float>(row));
            const float bottom = std::min(span.bottom, static_cast<float>(row + 1));
            ink.Blend(*pixel, std::clamp(bottom - top, 0.0F, 1.0F));
        }
    }
}

}  // namespace zr::graph
