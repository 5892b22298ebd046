// How the value of a variable lies in bits and registers, and the way there and back.
#pragma once

#include "devices/modbus/ModbusFrame.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace zr::modbus {

enum class DataType { U16, I16, U32, I32, U64, I64, F32, F64, Bit, Text };

// Which register of a value that takes several comes first: that of the most (Big) or least (Little) significant 16
// bits. Within a register the high byte is always first.
enum class WordOrder { Big, Little };

// Where and how one variable lies in a device.
struct VariableLayout {
    Function function = Function::ReadHoldingRegisters;  // that reads it: 1 to 4
    std::uint16_t first = 0;                             // zero-based protocol address of its first bit or register
    std::uint16_t count = 1;                             // registers, or bits (always 1) for functions 1 and 2
    DataType type = DataType::U16;
    WordOrder words = WordOrder::Big;
    std::uint8_t bit = 0;           // of a Bit in a register: 0 (lowest) to 15
    int registerExponent = 0;       // raw number times ten to this gives the stored value
    std::optional<Function> write;  // of an output: the function that sets it, 5, 6, 15 or 16
    std::uint16_t writeFirst = 0;   // address that it is set at
};

// Registers that a type takes; 0 for Text, whose length is the profile's.
[[nodiscard]] std::uint16_t RegistersOf(DataType type);

// The stored value out of the data of a reply. offset: registers (bits for functions 1 and 2) from the start of data to
// the variable; no range test. A Bit gives 0 or 1. Empty for a NaN or an infinity, and for a Text. Integers above 2^53
// are rounded to the nearest double.
[[nodiscard]] std::optional<double> DecodeNumber(const VariableLayout& layout, std::span<const std::uint8_t> data,
                                                 std::size_t offset);
// The inverse, rounded to the nearest raw number, ties away from zero. False, with data unchanged, for what the type
// can't hold, a Text included. A Bit takes 0 and 1 and leaves the other bits of its register alone.
[[nodiscard]] bool EncodeNumber(const VariableLayout& layout, double stored, std::span<std::uint8_t> data,
                                std::size_t offset);

// Two characters a register, the high byte first, up to the first NUL; blanks at the end go. What isn't printable
// ASCII becomes U+FFFD.
[[nodiscard]] ZRBasicString DecodeText(const VariableLayout& layout, std::span<const std::uint8_t> data,
                                       std::size_t offset);
// Cut to the variable's length, padded with NUL; "?" for what isn't printable ASCII.
void EncodeText(const VariableLayout& layout, const ZRBasicString& text, std::span<std::uint8_t> data,
                std::size_t offset);

}  // namespace zr::modbus
