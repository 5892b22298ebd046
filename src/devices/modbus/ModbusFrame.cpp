#include "devices/modbus/ModbusFrame.h"

#include <algorithm>
#include <array>

namespace zr::modbus {
namespace {

constexpr std::uint8_t kExceptionBit = 0x80;
constexpr std::size_t kMbapHeader = 7;  // transaction, protocol, length, unit

constexpr std::array<std::uint16_t, 256> MakeCrcTable()
{
    std::array<std::uint16_t, 256> table{};
    for (std::uint16_t byte = 0; byte < 256; ++byte) {
        std::uint16_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) {
            const bool carry = (crc & 1u) != 0;
            crc = static_cast<std::uint16_t>(crc >> 1u);
            if (carry)
                crc = static_cast<std::uint16_t>(crc ^ 0xA001u);
        }
        table[byte] = crc;
    }
    return table;
}
constexpr auto kCrcTable = MakeCrcTable();

// Packs one frame into a caller's buffer; what doesn't fit makes Finish() give 0.
class FrameWriter {
public:
    FrameWriter(Framing framing, const Request& request, std::span<std::uint8_t> out) : m_framing(framing), m_out(out)
    {
        if (framing == Framing::Tcp) {
            Word(request.transaction);
            Word(0);
            Word(0);  // length, see Finish()
        }
        Byte(request.unit);
    }

    void Byte(std::uint8_t value)
    {
        if (m_size < m_out.size())
            m_out[m_size] = value;
        ++m_size;
    }
    void Word(std::uint16_t value)
    {
        Byte(static_cast<std::uint8_t>(value >> 8u));
        Byte(static_cast<std::uint8_t>(value & 0xFFu));
    }
    void Bytes(std::span<const std::uint8_t> values)
    {
        for (const std::uint8_t value : values)
            Byte(value);
    }

    std::size_t Finish()
    {
        if (m_size > m_out.size())
            return 0;
        if (m_framing == Framing::Tcp) {
            SetRegister(m_out, 2, static_cast<std::uint16_t>(m_size - (kMbapHeader - 1)));
            return m_size;
        }
        const std::uint16_t crc = Crc16(m_out.first(m_size));
        Byte(static_cast<std::uint8_t>(crc & 0xFFu));
        Byte(static_cast<std::uint8_t>(crc >> 8u));
        return m_size > m_out.size() ? 0 : m_size;
    }

private:
    Framing m_framing;
    std::span<std::uint8_t> m_out;
    std::size_t m_size = 0;
};

Request Read(Function function, std::uint8_t unit, std::uint16_t first, std::uint16_t count)
{
    Request request;
    request.unit = unit;
    request.function = function;
    request.first = first;
    request.count = count;
    return request;
}

bool IsSingleWrite(Function function)
{
    return function == Function::WriteSingleCoil || function == Function::WriteSingleRegister;
}

// The largest count of one request; 0 for a function that isn't known.
std::uint16_t CountLimit(Function function)
{
    switch (function) {
        case Function::ReadCoils:
        case Function::ReadDiscreteInputs:
            return kMaxReadBits;
        case Function::ReadHoldingRegisters:
        case Function::ReadInputRegisters:
            return kMaxReadRegisters;
        case Function::WriteSingleCoil:
        case Function::WriteSingleRegister:
            return 1;
        case Function::WriteMultipleCoils:
            return kMaxWriteBits;
        case Function::WriteMultipleRegisters:
            return kMaxWriteRegisters;
    }
    return 0;
}

}  // namespace

Request ReadCoils(std::uint8_t unit, std::uint16_t first, std::uint16_t count)
{
    return Read(Function::ReadCoils, unit, first, count);
}

Request ReadDiscreteInputs(std::uint8_t unit, std::uint16_t first, std::uint16_t count)
{
    return Read(Function::ReadDiscreteInputs, unit, first, count);
}

Request ReadHoldingRegisters(std::uint8_t unit, std::uint16_t first, std::uint16_t count)
{
    return Read(Function::ReadHoldingRegisters, unit, first, count);
}

Request ReadInputRegisters(std::uint8_t unit, std::uint16_t first, std::uint16_t count)
{
    return Read(Function::ReadInputRegisters, unit, first, count);
}

Request WriteSingleCoil(std::uint8_t unit, std::uint16_t address, bool on)
{
    Request request = Read(Function::WriteSingleCoil, unit, address, 1);
    request.value = on ? kCoilOn : kCoilOff;
    return request;
}

Request WriteSingleRegister(std::uint8_t unit, std::uint16_t address, std::uint16_t value)
{
    Request request = Read(Function::WriteSingleRegister, unit, address, 1);
    request.value = value;
    return request;
}

Request WriteMultipleCoils(std::uint8_t unit, std::uint16_t first, std::uint16_t count,
                           std::span<const std::uint8_t> bits)
{
    Request request = Read(Function::WriteMultipleCoils, unit, first, count);
    request.data = bits;
    return request;
}

Request WriteMultipleRegisters(std::uint8_t unit, std::uint16_t first, std::span<const std::uint8_t> registers)
{
    const auto count = static_cast<std::uint16_t>(std::min<std::size_t>(registers.size() / 2, 0xFFFF));
    Request request = Read(Function::WriteMultipleRegisters, unit, first, count);
    request.data = registers;
    return request;
}

bool IsBitFunction(Function function)
{
    return function == Function::ReadCoils || function == Function::ReadDiscreteInputs ||
           function == Function::WriteSingleCoil || function == Function::WriteMultipleCoils;
}

bool IsReadFunction(Function function)
{
    return function >= Function::ReadCoils && function <= Function::ReadInputRegisters;
}

std::size_t DataBytes(Function function, std::uint16_t count)
{
    return IsBitFunction(function) ? (count + std::size_t{7}) / 8 : count * std::size_t{2};
}

Exception Check(const Request& request)
{
    const std::uint16_t limit = CountLimit(request.function);
    if (limit == 0)
        return Exception::IllegalFunction;
    if (request.count == 0 || request.count > limit)
        return Exception::IllegalDataValue;
    if (std::size_t{request.first} + request.count > 0x10000)
        return Exception::IllegalDataAddress;
    if (request.function == Function::WriteSingleCoil && request.value != kCoilOn && request.value != kCoilOff) {
        return Exception::IllegalDataValue;
    }
    const bool carriesData =
        request.function == Function::WriteMultipleCoils || request.function == Function::WriteMultipleRegisters;
    if (carriesData && request.data.size() != DataBytes(request.function, request.count)) {
        return Exception::IllegalDataValue;
    }
    return Exception::None;
}

std::uint16_t RegisterAt(std::span<const std::uint8_t> data, std::size_t index)
{
    return static_cast<std::uint16_t>(unsigned{data[index * 2]} << 8u | data[index * 2 + 1]);
}

void SetRegister(std::span<std::uint8_t> data, std::size_t index, std::uint16_t value)
{
    data[index * 2] = static_cast<std::uint8_t>(value >> 8u);
    data[index * 2 + 1] = static_cast<std::uint8_t>(value & 0xFFu);
}

bool BitAt(std::span<const std::uint8_t> data, std::size_t index)
{
    return (unsigned{data[index / 8]} >> (index % 8) & 1u) != 0;
}

void SetBit(std::span<std::uint8_t> data, std::size_t index, bool on)
{
    const unsigned mask = 1u << (index % 8);
    std::uint8_t& byte = data[index / 8];
    byte = static_cast<std::uint8_t>(on ? byte | mask : byte & ~mask);
}

std::uint16_t Crc16(std::span<const std::uint8_t> bytes)
{
    std::uint16_t crc = 0xFFFF;
    for (const std::uint8_t byte : bytes) {
        crc = static_cast<std::uint16_t>(crc >> 8u ^ kCrcTable[(crc ^ byte) & 0xFFu]);
    }
    return crc;
}

std::size_t EncodeRequest(Framing framing, const Request& request, std::span<std::uint8_t> out)
{
    if (Check(request) != Exception::None)
        return 0;
    FrameWriter frame(framing, request, out);
    frame.Byte(static_cast<std::uint8_t>(request.function));
    frame.Word(request.first);
    frame.Word(IsSingleWrite(request.function) ? request.value : request.count);
    if (!request.data.empty() && !IsReadFunction(request.function) && !IsSingleWrite(request.function)) {
        frame.Byte(static_cast<std::uint8_t>(request.data.size()));
        frame.Bytes(request.data);
    }
    return frame.Finish();
}

Reply ReadReply(Framing framing, std::span<const std::uint8_t> frame)
{
    const std::size_t functionAt = framing == Framing::Tcp ? kMbapHeader : 1;
    const std::size_t end = framing == Framing::Tcp ? frame.size() : frame.size() - 2;
    const std::uint8_t function = frame[functionAt];
    Reply reply;
    if ((function & kExceptionBit) != 0) {
        reply.exception = static_cast<Exception>(frame[functionAt + 1]);
        return reply;
    }
    if (IsReadFunction(static_cast<Function>(function))) {
        reply.data = frame.subspan(functionAt + 2, end - functionAt - 2);
    }
    return reply;
}

std::size_t EncodeReply(Framing framing, const Request& request, std::span<const std::uint8_t> data,
                        std::span<std::uint8_t> out)
{
    if (CountLimit(request.function) == 0)
        return 0;
    FrameWriter frame(framing, request, out);
    frame.Byte(static_cast<std::uint8_t>(request.function));
    if (IsReadFunction(request.function)) {
        if (data.size() != DataBytes(request.function, request.count) || data.size() > 250)
            return 0;
        frame.Byte(static_cast<std::uint8_t>(data.size()));
        frame.Bytes(data);
        return frame.Finish();
    }
    frame.Word(request.first);
    frame.Word(IsSingleWrite(request.function) ? request.value : request.count);
    return frame.Finish();
}

std::size_t EncodeException(Framing framing, const Request& request, Exception exception, std::span<std::uint8_t> out)
{
    FrameWriter frame(framing, request, out);
    frame.Byte(static_cast<std::uint8_t>(static_cast<std::uint8_t>(request.function) | kExceptionBit));
    frame.Byte(static_cast<std::uint8_t>(exception));
    return frame.Finish();
}

}  // namespace zr::modbus
