// A port of loopback that never says a word.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <cstdint>
#include <string>

namespace zr::test {

// Connections to it are made by the system. They wait for ever, or until HangUpAll.
class LoopbackListener {
public:
    LoopbackListener() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = Address();
        const void* const bound = &address;
        ::bind(m_socket, static_cast<const sockaddr*>(bound), sizeof address);
        ::listen(m_socket, 16);
    }
    LoopbackListener(const LoopbackListener&) = delete;
    LoopbackListener& operator=(const LoopbackListener&) = delete;
    ~LoopbackListener() { ::close(m_socket); }

    [[nodiscard]] std::string Port() const
    {
        sockaddr_in address = Address();
        socklen_t size = sizeof address;
        void* const bound = &address;
        ::getsockname(m_socket, static_cast<sockaddr*>(bound), &size);
        return std::to_string(ntohs(address.sin_port));
    }
    // How many have connected since the last call; all of them are hung up.
    int HangUpAll()
    {
        int count = 0;
        for (int one = Accept(); one >= 0; one = Accept()) {
            ::close(one);
            ++count;
        }
        return count;
    }

    // -1 when none waits.
    int Accept() { return ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC); }
    void WaitForOne(int milliseconds) const
    {
        pollfd waited{m_socket, POLLIN, 0};
        ::poll(&waited, 1, milliseconds);
    }

private:
    static sockaddr_in Address()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return address;
    }
    int m_socket;
};

// A connection to a port of loopback; -1 when nobody listens there.
inline int ConnectTo(const std::string& port)
{
    const int connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
    const void* const there = &address;
    if (::connect(connection, static_cast<const sockaddr*>(there), sizeof address) != 0) {
        ::close(connection);
        return -1;
    }
    return connection;
}

}  // namespace zr::test
