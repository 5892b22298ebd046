// A serial port with 8 data bits and one stop bit.
#pragma once

#include "siblings/driversupport/IoContext.h"
#include "siblings/driversupport/Wire.h"

#include <memory>
#include <string>

namespace zr {

enum class SerialParity { None, Even, Odd };

struct SerialSettings {
    std::string device;   // such as /dev/ttyS0
    int baudRate = 9600;  // bits per second
    SerialParity parity = SerialParity::None;
};

std::unique_ptr<Wire> MakeSerialWire(IoContext& context, Wire::Listener& listener, const SerialSettings& settings);

}  // namespace zr
