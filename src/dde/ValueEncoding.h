// The bytes of a published value: the table form, and the text form. docs/publication.md shows both by an example.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zr::dde {

inline constexpr std::size_t kXlTableSize = 20;

// A table of one cell: all words little-endian, then the IEEE 754 double, little-endian. What is no number, or
// infinite, goes out as it is.
std::array<std::uint8_t, kXlTableSize> EncodeXlTable(double number);
// The first number of a table; nothing if the bytes are not a table that begins with a number.
std::optional<double> DecodeXlTable(std::span<const std::uint8_t> bytes);

// The number's text with carriage return and line feed; in the user's number format with so many decimals, or with six
// significant digits and a point as "%g" writes them.
ZRBasicString NumberText(double number, std::int32_t decimals, bool local);
// The text as it goes out: the 16-bit text, little-endian, cut to as many bytes as the text has characters. Half of it
// is lost; clients rely on that size.
std::vector<std::uint8_t> EncodeText(double number, std::int32_t decimals, bool local);

// What a client can read in the bytes of a text form.
struct DecodedText {
    std::u16string text;         // without the line's end and what follows it
    std::size_t characters = 0;  // of the whole text, without the line's end
    [[nodiscard]] bool IsComplete() const { return text.size() >= characters; }
};
// Takes 16-bit text as EncodeText sends it, and 8-bit text as other servers send it: of a number's text the first
// character is below 128, so a second byte of 0 tells the former.
DecodedText DecodeText(std::span<const std::uint8_t> bytes);

}  // namespace zr::dde
