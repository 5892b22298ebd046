#include "platform/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace zr {

bool IsTerminal()
{
    return ::isatty(STDOUT_FILENO) == 1;
}

bool IsErrorTerminal()
{
    return ::isatty(STDERR_FILENO) == 1;
}

TerminalSize SizeOfTerminal()
{
    struct winsize size = {};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        return {};
    }
    return {size.ws_col, size.ws_row};
}

}  // namespace zr
