// Where the cells of a page stand: columns that fill its width.
#pragma once

#include <algorithm>

namespace zr::desktop {

// Device-independent pixels.
struct PageFlow {
    int columns = 1;
    int cellWidth = 0;
    int gap = 0;

    // As many columns of at least that width as there is room for, at most so many; one when there is no room for any.
    static constexpr PageFlow Of(int width, int leastCell, int gap, int mostColumns)
    {
        const int fitting = leastCell + gap > 0 ? (width + gap) / (leastCell + gap) : mostColumns;
        const int columns = std::clamp(fitting, 1, std::max(mostColumns, 1));
        return {columns, std::max((width - (columns - 1) * gap) / columns, 0), gap};
    }

    [[nodiscard]] constexpr int Rows(int count) const { return (count + columns - 1) / columns; }
    [[nodiscard]] constexpr int X(int column) const { return column * (cellWidth + gap); }
    // Cell by cell along the rows.
    [[nodiscard]] constexpr int ColumnAcross(int index) const { return index % columns; }
    [[nodiscard]] constexpr int RowAcross(int index) const { return index / columns; }
    // Down the first column, then down the next.
    [[nodiscard]] constexpr int ColumnDown(int index, int count) const { return index / std::max(Rows(count), 1); }
    [[nodiscard]] constexpr int RowDown(int index, int count) const { return index % std::max(Rows(count), 1); }
};

}  // namespace zr::desktop
