// What must be there before a window can be.
#pragma once

#include <string>

namespace zr::desktop {

// Before the application object. Without a display the windows are drawn off screen when isOffScreen allows it; else
// false, and problem tells what is missing. A display that can't be reached ends the program later with one line and
// status 2.
bool CheckDisplay(bool isOffScreen, std::string& problem);
// After it. False when there is no font.
bool CheckFonts(std::string& problem);

}  // namespace zr::desktop
