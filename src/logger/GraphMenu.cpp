#include "logger/GraphMenu.h"

#include "siblings/tools/ZRLoadString.h"

namespace zr::logger {

namespace {

constexpr unsigned kTextTooltipMode = 32319;
constexpr unsigned kTextZoomMode = 32320;
constexpr unsigned kTextPanMode = 32321;
constexpr unsigned kTextUndoZoom = 32322;
constexpr unsigned kTextUndoLastZoom = 32323;
constexpr unsigned kTextOptions = 354;
constexpr unsigned kTextPrintPreview = 224;

}  // namespace

ExplorerMenu GraphMenu(int mode, bool hasZooms)
{
    ExplorerMenu menu;
    const auto add = [&menu](unsigned command, unsigned text) -> ExplorerMenuEntry& {
        ExplorerMenuEntry& entry = menu.emplace_back();
        entry.command = command;
        ZRLoadString(text, entry.text);
        return entry;
    };
    add(kCommandTooltipMode, kTextTooltipMode).isChecked = mode == kTooltipMode;
    add(kCommandZoomMode, kTextZoomMode).isChecked = mode == kZoomMode;
    ExplorerMenuEntry& pan = add(kCommandPanMode, kTextPanMode);
    pan.isChecked = mode == kPanMode;
    pan.isEnabled = hasZooms;
    if (hasZooms) {
        menu.emplace_back();
        add(kCommandUndoZoom, kTextUndoZoom);
        add(kCommandUndoLastZoom, kTextUndoLastZoom);
    }
    menu.emplace_back();
    add(kCommandGraphOptions, kTextOptions);
    add(kCommandGraphPrint, kTextPrintPreview);
    return menu;
}

}  // namespace zr::logger
