#include "siblings/tools/Numbers.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kMaxIdLength = 64;

bool IsDigit(wchar character)
{
    return character >= u'0' && character <= u'9';
}

bool IsLetter(wchar character)
{
    struct Range {
        wchar first;
        wchar last;
    };
    static constexpr std::array kLetters = {
        Range{u'A', u'Z'},     Range{u'a', u'z'},     Range{0x00C0, 0x00D6}, Range{0x00D8, 0x00F6},
        Range{0x00F8, 0x024F}, Range{0x0386, 0x0386}, Range{0x0388, 0x03CE}, Range{0x0400, 0x0481},
        Range{0x048A, 0x052F}, Range{0x0531, 0x0556}, Range{0x0561, 0x0587}, Range{0x05D0, 0x05EA},
        Range{0x0620, 0x064A}, Range{0x1E00, 0x1EFF}, Range{0x3041, 0x3096}, Range{0x30A1, 0x30FA},
        Range{0x4E00, 0x9FFF}, Range{0xAC00, 0xD7A3},
    };
    return std::any_of(kLetters.begin(), kLetters.end(),
                       [character](const Range& range) { return character >= range.first && character <= range.last; });
}

}  // namespace

bool IsValidId(const ZRBasicString& text, bool allowBlanks)
{
    const auto isAllowed = [allowBlanks](wchar character) {
        return IsLetter(character) || IsDigit(character) || character == u'-' || character == u'_' ||
               (allowBlanks && character == u' ');
    };
    const std::u16string_view characters = text.Text();
    return !characters.empty() && characters.size() <= kMaxIdLength &&
           std::all_of(characters.begin(), characters.end(), isAllowed);
}
