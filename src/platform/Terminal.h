// What standard output is.
#pragma once

namespace zr {

// Whether a person reads it, as opposed to a file or another program.
bool IsTerminal();

struct TerminalSize {
    int columns = 80;
    int rows = 24;
};

// The size as it is now, in characters; 80 by 24 where it can't be told.
TerminalSize SizeOfTerminal();

}  // namespace zr
