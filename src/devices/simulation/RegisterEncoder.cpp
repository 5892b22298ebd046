#include "devices/simulation/RegisterEncoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace zr {
namespace {

using modbus::DataType;
using modbus::VariableLayout;

double TimesTenTo(double number, int exponent)
{
    // Dividing by a whole power of ten rounds once; multiplying by its inverse would round twice.
    return exponent < 0 ? number / std::pow(10.0, -exponent) : number * std::pow(10.0, exponent);
}

template <typename Integer>
std::uint64_t Held(double number)
{
    const double rounded = std::round(number);
    if (std::isnan(rounded)) {
        return 0;
    }
    if (rounded <= static_cast<double>(std::numeric_limits<Integer>::min())) {
        return static_cast<std::uint64_t>(std::numeric_limits<Integer>::min());
    }
    if (rounded >= static_cast<double>(std::numeric_limits<Integer>::max())) {
        return static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
    }
    return static_cast<std::uint64_t>(static_cast<Integer>(rounded));
}

std::uint64_t RawBits(DataType type, double number)
{
    switch (type) {
        case DataType::U16:
            return Held<std::uint16_t>(number);
        case DataType::I16:
            return Held<std::int16_t>(number);
        case DataType::U32:
            return Held<std::uint32_t>(number);
        case DataType::I32:
            return Held<std::int32_t>(number);
        case DataType::U64:
            return Held<std::uint64_t>(number);
        case DataType::I64:
            return Held<std::int64_t>(number);
        case DataType::F32:
            return std::bit_cast<std::uint32_t>(static_cast<float>(number));
        case DataType::F64:
            return std::bit_cast<std::uint64_t>(number);
        case DataType::Bit:
        case DataType::Text:
            break;
    }
    return 0;
}

double RawNumber(DataType type, std::uint64_t bits)
{
    switch (type) {
        case DataType::I16:
            return static_cast<double>(static_cast<std::int16_t>(bits));
        case DataType::I32:
            return static_cast<double>(static_cast<std::int32_t>(bits));
        case DataType::I64:
            return static_cast<double>(static_cast<std::int64_t>(bits));
        case DataType::F32:
            return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
        case DataType::F64:
            return std::bit_cast<double>(bits);
        default:
            return static_cast<double>(bits);
    }
}

std::string Shortest(double number)
{
    std::array<char, 32> text = {};
    const auto [end, code] = std::to_chars(text.data(), text.data() + text.size(), number);
    return code == std::errc() ? std::string(text.data(), end) : std::string();
}

std::string TextOf(std::span<const std::uint16_t> registers)
{
    std::string text;
    for (const std::uint16_t word : registers) {
        text.push_back(static_cast<char>(word >> 8u));
        text.push_back(static_cast<char>(word & 0xFFu));
    }
    return text.substr(0, std::min(text.find('\0'), text.size()));
}

}  // namespace

std::vector<std::uint16_t> EncodeRegisters(const VariableLayout& layout, int valueExponent, double real)
{
    if (layout.type == DataType::Bit) {
        return {static_cast<std::uint16_t>(real != 0.0 ? 1u << layout.bit : 0u)};
    }
    std::uint64_t bits = RawBits(layout.type, TimesTenTo(real, -valueExponent - layout.registerExponent));
    std::vector<std::uint16_t> registers(modbus::RegistersOf(layout.type));
    for (std::uint16_t& word : registers) {
        word = static_cast<std::uint16_t>(bits & 0xFFFFu);
        bits >>= 16u;
    }
    // The least significant one is first now.
    if (layout.words == modbus::WordOrder::Big) {
        std::reverse(registers.begin(), registers.end());
    }
    return registers;
}

std::vector<std::uint16_t> EncodeTextRegisters(const VariableLayout& layout, std::string_view text)
{
    std::vector<std::uint16_t> registers(layout.count);
    for (std::size_t i = 0; i < text.size() && i / 2 < registers.size(); ++i) {
        const unsigned character = static_cast<unsigned char>(text[i]);
        registers[i / 2] = static_cast<std::uint16_t>(registers[i / 2] | (i % 2 == 0 ? character << 8u : character));
    }
    return registers;
}

std::string StoredText(const VariableLayout& layout, std::span<const std::uint16_t> registers)
{
    if (layout.type == DataType::Text) {
        return TextOf(registers);
    }
    if (layout.type == DataType::Bit) {
        return (unsigned{registers[0]} >> layout.bit & 1u) != 0 ? "1" : "0";
    }
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < registers.size(); ++i) {
        const std::size_t place = layout.words == modbus::WordOrder::Big ? i : registers.size() - 1 - i;
        bits = bits << 16u | registers[place];
    }
    return Shortest(TimesTenTo(RawNumber(layout.type, bits), layout.registerExponent));
}

}  // namespace zr
