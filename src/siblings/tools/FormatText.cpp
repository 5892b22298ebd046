#include "siblings/tools/FormatText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

namespace zr {
namespace {

struct Placeholder {
    bool isLeft = false;
    bool hasPlus = false;
    bool hasZeros = false;
    int width = 0;
    int precision = -1;  // -1: not given
    wchar conversion = u'\0';
    std::size_t length = 0;  // with the percent sign
};

constexpr std::u16string_view kConversions = u"diuxXcsfeEgG%";

// A number of at most two digits; false when it is longer.
bool ReadSize(std::u16string_view text, std::size_t& at, int& size)
{
    size = 0;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at) {
        size = size * 10 + (text[at] - u'0');
        if (size > kMaxTextWidth) {
            return false;
        }
    }
    return true;
}

bool ReadFlag(wchar character, Placeholder& out)
{
    switch (character) {
        case u'-':
            return out.isLeft = true;
        case u'+':
            return out.hasPlus = true;
        case u'0':
            return out.hasZeros = true;
        default:
            return false;
    }
}

// The placeholder at the start of a text that starts with a percent sign; none when it is none that we know.
std::optional<Placeholder> ReadPlaceholder(std::u16string_view text)
{
    Placeholder out;
    std::size_t at = 1;
    while (at < text.size() && ReadFlag(text[at], out)) {
        ++at;
    }
    if (!ReadSize(text, at, out.width)) {
        return std::nullopt;
    }
    if (at < text.size() && text[at] == u'.' && !ReadSize(text, ++at, out.precision)) {
        return std::nullopt;
    }
    if (at >= text.size() || kConversions.find(text[at]) == std::u16string_view::npos) {
        return std::nullopt;
    }
    out.conversion = text[at];
    out.length = at + 1;
    if (out.conversion == u'%' && out.length != 2) {
        return std::nullopt;
    }
    return out;
}

std::u16string Widen(std::string_view ascii)
{
    return {ascii.begin(), ascii.end()};
}

std::u16string SignOf(bool isNegative, const Placeholder& placeholder)
{
    if (isNegative) {
        return u"-";
    }
    return placeholder.hasPlus ? u"+" : u"";
}

// Sign and digits, filled up to the width.
std::u16string Padded(const std::u16string& sign, const std::u16string& digits, bool withZeros,
                      const Placeholder& placeholder)
{
    const std::size_t length = sign.size() + digits.size();
    const auto width = static_cast<std::size_t>(placeholder.width);
    const std::size_t fill = width > length ? width - length : 0;
    if (placeholder.isLeft) {
        return sign + digits + std::u16string(fill, u' ');
    }
    return withZeros ? sign + std::u16string(fill, u'0') + digits : std::u16string(fill, u' ') + sign + digits;
}

std::optional<std::u16string> FillInteger(std::int64_t value, const Placeholder& placeholder)
{
    const bool isHex = placeholder.conversion == u'x' || placeholder.conversion == u'X';
    if (placeholder.conversion == u'c') {
        return Padded(u"", std::u16string(1, static_cast<wchar>(value)), false, placeholder);
    }
    if (isHex && value < 0) {
        return std::nullopt;
    }
    // Unsigned, since the smallest integer has no positive twin.
    const std::uint64_t magnitude =
        value < 0 ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value);
    std::array<char, 24> buffer{};
    const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, isHex ? 16 : 10).ptr;
    std::u16string digits = Widen({buffer.data(), static_cast<std::size_t>(end - buffer.data())});
    for (wchar& digit : digits) {
        if (placeholder.conversion == u'X' && digit >= u'a') {
            digit = static_cast<wchar>(digit - u'a' + u'A');
        }
    }
    const auto least = static_cast<std::size_t>(placeholder.precision > 0 ? placeholder.precision : 0);
    if (digits.size() < least) {
        digits.insert(0, least - digits.size(), u'0');
    }
    const bool isSigned = placeholder.conversion == u'd' || placeholder.conversion == u'i';
    const std::u16string sign = isSigned || value < 0 ? SignOf(value < 0, placeholder) : u"";
    return Padded(sign, digits, placeholder.hasZeros && placeholder.precision < 0, placeholder);
}

std::chars_format FormatOf(wchar conversion)
{
    switch (conversion) {
        case u'f':
            return std::chars_format::fixed;
        case u'e':
        case u'E':
            return std::chars_format::scientific;
        default:
            return std::chars_format::general;
    }
}

std::u16string FillDouble(double value, const Placeholder& placeholder)
{
    constexpr int kDefaultPrecision = 6;
    // The largest double has 309 digits before the point.
    std::array<char, 309 + 1 + kMaxTextWidth> buffer{};
    const int precision = placeholder.precision < 0 ? kDefaultPrecision : placeholder.precision;
    const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                                    FormatOf(placeholder.conversion), precision)
                          .ptr;
    std::u16string digits = Widen({buffer.data(), static_cast<std::size_t>(end - buffer.data())});
    for (wchar& digit : digits) {
        if (digit == u'e' && (placeholder.conversion == u'E' || placeholder.conversion == u'G')) {
            digit = u'E';
        }
    }
    const bool isNegative = std::signbit(value) && !std::isnan(value);
    return Padded(SignOf(isNegative, placeholder), digits, placeholder.hasZeros && std::isfinite(value), placeholder);
}

std::u16string FillText(std::u16string_view value, const Placeholder& placeholder)
{
    if (placeholder.precision >= 0) {
        value = value.substr(0, static_cast<std::size_t>(placeholder.precision));
    }
    return Padded(u"", std::u16string(value), false, placeholder);
}

// None when the argument is of another kind than the placeholder.
std::optional<std::u16string> Fill(const TextArgument& argument, const Placeholder& placeholder)
{
    const TextArgument::Value& value = argument.Get();
    switch (placeholder.conversion) {
        case u's':
            if (const auto* text = std::get_if<std::u16string_view>(&value)) {
                return FillText(*text, placeholder);
            }
            return std::nullopt;
        case u'f':
        case u'e':
        case u'E':
        case u'g':
        case u'G':
            if (const auto* number = std::get_if<double>(&value)) {
                return FillDouble(*number, placeholder);
            }
            return std::nullopt;
        default:
            if (const auto* integer = std::get_if<std::int64_t>(&value)) {
                return FillInteger(*integer, placeholder);
            }
            return std::nullopt;
    }
}

}  // namespace

ZRBasicString FormatText(std::u16string_view format, std::initializer_list<TextArgument> arguments)
{
    std::u16string out;
    const TextArgument* next = arguments.begin();
    while (!format.empty()) {
        const std::size_t plain = std::min(format.find(u'%'), format.size());
        out += format.substr(0, plain);
        format.remove_prefix(plain);
        if (format.empty()) {
            break;
        }
        const std::optional<Placeholder> placeholder = ReadPlaceholder(format);
        const std::size_t length = placeholder ? placeholder->length : 1;
        if (placeholder && placeholder->conversion == u'%') {
            out += u'%';
        } else if (placeholder && next != arguments.end()) {
            out += Fill(*next++, *placeholder).value_or(std::u16string(format.substr(0, length)));
        } else {
            out += format.substr(0, length);
        }
        format.remove_prefix(length);
    }
    return out;
}

}  // namespace zr
