// What the desktop remembers from one start to the next.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstdint>
#include <span>
#include <string>

namespace zr::desktop {

enum class Colours : std::uint32_t { System, Light, Dark };

// A place of a window in device-independent pixels; width 0: none is known.
struct WindowPlace {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool isMaximised = false;
};

// A plain value. Kept below the suite's key of the user, in the key "Desktop".
struct DesktopSettings {
    WindowPlace window;
    int treeWidth = 0;     // 0: as the desktop finds it good
    std::string language;  // title of the language file; empty: as the system
    Colours colours = Colours::System;
    bool showsToolbar = true;
    bool showsStatusBar = true;
    bool showsWarnings = true;
    // The page shown last, see DeviceTree::PathOf, and the document that it belongs to.
    ZRBasicString page;
    ZRBasicString document;
    // Of the page setup: see PageSetup of the windows. Millimetres.
    std::string paper = "A4";
    bool isLandscape = false;
    int margin = 15;

    // registryKey: the suite's, without a separator at its end. What is missing or makes no sense has its default.
    static DesktopSettings Load(const ZRBasicString& registryKey);
    // False when the registry can't be written.
    bool Store(const ZRBasicString& registryKey) const;
};

// The place moved and shrunk so that it lies on the screen that holds its middle, else on the first one; the default
// size in the middle of that when none is known. screens: at least one.
[[nodiscard]] WindowPlace FitToScreens(const WindowPlace& place, std::span<const WindowPlace> screens);

}  // namespace zr::desktop
