// Conversions between UTF-8 and UTF-16.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <string>
#include <string_view>

// Unpaired surrogates become U+FFFD.
std::string Utf16ToUtf8(std::u16string_view text);
// Ill-formed sequences become U+FFFD, one a maximal subpart (Unicode 15, 3.9).
ZRBasicString Utf8ToUtf16(std::string_view text);

// True when the bytes are well-formed UTF-8 (no overlong form, no surrogate, nothing above U+10FFFF).
// On failure badOffset, if given, holds the offset of the first ill-formed byte.
bool IsValidUtf8(std::string_view text, std::size_t* badOffset = nullptr);

// Decoded length of valid UTF-8 in 16-bit units.
std::size_t Utf16Length(std::string_view text);
// Writes Utf16Length(text) units of valid UTF-8 to out and returns the end of what was written.
wchar* DecodeValidUtf8(std::string_view text, wchar* out);
