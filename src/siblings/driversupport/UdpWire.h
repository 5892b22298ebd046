// Datagrams to one address and port, and from there.
#pragma once

#include "siblings/driversupport/IoContext.h"
#include "siblings/driversupport/Wire.h"

#include <cstdint>
#include <memory>
#include <string>

namespace zr {

class UdpWire final : public Wire {
public:
    // The address may be a host name; it is looked up on a thread of its own.
    UdpWire(IoContext& context, Listener& listener, const std::string& address, std::uint16_t port);
    ~UdpWire() override;

    void Open() override;
    void Send(std::span<const std::uint8_t> bytes) override;
    std::size_t Discard() override;

private:
    struct Impl;
    std::shared_ptr<Impl> m_impl;
};

}  // namespace zr
