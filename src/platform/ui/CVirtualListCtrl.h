// A list of lines in columns that holds none of its texts.
#pragma once

#include "platform/ui/CWnd.h"

#include <QTableView>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zr::ui {

inline constexpr unsigned LVN_GETDISPINFO = static_cast<unsigned>(-177);
inline constexpr unsigned LVIF_TEXT = 0x0001;

// Follows LVN_GETDISPINFO: the parent puts in the text of a cell. It is copied at once.
struct NMLVDISPINFO {
    NMHDR hdr;
    unsigned mask = 0;
    int iItem = -1;     // zero-based
    int iSubItem = -1;  // the column as it was inserted
    mutable std::u16string_view text;
};

}  // namespace zr::ui

// Report view with owner data: the parent is asked for every text by LVN_GETDISPINFO when it is drawn, and no row costs
// more than a header keeps of it. Whole rows are selected, any number of them; titles don't sort, and the user drags
// columns about and widens them; Ctrl+Left and Ctrl+Right scroll sideways. The first column stands at the left, the
// others, which are numbers, at the right. UI thread only.
class CVirtualListCtrl : public QTableView {
public:
    CVirtualListCtrl(QWidget* parent, unsigned id);
    ~CVirtualListCtrl() override;

    // Takes out all rows and columns.
    void DeleteAllColumns();
    // Behind the last one; pixels.
    void InsertColumn(std::u16string_view title, int width);
    // The column comes to that place on the screen from the left, zero-based.
    void SetColumnOrder(int column, int order);
    // -1 for a column that isn't there.
    [[nodiscard]] int GetColumnOrder(int column) const;
    // 0 for a column that isn't there.
    [[nodiscard]] int GetColumnWidth(int column) const;
    [[nodiscard]] int GetColumnCount() const;

    // So many rows, drawn anew; those beyond lose their selection. The place that is scrolled to stays where it can.
    void SetItemCountEx(int count);
    [[nodiscard]] int GetItemCount() const;
    [[nodiscard]] std::u16string GetItemText(int row, int column) const;
    // Ranges of selected rows, first and last, inclusive, in any order.
    [[nodiscard]] std::vector<std::pair<int, int>> GetSelectedRanges() const;
    // Of a text in the font of the rows with the room around it, pixels.
    [[nodiscard]] int GetStringWidth(std::u16string_view text) const;

    // Letters search nothing: each row would have to be asked for its text.
    void keyboardSearch(const QString&) override {}

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;

private:
    class Rows;

    void FitToFont();
    // Whether the key was one of those that do.
    bool ScrollSideways(const QKeyEvent& event);
    void GoToEnd(const QKeyEvent& event);

    Rows* m_rows;  // Owned by Qt.
    bool m_goesToEnd = false;
};
