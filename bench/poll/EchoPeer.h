// What answers the polls, in processes of their own, and the bare exchanges that the figures are compared with.
#pragma once

#include <sys/types.h>

#include <vector>

namespace zr::bench {

// Pins the calling thread, and what it starts, to that core; to all with -1.
void PinTo(int core);

// A forked process that answers on so many loopback UDP ports, pinned to that core. Units from `silentFrom` on don't
// answer.
class EchoPeer {
public:
    EchoPeer(int ports, int core, int silentFrom = 256);
    ~EchoPeer();
    EchoPeer(const EchoPeer&) = delete;
    EchoPeer& operator=(const EchoPeer&) = delete;
    [[nodiscard]] int Port(int index) const { return m_ports[static_cast<std::size_t>(index)]; }

private:
    std::vector<int> m_ports;
    pid_t m_child = -1;
};

// Round trips a second of a blocking send and recv over one connected socket.
double EchoRate(int port, double seconds);
// Round trips a second of libmodbus over TCP loopback: 10 registers, server in a process of its own on that core.
double LibmodbusRate(int core, double seconds);

}  // namespace zr::bench
