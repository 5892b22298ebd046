// The stroke of a curve that goes up and down within every column of pixels.
#pragma once

#include "siblings/graphsupport/PixelInk.h"
#include "siblings/graphsupport/SpanPainter.h"

#include <cstddef>
#include <span>
#include <vector>

namespace zr::graph {

// Such a curve has no slope that could be seen: where it is in a column, it is all over its width. So the stroke ends
// with the column, rows at its ends are covered in part, and nothing lies in between.
class ColumnStroke {
public:
    // Whether a piece of a curve is of that kind: neighbouring columns share rows, where those of a slope, however
    // steep it is, share none.
    static bool IsFor(std::span<const RowSpan> piece);

    ColumnStroke(const PixelArea& area, const PixelInk& ink, int penWidth);
    // The column of the piece's first span. Spans are finite and not empty.
    void Paint(std::size_t first, std::span<const RowSpan> piece);

private:
    struct Column {
        int begin;    // of the rows that are covered wholly
        int end;      // Exclusive; not before the begin.
        float above;  // how much of the row before them
        float below;  // how much of the row behind them
    };

    [[nodiscard]] Column ColumnOf(std::span<const RowSpan> piece, std::size_t column) const;
    void PaintRows(std::size_t first, std::size_t columns, int begin, int end) const;
    void PaintColumn(std::size_t column, int begin, int end) const;
    void Fill(std::size_t column, int begin, int end) const;
    void Blend(std::size_t column, int row, float coverage) const;

    PixelArea m_area;
    const PixelInk& m_ink;
    std::vector<float> m_heights;   // of the pen, from its middle out, a column apart
    std::vector<Column> m_columns;  // of the area, those of a piece
};

}  // namespace zr::graph
