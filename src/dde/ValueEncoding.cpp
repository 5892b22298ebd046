#include "dde/ValueEncoding.h"

#include "dde/DdeIds.h"
#include "siblings/tools/Numbers.h"

#include <algorithm>
#include <bit>
#include <charconv>

namespace zr::dde {
namespace {

// Records of the table form: a type, the size of the body in bytes, the body.
constexpr std::uint16_t kTableRecord = 0x0010;
constexpr std::uint16_t kTableBodySize = 4;  // rows, columns
constexpr std::uint16_t kFloatRecord = 0x0001;
constexpr std::uint16_t kFloatBodySize = 8;
constexpr std::size_t kNumberOffset = 12;

constexpr std::u16string_view kLineEnd = u"\r\n";

std::uint16_t WordAt(std::span<const std::uint8_t> bytes, std::size_t offset)
{
    return static_cast<std::uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

template <typename Integer>
void PutLittleEndian(Integer value, std::uint8_t* out)
{
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
        out[i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

// As printf's "%g" does in the C locale, whatever the locale of the program.
ZRBasicString PlainText(double number)
{
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general,
                                   kPlainSignificantDigits)
                         .ptr;
    return ZRBasicString(std::u16string(buffer.data(), end));
}

bool EndsText(char16_t unit)
{
    return unit == u'\r' || unit == u'\n' || unit == 0;
}

}  // namespace

std::array<std::uint8_t, kXlTableSize> EncodeXlTable(double number)
{
    constexpr std::array<std::uint16_t, 6> kHead = {kTableRecord, kTableBodySize, 1, 1, kFloatRecord, kFloatBodySize};
    std::array<std::uint8_t, kXlTableSize> bytes{};
    for (std::size_t i = 0; i < kHead.size(); ++i) {
        PutLittleEndian(kHead[i], bytes.data() + 2 * i);
    }
    PutLittleEndian(std::bit_cast<std::uint64_t>(number), bytes.data() + kNumberOffset);
    return bytes;
}

std::optional<double> DecodeXlTable(std::span<const std::uint8_t> bytes)
{
    const bool isTable = bytes.size() >= kXlTableSize && WordAt(bytes, 0) == kTableRecord &&
                         WordAt(bytes, 2) == kTableBodySize && WordAt(bytes, 4) > 0 && WordAt(bytes, 6) > 0 &&
                         WordAt(bytes, 8) == kFloatRecord && WordAt(bytes, 10) >= kFloatBodySize;
    if (!isTable) {
        return std::nullopt;
    }
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof bits; ++i) {
        bits |= std::uint64_t{bytes[kNumberOffset + i]} << (8 * i);
    }
    return std::bit_cast<double>(bits);
}

ZRBasicString NumberText(double number, std::int32_t decimals, bool local)
{
    ZRBasicString text;
    if (local) {
        // A client reads numbers as the system writes them, not as our windows do in the language chosen there.
        FormatNumber(text, number, decimals, SystemLocaleInformationWide());
    } else {
        text = PlainText(number);
    }
    text += kLineEnd;
    return text;
}

std::vector<std::uint8_t> EncodeText(double number, std::int32_t decimals, bool local)
{
    const ZRBasicString text = NumberText(number, decimals, local);
    // As many bytes as there are characters, though each has two: meant, and not to be mended.
    std::vector<std::uint8_t> bytes(text.Length());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(text[i / 2] >> (8 * (i % 2)));
    }
    return bytes;
}

DecodedText DecodeText(std::span<const std::uint8_t> bytes)
{
    const bool isWide = bytes.size() >= 2 && bytes[1] == 0;
    const std::size_t units = isWide ? bytes.size() / 2 : bytes.size();
    DecodedText decoded;
    bool ended = false;
    for (std::size_t i = 0; i < units && !ended; ++i) {
        const char16_t unit = isWide ? WordAt(bytes, 2 * i) : bytes[i];
        ended = EndsText(unit);
        if (!ended) {
            decoded.text += unit;
        }
    }
    const bool isCut = isWide && !ended;
    decoded.characters = isCut ? std::max(decoded.text.size(), bytes.size() - kLineEnd.size()) : decoded.text.size();
    return decoded;
}

}  // namespace zr::dde
