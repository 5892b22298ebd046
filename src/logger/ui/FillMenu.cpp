#include "logger/ui/FillMenu.h"

namespace zr::ui {

namespace {

using logger::ExplorerMenu;
using logger::ExplorerMenuEntry;

// Null for a plain entry. Marks in a sub-menu are one out of several always.
CMenu* SubMenuOf(const ExplorerMenuEntry& entry, QWidget* target, const FilledMenus& filled)
{
    if (const auto found = filled.find(entry.command); found != filled.end()) {
        return found->second;
    }
    if (entry.subMenu.empty()) {
        return nullptr;
    }
    auto* const popup = new CMenu(target, entry.text.Text());
    FillMenu(*popup, entry.subMenu, target, MenuMark::Radio);
    return popup;
}

void MarkEntry(CMenu& menu, const ExplorerMenu& entries, const ExplorerMenuEntry& entry, MenuMark mark)
{
    if (mark == MenuMark::Radio) {
        menu.CheckMenuRadioItem(entries.front().command, entries.back().command, entry.command);
    } else {
        menu.CheckMenuItem(entry.command, true);
    }
}

}  // namespace

void FillMenu(CMenu& menu, const ExplorerMenu& entries, QWidget* target, MenuMark mark, const FilledMenus& filled)
{
    for (const ExplorerMenuEntry& entry : entries) {
        if (entry.command == 0) {
            menu.AppendSeparator();
        } else if (CMenu* const popup = SubMenuOf(entry, target, filled); popup != nullptr) {
            popup->setParent(&menu, popup->windowFlags());
            menu.AppendMenu(*popup);
        } else {
            menu.AppendMenu(entry.command, entry.text.Text());
            menu.FindItem(entry.command)->setEnabled(entry.isEnabled);
        }
    }
    for (const ExplorerMenuEntry& entry : entries) {
        if (entry.isChecked) {
            MarkEntry(menu, entries, entry, mark);
        }
    }
}

}  // namespace zr::ui
