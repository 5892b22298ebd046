// Datagrams to one address and port, and from there.
#pragma once

#include "siblings/driversupport/IoContext.h"
#include "siblings/driversupport/Wire.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zr {

// Finds the addresses of a host name, in numbers, the best first; without any, the error tells why. I/O thread only,
// and there it calls back: once, at the latest when its IoContext ends, and perhaps before it returns.
using HostsFound = std::function<void(const std::vector<std::string>& addresses, const std::string& error)>;
using HostLookup = std::function<void(const std::string& host, HostsFound found)>;

// The address may be a host name; without another lookup the system finds it, on a thread of its own. LookAgain takes
// up what the name stands for by then: an address that has answered is kept while it is still among them, otherwise the
// next one has its turn.
std::unique_ptr<Wire> MakeUdpWire(IoContext& context, Wire::Listener& listener, const std::string& address,
                                  std::uint16_t port, HostLookup lookup = {});

}  // namespace zr
