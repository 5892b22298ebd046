// The rows that the user has selected, for copying and printing.
#pragma once

#include <vector>

namespace zr::logger {

// Neighbouring rows, zero-based, inclusive.
struct RowRange {
    int first = 0;
    int last = 0;

    friend bool operator==(const RowRange&, const RowRange&) = default;
};

// Selected rows in ascending order. None selected stands for all rows. Any thread.
class RowSelection {
public:
    RowSelection() = default;
    // In any order; they may overlap. What is no row, and a range that ends before it begins, counts for nothing.
    explicit RowSelection(std::vector<RowRange> ranges);

    // Whether only some rows are meant.
    [[nodiscard]] bool IsSome() const { return !m_ranges.empty(); }
    // The first row meant from a row on, below the count of rows; -1 if there is none.
    [[nodiscard]] int NextFrom(int row, int count) const;
    // How many of so many rows are meant.
    [[nodiscard]] int CountOf(int count) const;

private:
    std::vector<RowRange> m_ranges;  // ascending, apart from each other
};

}  // namespace zr::logger
