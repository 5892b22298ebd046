// The machine's registry value of the number format, as a test writes it.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstdint>
#include <vector>

namespace zr::test {

enum class RegistryType { Word, Binary };

// False when the registry refuses.
bool WriteNumberFormatValue(const ZRBasicString& registryKey, RegistryType type,
                            const std::vector<std::uint8_t>& bytes);

}  // namespace zr::test
