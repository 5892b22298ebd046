// Numbers as text: in the user's number format for screen, paper and clipboard, and without any locale for files and
// wires. Any thread.
#pragma once

#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// --- the user's number format ---

// Writes the value with so many decimals, held to 0 to kMaxDecimals. With local the user's decimal mark and groups of
// digits, without it a point and no groups. Returns the length of the text.
//
// The value is rounded to the nearest number of that many decimals by its exact binary value, a tie to the even digit,
// as printf does: 0.125 gives 0.12 and 0.375 gives 0.38. What rounds to zero has no sign. What is no number is written
// NaN, Inf or -Inf, whatever the locale.
int FormatNumber(ZRBasicString& out, double value, int decimals, bool local);
int FormatNumber(ZRBasicString& out, double value, int decimals, const ZRLocaleInformation<ZRBasicString>& locale);

inline constexpr int kMaxDecimals = 30;

// Takes the user's number format back to a plain number text, to be read by TextToDouble(): blanks at both ends and
// the group marks go, the decimal mark becomes a point. The text isn't tested: see IsValidNumber(). Returns out, which
// may be the text itself.
ZRBasicString& UnformatNumber(ZRBasicString& out, const ZRBasicString& text);
ZRBasicString& UnformatNumber(ZRBasicString& out, const ZRBasicString& text,
                              const ZRLocaleInformation<ZRBasicString>& locale);

// Whether a text is a number in the user's number format with at most so many decimals: a sign or none, digits, group
// marks either at all their places or at none, the decimal mark and decimals; blanks at both ends do no harm. A digit
// is a must; an exponent is refused, and so is a number too large for a double. A group mark at another place is
// refused and not skipped, since "12,5" typed by someone used to a decimal comma must not read as 125.
bool IsValidNumber(const ZRBasicString& text, int decimals);
bool IsValidNumber(const ZRBasicString& text, int decimals, const ZRLocaleInformation<ZRBasicString>& locale);

// --- without a locale ---

// The integer at the start of a text, as _wtoi reads it: white space and a sign may come first, and what follows the
// digits is ignored. 0 without digits; held at the limits of int.
int TextToInt(std::u16string_view text);
// The number at the start of a text, as wcstod reads decimal numbers in the C locale: white space and a sign may come
// first, and what follows the number is ignored. 0.0 without digits, so for "inf" and "nan" too; an infinity for what
// is too large, 0.0 for what is too small.
double TextToDouble(std::u16string_view text);
// The whole text as a number: no white space, no plus sign. False, with value unchanged, when it isn't one or doesn't
// fit.
bool ParseInteger(std::u16string_view text, std::int64_t& value);
bool ParseDouble(std::u16string_view text, double& value);  // finite only
// The shortest text that reads back as the same value.
ZRBasicString DoubleToText(double value);

// The byte of two hexadecimal digits in either case. A character that is none counts as the digit 0; a text that ends
// early likewise.
std::uint8_t HtoB(const wchar* text);
// The number of so many hexadecimal digits in either case, likewise; of more than eight the last eight count.
std::uint32_t HtoL(const wchar* text, std::size_t length);

// --- identifiers ---

// Whether a text may serve as the name of a device, a connection or the like: 1 to 64 characters, each a letter, a
// digit, "-" or "_", and a blank if blanks are allowed. So none that variable references and paths use: . @ # ? /
// Letters are those of the Latin, Greek, Cyrillic, Armenian, Hebrew and Arabic scripts, of kana, hangul and the
// common ideographs.
bool IsValidId(const ZRBasicString& text, bool allowBlanks);
