// The desktop program: its objects in their order, and its message loop.
#pragma once

#include "hosts/kestrix/DesktopOptions.h"

namespace zr::desktop {

// Shows the windows until the user ends it, or takes pictures of them. Returns the exit status, after saying on
// standard error what was wrong. Once a program.
int RunDesktop(const DesktopOptions& options, int argc, char** argv);

}  // namespace zr::desktop
