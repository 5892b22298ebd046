#include "platform/SerialLine.h"

#include <windows.h>

namespace zr {

std::size_t DropSerialInput(SerialHandle port)
{
    COMSTAT state{};
    DWORD errors = 0;
    const std::size_t waiting = ClearCommError(port, &errors, &state) != 0 ? state.cbInQue : 0;
    if (waiting > 0) {
        PurgeComm(port, PURGE_RXCLEAR);
    }
    return waiting;
}

void DropSerialOutput(SerialHandle port)
{
    PurgeComm(port, PURGE_TXCLEAR);
}

std::string SerialDeviceName(int port)
{
    return R"(\\.\COM)" + std::to_string(port);
}

}  // namespace zr
