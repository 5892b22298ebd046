// Devices on a serial port.
#pragma once

#include "siblings/driversupport/LineConnection.h"
#include "siblings/driversupport/SerialWire.h"

#include <map>
#include <string>

namespace zr {

// Which device file stands for a port number, for the numbers that aren't as usual (`/dev/ttyS` and the number minus
// one; on Windows `COM` and the number). In force for what opens afterwards. Any thread.
void SetPortMap(std::map<int, std::string> ports);
std::string PortDevice(int port);

}  // namespace zr

// 8 data bits, one stop bit. Values of its node: `Name`, `Port` (above 0), `BaudRate` (default 9600), `Parity` ("none",
// "even", "odd" or their first letter; default none), `TimeOut` (milliseconds; 0 or absent: 1000).
class ZRRSDeviceConnection : public zr::LineConnection {
public:
    ZRRSDeviceConnection();

    bool LoadCfg(const XmlNode& node) override;
    [[nodiscard]] int Port() const { return m_port; }
    [[nodiscard]] const zr::SerialSettings& Settings() const { return m_settings; }

protected:
    std::unique_ptr<zr::Wire> MakeWire(zr::IoContext& wireContext, zr::Wire::Listener& listener) override;

private:
    bool LoadParity(const XmlNode& node);

    int m_port = 0;
    zr::SerialSettings m_settings;  // the device is filled in when it opens
};
