// Frames written as in the standards: "11 03 00 6B 00 03 76 87".
#pragma once

#include "devices/modbus/ModbusFrame.h"

#include <array>
#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace zr::modbus::test {

inline std::vector<std::uint8_t> Bytes(const std::string& hex)
{
    std::istringstream in(hex);
    std::vector<std::uint8_t> bytes;
    unsigned value = 0;
    while (in >> std::hex >> value)
        bytes.push_back(static_cast<std::uint8_t>(value));
    return bytes;
}

inline std::string Hex(std::span<const std::uint8_t> bytes)
{
    std::ostringstream out;
    for (const std::uint8_t byte : bytes) {
        if (out.tellp() > 0)
            out << ' ';
        out << std::hex << std::uppercase << std::setw(2) << std::setfill('0') << unsigned{byte};
    }
    return out.str();
}

// The frame without its CRC, with it.
inline std::vector<std::uint8_t> WithCrc(const std::string& hex)
{
    std::vector<std::uint8_t> bytes = Bytes(hex);
    const std::uint16_t crc = Crc16(bytes);
    bytes.push_back(static_cast<std::uint8_t>(crc & 0xFFu));
    bytes.push_back(static_cast<std::uint8_t>(crc >> 8u));
    return bytes;
}

inline std::string EncodedRequest(Framing framing, const Request& request)
{
    std::array<std::uint8_t, kMaxFrame> frame{};
    return Hex(std::span(frame).first(EncodeRequest(framing, request, frame)));
}

// "more", "accept N" or "drop N".
inline std::string Told(const Verdict& verdict)
{
    switch (verdict.kind) {
        case Verdict::Kind::NeedMore:
            return "more";
        case Verdict::Kind::Accept:
            return "accept " + std::to_string(verdict.size);
        case Verdict::Kind::Drop:
            return "drop " + std::to_string(verdict.size);
    }
    return "?";
}

inline std::string Examined(Framing framing, const Request& request, const std::vector<std::uint8_t>& received)
{
    return Told(ExamineReply(framing, request, received));
}

inline std::vector<std::uint8_t> operator+(std::vector<std::uint8_t> left, const std::vector<std::uint8_t>& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

}  // namespace zr::modbus::test
