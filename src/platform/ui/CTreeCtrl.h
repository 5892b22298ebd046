// A tree of named things.
#pragma once

#include "platform/ui/CWnd.h"

#include <cstdint>
#include <QIcon>
#include <QTreeWidget>
#include <string>
#include <string_view>

using HTREEITEM = QTreeWidgetItem*;

namespace zr::ui {

inline constexpr HTREEITEM TVI_ROOT = nullptr;

inline constexpr unsigned TVN_SELCHANGED = static_cast<unsigned>(-451);

// Follows TVN_SELCHANGED.
struct NMTREEVIEW {
    NMHDR hdr;
    HTREEITEM itemNew = nullptr;  // null: none is selected any more
};

}  // namespace zr::ui

// Items in order, each with a text, a picture and a number of the caller's. The parent is told when the selection
// changes, by mouse, keys or SelectItem. UI thread only.
class CTreeCtrl : public QTreeWidget {
public:
    CTreeCtrl(QWidget* parent, unsigned id);

    // Behind the last child of parent; TVI_ROOT for the top. Owned by the tree.
    HTREEITEM InsertItem(std::u16string_view text, const QIcon& image, HTREEITEM parent = zr::ui::TVI_ROOT);
    void DeleteAllItems();

    void SetItemText(HTREEITEM item, std::u16string_view text);
    [[nodiscard]] std::u16string GetItemText(HTREEITEM item) const;
    void SetItemImage(HTREEITEM item, const QIcon& image);
    // 0 at first.
    void SetItemData(HTREEITEM item, std::uintptr_t number);
    [[nodiscard]] std::uintptr_t GetItemData(HTREEITEM item) const;

    // Null when there is none.
    [[nodiscard]] HTREEITEM GetSelectedItem() const { return currentItem(); }
    // Null takes the selection off. Its parents are opened, and it is scrolled into view.
    void SelectItem(HTREEITEM item);
    void Expand(HTREEITEM item) { item->setExpanded(true); }
};
