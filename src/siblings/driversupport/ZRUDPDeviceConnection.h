// Devices behind a network address.
#pragma once

#include "siblings/driversupport/LineConnection.h"

#include <cstdint>
#include <string>

// Values of its node: `Name`, `Address` (numbers or a host name), `Socket` (UDP port, 1 to 65535), `TimeOut`
// (milliseconds; 0 or absent: 1000). Replies are taken from that address and port only.
class ZRUDPDeviceConnection : public zr::LineConnection {
public:
    ZRUDPDeviceConnection();

    bool LoadCfg(const XmlNode& node) override;
    [[nodiscard]] const std::string& Address() const { return m_address; }
    [[nodiscard]] int Socket() const { return m_socket; }

protected:
    std::unique_ptr<zr::Wire> MakeWire(zr::IoContext& wireContext, zr::Wire::Listener& listener) override;

private:
    std::string m_address;
    int m_socket = 0;
};
