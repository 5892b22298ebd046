// The types of connections, by the names that documents give them.
#pragma once

#include "siblings/driversupport/ZRDeviceConnection.h"

#include <memory>

namespace zr {

// Not configured yet. "RS" and "UDP", exactly so; null for any other text.
std::unique_ptr<ZRDeviceConnection> MakeConnection(const ZRBasicString& type);

}  // namespace zr
