// Fixed names and numbers of the publication.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <cstdint>

namespace zr::dde {

// The service name that hosts publish under unless their settings say otherwise.
inline constexpr const wchar* kDefaultService = u"KESTRIX";
// How often hosts call ZRDDEValues::UpdateValues unless their settings say otherwise, in milliseconds.
inline constexpr int kDefaultUpdatePeriod = 100;

// The longest device or variable name of a link, in 16-bit units; a link on a longer one is refused.
inline constexpr std::size_t kMaxNameLength = 127;

// Clipboard format of the table form, registered by this name.
inline constexpr const wchar* kXlTableFormatName = u"XlTable";
// What every handle of the text form is marked with, whatever format was asked for: CF_TEXT.
inline constexpr unsigned kFormatOfTextForm = 1;

// Value below the suite's registry key of the machine: 0 for numbers in the C locale, anything else for the user's.
inline constexpr const wchar* kUseLocalNumberFormatValue = u"DDE_UseLocalNumberFormat";

// Decimals of the text form when the variable doesn't tell its own.
inline constexpr std::int32_t kDefaultDecimals = 3;
// Significant digits of the text form without the user's number format.
inline constexpr int kPlainSignificantDigits = 6;

}  // namespace zr::dde
