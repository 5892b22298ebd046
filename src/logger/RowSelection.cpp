#include "logger/RowSelection.h"

#include <algorithm>

namespace zr::logger {

RowSelection::RowSelection(std::vector<RowRange> ranges)
{
    std::sort(ranges.begin(), ranges.end(),
              [](const RowRange& left, const RowRange& right) { return left.first < right.first; });
    for (RowRange range : ranges) {
        range.first = std::max(range.first, 0);
        if (range.last < range.first) {
            continue;
        }
        if (m_ranges.empty() || range.first > m_ranges.back().last) {
            m_ranges.push_back(range);
        } else {
            m_ranges.back().last = std::max(m_ranges.back().last, range.last);
        }
    }
}

int RowSelection::NextFrom(int row, int count) const
{
    int next = std::max(row, 0);
    if (IsSome()) {
        const auto range = std::lower_bound(m_ranges.begin(), m_ranges.end(), next,
                                            [](const RowRange& left, int wanted) { return left.last < wanted; });
        if (range == m_ranges.end()) {
            return -1;
        }
        next = std::max(next, range->first);
    }
    return next < count ? next : -1;
}

int RowSelection::CountOf(int count) const
{
    if (!IsSome()) {
        return std::max(count, 0);
    }
    int meant = 0;
    for (const RowRange& range : m_ranges) {
        meant += std::max(std::min(range.last, count - 1) - range.first + 1, 0);
    }
    return meant;
}

}  // namespace zr::logger
