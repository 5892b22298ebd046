// Stands between a program and a server, and hangs up both instead of passing on the answer to a commit.
#pragma once

#include "integration/postgres/LoopbackListener.h"

#include <poll.h>
#include <array>
#include <atomic>
#include <string>
#include <thread>

namespace zr::test {

// One connection at a time, to a port of loopback.
class ReplyDropper {
public:
    explicit ReplyDropper(const std::string& serverPort) : m_serverPort(serverPort), m_thread([this] { Run(); }) {}
    ReplyDropper(const ReplyDropper&) = delete;
    ReplyDropper& operator=(const ReplyDropper&) = delete;
    ~ReplyDropper()
    {
        m_isEnding = true;
        m_thread.join();
    }

    [[nodiscard]] std::string Port() const { return m_listener.Port(); }
    // The next answer to a commit.
    void DropNext() { m_isDropping = true; }
    [[nodiscard]] int Dropped() const { return m_dropped; }

private:
    void Run()
    {
        while (!m_isEnding) {
            const int client = m_listener.Accept();
            if (client < 0) {
                m_listener.WaitForOne(20);
                continue;
            }
            const int server = ConnectTo(m_serverPort);
            while (!m_isEnding && PassSome(client, server)) {
            }
            ::close(client);
            ::close(server);
        }
    }

    // False when one of them has hung up, or is to be.
    bool PassSome(int client, int server)
    {
        std::array<pollfd, 2> waited = {pollfd{client, POLLIN, 0}, pollfd{server, POLLIN, 0}};
        if (::poll(waited.data(), waited.size(), 20) <= 0) {
            return true;
        }
        std::array<char, 65536> bytes{};
        for (std::size_t i = 0; i < waited.size(); ++i) {
            if (waited[i].revents == 0) {
                continue;
            }
            const ssize_t got = ::read(waited[i].fd, bytes.data(), bytes.size());
            if (got <= 0) {
                return false;
            }
            const std::string text(bytes.data(), static_cast<std::size_t>(got));
            if (i == 1 && m_isDropping && text.find("COMMIT") != std::string::npos) {
                m_isDropping = false;
                ++m_dropped;
                return false;
            }
            ::send(waited[1 - i].fd, text.data(), text.size(), MSG_NOSIGNAL);
        }
        return true;
    }

    LoopbackListener m_listener;
    std::string m_serverPort;
    std::atomic<bool> m_isEnding = false;
    std::atomic<bool> m_isDropping = false;
    std::atomic<int> m_dropped = 0;
    std::thread m_thread;  // the last one, since it uses all others
};

}  // namespace zr::test
