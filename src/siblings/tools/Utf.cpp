#include "siblings/tools/Utf.h"

#include "platform/Unicode.h"

#include <cstdint>
#include <cstring>

std::string Utf16ToUtf8(std::u16string_view text)
{
    return zr::Utf8From16(text);
}

ZRBasicString Utf8ToUtf16(std::string_view text)
{
    return ZRBasicString(zr::Utf16From8(text));
}

bool IsValidUtf8(std::string_view text, std::size_t* badOffset)
{
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end;) {
        const zr::UnicodeStep step = zr::NextUtf8(at, end);
        if (!step.wellFormed) {
            if (badOffset != nullptr) {
                *badOffset = static_cast<std::size_t>(at - text.data());
            }
            return false;
        }
        at += step.length;
    }
    return true;
}

std::size_t Utf16Length(std::string_view text)
{
    std::size_t units = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        // A lead byte begins a unit; one of a four-byte sequence begins two.
        units += ((byte & 0xC0) != 0x80 ? 1U : 0U) + (byte >= 0xF0 ? 1U : 0U);
    }
    return units;
}

namespace {

// Widens eight bytes at a time as long as all of them are ASCII; moves both on.
void WidenAscii(const char*& at, const char* end, wchar*& out)
{
    for (std::uint64_t bytes = 0; end - at >= 8; at += 8, out += 8) {
        std::memcpy(&bytes, at, sizeof bytes);
        if ((bytes & 0x8080808080808080U) != 0) {
            return;
        }
        for (std::size_t i = 0; i < 8; ++i) {
            out[i] = static_cast<unsigned char>(at[i]);
        }
    }
}

}  // namespace

wchar* DecodeValidUtf8(std::string_view text, wchar* out)
{
    const char* const end = text.data() + text.size();
    const char* at = text.data();
    WidenAscii(at, end, out);
    while (at != end) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte < 0x80) {
            *out++ = byte;
            ++at;
            continue;
        }
        const zr::UnicodeStep step = zr::NextUtf8(at, end);
        out = zr::WriteUtf16(step.scalar, out);
        at += step.length;
    }
    return out;
}
