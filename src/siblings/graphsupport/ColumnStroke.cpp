#include "siblings/graphsupport/ColumnStroke.h"

#include <algorithm>
#include <cmath>

namespace zr::graph {

namespace {

// Painted together: as many rows and columns as a processor's cache and its table of pages hold, since every row lies
// in another page.
constexpr std::size_t kColumns = 64;
constexpr int kRows = 32;

}  // namespace

bool ColumnStroke::IsFor(std::span<const RowSpan> piece)
{
    constexpr float kPart = 0.3F;
    constexpr float kTall = 2.0F;
    float heights = 0.0F;
    float shared = 0.0F;
    for (std::size_t i = 1; i < piece.size(); ++i) {
        const RowSpan& one = piece[i - 1];
        const RowSpan& other = piece[i];
        heights += std::min(one.bottom - one.top, other.bottom - other.top);
        shared += std::max(std::min(one.bottom, other.bottom) - std::max(one.top, other.top), 0.0F);
    }
    return heights > kTall * static_cast<float>(piece.size()) && shared > kPart * heights;
}

ColumnStroke::ColumnStroke(const PixelArea& area, const PixelInk& ink, int penWidth)
    : m_area(area), m_ink(ink), m_columns(static_cast<std::size_t>(area.width))
{
    const float radius = static_cast<float>(penWidth) / 2.0F;
    for (int aside = 0; 2 * aside < penWidth; ++aside) {
        const auto distance = static_cast<float>(aside);
        m_heights.push_back(std::sqrt(radius * radius - distance * distance));
    }
}

void ColumnStroke::Paint(std::size_t first, std::span<const RowSpan> piece)
{
    const std::size_t reach = m_heights.size() - 1;
    const std::size_t begin = first - std::min(first, reach);
    const std::size_t end = std::min(first + piece.size() + reach, m_columns.size());
    int top = m_area.height;
    int bottom = 0;
    for (std::size_t column = begin; column < end; ++column) {
        // Counted from Reach() before the piece.
        m_columns[column] = ColumnOf(piece, column + reach - first);
        top = std::min(top, std::max(m_columns[column].begin - 1, 0));
        bottom = std::max(bottom, std::min(m_columns[column].end + 1, m_area.height));
    }
    for (std::size_t column = begin; column < end; column += kColumns) {
        for (int row = top; row < bottom; row += kRows) {
            PaintRows(column, std::min(kColumns, end - column), row, std::min(row + kRows, bottom));
        }
    }
}

ColumnStroke::Column ColumnStroke::ColumnOf(std::span<const RowSpan> piece, std::size_t column) const
{
    const std::size_t reach = m_heights.size() - 1;
    RowSpan covered{1e9F, -1e9F};
    const std::size_t last = std::min(column, piece.size() - 1);
    for (std::size_t i = column - std::min(column, 2 * reach); i <= last; ++i) {
        const std::size_t middle = i + reach;
        const float height = m_heights[middle > column ? middle - column : column - middle];
        covered.top = std::min(covered.top, piece[i].top - height);
        covered.bottom = std::max(covered.bottom, piece[i].bottom + height);
    }
    const float begin = std::ceil(covered.top);
    const float end = std::max(std::floor(covered.bottom), begin);
    return {static_cast<int>(begin), static_cast<int>(end), begin - covered.top,
            std::clamp(covered.bottom - end, 0.0F, 1.0F)};
}

void ColumnStroke::PaintRows(std::size_t first, std::size_t columns, int begin, int end) const
{
    for (std::size_t column = first; column < first + columns; column += kLanes) {
        const std::size_t count = std::min(kLanes, first + columns - column);
        // What all columns have in common goes in one.
        int commonBegin = begin;
        int commonEnd = count == kLanes ? end : begin;
        for (std::size_t i = column; i < column + count; ++i) {
            commonBegin = std::max(commonBegin, m_columns[i].begin);
            commonEnd = std::min(commonEnd, m_columns[i].end);
        }
        commonEnd = std::max(commonEnd, commonBegin);
        std::uint32_t* pixels = m_area.pixels + commonBegin * m_area.stride + column;
        for (int row = commonBegin; row < commonEnd; ++row, pixels += m_area.stride) {
            m_ink.Fill(pixels);
        }
        for (std::size_t i = column; i < column + count; ++i) {
            PaintColumn(i, begin, std::min(commonBegin, end));
            PaintColumn(i, commonEnd, end);
        }
    }
}

void ColumnStroke::PaintColumn(std::size_t column, int begin, int end) const
{
    const Column& painted = m_columns[column];
    const auto isHeld = [begin, end](int row) { return row >= begin && row < end; };
    if (isHeld(painted.begin - 1)) {
        Blend(column, painted.begin - 1, painted.above);
    }
    Fill(column, std::max(painted.begin, begin), std::min(painted.end, end));
    if (isHeld(painted.end)) {
        Blend(column, painted.end, painted.below);
    }
}

void ColumnStroke::Fill(std::size_t column, int begin, int end) const
{
    std::uint32_t* pixel = m_area.pixels + begin * m_area.stride + static_cast<std::ptrdiff_t>(column);
    for (int row = begin; row < end; ++row, pixel += m_area.stride) {
        m_ink.FillOne(*pixel);
    }
}

void ColumnStroke::Blend(std::size_t column, int row, float coverage) const
{
    m_ink.Blend(m_area.pixels + row * m_area.stride + column, Floats{} + coverage, 1);
}

}  // namespace zr::graph
