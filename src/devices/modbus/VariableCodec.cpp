#include "devices/modbus/VariableCodec.h"

#include <bit>
#include <cmath>
#include <limits>

namespace zr::modbus {
namespace {

using Bytes = std::span<const std::uint8_t>;

// Register number `index` of a value, counted from its most significant one.
std::size_t PlaceOf(const VariableLayout& layout, std::size_t index)
{
    return layout.words == WordOrder::Big ? index : layout.count - 1 - index;
}

std::uint64_t RawBits(const VariableLayout& layout, Bytes data, std::size_t offset)
{
    std::uint64_t raw = 0;
    for (std::size_t index = 0; index < layout.count; ++index) {
        raw = raw << 16u | RegisterAt(data, offset + PlaceOf(layout, index));
    }
    return raw;
}

void SetRawBits(const VariableLayout& layout, std::uint64_t raw, std::span<std::uint8_t> data, std::size_t offset)
{
    for (std::size_t index = layout.count; index-- > 0; raw >>= 16u) {
        SetRegister(data, offset + PlaceOf(layout, index), static_cast<std::uint16_t>(raw & 0xFFFFu));
    }
}

double RawNumber(DataType type, std::uint64_t raw)
{
    switch (type) {
        case DataType::I16:
            return static_cast<std::int16_t>(raw);
        case DataType::I32:
            return static_cast<std::int32_t>(raw);
        case DataType::I64:
            return static_cast<double>(static_cast<std::int64_t>(raw));
        case DataType::F32:
            return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(raw)));
        case DataType::F64:
            return std::bit_cast<double>(raw);
        case DataType::U16:
        case DataType::U32:
        case DataType::U64:
            return static_cast<double>(raw);
        case DataType::Bit:
        case DataType::Text:
            break;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

// number times 10^exponent. Powers up to 10^22 are exact doubles, so that a division by one is rounded only once and
// 2301 at exponent -1 gives the double nearest to 230.1.
double Scaled(double number, int exponent)
{
    if (exponent == 0)
        return number;
    const double power = std::pow(10.0, std::abs(exponent));
    return exponent > 0 ? number * power : number / power;
}

template <typename Integer>
std::optional<std::uint64_t> IntegerBits(double number)
{
    const double rounded = std::round(number);
    const auto lowest = static_cast<double>(std::numeric_limits<Integer>::min());
    // The largest 64-bit integers aren't doubles: the test is against the power of two above them.
    const double above = std::ldexp(1.0, std::numeric_limits<Integer>::digits);
    if (!(rounded >= lowest && rounded < above))
        return std::nullopt;
    return static_cast<std::uint64_t>(static_cast<Integer>(rounded));
}

std::optional<std::uint64_t> NumberBits(DataType type, double number)
{
    switch (type) {
        case DataType::U16:
            return IntegerBits<std::uint16_t>(number);
        case DataType::I16:
            return IntegerBits<std::int16_t>(number);
        case DataType::U32:
            return IntegerBits<std::uint32_t>(number);
        case DataType::I32:
            return IntegerBits<std::int32_t>(number);
        case DataType::U64:
            return IntegerBits<std::uint64_t>(number);
        case DataType::I64:
            return IntegerBits<std::int64_t>(number);
        case DataType::F32:
            if (!(std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max())))
                return std::nullopt;
            return std::bit_cast<std::uint32_t>(static_cast<float>(number));
        case DataType::F64:
            if (!std::isfinite(number))
                return std::nullopt;
            return std::bit_cast<std::uint64_t>(number);
        case DataType::Bit:
        case DataType::Text:
            break;
    }
    return std::nullopt;
}

bool EncodeBit(const VariableLayout& layout, double stored, std::span<std::uint8_t> data, std::size_t offset)
{
    if (stored != 0.0 && stored != 1.0)
        return false;
    const bool on = stored == 1.0;
    if (IsBitFunction(layout.function)) {
        SetBit(data, offset, on);
        return true;
    }
    const unsigned mask = 1u << layout.bit;
    const unsigned old = RegisterAt(data, offset);
    SetRegister(data, offset, static_cast<std::uint16_t>(on ? old | mask : old & ~mask));
    return true;
}

bool IsPrintable(unsigned character)
{
    return character >= 0x20 && character < 0x7F;
}

}  // namespace

std::uint16_t RegistersOf(DataType type)
{
    switch (type) {
        case DataType::U16:
        case DataType::I16:
        case DataType::Bit:
            return 1;
        case DataType::U32:
        case DataType::I32:
        case DataType::F32:
            return 2;
        case DataType::U64:
        case DataType::I64:
        case DataType::F64:
            return 4;
        case DataType::Text:
            break;
    }
    return 0;
}

std::optional<double> DecodeNumber(const VariableLayout& layout, Bytes data, std::size_t offset)
{
    if (IsBitFunction(layout.function))
        return BitAt(data, offset) ? 1.0 : 0.0;
    if (layout.type == DataType::Text)
        return std::nullopt;
    if (layout.type == DataType::Bit)
        return (unsigned{RegisterAt(data, offset)} >> layout.bit & 1u) != 0 ? 1.0 : 0.0;
    const double stored = Scaled(RawNumber(layout.type, RawBits(layout, data, offset)), layout.registerExponent);
    if (!std::isfinite(stored))
        return std::nullopt;
    return stored;
}

bool EncodeNumber(const VariableLayout& layout, double stored, std::span<std::uint8_t> data, std::size_t offset)
{
    if (layout.type == DataType::Bit)
        return EncodeBit(layout, stored, data, offset);
    const auto raw = NumberBits(layout.type, Scaled(stored, -layout.registerExponent));
    if (!raw)
        return false;
    SetRawBits(layout, *raw, data, offset);
    return true;
}

ZRBasicString DecodeText(const VariableLayout& layout, Bytes data, std::size_t offset)
{
    const Bytes bytes = data.subspan(offset * 2, std::size_t{layout.count} * 2);
    std::u16string text;
    for (const std::uint8_t byte : bytes) {
        if (byte == 0)
            break;
        text.push_back(IsPrintable(byte) ? static_cast<wchar>(byte) : u'\uFFFD');
    }
    text.erase(text.find_last_not_of(u' ') + 1);
    return ZRBasicString(std::move(text));
}

void EncodeText(const VariableLayout& layout, const ZRBasicString& text, std::span<std::uint8_t> data,
                std::size_t offset)
{
    const auto bytes = data.subspan(offset * 2, std::size_t{layout.count} * 2);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const unsigned character = index < text.Length() ? text[index] : 0u;
        const bool padding = index >= text.Length();
        bytes[index] = padding ? std::uint8_t{0} : static_cast<std::uint8_t>(IsPrintable(character) ? character : '?');
    }
}

}  // namespace zr::modbus
