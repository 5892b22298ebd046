#include "siblings/driversupport/ZRUDPDeviceConnection.h"

#include "siblings/driversupport/UdpWire.h"

#include <algorithm>

ZRUDPDeviceConnection::ZRUDPDeviceConnection()
{
    m_framing = Framing::Datagram;
}

bool ZRUDPDeviceConnection::LoadCfg(const XmlNode& node)
{
    constexpr int kHighestSocket = 65535;
    constexpr std::size_t kLongestHostName = 253;
    if (!LoadCommon(node)) {
        return false;
    }
    const ZRBasicString address = node.Value(u"Address", u"");
    const bool isUsable =
        !address.IsEmpty() && address.Length() <= kLongestHostName &&
        std::all_of(address.Text().begin(), address.Text().end(), [](wchar c) { return c > u' ' && c < 0x7F; });
    if (!isUsable) {
        m_loadError = ZRBasicString(u"Address \"") + address + u"\" is neither an address nor a host name";
        return false;
    }
    m_address.assign(address.Text().begin(), address.Text().end());
    return LoadNumber(node, u"Socket", u"", 1, kHighestSocket, m_socket);
}

std::unique_ptr<zr::Wire> ZRUDPDeviceConnection::MakeWire(zr::IoContext& wireContext, zr::Wire::Listener& listener)
{
    return zr::MakeUdpWire(wireContext, listener, m_address, static_cast<std::uint16_t>(m_socket));
}
