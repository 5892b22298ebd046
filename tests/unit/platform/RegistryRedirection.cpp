#include "RegistryRedirection.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <string>

namespace zr::test {
namespace {

std::wstring KeyName()
{
    return L"Software\\KestrixTest" + std::to_wstring(::GetCurrentProcessId());
}

}  // namespace

RegistryRedirection::RegistryRedirection()
{
    ::HKEY key = nullptr;
    EXPECT_EQ(
        ::RegCreateKeyExW(HKEY_CURRENT_USER, KeyName().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
        ERROR_SUCCESS);
    EXPECT_EQ(::RegOverridePredefKey(HKEY_CURRENT_USER, key), ERROR_SUCCESS);
    m_key = key;
}

RegistryRedirection::~RegistryRedirection()
{
    ::RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    ::RegCloseKey(static_cast<::HKEY>(m_key));
    ::RegDeleteTreeW(HKEY_CURRENT_USER, KeyName().c_str());
}

}  // namespace zr::test
