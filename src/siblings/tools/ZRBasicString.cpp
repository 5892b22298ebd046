#include "siblings/tools/ZRBasicString.h"

#include <algorithm>

wchar ToUpperCase(wchar character)
{
    const bool isLatin1 = character >= 0xE0 && character <= 0xFE && character != 0xF7;
    const bool isGreek = character >= 0x3B1 && character <= 0x3C9 && character != 0x3C2;
    const bool isCyrillic = character >= 0x430 && character <= 0x44F;
    if ((character >= u'a' && character <= u'z') || isLatin1 || isGreek || isCyrillic) {
        return static_cast<wchar>(character - 0x20);
    }
    if (character == 0xFF) {
        return 0x178;
    }
    if (character >= 0x450 && character <= 0x45F) {
        return static_cast<wchar>(character - 0x50);
    }
    return character;
}

ZRBasicString ToUpperCase(const ZRBasicString& text)
{
    ZRBasicString result;
    result.Reserve(text.Length());
    for (const wchar character : text.Text()) {
        result += ToUpperCase(character);
    }
    return result;
}

int CompareNoCase(const ZRBasicString& left, const ZRBasicString& right)
{
    const std::size_t common = std::min(left.Length(), right.Length());
    for (std::size_t i = 0; i < common; ++i) {
        const wchar a = ToUpperCase(left[i]);
        const wchar b = ToUpperCase(right[i]);
        if (a != b) {
            return a < b ? -1 : 1;
        }
    }
    if (left.Length() == right.Length()) {
        return 0;
    }
    return left.Length() < right.Length() ? -1 : 1;
}
