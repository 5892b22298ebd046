#include "platform/Unicode.h"

namespace zr {
namespace {

unsigned Byte(const char* at)
{
    return static_cast<unsigned char>(*at);
}

struct LeadByte {
    std::size_t length;  // of the whole sequence; 0 when no sequence begins so
    unsigned lowest;     // of the second byte
    unsigned highest;
};

LeadByte LeadByteOf(unsigned byte)
{
    if (byte < 0x80) {
        return {1, 0, 0};
    }
    if (byte < 0xC2 || byte > 0xF4) {
        return {0, 0, 0};
    }
    if (byte < 0xE0) {
        return {2, 0x80, 0xBF};
    }
    if (byte < 0xF0) {
        // Neither overlong forms nor surrogates.
        return {3, byte == 0xE0 ? 0xA0U : 0x80U, byte == 0xED ? 0x9FU : 0xBFU};
    }
    return {4, byte == 0xF0 ? 0x90U : 0x80U, byte == 0xF4 ? 0x8FU : 0xBFU};
}

bool IsHighSurrogate(char32_t unit)
{
    return (unit & 0xFC00) == 0xD800;
}

bool IsLowSurrogate(char32_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

}  // namespace

UnicodeStep NextUtf8(const char* at, const char* end)
{
    const unsigned first = Byte(at);
    const LeadByte lead = LeadByteOf(first);
    if (lead.length == 1) {
        return {first, 1, true};
    }
    if (lead.length == 0) {
        return {};
    }
    char32_t scalar = first & (0x7FU >> lead.length);
    for (std::size_t i = 1; i < lead.length; ++i) {
        const unsigned lowest = i == 1 ? lead.lowest : 0x80;
        const unsigned highest = i == 1 ? lead.highest : 0xBF;
        if (at + i == end || Byte(at + i) < lowest || Byte(at + i) > highest) {
            return {kReplacementCharacter, i, false};
        }
        scalar = (scalar << 6) | (Byte(at + i) & 0x3FU);
    }
    return {scalar, lead.length, true};
}

UnicodeStep NextUtf16(const char16_t* at, const char16_t* end)
{
    const char32_t unit = *at;
    if (!IsHighSurrogate(unit) && !IsLowSurrogate(unit)) {
        return {unit, 1, true};
    }
    if (IsLowSurrogate(unit) || at + 1 == end || !IsLowSurrogate(at[1])) {
        return {};
    }
    return {0x10000 + ((unit & 0x3FF) << 10) + (char32_t{at[1]} & 0x3FF), 2, true};
}

void AppendUtf8(char32_t scalar, std::string& out)
{
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (scalar < 0x80) {
        put(scalar);
        return;
    }
    if (scalar < 0x800) {
        put(0xC0 | (scalar >> 6));
    } else if (scalar < 0x10000) {
        put(0xE0 | (scalar >> 12));
        put(0x80 | ((scalar >> 6) & 0x3F));
    } else {
        put(0xF0 | (scalar >> 18));
        put(0x80 | ((scalar >> 12) & 0x3F));
        put(0x80 | ((scalar >> 6) & 0x3F));
    }
    put(0x80 | (scalar & 0x3F));
}

char16_t* WriteUtf16(char32_t scalar, char16_t* out)
{
    if (scalar < 0x10000) {
        *out++ = static_cast<char16_t>(scalar);
        return out;
    }
    *out++ = static_cast<char16_t>(0xD800 + ((scalar - 0x10000) >> 10));
    *out++ = static_cast<char16_t>(0xDC00 + ((scalar - 0x10000) & 0x3FF));
    return out;
}

std::string Utf8From16(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    const char16_t* const end = text.data() + text.size();
    for (const char16_t* at = text.data(); at != end;) {
        const UnicodeStep step = NextUtf16(at, end);
        AppendUtf8(step.scalar, out);
        at += step.length;
    }
    return out;
}

std::u16string Utf16From8(std::string_view text)
{
    // A sequence never becomes more units than it has bytes.
    std::u16string out(text.size(), u'\0');
    char16_t* written = out.data();
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end;) {
        const UnicodeStep step = NextUtf8(at, end);
        written = WriteUtf16(step.scalar, written);
        at += step.length;
    }
    out.resize(static_cast<std::size_t>(written - out.data()));
    return out;
}

}  // namespace zr
