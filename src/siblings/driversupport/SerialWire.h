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

class SerialWire final : public Wire {
public:
    SerialWire(IoContext& context, Listener& listener, const SerialSettings& settings);
    ~SerialWire() override;

    void Open() override;
    void Send(std::span<const std::uint8_t> bytes) override;
    std::size_t Discard() override;

private:
    struct Impl;
    std::shared_ptr<Impl> m_impl;
};

}  // namespace zr
