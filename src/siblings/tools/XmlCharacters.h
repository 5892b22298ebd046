// Classes of characters of XML 1.0 (fifth edition), sections 2.2 and 2.3.
#pragma once

#include <array>
#include <string_view>

namespace xml {

// What an ASCII byte may be; bytes from 0x80 on have no class.
enum : unsigned char {
    kSpace = 1,         // blank, tab, line feed, carriage return
    kNameStart = 2,     // first character of a name
    kNameInner = 4,     // any other character of a name
    kPlainInValue = 8,  // stands for itself in a quoted value: no quote, "&", "<", control character
};

extern const std::array<unsigned char, 256> kClasses;

inline bool Is(char character, unsigned char classes)
{
    return (kClasses[static_cast<unsigned char>(character)] & classes) != 0;
}

bool IsNameStart(char32_t scalar);
bool IsNameInner(char32_t scalar);
// What a document may hold at all, literally or by reference.
bool IsCharacter(char32_t scalar);
// Allowed by the standard, but only by reference here: U+007F to U+009F.
inline bool IsC1Control(char32_t scalar)
{
    return scalar >= 0x7F && scalar <= 0x9F;
}

// Whether the text is a name of XML.
bool IsName(std::u16string_view text);

}  // namespace xml
