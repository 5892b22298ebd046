// A list of lines in columns.
#pragma once

#include "platform/ui/CWnd.h"

#include <cstdint>
#include <QTreeView>
#include <string>
#include <string_view>

namespace zr::ui {

inline constexpr unsigned LVIS_SELECTED = 0x0002;

inline constexpr unsigned LVS_EX_GRIDLINES = 0x0001;
inline constexpr unsigned LVS_EX_FULLROWSELECT = 0x0020;

inline constexpr unsigned LVN_ITEMCHANGED = static_cast<unsigned>(-101);

// Follows LVN_ITEMCHANGED, of a line whose state has changed.
struct NMLISTVIEW {
    NMHDR hdr;
    int iItem = -1;  // zero-based
    unsigned uNewState = 0;
    unsigned uOldState = 0;
};

}  // namespace zr::ui

// Report view with one line selected at most. The parent is told of every change of the selection, by mouse, keys or
// SetItemState. A line that is wider than its column shows whole as a tool tip. UI thread only.
class CListCtrl : public QTreeView {
public:
    CListCtrl(QWidget* parent, unsigned id);
    ~CListCtrl() override;

    // Zero-based; behind the last one for an index beyond it. The place it came to.
    int InsertColumn(int index, std::u16string_view title);
    void SetColumnWidth(int column, int width);
    [[nodiscard]] int GetColumnWidth(int column) const { return columnWidth(column); }

    // As with columns.
    int InsertItem(int index, std::u16string_view text);
    // A number of the caller's for that line; 0 at first and for a line that isn't there.
    void SetItemData(int index, std::uintptr_t number);
    [[nodiscard]] std::uintptr_t GetItemData(int index) const;
    [[nodiscard]] std::u16string GetItemText(int index, int column) const;
    [[nodiscard]] int GetItemCount() const;
    // The selection goes with the lines, and the parent isn't told.
    void DeleteAllItems();

    // LVIS_SELECTED selects the line or takes the selection off. Nothing for a line that isn't there.
    void SetItemState(int index, unsigned state, unsigned mask);
    // Of the bits of mask, which of them hold.
    [[nodiscard]] unsigned GetItemState(int index, unsigned mask) const;

    // Styles of the mask are set to those of value, others stay; a mask of 0 stands for all. The styles before.
    unsigned SetExtendedStyle(unsigned mask, unsigned value);
    [[nodiscard]] unsigned GetExtendedStyle() const { return m_extendedStyle; }

    // Between false and true nothing is drawn and many lines go in fast; the place that is scrolled to stays.
    void SetRedraw(bool redraw);
    // Whole lines that fit below the titles.
    [[nodiscard]] int GetCountPerPage() const;
    // Room for lines and the scroll bar beside them, inside of the frame.
    [[nodiscard]] QRect GetClientRect() const { return contentsRect(); }

protected:
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    // Up and down select the line that has the focus where none is selected.
    void keyPressEvent(QKeyEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    class Lines;

    void Notify(int index, unsigned newState, unsigned oldState);

    Lines* m_lines;  // Owned by Qt.
    QWidget* m_target;
    unsigned m_extendedStyle = 0;
    int m_scrolledTo = 0;
};
