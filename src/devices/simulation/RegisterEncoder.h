// The way of a quantity into the registers of a device.
#pragma once

#include "devices/modbus/VariableCodec.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

// Written apart from the codec of the driver, on purpose: a mistake on one side shows as a difference to the other.

// The registers of a number, in the order of their addresses: real / 10^valueExponent is the stored value, that over
// 10^registerExponent the raw one, rounded to the nearest (ties away from zero) and held at the limits of the type.
std::vector<std::uint16_t> EncodeRegisters(const modbus::VariableLayout& layout, int valueExponent, double real);
// Two characters a register, high byte first, padded with NUL, cut to the length of the layout.
std::vector<std::uint16_t> EncodeTextRegisters(const modbus::VariableLayout& layout, std::string_view text);
// The stored value that registers in the order of their addresses mean, as shortest text that reads back as the same
// number.
std::string StoredText(const modbus::VariableLayout& layout, std::span<const std::uint16_t> registers);

}  // namespace zr
