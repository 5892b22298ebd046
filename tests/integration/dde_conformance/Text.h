// Deterministic text of what DDEML says: names instead of numbers, no handles.
#pragma once

#include "platform/Ddeml.h"

#include <string>
#include <string_view>

namespace conformance {

// ASCII as it stands, other units as \uXXXX.
std::string Show(std::u16string_view text);
std::u16string Wide(std::string_view ascii);

// The text behind a string handle; "-" for none.
std::string Show(DWORD instance, HSZ string);
// Bytes in hexadecimal with the count before them; "-" for no data.
std::string Show(HDDEDATA data);

std::string TypeName(UINT type);
std::string ErrorName(UINT error);
std::string FormatName(UINT format);
std::string FlagsName(DWORD flags);

}  // namespace conformance
