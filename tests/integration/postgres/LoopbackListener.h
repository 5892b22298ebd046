// A port of loopback that never says a word.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <string>

namespace zr::test {

// Connections to it are made by the system. They wait for ever, or until HangUpOne.
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

private:
    static sockaddr_in Address()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return address;
    }
    int Accept() { return ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC); }

    int m_socket;
};

}  // namespace zr::test
