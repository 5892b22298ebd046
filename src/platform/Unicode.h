// UTF-8 and UTF-16: stepping, testing, converting.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zr {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// What stands at one place of a text: a well-formed sequence, or the bytes of a broken one.
struct UnicodeStep {
    char32_t scalar = kReplacementCharacter;  // kReplacementCharacter when not well-formed
    std::size_t length = 1;                   // in units of the text; of a broken sequence its maximal subpart
    bool wellFormed = false;
};

// The step that begins at `at`, which must be before `end`. Source: the Unicode Standard, table 3-7.
UnicodeStep NextUtf8(const char* at, const char* end);
UnicodeStep NextUtf16(const char16_t* at, const char16_t* end);

void AppendUtf8(char32_t scalar, std::string& out);
// Writes one or two units and returns the end of what was written.
char16_t* WriteUtf16(char32_t scalar, char16_t* out);

// Unpaired surrogates become U+FFFD.
std::string Utf8From16(std::u16string_view text);
// Ill-formed sequences become U+FFFD, one a maximal subpart.
std::u16string Utf16From8(std::string_view text);

}  // namespace zr
