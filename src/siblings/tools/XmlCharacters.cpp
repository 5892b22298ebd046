#include "siblings/tools/XmlCharacters.h"

#include "platform/Unicode.h"

#include <algorithm>

namespace xml {
namespace {

constexpr bool IsAsciiNameStart(unsigned c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
}

constexpr bool IsAsciiNameInner(unsigned c)
{
    return IsAsciiNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

constexpr bool IsSpace(unsigned c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

constexpr bool IsPlainInValue(unsigned c)
{
    return (c >= ' ' || IsSpace(c)) && c < 0x7F && c != '"' && c != '\'' && c != '&' && c != '<';
}

constexpr std::array<unsigned char, 256> MakeClasses()
{
    std::array<unsigned char, 256> classes{};
    for (unsigned c = 0; c < 0x80; ++c) {
        classes[c] = static_cast<unsigned char>((IsSpace(c) ? kSpace : 0) | (IsAsciiNameStart(c) ? kNameStart : 0) |
                                                (IsAsciiNameInner(c) ? kNameInner : 0) |
                                                (IsPlainInValue(c) ? kPlainInValue : 0));
    }
    return classes;
}

struct Range {
    char32_t first;
    char32_t last;
};

template <std::size_t N>
bool IsIn(const Range (&ranges)[N], char32_t scalar)
{
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [scalar](const Range& range) { return scalar >= range.first && scalar <= range.last; });
}

// Production [4] from U+0080 on.
constexpr Range kNameStartRanges[] = {{0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                      {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                      {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
// What production [4a] adds from U+0080 on.
constexpr Range kNameInnerRanges[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

}  // namespace

constinit const std::array<unsigned char, 256> kClasses = MakeClasses();

bool IsNameStart(char32_t scalar)
{
    return scalar < 0x80 ? IsAsciiNameStart(scalar) : IsIn(kNameStartRanges, scalar);
}

bool IsNameInner(char32_t scalar)
{
    return scalar < 0x80 ? IsAsciiNameInner(scalar) : IsIn(kNameStartRanges, scalar) || IsIn(kNameInnerRanges, scalar);
}

bool IsCharacter(char32_t scalar)
{
    if (scalar < 0x20) {
        return IsSpace(scalar);
    }
    return scalar <= 0xD7FF || (scalar >= 0xE000 && scalar <= 0xFFFD) || (scalar >= 0x10000 && scalar <= 0x10FFFF);
}

bool IsName(std::u16string_view text)
{
    const char16_t* const end = text.data() + text.size();
    for (const char16_t* at = text.data(); at != end;) {
        const zr::UnicodeStep step = zr::NextUtf16(at, end);
        const bool fits = at == text.data() ? IsNameStart(step.scalar) : IsNameInner(step.scalar);
        if (!step.wellFormed || !fits) {
            return false;
        }
        at += step.length;
    }
    return !text.empty();
}

}  // namespace xml
