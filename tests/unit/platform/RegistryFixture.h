// Keys of one test: a registry that holds nothing else and is gone with it.
#pragma once

#include "platform/Registry.h"

#ifdef _WIN32
#include "RegistryRedirection.h"
#endif
#include "support/Environment.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace zr::test {

class RegistryFixture : public testing::Test {
protected:
    RegistryFixture() : m_environment("XDG_CONFIG_HOME", m_folder.Path().string()) {}

    HKEY Create(const char16_t* path, std::uint32_t access = KEY_ALL_ACCESS, HKEY root = HKEY_CURRENT_USER)
    {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(root, path, 0, nullptr, 0, access, nullptr, &key, nullptr), ERROR_SUCCESS);
        return key;
    }

    static std::int32_t SetDword(HKEY key, const char16_t* name, std::uint32_t number)
    {
        std::uint8_t bytes[4];
        std::memcpy(bytes, &number, sizeof bytes);
        return RegSetValueExW(key, name, 0, REG_DWORD, bytes, sizeof bytes);
    }

    static std::int32_t SetText(HKEY key, const char16_t* name, std::u16string_view text)
    {
        const std::u16string terminated(text);
        std::vector<std::uint8_t> bytes(2 * (text.size() + 1));
        std::memcpy(bytes.data(), terminated.c_str(), bytes.size());
        return RegSetValueExW(key, name, 0, REG_SZ, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    }

    static std::uint32_t Dword(HKEY key, const char16_t* name)
    {
        std::uint32_t number = 0xEEEEEEEE;
        std::uint8_t bytes[4] = {};
        std::uint32_t size = sizeof bytes;
        if (RegQueryValueExW(key, name, nullptr, nullptr, bytes, &size) == ERROR_SUCCESS) {
            std::memcpy(&number, bytes, sizeof number);
        }
        return number;
    }

    static std::u16string Text(HKEY key, const char16_t* name)
    {
        std::uint32_t size = 0;
        std::uint32_t type = 0;
        EXPECT_EQ(RegQueryValueExW(key, name, nullptr, &type, nullptr, &size), ERROR_SUCCESS);
        EXPECT_EQ(type, REG_SZ);
        std::vector<std::uint8_t> bytes(size);
        EXPECT_EQ(RegQueryValueExW(key, name, nullptr, nullptr, bytes.data(), &size), ERROR_SUCCESS);
        std::u16string text(size / 2, u'\0');
        std::memcpy(text.data(), bytes.data(), size);
        EXPECT_TRUE(text.ends_with(u'\0'));
        text.pop_back();
        return text;
    }

    void WriteUserFile(std::string_view text)
    {
        std::filesystem::create_directories(m_folder / "kestrix");
        m_folder.Write(kUserFile, text);
    }

    static constexpr char kUserFile[] = "kestrix/registry-current-user.txt";
    TempFolder m_folder;
    Environment m_environment;
#ifdef _WIN32
    RegistryRedirection m_redirection;
#endif
};

}  // namespace zr::test
