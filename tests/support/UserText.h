// A text among the settings of the user, as another version or a person may have left it there.
#pragma once

#include "platform/Registry.h"

#include <gtest/gtest.h>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace zr::test {

// key: below HKEY_CURRENT_USER.
inline void WriteUserText(const std::u16string& key, const std::u16string& name, const std::u16string& text)
{
    std::vector<std::uint8_t> bytes((text.size() + 1) * sizeof(char16_t));
    std::memcpy(bytes.data(), text.c_str(), bytes.size());
    HKEY opened = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &opened, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(opened, name.c_str(), 0, REG_SZ, bytes.data(), static_cast<std::uint32_t>(bytes.size())),
              ERROR_SUCCESS);
    RegCloseKey(opened);
}

}  // namespace zr::test
