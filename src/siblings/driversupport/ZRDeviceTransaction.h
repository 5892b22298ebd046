// One request to a device and what became of it.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

// Made and owned by a driver, carried out by a connection. Between DoTransaction and Done it belongs to the
// connection and to its I/O thread.
class ZRDeviceTransaction {
public:
    static constexpr std::size_t kMaxFrame = 264;

    enum class Outcome {
        Pending,
        Replied,    // `reply` holds one whole frame that Examine accepted
        TimedOut,   // nothing acceptable came in time
        NoLine,     // the port or socket isn't open, or broke
        Cancelled,  // the group stopped
    };

    // What the bytes received so far are, seen from this request.
    struct Verdict {
        enum class Kind {
            NeedMore,  // the beginning of something; wait
            Accept,    // the first `size` bytes are the reply
            Drop,      // the first `size` bytes (at least 1) are not: late, foreign, damaged
        };
        Kind kind = Kind::NeedMore;
        std::size_t size = 0;
    };

    virtual ~ZRDeviceTransaction() = default;

    // Judges received bytes; a datagram is judged by itself, a serial stream as it grows. NeedMore on a whole
    // datagram counts as damage. I/O thread only.
    [[nodiscard]] virtual Verdict Examine(std::span<const std::uint8_t> received) const = 0;

    // Whole frame to send.
    [[nodiscard]] std::span<const std::uint8_t> Request() const { return {request.data(), requestSize}; }
    // Empty unless Replied.
    [[nodiscard]] std::span<const std::uint8_t> Reply() const { return {reply.data(), replySize}; }

    std::array<std::uint8_t, kMaxFrame> request{};
    std::size_t requestSize = 0;
    std::array<std::uint8_t, kMaxFrame> reply{};
    std::size_t replySize = 0;
    Outcome outcome = Outcome::Pending;

    // True when a reply names its request (a transaction identifier), so that a late one can't be mistaken and no
    // quiet time is needed after a time-out.
    bool repliesAreNumbered = false;
    // False when asking twice may do more than asking once: a reading is sent again where its reply is in doubt.
    bool mayBeRepeated = true;
    // Who is asked on a shared line, 0 to 255: after a time-out only this one is left alone for long.
    std::uint8_t unit = 0;
    // Set by the connection: frames that were dropped while this transaction ran, and from request to reply.
    std::uint32_t droppedFrames = 0;
    std::chrono::steady_clock::duration took{};
};
