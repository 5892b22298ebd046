#include "siblings/driversupport/ZRRSDeviceConnection.h"

#include "platform/SerialLine.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace zr {

namespace {

struct PortMap {
    std::mutex guard;
    std::map<int, std::string> devices;
};

PortMap& Ports()
{
    static PortMap ports;
    return ports;
}

}  // namespace

void SetPortMap(std::map<int, std::string> ports)
{
    const std::lock_guard lock(Ports().guard);
    Ports().devices = std::move(ports);
}

std::string PortDevice(int port)
{
    {
        const std::lock_guard lock(Ports().guard);
        const auto found = Ports().devices.find(port);
        if (found != Ports().devices.end()) {
            return found->second;
        }
    }
    return SerialDeviceName(port);
}

}  // namespace zr

ZRRSDeviceConnection::ZRRSDeviceConnection()
{
    m_framing = Framing::Stream;
}

bool ZRRSDeviceConnection::LoadCfg(const XmlNode& node)
{
    static constexpr std::array kBaudRates{300,   600,   1200,  2400,   4800,   9600,   14400,
                                           19200, 38400, 57600, 115200, 230400, 460800, 921600};
    constexpr int kHighestPort = 999;
    if (!LoadCommon(node) || !LoadNumber(node, u"Port", u"", 1, kHighestPort, m_port) ||
        !LoadNumber(node, u"BaudRate", u"9600", kBaudRates.front(), kBaudRates.back(), m_settings.baudRate)) {
        return false;
    }
    if (std::find(kBaudRates.begin(), kBaudRates.end(), m_settings.baudRate) == kBaudRates.end()) {
        m_loadError =
            ZRBasicString(u"BaudRate \"") + node.Value(u"BaudRate", u"") + u"\" is not a speed of serial ports";
        return false;
    }
    if (!LoadParity(node)) {
        return false;
    }
    // Start, 8 data bits, parity or not, stop. Devices take 3.5 characters of silence for the end of a frame, and
    // 1.75 ms at high speeds (Modbus over Serial Line 1.02, 2.5.1.1).
    constexpr int kBitsPerByte = 11;
    m_byteTime = std::chrono::duration_cast<Clock::duration>(std::chrono::seconds(kBitsPerByte)) / m_settings.baudRate;
    m_pause = std::max<Clock::duration>(m_byteTime * 7 / 2, std::chrono::microseconds(1750));
    return true;
}

bool ZRRSDeviceConnection::LoadParity(const XmlNode& node)
{
    using zr::SerialParity;
    static constexpr std::array kParities{
        std::pair{u"NONE", SerialParity::None},
        std::pair{u"EVEN", SerialParity::Even},
        std::pair{u"ODD", SerialParity::Odd},
    };
    const ZRBasicString text = node.Value(u"Parity", u"none");
    const ZRBasicString wanted = ToUpperCase(text);
    for (const auto& [parityName, parity] : kParities) {
        const bool isInitial = wanted.Length() == 1 && wanted[0] == parityName[0];
        if (isInitial || wanted == parityName) {
            m_settings.parity = parity;
            return true;
        }
    }
    m_loadError = ZRBasicString(u"Parity \"") + text + u"\" is none of none, even, odd";
    return false;
}

std::unique_ptr<zr::Wire> ZRRSDeviceConnection::MakeWire(zr::IoContext& wireContext, zr::Wire::Listener& listener)
{
    m_settings.device = zr::PortDevice(m_port);
    return zr::MakeSerialWire(wireContext, listener, m_settings);
}
