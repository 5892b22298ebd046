// Where columns of equal width cut a stretch of time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zr::graph {

// Column i holds the times t with (t - from) * columns / (to - from) equal to i, rounded down. Exact in whole numbers:
// a stretch of any length in up to a million columns. `from` lies before `to`; there is at least one column.
class ColumnEdges {
public:
    ColumnEdges(std::int64_t from, std::int64_t to, std::size_t columns)
        : m_from(static_cast<std::uint64_t>(from)),
          m_columns(columns),
          m_width((static_cast<std::uint64_t>(to) - m_from) / columns),
          m_rest((static_cast<std::uint64_t>(to) - m_from) % columns)
    {
    }

    [[nodiscard]] std::size_t Columns() const { return static_cast<std::size_t>(m_columns); }
    // The first time in a column or after it; `to` for the number of columns.
    [[nodiscard]] std::int64_t At(std::size_t column) const
    {
        // The product of length and column, which may not fit, taken apart; rounded up.
        const std::uint64_t shared = (m_rest * column + m_columns - 1) / m_columns;
        return static_cast<std::int64_t>(m_from + m_width * column + shared);
    }

private:
    std::uint64_t m_from;
    std::uint64_t m_columns;
    std::uint64_t m_width;  // of a column, rounded down
    std::uint64_t m_rest;
};

}  // namespace zr::graph
