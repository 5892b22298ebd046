#include "siblings/graphsupport/SpanPainter.h"

#include "siblings/graphsupport/ColumnStroke.h"
#include "siblings/graphsupport/DashPattern.h"
#include "siblings/graphsupport/PixelInk.h"
#include "siblings/graphsupport/StrokeOutline.h"
#include "siblings/graphsupport/StrokeStrip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace zr::graph {

namespace {

// How far outside spans are still told apart, in rows. What they do there nobody sees.
constexpr float kOutside = 4096.0F;
constexpr int kWidestPen = 256;

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

// Some strips side by side, of columns of an area, painted some rows at a time: as many of each as the cache of a
// processor and its table of pages hold, since every row lies in another page.
class StripPainter {
public:
    static constexpr std::size_t kColumns = 64;

    StripPainter(const PixelArea& area, const PixelInk& ink) : m_area(area), m_ink(ink) { m_strips.reserve(kStrips); }

    // From a column on. makeStrip(i, columns) gives the strip of so many columns from i on, counted from there.
    template <typename MakeStrip>
    void Prepare(std::size_t first, std::size_t columns, const MakeStrip& makeStrip)
    {
        m_first = first;
        m_columns = columns;
        m_top = m_area.height;
        m_bottom = 0;
        m_strips.clear();
        for (std::size_t i = 0; i < columns; i += kLanes) {
            m_strips.push_back(makeStrip(i, std::min(kLanes, columns - i)));
            m_top = std::min(m_top, std::max(m_strips.back().Top(), 0));
            m_bottom = std::max(m_bottom, std::min(m_strips.back().Bottom(), m_area.height));
        }
    }
    // Solid.
    void Paint() const
    {
        ForBands([this](std::size_t i, int begin, int end) {
            m_strips[i].ForRows(
                begin, end, [&](int row, Floats coverage) { Blend(i, row, coverage); },
                [&](int row) { m_ink.Fill(PixelsOf(i, row)); });
        });
    }
    // Of each pixel the part drawn(i, row, coverage) of its coverage, from column i on.
    template <typename Drawn>
    void Paint(const Drawn& drawn) const
    {
        ForBands([&](std::size_t i, int begin, int end) {
            m_strips[i].ForRows(
                begin, end, [&](int row, Floats coverage) { Blend(i, row, drawn(i * kLanes, row, coverage)); },
                [&](int row) { Blend(i, row, drawn(i * kLanes, row, Floats{} + 1.0F)); });
        });
    }

private:
    static constexpr std::size_t kStrips = kColumns / kLanes;
    static constexpr int kRows = 32;

    template <typename PaintStrip>
    void ForBands(const PaintStrip& paintStrip) const
    {
        for (int row = m_top; row < m_bottom; row += kRows) {
            for (std::size_t i = 0; i < m_strips.size(); ++i) {
                paintStrip(i, row, std::min(row + kRows, m_bottom));
            }
        }
    }
    [[nodiscard]] std::uint32_t* PixelsOf(std::size_t strip, int row) const
    {
        return m_area.pixels + row * m_area.stride + m_first + strip * kLanes;
    }
    void Blend(std::size_t strip, int row, Floats coverage) const
    {
        const std::size_t columns = m_columns - strip * kLanes;
        std::uint32_t* const pixels = PixelsOf(strip, row);
        columns >= kLanes ? m_ink.Blend(pixels, coverage) : m_ink.Blend(pixels, coverage, columns);
    }

    PixelArea m_area;
    const PixelInk& m_ink;
    std::vector<StrokeStrip> m_strips;
    std::size_t m_first = 0;
    std::size_t m_columns = 0;
    int m_top = 0;
    int m_bottom = 0;
};

// Draws the pieces of one curve, from left to right.
class LinePainter {
public:
    LinePainter(const PixelArea& area, const SpanPen& pen)
        : m_width(static_cast<std::size_t>(area.width)),
          m_ink(pen.colour),
          m_strips(area, m_ink),
          m_columns(area, m_ink, pen.width),
          m_isDense(pen.isDense),
          m_pattern(pen.style, pen.width),
          m_outline(pen.width)
    {
    }

    // The column of the piece's first span.
    void PaintPiece(std::size_t first, std::span<const RowSpan> piece)
    {
        if (m_isDense && m_pattern.IsSolid() && ColumnStroke::IsFor(piece)) {
            m_columns.Paint(first, piece);
            return;
        }
        m_outline.Trace(piece);
        Dash(piece);
        // Columns of the outline begin Reach() before the piece.
        const std::size_t reach = m_outline.Reach();
        const std::size_t begin = reach - std::min(first, reach);
        const std::size_t end = std::min(piece.size() + 2 * reach, m_width + reach - first);
        for (std::size_t column = begin; column < end; column += StripPainter::kColumns) {
            const std::size_t columns = std::min(StripPainter::kColumns, end - column);
            m_strips.Prepare(first + column - reach, columns, [&](std::size_t i, std::size_t count) {
                return StrokeStrip(m_outline, column + i, count);
            });
            if (m_pattern.IsSolid()) {
                m_strips.Paint();
                continue;
            }
            m_strips.Paint([&](std::size_t i, int row, Floats coverage) {
                for (std::size_t lane = 0; lane < kLanes; ++lane) {
                    if (coverage[lane] > 0.0F) {
                        const std::size_t inPiece =
                            std::clamp(column + i + lane, reach, reach + piece.size() - 1) - reach;
                        coverage[lane] *= m_dashes[inPiece].DrawnPart(row);
                    }
                }
                return coverage;
            });
        }
    }

private:
    // Whether a curve goes upwards through a column, by its neighbour.
    static bool IsRising(std::span<const RowSpan> piece, std::size_t column)
    {
        const auto middle = [&](std::size_t i) { return piece[i].top + piece[i].bottom; };
        return column > 0 ? middle(column) < middle(column - 1) : piece.size() > 1 && middle(1) < middle(0);
    }

    void Dash(std::span<const RowSpan> piece)
    {
        m_dashes.clear();
        for (std::size_t i = 0; i < piece.size() && !m_pattern.IsSolid(); ++i) {
            m_dashes.emplace_back(m_pattern, piece[i], m_way, IsRising(piece, i));
            m_way += m_dashes.back().Length();
        }
    }

    std::size_t m_width;  // of the area
    PixelInk m_ink;
    StripPainter m_strips;
    ColumnStroke m_columns;
    bool m_isDense;
    DashPattern m_pattern;
    StrokeOutline m_outline;
    std::vector<DashedColumn> m_dashes;  // of a piece
    double m_way = 0.0;                  // along the curve so far, pixels
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
    const PixelInk ink(colour);
    const std::size_t count = std::min(spans.size(), static_cast<std::size_t>(area.width));
    StripPainter strips(area, ink);
    std::array<RowSpan, kLanes> held;
    for (std::size_t first = 0; first < count; first += StripPainter::kColumns) {
        const std::size_t columns = std::min(StripPainter::kColumns, count - first);
        strips.Prepare(first, columns, [&](std::size_t begin, std::size_t size) {
            for (std::size_t i = 0; i < size; ++i) {
                const RowSpan& span = spans[first + begin + i];
                held[i] = IsEmpty(span) ? RowSpan() : Held(span, area.height);
            }
            return StrokeStrip(std::span(held).first(size));
        });
        strips.Paint();
    }
}

}  // namespace zr::graph
