// What carries bytes to devices and back, without knowing what they mean.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zr {

// One open or opening serial port or socket. I/O thread only. Once destroyed it tells its listener nothing more; that
// may happen in any of its call-backs.
class Wire {
public:
    enum class Failure { Line, AddressUnknown };

    class Listener {
    public:
        virtual void WireOpened() = 0;
        // It is of no use any more. The reason is for the host to show.
        virtual void WireFailed(Failure failure, const std::string& reason) = 0;
        // A whole datagram, or some bytes of a stream.
        virtual void WireReceived(std::span<const std::uint8_t> bytes) = 0;
        // A datagram came from somebody who wasn't asked.
        virtual void WireForeign() = 0;

    protected:
        ~Listener() = default;
    };

    Wire() = default;
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;
    virtual ~Wire() = default;

    // WireOpened or WireFailed follows, perhaps before this returns.
    virtual void Open() = 0;
    // What can't be sent is silently lost, as on any line.
    virtual void Send(std::span<const std::uint8_t> bytes) = 0;
    // Throws away what was received and not yet told; returns how many frames that were, 1 for any bytes of a stream.
    virtual std::size_t Discard() = 0;
    // Nothing has come for long: what the far end is known by may stand for another place now. For wires that find it
    // by name; tells the listener nothing, and changes nothing when the name can't be found.
    virtual void LookAgain() {}
};

}  // namespace zr
