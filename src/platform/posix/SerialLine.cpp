#include "platform/SerialLine.h"

#include <termios.h>
#include <unistd.h>

#include <array>

namespace zr {

std::size_t DropSerialInput(SerialHandle port)
{
    // The port was opened non-blocking.
    std::array<char, 512> ignored;
    std::size_t total = 0;
    for (ssize_t size = 0; (size = ::read(port, ignored.data(), ignored.size())) > 0;) {
        total += static_cast<std::size_t>(size);
        if (total > 65536) {
            break;  // somebody talks without end
        }
    }
    return total;
}

void DropSerialOutput(SerialHandle port)
{
    ::tcflush(port, TCOFLUSH);
}

std::string SerialDeviceName(int port)
{
    return "/dev/ttyS" + std::to_string(port - 1);
}

}  // namespace zr
