// The context menu of a graph.
#pragma once

#include "logger/ExplorerMenus.h"

namespace zr::logger {

inline constexpr unsigned kCommandTooltipMode = 101;
inline constexpr unsigned kCommandZoomMode = 102;
inline constexpr unsigned kCommandPanMode = 103;
inline constexpr unsigned kCommandUndoZoom = 104;
inline constexpr unsigned kCommandUndoLastZoom = 105;
inline constexpr unsigned kCommandGraphOptions = 106;
inline constexpr unsigned kCommandGraphPrint = 107;

// What the mouse does on a graph.
inline constexpr int kTooltipMode = 0;
inline constexpr int kZoomMode = 1;
inline constexpr int kPanMode = 2;

// The mode in force is marked. Zooms are undone, and the view panned, only where there are zooms. An entry without a
// command is a separator.
ExplorerMenu GraphMenu(int mode, bool hasZooms);

}  // namespace zr::logger
