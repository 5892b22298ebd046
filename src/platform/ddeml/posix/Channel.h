// One connection: bytes in, bytes out, never blocking.
#pragma once

#include "platform/ddeml/posix/RuntimeFolder.h"
#include "platform/ddeml/posix/Wire.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zr::ddeml {

// The frames of one socket. What is unsent is bounded by its user, who looks at Unsent(); what is unread by one frame.
class Channel {
public:
    enum class State { Open, Closed };

    explicit Channel(Descriptor socket) : m_socket(std::move(socket)) {}

    [[nodiscard]] int Socket() const { return m_socket.Get(); }

    // Reads once what has arrived, at most 64 KiB. Closed when the peer has gone.
    State Read();
    // The next complete frame. Its data are valid until the next call of Read().
    DecodeState Next(std::size_t limit, Frame& frame);

    void Append(const Frame& frame) { EncodeFrame(frame, m_out); }
    // Sends what the socket takes.
    State Flush();
    [[nodiscard]] std::size_t Unsent() const { return m_out.size() - m_sent; }

private:
    Descriptor m_socket;
    std::vector<std::uint8_t> m_in;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    std::vector<std::uint8_t> m_out;
    std::size_t m_sent = 0;
};

}  // namespace zr::ddeml
