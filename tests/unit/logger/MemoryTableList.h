// A list control that exists in memory alone.
#pragma once

#include "logger/TableColumns.h"

#include <algorithm>
#include <vector>

namespace zr::logger {

// Seven pixels a character.
class MemoryTableList final : public TableList {
public:
    [[nodiscard]] int StringWidth(const ZRBasicString& text) const override
    {
        return 7 * static_cast<int>(text.Length());
    }
    void SetColumns(const std::vector<TableColumn>& newColumns, const std::vector<int>& displayOrder) override
    {
        columns = newColumns;
        order = displayOrder;
        count = 0;
    }
    void SetItemCount(int newCount) override { count = newCount; }
    [[nodiscard]] int ColumnOrder(int column) const override
    {
        const auto found = std::find(order.begin(), order.end(), column);
        return found != order.end() ? static_cast<int>(found - order.begin()) : -1;
    }
    [[nodiscard]] int ColumnWidth(int column) const override
    {
        return column < static_cast<int>(columns.size()) ? columns[static_cast<std::size_t>(column)].width : 0;
    }
    [[nodiscard]] std::vector<RowRange> SelectedRows() const override { return selected; }

    std::vector<TableColumn> columns;
    std::vector<int> order;  // columns from left to right; the user drags by changing it
    int count = 0;
    std::vector<RowRange> selected;
};

}  // namespace zr::logger
