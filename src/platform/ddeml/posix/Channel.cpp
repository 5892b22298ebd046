#include "platform/ddeml/posix/Channel.h"

#include <sys/socket.h>
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace zr::ddeml {

namespace {
constexpr std::size_t kReadSize = 64U << 10U;
}

Channel::State Channel::Read()
{
    if (m_begin > 0) {
        std::memmove(m_in.data(), m_in.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
    }
    // A first small read: most connections never hold more than a frame of it.
    const std::size_t room = std::max<std::size_t>(m_in.size() < 4096 ? 4096 : kReadSize, m_end + 4096);
    if (m_in.size() < room) {
        m_in.resize(room);
    }
    const ssize_t got = recv(m_socket.Get(), m_in.data() + m_end, m_in.size() - m_end, 0);
    if (got > 0) {
        m_end += static_cast<std::size_t>(got);
        return State::Open;
    }
    return got < 0 && (errno == EAGAIN || errno == EINTR) ? State::Open : State::Closed;
}

DecodeState Channel::Next(std::size_t limit, Frame& frame)
{
    std::size_t used = 0;
    const DecodeState state = DecodeFrame({m_in.data() + m_begin, m_end - m_begin}, limit, frame, used);
    if (state == DecodeState::Complete) {
        m_begin += used;
    }
    return state;
}

Channel::State Channel::Flush()
{
    while (m_sent < m_out.size()) {
        const ssize_t sent = send(m_socket.Get(), m_out.data() + m_sent, m_out.size() - m_sent, MSG_NOSIGNAL);
        if (sent < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno == EAGAIN ? State::Open : State::Closed;
        }
        m_sent += static_cast<std::size_t>(sent);
    }
    m_out.clear();
    m_sent = 0;
    if (m_out.capacity() > (256U << 10U)) {
        m_out.shrink_to_fit();
    }
    return State::Open;
}

}  // namespace zr::ddeml
