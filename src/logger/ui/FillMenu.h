// From a menu as it is told without Qt to one that can be opened.
#pragma once

#include "logger/ExplorerMenus.h"
#include "platform/ui/CMenu.h"

#include <map>

namespace zr::ui {

// How the entry in force is marked.
enum class MenuMark {
    Radio,  // as one out of all the menu's
    Check,
};

// Menus that somebody else has filled, by the command of their entry. Not owned; each is used once at most.
using FilledMenus = std::map<unsigned, CMenu*>;

// Appends the entries. Sub-menus, those filled already too, belong to the menu then; target takes their commands. UI
// thread only.
void FillMenu(CMenu& menu, const logger::ExplorerMenu& entries, QWidget* target, MenuMark mark,
              const FilledMenus& filled = {});

}  // namespace zr::ui
