// What the standard streams are.
#pragma once

namespace zr {

// Whether a person reads standard output, as opposed to a file or another program.
bool IsTerminal();
// Likewise of standard error.
bool IsErrorTerminal();

struct TerminalSize {
    int columns = 80;
    int rows = 24;
};

// The size of standard output as it is now, in characters; 80 by 24 where it can't be told.
TerminalSize SizeOfTerminal();

}  // namespace zr
