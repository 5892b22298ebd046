#include "siblings/driversupport/ConnectionTypes.h"

#include "siblings/driversupport/ZRRSDeviceConnection.h"
#include "siblings/driversupport/ZRUDPDeviceConnection.h"

namespace zr {

std::unique_ptr<ZRDeviceConnection> MakeConnection(const ZRBasicString& type)
{
    if (type == u"RS") {
        return std::make_unique<ZRRSDeviceConnection>();
    }
    if (type == u"UDP") {
        return std::make_unique<ZRUDPDeviceConnection>();
    }
    return nullptr;
}

}  // namespace zr
