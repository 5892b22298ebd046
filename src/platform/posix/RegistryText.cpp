#include "platform/posix/RegistryText.h"

#include "platform/Registry.h"
#include "platform/Unicode.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace zr {
namespace {

void AppendHex(std::uint32_t number, int digits, std::string& out)
{
    char text[16];
    std::snprintf(text, sizeof text, "%0*x", digits, static_cast<unsigned>(number));
    out += text;
}

// Takes exactly that many hexadecimal digits off the text.
bool TakeHex(std::string_view& text, std::size_t digits, std::uint32_t& number)
{
    if (text.size() < digits) {
        return false;
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + digits, number, 16);
    const bool isGood = error == std::errc() && end == text.data() + digits;
    text.remove_prefix(digits);
    return isGood;
}

std::string Quoted(std::u16string_view text)
{
    std::string out = "\"";
    const char16_t* const end = text.data() + text.size();
    for (const char16_t* at = text.data(); at != end;) {
        const UnicodeStep step = NextUtf16(at, end);
        if (!step.wellFormed || step.scalar < 0x20 || (step.scalar >= 0x7F && step.scalar <= 0x9F)) {
            out += "\\u";
            AppendHex(*at, 4, out);
        } else {
            out += step.scalar == U'"' || step.scalar == U'\\' ? "\\" : "";
            AppendUtf8(step.scalar, out);
        }
        at += step.length;
    }
    return out + "\"";
}

// Takes what stands behind a "\" off the text.
bool TakeEscape(std::string_view& text, std::u16string& out)
{
    const char kind = text.empty() ? '\0' : text.front();
    text.remove_prefix(text.empty() ? 0 : 1);
    if (kind == '"' || kind == '\\') {
        out += static_cast<char16_t>(kind);
        return true;
    }
    std::uint32_t unit = 0;
    if (kind != 'u' || !TakeHex(text, 4, unit)) {
        return false;
    }
    out += static_cast<char16_t>(unit);
    return true;
}

// Takes a quoted text off the text, which is valid UTF-8.
bool TakeQuoted(std::string_view& text, std::u16string& out)
{
    out.clear();
    if (!text.starts_with('"')) {
        return false;
    }
    text.remove_prefix(1);
    while (!text.empty() && text.front() != '"') {
        if (text.front() == '\\') {
            text.remove_prefix(1);
            if (!TakeEscape(text, out)) {
                return false;
            }
            continue;
        }
        const UnicodeStep step = NextUtf8(text.data(), text.data() + text.size());
        char16_t units[2];
        out.append(units, WriteUtf16(step.scalar, units));
        text.remove_prefix(step.length);
    }
    const bool isClosed = !text.empty();
    text.remove_prefix(isClosed ? 1 : 0);
    return isClosed;
}

bool IsZeroTerminatedText(const RegistryValue& value)
{
    const std::size_t size = value.bytes.size();
    return value.type == REG_SZ && size >= 2 && size % 2 == 0 && value.bytes.ends_with(std::string_view("\0\0", 2));
}

bool ParseText(std::string_view text, RegistryValue& value)
{
    std::u16string units;
    if (!TakeQuoted(text, units) || !text.empty()) {
        return false;
    }
    value.type = REG_SZ;
    value.bytes.resize(2 * (units.size() + 1));
    std::memcpy(value.bytes.data(), units.c_str(), value.bytes.size());
    return true;
}

bool ParseDword(std::string_view text, RegistryValue& value)
{
    std::uint32_t number = 0;
    if (!TakeHex(text, 8, number) || !text.empty()) {
        return false;
    }
    value.type = REG_DWORD;
    value.bytes.resize(sizeof number);
    std::memcpy(value.bytes.data(), &number, sizeof number);
    return true;
}

// `TYPE):01,02`, the type in hexadecimal digits.
bool ParseBytes(std::string_view text, RegistryValue& value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value.type, 16);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (error != std::errc() || !text.starts_with("):")) {
        return false;
    }
    text.remove_prefix(2);
    value.bytes.clear();
    while (!text.empty()) {
        std::uint32_t byte = 0;
        const bool isFirst = value.bytes.empty();
        if (!isFirst && !text.starts_with(',')) {
            return false;
        }
        text.remove_prefix(isFirst ? 0 : 1);
        if (!TakeHex(text, 2, byte)) {
            return false;
        }
        value.bytes.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
    }
    return true;
}

bool ParseData(std::string_view text, RegistryValue& value)
{
    if (text.starts_with('"')) {
        return ParseText(text, value);
    }
    if (text.starts_with("dword:")) {
        return ParseDword(text.substr(6), value);
    }
    return text.starts_with("hex(") && ParseBytes(text.substr(4), value);
}

void SkipBlanks(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

}  // namespace

std::u16string FoldRegistryName(std::u16string_view name)
{
    std::u16string folded(name);
    for (char16_t& unit : folded) {
        const bool isSmall = (unit >= u'a' && unit <= u'z') || (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7);
        unit = isSmall ? static_cast<char16_t>(unit - 0x20) : unit;
    }
    return folded;
}

std::string FormatRegistryValue(std::u16string_view name, const RegistryValue& value)
{
    std::string text = (name.empty() ? "@" : Quoted(name)) + " = ";
    if (IsZeroTerminatedText(value)) {
        std::u16string units(value.bytes.size() / 2 - 1, u'\0');
        std::memcpy(units.data(), value.bytes.data(), 2 * units.size());
        return text + Quoted(units);
    }
    if (value.type == REG_DWORD && value.bytes.size() == 4) {
        std::uint32_t number = 0;
        std::memcpy(&number, value.bytes.data(), sizeof number);
        text += "dword:";
        AppendHex(number, 8, text);
        return text;
    }
    text += "hex(";
    AppendHex(value.type, 1, text);
    text += "):";
    for (std::size_t i = 0; i < value.bytes.size(); ++i) {
        text += i == 0 ? "" : ",";
        AppendHex(static_cast<unsigned char>(value.bytes[i]), 2, text);
    }
    return text;
}

bool ParseRegistryValue(std::string_view text, std::u16string& name, RegistryValue& value, std::string& reason)
{
    name.clear();
    const bool isDefault = text.starts_with('@');
    text.remove_prefix(isDefault ? 1 : 0);
    if (!isDefault && !TakeQuoted(text, name)) {
        reason = "neither a key in brackets nor a quoted name";
        return false;
    }
    SkipBlanks(text);
    if (!text.starts_with('=')) {
        reason = "\"=\" is missing behind the name";
        return false;
    }
    text.remove_prefix(1);
    SkipBlanks(text);
    if (!ParseData(text, value)) {
        reason = "the value is neither a quoted text nor dword:00000000 nor hex(3):00,00";
        return false;
    }
    return true;
}

}  // namespace zr
