// The columns of a table of logged data: which there are, how wide, in which order.
#pragma once

#include "logger/RowSelection.h"
#include "profiles/ZRTableProfile.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/ZRBasicString.h"

#include <vector>

namespace zr::logger {

// A column as it goes into the list.
struct TableColumn {
    ZRBasicString text;
    int width = 0;  // pixels

    friend bool operator==(const TableColumn&, const TableColumn&) = default;
};

// The control that shows the table: a report view whose rows are asked for one by one, whose titles don't sort, whole
// rows of which are selected and whose columns the user may drag. UI thread only.
class TableList {
public:
    // Of a text in the font of the rows, pixels.
    [[nodiscard]] virtual int StringWidth(const ZRBasicString& text) const = 0;
    // Takes out all rows and columns and puts these columns in. displayOrder holds the numbers of the columns from left
    // to right.
    virtual void SetColumns(const std::vector<TableColumn>& columns, const std::vector<int>& displayOrder) = 0;
    // So many rows, drawn anew; the place that is scrolled to may stay.
    virtual void SetItemCount(int count) = 0;
    // The place of a column on the screen from the left, zero-based; -1 for a column that isn't there.
    [[nodiscard]] virtual int ColumnOrder(int column) const = 0;
    // Pixels, as the user has left it; 0 for a column that isn't there.
    [[nodiscard]] virtual int ColumnWidth(int column) const = 0;
    // In any order; empty when none is selected.
    [[nodiscard]] virtual std::vector<RowRange> SelectedRows() const = 0;

protected:
    ~TableList() = default;
};

// The width of a new column, and the limits of any: what is stored beyond them is held at them when it is shown.
inline constexpr int kNewColumnWidth = 100;
inline constexpr int kMaxColumnWidth = 32767;
int ShownWidth(int width);

// Numbers each Index anew, 0, 1, 2 without gaps, in the order that the numbers had, of equal ones the first first.
void CompactOrder(ZRTableProfile& profile);

// What the list is given for a profile.
struct ColumnPlan {
    std::vector<TableColumn> columns;  // the time first
    std::vector<int> displayOrder;     // numbers of the columns from left to right
};

// One column for each record whose variable is in the list of variables.
//
// Meant: the title of a column is taken from the record at the number of columns so far, and so is its place on the
// screen, while unit and width come from the record itself. They are one and the same unless an earlier record had no
// variable. A place that no record claims leaves a column where it is.
ColumnPlan PlanColumns(const ZRTableProfile& profile, const ZRLoggerInfo& info, const ZRBasicString& timeTitle,
                       int timeWidth);

// Finds the column at a place on the screen among the columns put in. False, with the outputs unchanged, when there is
// none.
bool GetStrColByOrder(const TableList& list, const std::vector<TableColumn>& columns, int order, int& column,
                      ZRBasicString& text);

// Carries the user's arrangement of columns into the profile: place and width of each, and with swap also the order of
// the records. Columns and records are matched by their texts as the list gives them back, so that a record whose text
// the list holds only in part keeps what it has.
void ReorderVariables(ZRTableProfile& profile, const TableList& list, const std::vector<TableColumn>& columns,
                      bool swap);

}  // namespace zr::logger
