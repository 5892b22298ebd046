// The frames between two processes; docs/formats/dde-wire.md shows them byte by byte.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr::ddeml {

inline constexpr std::size_t kHeaderSize = 16;
inline constexpr std::size_t kMaxDataSize = 1U << 20U;
// Data and at most two texts of 255 units.
inline constexpr std::size_t kMaxFrameSize = kHeaderSize + 2 * (2 + 2 * 255) + kMaxDataSize;
// What a peer may send before it is known: a Connect.
inline constexpr std::size_t kMaxFirstFrameSize = kHeaderSize + 2 * (2 + 2 * 255);
inline constexpr std::uint32_t kProtocol = 1;

enum class FrameKind : std::uint8_t {
    Connect = 1,      // client: service, topic; id low and extra high half of the client's token
    Accept = 2,       // server: service, topic as the server spells them
    AdviseStart = 3,  // client: item, name of the format; id transaction, extra link
    AdviseStop = 4,   // client: id transaction (0: no reply wanted), extra link
    Request = 5,      // client: item, name of the format; id transaction
    Poke = 6,         // client: item, name of the format, data; id transaction
    Execute = 7,      // client: data; id transaction
    Reply = 8,        // server: name of the format, data; id transaction, extra DDE_F... flags
    Update = 9,       // server: data, before it with kFrameNamed the name of the format; id link
    Ack = 10,         // client: id link, extra DDE_F... flags
};

inline constexpr std::uint8_t kFrameNoData = 1;  // warm link; a reply or update without data
inline constexpr std::uint8_t kFrameAck = 2;     // acknowledged link; an update that wants an Ack
inline constexpr std::uint8_t kFrameNamed = 4;   // an update in another registered format than its link's

// A frame taken apart. Views into the bytes that it was decoded from, except for the texts.
struct Frame {
    FrameKind kind = FrameKind::Connect;
    std::uint8_t flags = 0;
    std::uint16_t format = 0;
    std::uint32_t id = 0;
    std::uint32_t extra = 0;
    std::u16string first;
    std::u16string second;
    std::span<const std::uint8_t> data;
};

enum class DecodeState {
    Complete,  // used tells the bytes of the frame
    Partial,   // more bytes are needed; used tells how many the frame will have, or 0 when not known yet
    Bad,       // the peer does not keep to the format
};

// Takes the first frame of the bytes apart. limit is the largest frame allowed.
DecodeState DecodeFrame(std::span<const std::uint8_t> bytes, std::size_t limit, Frame& frame, std::size_t& used);

// Appends the frame. Texts are at most 255 units, data at most kMaxDataSize.
void EncodeFrame(const Frame& frame, std::vector<std::uint8_t>& out);

}  // namespace zr::ddeml
