#include "EchoPeer.h"

#include "PollDriver.h"

#include <arpa/inet.h>
#include <modbus.h>
#include <netinet/in.h>
#include <sched.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace zr::bench {

namespace {

using Clock = std::chrono::steady_clock;

sockaddr_in Loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

[[noreturn]] void Fail(const char* what)
{
    std::perror(what);
    std::exit(1);
}

int PortOf(int fd)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

bool AnswerOne(int fd, int flags, int silentFrom)
{
    std::array<std::uint8_t, 512> request;
    sockaddr_in from{};
    socklen_t size = sizeof from;
    if (::recvfrom(fd, request.data(), request.size(), flags, reinterpret_cast<sockaddr*>(&from), &size) <= 0) {
        return false;
    }
    if (request[0] < silentFrom) {
        std::array<std::uint8_t, kReplySize> reply{};
        reply[0] = request[0];
        ::sendto(fd, reply.data(), reply.size(), 0, reinterpret_cast<const sockaddr*>(&from), size);
    }
    return true;
}

[[noreturn]] void Serve(const std::vector<int>& sockets, int silentFrom)
{
    if (sockets.size() == 1) {
        for (;;) {
            AnswerOne(sockets[0], 0, silentFrom);
        }
    }
    const int poll = ::epoll_create1(EPOLL_CLOEXEC);
    for (const int fd : sockets) {
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.fd = fd;
        ::epoll_ctl(poll, EPOLL_CTL_ADD, fd, &event);
    }
    std::array<epoll_event, 128> ready;
    for (;;) {
        const int count = ::epoll_wait(poll, ready.data(), static_cast<int>(ready.size()), -1);
        for (int i = 0; i < count; ++i) {
            while (AnswerOne(ready[static_cast<std::size_t>(i)].data.fd, MSG_DONTWAIT, silentFrom)) {
            }
        }
    }
}

void EndWithParent()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

void End(pid_t child)
{
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

template <typename Exchange>
double RateOf(Exchange exchange, double seconds)
{
    const auto begin = Clock::now();
    const auto end = begin + std::chrono::duration<double>(seconds);
    std::uint64_t count = 0;
    auto now = begin;
    while (now < end) {
        for (int i = 0; i < 64; ++i) {
            exchange();
        }
        count += 64;
        now = Clock::now();
    }
    return static_cast<double>(count) / std::chrono::duration<double>(now - begin).count();
}

}  // namespace

void PinTo(int core)
{
    cpu_set_t cores;
    CPU_ZERO(&cores);
    const int count = static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN));
    for (int i = 0; i < count; ++i) {
        if (core < 0 || i == core % count) {
            CPU_SET(static_cast<unsigned>(i), &cores);
        }
    }
    ::sched_setaffinity(0, sizeof cores, &cores);
}

EchoPeer::EchoPeer(int ports, int core, int silentFrom)
{
    std::vector<int> sockets;
    for (int i = 0; i < ports; ++i) {
        const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const sockaddr_in address = Loopback(0);
        if (fd < 0 || ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            Fail("echo socket");
        }
        sockets.push_back(fd);
        m_ports.push_back(PortOf(fd));
    }
    m_child = ::fork();
    if (m_child < 0) {
        Fail("fork");
    }
    if (m_child == 0) {
        EndWithParent();
        PinTo(core);
        Serve(sockets, silentFrom);
    }
    for (const int fd : sockets) {
        ::close(fd);
    }
}

EchoPeer::~EchoPeer()
{
    End(m_child);
}

double EchoRate(int port, double seconds)
{
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(port);
    if (fd < 0 || ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        Fail("echo client");
    }
    const std::array<std::uint8_t, kRequestSize> request{1};
    std::array<std::uint8_t, 512> reply;
    const double rate = RateOf(
        [&] {
            ::send(fd, request.data(), request.size(), 0);
            ::recv(fd, reply.data(), reply.size(), 0);
        },
        seconds);
    ::close(fd);
    return rate;
}

double LibmodbusRate(int core, double seconds)
{
    constexpr int kRegisters = 10;  // a reply as long as the one of the bench's own protocol
    modbus_t* server = modbus_new_tcp("127.0.0.1", 0);
    const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in any = Loopback(0);
    ::bind(probe, reinterpret_cast<const sockaddr*>(&any), sizeof any);
    ::listen(probe, 1);
    const int port = PortOf(probe);
    const pid_t child = ::fork();
    if (child == 0) {
        EndWithParent();
        PinTo(core);
        modbus_mapping_t* mapping = modbus_mapping_new(0, 0, kRegisters, 0);
        int listening = probe;
        modbus_tcp_accept(server, &listening);
        std::array<std::uint8_t, MODBUS_TCP_MAX_ADU_LENGTH> query;
        for (;;) {
            const int size = modbus_receive(server, query.data());
            if (size > 0) {
                modbus_reply(server, query.data(), size, mapping);
            }
        }
    }
    modbus_t* client = modbus_new_tcp("127.0.0.1", port);
    if (modbus_connect(client) != 0) {
        Fail("libmodbus");
    }
    std::array<std::uint16_t, kRegisters> registers;
    const double rate = RateOf([&] { modbus_read_registers(client, 0, kRegisters, registers.data()); }, seconds);
    modbus_close(client);
    modbus_free(client);
    modbus_free(server);
    ::close(probe);
    End(child);
    return rate;
}

}  // namespace zr::bench
