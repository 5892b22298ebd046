// Frames of the Modbus protocol, both sides: what is sent, and what received bytes are.
// Sources: MODBUS Application Protocol Specification V1.1b3; MODBUS over Serial Line V1.02 (RTU framing, CRC);
// MODBUS Messaging on TCP/IP Implementation Guide V1.0b (MBAP header).
#pragma once

#include "siblings/driversupport/ZRDeviceTransaction.h"

#include <cstddef>
#include <cstdint>
#include <span>

// Nothing here allocates, throws or keeps state. Any thread.
namespace zr::modbus {

// How a request or reply is packed: unit, data and CRC; or MBAP header and data.
enum class Framing { Rtu, Tcp };

// The functions known here. A parsed request may hold any other value.
enum class Function : std::uint8_t {
    ReadCoils = 1,
    ReadDiscreteInputs = 2,
    ReadHoldingRegisters = 3,
    ReadInputRegisters = 4,
    WriteSingleCoil = 5,
    WriteSingleRegister = 6,
    WriteMultipleCoils = 15,
    WriteMultipleRegisters = 16,
};

enum class Exception : std::uint8_t {
    None = 0,
    IllegalFunction = 1,
    IllegalDataAddress = 2,
    IllegalDataValue = 3,
    ServerDeviceFailure = 4,
    Acknowledge = 5,
    ServerDeviceBusy = 6,
    MemoryParityError = 8,
    GatewayPathUnavailable = 10,
    GatewayTargetFailedToRespond = 11,
};

inline constexpr std::uint16_t kMaxReadBits = 2000;
inline constexpr std::uint16_t kMaxReadRegisters = 125;
inline constexpr std::uint16_t kMaxWriteBits = 1968;
inline constexpr std::uint16_t kMaxWriteRegisters = 123;
inline constexpr std::size_t kMaxRtuFrame = 256;
inline constexpr std::size_t kMaxTcpFrame = 260;
// Room that suits every frame.
inline constexpr std::size_t kMaxFrame = kMaxTcpFrame;
// Values of WriteSingleCoil.
inline constexpr std::uint16_t kCoilOn = 0xFF00;
inline constexpr std::uint16_t kCoilOff = 0x0000;

using Verdict = ZRDeviceTransaction::Verdict;

// A request as a value, the same on both sides.
struct Request {
    std::uint16_t transaction = 0;  // identifier of the MBAP header; unused in RTU
    std::uint8_t unit = 0;          // 1 to 247; 0 is a broadcast, which nobody answers
    Function function = Function::ReadHoldingRegisters;
    std::uint16_t first = 0;             // zero-based protocol address of the first bit or register
    std::uint16_t count = 0;             // bits or registers; 1 for the single writes
    std::uint16_t value = 0;             // of a single write: kCoilOn, kCoilOff, or the register
    std::span<const std::uint8_t> data;  // of a multiple write, as on the wire. Not owned.
};

Request ReadCoils(std::uint8_t unit, std::uint16_t first, std::uint16_t count);
Request ReadDiscreteInputs(std::uint8_t unit, std::uint16_t first, std::uint16_t count);
Request ReadHoldingRegisters(std::uint8_t unit, std::uint16_t first, std::uint16_t count);
Request ReadInputRegisters(std::uint8_t unit, std::uint16_t first, std::uint16_t count);
Request WriteSingleCoil(std::uint8_t unit, std::uint16_t address, bool on);
Request WriteSingleRegister(std::uint8_t unit, std::uint16_t address, std::uint16_t value);
// bits: packed as by SetBit, (count + 7) / 8 bytes.
Request WriteMultipleCoils(std::uint8_t unit, std::uint16_t first, std::uint16_t count,
                           std::span<const std::uint8_t> bits);
// registers: as by SetRegister, two bytes each.
Request WriteMultipleRegisters(std::uint8_t unit, std::uint16_t first, std::span<const std::uint8_t> registers);

// Whether the function's data are bits (coils, discrete inputs) and not registers.
[[nodiscard]] bool IsBitFunction(Function function);
// Whether it is one of functions 1 to 4.
[[nodiscard]] bool IsReadFunction(Function function);
// Bytes of data that a request for `count` bits or registers moves.
[[nodiscard]] std::size_t DataBytes(Function function, std::uint16_t count);
// None if the request keeps the protocol's rules: a known function, a count within its limits, no address above
// 65535, data of the right length. Otherwise the exception that a device answers.
[[nodiscard]] Exception Check(const Request& request);

// Register and bit number `index` of the data of a request or reply. Registers travel high byte first; of bits, the
// first is the lowest of the first byte. No range test.
[[nodiscard]] std::uint16_t RegisterAt(std::span<const std::uint8_t> data, std::size_t index);
void SetRegister(std::span<std::uint8_t> data, std::size_t index, std::uint16_t value);
[[nodiscard]] bool BitAt(std::span<const std::uint8_t> data, std::size_t index);
void SetBit(std::span<std::uint8_t> data, std::size_t index, bool on);

// CRC-16 of MODBUS over Serial Line V1.02, 6.2.2 (polynomial A001h reflected, start FFFFh). Sent low byte first.
[[nodiscard]] std::uint16_t Crc16(std::span<const std::uint8_t> bytes);

// Client side. Writes the frame to out and returns its size; 0 if Check() finds a fault or out is too small.
std::size_t EncodeRequest(Framing framing, const Request& request, std::span<std::uint8_t> out);

// Client side: what the bytes received so far are, seen from this request. A datagram or a stream as it grows.
//
// A reply is accepted when unit, function, byte count (of a write: the echoed address and count or value) and CRC,
// or MBAP transaction, protocol and length, all agree; so is an exception reply to this function. A whole frame
// that is something else is dropped as one; bytes that are no frame, up to where the next reply could begin.
// Asks for more only while fewer than kMaxFrame bytes are at hand.
[[nodiscard]] Verdict ExamineReply(Framing framing, const Request& request, std::span<const std::uint8_t> received);

struct Reply {
    Exception exception = Exception::None;
    std::span<const std::uint8_t> data;  // of a read: its bytes; empty otherwise. Points into the frame.
};
// Client side: takes apart a frame that ExamineReply accepted for this framing.
[[nodiscard]] Reply ReadReply(Framing framing, std::span<const std::uint8_t> frame);

struct ReceivedRequest {
    Verdict verdict;                        // as in ExamineReply
    Request request;                        // of Accept; its data point into the received bytes
    Exception exception = Exception::None;  // of Accept: what Check() says
};
// Server side: the first request of the bytes received so far, whichever unit it asks. A datagram or a stream as it
// grows. A frame of an unknown function is accepted when it ends where the received bytes end.
[[nodiscard]] ReceivedRequest ParseRequest(Framing framing, std::span<const std::uint8_t> received);

// Server side. Writes the reply frame to out and returns its size; 0 if out is too small, the function is unknown, or
// data (of a read; ignored for a write) hasn't DataBytes() bytes.
std::size_t EncodeReply(Framing framing, const Request& request, std::span<const std::uint8_t> data,
                        std::span<std::uint8_t> out);
// Server side. As EncodeReply.
std::size_t EncodeException(Framing framing, const Request& request, Exception exception, std::span<std::uint8_t> out);

}  // namespace zr::modbus
