// What received bytes are: a reply to a request (client side), or a request (server side).
#include "devices/modbus/ModbusFrame.h"

#include <algorithm>
#include <array>

namespace zr::modbus {
namespace {

using Bytes = std::span<const std::uint8_t>;
using Kind = Verdict::Kind;

constexpr std::uint8_t kExceptionBit = 0x80;
constexpr std::size_t kMbapPrefix = 6;       // transaction, protocol, length: what `length` doesn't count
constexpr std::size_t kMaxMbapLength = 254;  // unit and the largest protocol data unit of 253 bytes

// How the bytes from one place on fit what is looked for.
struct Fit {
    enum class How { No, Begins, Whole };
    How how = How::No;
    std::size_t size = 0;  // of Whole
};
constexpr Fit kNo{Fit::How::No, 0};
constexpr Fit kBegins{Fit::How::Begins, 0};
constexpr Fit Whole(std::size_t size)
{
    return {Fit::How::Whole, size};
}

bool IsExceptionOf(std::uint8_t function, Function asked)
{
    return function == (static_cast<std::uint8_t>(asked) | kExceptionBit);
}

// Whether `data`, all or the beginning of what follows the function code of a reply, agrees with the request.
bool BodyAgrees(const Request& request, Bytes data)
{
    if (IsReadFunction(request.function)) {
        return data.empty() || data[0] == DataBytes(request.function, request.count);
    }
    const bool single =
        request.function == Function::WriteSingleCoil || request.function == Function::WriteSingleRegister;
    std::array<std::uint8_t, 4> echo{};
    SetRegister(echo, 0, request.first);
    SetRegister(echo, 1, single ? request.value : request.count);
    const std::size_t size = std::min(data.size(), echo.size());
    return std::equal(echo.begin(), echo.begin() + static_cast<std::ptrdiff_t>(size), data.begin());
}

// Bytes after the function code of the normal reply.
std::size_t BodySize(const Request& request)
{
    return IsReadFunction(request.function) ? 1 + DataBytes(request.function, request.count) : 4;
}

bool CrcAgrees(Bytes frame)
{
    const std::uint16_t crc = Crc16(frame.first(frame.size() - 2));
    return frame[frame.size() - 2] == (crc & 0xFFu) && frame[frame.size() - 1] == crc >> 8u;
}

Fit FitRtuFrame(Bytes bytes, std::size_t size)
{
    if (bytes.size() < size)
        return kBegins;
    return CrcAgrees(bytes.first(size)) ? Whole(size) : kNo;
}

Fit FitRtuReply(const Request& request, Bytes bytes)
{
    if (bytes[0] != request.unit)
        return kNo;
    if (bytes.size() == 1)
        return kBegins;
    if (IsExceptionOf(bytes[1], request.function))
        return FitRtuFrame(bytes, 5);
    if (bytes[1] != static_cast<std::uint8_t>(request.function))
        return kNo;
    const std::size_t body = BodySize(request);
    if (!BodyAgrees(request, bytes.subspan(2, std::min(body, bytes.size() - 2))))
        return kNo;
    return FitRtuFrame(bytes, 2 + body + 2);
}

// Whether bytes are a request of a known function, to whatever unit.
Fit FitRtuRequest(Bytes bytes)
{
    if (bytes.size() == 1)
        return kBegins;
    const auto function = static_cast<Function>(bytes[1]);
    if (function == Function::WriteMultipleCoils || function == Function::WriteMultipleRegisters) {
        if (bytes.size() < 7)
            return kBegins;
        const std::size_t size = 9 + std::size_t{bytes[6]};
        return size > kMaxRtuFrame ? kNo : FitRtuFrame(bytes, size);
    }
    const bool known = bytes[1] >= 1 && bytes[1] <= 6;
    return known ? FitRtuFrame(bytes, 8) : kNo;
}

// Whether bytes are any frame at all, of a request or a reply of whatever unit.
Fit FitAnyRtuFrame(Bytes bytes)
{
    const Fit request = FitRtuRequest(bytes);
    if (request.how == Fit::How::Whole || bytes.size() == 1)
        return request;
    const std::uint8_t function = bytes[1];
    Fit reply = kNo;
    if ((function & kExceptionBit) != 0) {
        reply = FitRtuFrame(bytes, 5);
    } else if (IsReadFunction(static_cast<Function>(function))) {
        reply = bytes.size() < 3 ? kBegins : FitRtuFrame(bytes, 5 + std::size_t{bytes[2]});
    } else if (function == 15 || function == 16) {
        reply = FitRtuFrame(bytes, 8);
    }
    if (reply.how == Fit::How::Whole)
        return reply;
    return request.how == Fit::How::Begins ? request : reply;
}

// Header of the MBAP frame that begins here; the size of Whole is that of the frame, of which not all may be there.
Fit FitMbapHeader(Bytes bytes)
{
    if (bytes.size() > 2 && bytes[2] != 0)
        return kNo;
    if (bytes.size() > 3 && bytes[3] != 0)
        return kNo;
    if (bytes.size() > 4 && bytes[4] != 0)
        return kNo;
    if (bytes.size() < kMbapPrefix)
        return kBegins;
    const std::size_t length = RegisterAt(bytes, 2);
    return length < 2 || length > kMaxMbapLength ? kNo : Whole(kMbapPrefix + length);
}

bool IsTcpReply(const Request& request, Bytes frame)
{
    if (RegisterAt(frame, 0) != request.transaction || frame[6] != request.unit)
        return false;
    const Bytes body = frame.subspan(8);
    if (IsExceptionOf(frame[7], request.function))
        return body.size() == 1;
    if (frame[7] != static_cast<std::uint8_t>(request.function))
        return false;
    return body.size() == BodySize(request) && BodyAgrees(request, body);
}

Fit FitTcpReply(const Request& request, Bytes bytes)
{
    if (bytes[0] != request.transaction >> 8u)
        return kNo;
    if (bytes.size() > 1 && bytes[1] != (request.transaction & 0xFFu))
        return kNo;
    const Fit header = FitMbapHeader(bytes);
    if (header.how != Fit::How::Whole)
        return header;
    if (bytes.size() < header.size)
        return kBegins;
    return IsTcpReply(request, bytes.first(header.size)) ? header : kNo;
}

Fit FitAnyTcpFrame(Bytes bytes)
{
    const Fit header = FitMbapHeader(bytes);
    return header.how == Fit::How::Whole && bytes.size() < header.size ? kBegins : header;
}

// The verdict on bytes of which the beginning may be wanted, may be another frame, or may be noise. `wanted` and
// `any` tell how the bytes from one place on fit.
template <typename Wanted, typename Any>
Verdict Judge(Bytes bytes, Wanted wanted, Any any)
{
    if (bytes.empty())
        return {Kind::NeedMore, 0};
    const Fit here = wanted(bytes);
    if (here.how == Fit::How::Whole)
        return {Kind::Accept, here.size};
    if (here.how == Fit::How::Begins)
        return {Kind::NeedMore, 0};
    const Fit other = any(bytes);
    if (other.how == Fit::How::Whole)
        return {Kind::Drop, other.size};
    // Noise may look like the beginning of a long frame: what is wanted and whole behind it goes first.
    std::size_t nextStart = bytes.size();
    for (std::size_t at = 1; at < bytes.size(); ++at) {
        const Fit fit = wanted(bytes.subspan(at));
        if (fit.how == Fit::How::Whole)
            return {Kind::Drop, at};
        if (fit.how == Fit::How::Begins)
            nextStart = std::min(nextStart, at);
    }
    if (other.how == Fit::How::Begins)
        return {Kind::NeedMore, 0};
    return {Kind::Drop, nextStart};
}

Request TakeRequest(Bytes pdu, std::uint8_t unit)
{
    Request request;
    request.unit = unit;
    request.function = static_cast<Function>(pdu[0]);
    if (pdu.size() < 5)
        return request;
    request.first = RegisterAt(pdu.subspan(1), 0);
    request.count = RegisterAt(pdu.subspan(1), 1);
    if (pdu[0] == 5 || pdu[0] == 6) {
        request.value = request.count;
        request.count = 1;
    } else if (pdu.size() > 6) {
        request.data = pdu.subspan(6);
    }
    return request;
}

// Whether the data unit of a request has the length that its function asks for.
bool HasRightLength(Bytes pdu)
{
    if (pdu[0] >= 1 && pdu[0] <= 6)
        return pdu.size() == 5;
    if (pdu[0] == 15 || pdu[0] == 16)
        return pdu.size() > 5 && pdu.size() == std::size_t{6} + pdu[5];
    return true;
}

ReceivedRequest Accepted(std::size_t size, Bytes pdu, std::uint8_t unit, std::uint16_t transaction)
{
    ReceivedRequest received;
    received.verdict = {Kind::Accept, size};
    received.request = TakeRequest(pdu, unit);
    received.request.transaction = transaction;
    received.exception = HasRightLength(pdu) ? Check(received.request) : Exception::IllegalDataValue;
    return received;
}

ReceivedRequest ParseRtuRequest(Bytes received)
{
    const bool unknownFunction = received.size() >= 4 && received.size() <= kMaxRtuFrame &&
                                 FitRtuRequest(received).how == Fit::How::No && CrcAgrees(received) &&
                                 FitAnyRtuFrame(received).how != Fit::How::Whole;
    const Verdict verdict =
        unknownFunction ? Verdict{Kind::Accept, received.size()} : Judge(received, FitRtuRequest, FitAnyRtuFrame);
    if (verdict.kind != Kind::Accept)
        return {verdict, {}, Exception::None};
    return Accepted(verdict.size, received.subspan(1, verdict.size - 3), received[0], 0);
}

ReceivedRequest ParseTcpRequest(Bytes received)
{
    const Verdict verdict = Judge(received, FitAnyTcpFrame, FitAnyTcpFrame);
    if (verdict.kind != Kind::Accept)
        return {verdict, {}, Exception::None};
    return Accepted(verdict.size, received.subspan(7, verdict.size - 7), received[6], RegisterAt(received, 0));
}

}  // namespace

Verdict ExamineReply(Framing framing, const Request& request, std::span<const std::uint8_t> received)
{
    if (framing == Framing::Rtu) {
        return Judge(
            received, [&](Bytes bytes) { return FitRtuReply(request, bytes); }, FitAnyRtuFrame);
    }
    return Judge(
        received, [&](Bytes bytes) { return FitTcpReply(request, bytes); }, FitAnyTcpFrame);
}

ReceivedRequest ParseRequest(Framing framing, std::span<const std::uint8_t> received)
{
    return framing == Framing::Rtu ? ParseRtuRequest(received) : ParseTcpRequest(received);
}

}  // namespace zr::modbus
