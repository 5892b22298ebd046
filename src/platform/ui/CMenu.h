// A menu of commands.
#pragma once

#include "platform/ui/CWnd.h"

#include <QIcon>
#include <QMenu>
#include <string_view>

// Choosing an item sends its number as a command to the window that the menu was made for. "&" stands before the letter
// that chooses an item by key, and a tab before the keys that choose it while the menu is closed, such as
// "&Open...\tCtrl+O". UI thread only.
class CMenu : public QMenu {
public:
    // target: takes the commands; owns the menu.
    CMenu(QWidget* target, std::u16string_view title);

    void AppendMenu(unsigned id, std::u16string_view text, const QIcon& image = {});
    // A menu in the menu; not owned.
    void AppendMenu(CMenu& popup) { addMenu(&popup); }
    void AppendSeparator() { addSeparator(); }

    // Puts a mark before the text of the item of that number, in this menu or in one of its own; nothing when there is
    // none. One that was ever marked shows room for the mark from then on.
    void CheckMenuItem(unsigned id, bool check);
    // Marks one item of those numbers, and no other of them, in this menu as one out of several. Once a menu; nothing
    // when there is no such item.
    void CheckMenuRadioItem(unsigned first, unsigned last, unsigned id);
    // Null when there is none.
    [[nodiscard]] QAction* FindItem(unsigned id) const;

private:
    QWidget* m_target;
};
