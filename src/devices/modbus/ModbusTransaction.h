// A request of a driver on its way.
#pragma once

#include "devices/modbus/ModbusFrame.h"

#include <cstdint>
#include <span>

namespace zr::modbus {

// One at a time for each driver. I/O thread only.
class ModbusTransaction : public ZRDeviceTransaction {
public:
    explicit ModbusTransaction(Framing framing) : m_framing(framing) { repliesAreNumbered = framing == Framing::Tcp; }

    // Makes the frame and forgets the reply of the last request. False if the request breaks a rule of the protocol.
    // The data of the request are copied into the frame and not needed afterwards.
    bool Prepare(const modbus::Request& asked);

    [[nodiscard]] Verdict Examine(std::span<const std::uint8_t> received) const override;
    [[nodiscard]] const modbus::Request& Asked() const { return m_asked; }
    // Of a transaction that ended as Replied.
    [[nodiscard]] modbus::Reply ReadReply() const { return modbus::ReadReply(m_framing, Reply()); }

private:
    Framing m_framing;
    modbus::Request m_asked;
};

}  // namespace zr::modbus
