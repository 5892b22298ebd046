// Names and values of the registry as text, and back.
#pragma once

#include "platform/posix/RegistryFile.h"

#include <string>
#include <string_view>

namespace zr {

// For comparison: small Latin letters become large ones.
std::u16string FoldRegistryName(std::u16string_view name);

// `"name" = ...`, with `@` for the empty name.
std::string FormatRegistryValue(std::u16string_view name, const RegistryValue& value);
// False when the text is no such line; reason then says why.
bool ParseRegistryValue(std::string_view text, std::u16string& name, RegistryValue& value, std::string& reason);

}  // namespace zr
