#include "platform/ddeml/posix/Wire.h"

#include <cstring>

namespace zr::ddeml {

namespace {

constexpr std::size_t kMaxText = 255;

std::uint32_t Load16(const std::uint8_t* at)
{
    return static_cast<std::uint32_t>(at[0]) | static_cast<std::uint32_t>(at[1]) << 8U;
}

std::uint32_t Load32(const std::uint8_t* at)
{
    return Load16(at) | Load16(at + 2) << 16U;
}

void Store16(std::uint8_t* at, std::uint32_t value)
{
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8U);
}

void Store32(std::uint8_t* at, std::uint32_t value)
{
    Store16(at, value);
    Store16(at + 2, value >> 16U);
}

// How many texts stand before the data.
std::size_t TextsOf(FrameKind kind, std::uint8_t flags)
{
    switch (kind) {
        case FrameKind::Connect:
        case FrameKind::Accept:
        case FrameKind::AdviseStart:
        case FrameKind::Request:
        case FrameKind::Poke:
            return 2;
        case FrameKind::Reply:
            return 1;
        case FrameKind::Update:
            return (flags & kFrameNamed) != 0 ? 1 : 0;
        case FrameKind::AdviseStop:
        case FrameKind::Execute:
        case FrameKind::Ack:
            return 0;
    }
    return 0;
}

bool MayHoldData(FrameKind kind)
{
    return kind == FrameKind::Poke || kind == FrameKind::Execute || kind == FrameKind::Reply ||
           kind == FrameKind::Update;
}

bool TakeText(std::span<const std::uint8_t>& rest, std::u16string& text)
{
    if (rest.size() < 2) {
        return false;
    }
    const std::size_t length = Load16(rest.data());
    if (length > kMaxText || rest.size() < 2 + 2 * length) {
        return false;
    }
    text.resize(length);
    for (std::size_t i = 0; i < length; ++i) {
        text[i] = static_cast<char16_t>(Load16(rest.data() + 2 + 2 * i));
        if (text[i] == 0) {
            return false;
        }
    }
    rest = rest.subspan(2 + 2 * length);
    return true;
}

void AppendText(std::u16string_view text, std::vector<std::uint8_t>& out)
{
    std::size_t at = out.size();
    out.resize(at + 2 + 2 * text.size());
    Store16(&out[at], static_cast<std::uint32_t>(text.size()));
    for (const char16_t unit : text) {
        at += 2;
        Store16(&out[at], unit);
    }
}

bool DecodeBody(std::span<const std::uint8_t> body, Frame& frame)
{
    const std::size_t texts = TextsOf(frame.kind, frame.flags);
    frame.first.clear();
    frame.second.clear();
    if ((texts > 0 && !TakeText(body, frame.first)) || (texts > 1 && !TakeText(body, frame.second))) {
        return false;
    }
    if (!body.empty() && (!MayHoldData(frame.kind) || (frame.flags & kFrameNoData) != 0)) {
        return false;
    }
    frame.data = body;
    return body.size() <= kMaxDataSize;
}

}  // namespace

DecodeState DecodeFrame(std::span<const std::uint8_t> bytes, std::size_t limit, Frame& frame, std::size_t& used)
{
    used = 0;
    if (bytes.size() < kHeaderSize) {
        return DecodeState::Partial;
    }
    const std::size_t size = Load32(bytes.data());
    const std::uint8_t kind = bytes[4];
    if (size < kHeaderSize || size > limit || kind < static_cast<std::uint8_t>(FrameKind::Connect) ||
        kind > static_cast<std::uint8_t>(FrameKind::Ack) || bytes[5] > (kFrameNoData | kFrameAck | kFrameNamed)) {
        return DecodeState::Bad;
    }
    used = size;
    if (bytes.size() < size) {
        return DecodeState::Partial;
    }
    frame.kind = static_cast<FrameKind>(kind);
    frame.flags = bytes[5];
    frame.format = static_cast<std::uint16_t>(Load16(&bytes[6]));
    frame.id = Load32(&bytes[8]);
    frame.extra = Load32(&bytes[12]);
    return DecodeBody(bytes.subspan(kHeaderSize, size - kHeaderSize), frame) ? DecodeState::Complete : DecodeState::Bad;
}

void EncodeFrame(const Frame& frame, std::vector<std::uint8_t>& out)
{
    const std::size_t start = out.size();
    out.resize(start + kHeaderSize);
    const std::size_t texts = TextsOf(frame.kind, frame.flags);
    if (texts > 0) {
        AppendText(frame.first, out);
    }
    if (texts > 1) {
        AppendText(frame.second, out);
    }
    out.insert(out.end(), frame.data.begin(), frame.data.end());
    std::uint8_t* header = &out[start];
    Store32(header, static_cast<std::uint32_t>(out.size() - start));
    header[4] = static_cast<std::uint8_t>(frame.kind);
    header[5] = frame.flags;
    Store16(header + 6, frame.format);
    Store32(header + 8, frame.id);
    Store32(header + 12, frame.extra);
}

}  // namespace zr::ddeml
