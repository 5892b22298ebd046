#include "logger/SuiteKey.h"

#include "siblings/support/ZRKestrixSetup.h"

#include <cstring>
#include <vector>

namespace zr::logger {

SuiteKey::SuiteKey(const wchar* subKey)
{
    if (ZRKestrixSetup::instance != nullptr) {
        const ZRBasicString path = ZRKestrixSetup::Get().registryKey + subKey;
        m_isOpen = RegCreateKeyExW(HKEY_CURRENT_USER, path.CStr(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key,
                                   nullptr) == ERROR_SUCCESS;
    }
}

SuiteKey::~SuiteKey()
{
    if (m_isOpen) {
        RegCloseKey(m_key);
    }
}

void SuiteKey::WriteText(const wchar* name, const ZRBasicString& text)
{
    if (!m_isOpen) {
        return;
    }
    // The terminating zero counts.
    std::vector<std::uint8_t> bytes(2 * (text.Length() + 1));
    std::memcpy(bytes.data(), text.CStr(), bytes.size());
    RegSetValueExW(m_key, name, 0, REG_SZ, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

void SuiteKey::WriteNumber(const wchar* name, std::uint32_t number)
{
    if (m_isOpen) {
        std::uint8_t bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        RegSetValueExW(m_key, name, 0, REG_DWORD, bytes, sizeof number);
    }
}

bool SuiteKey::ReadText(const wchar* name, ZRBasicString& text) const
{
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    if (!m_isOpen || RegQueryValueExW(m_key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS || type != REG_SZ) {
        return false;
    }
    std::vector<std::uint8_t> bytes(size);
    if (RegQueryValueExW(m_key, name, nullptr, &type, bytes.data(), &size) != ERROR_SUCCESS || type != REG_SZ) {
        return false;
    }
    std::u16string characters(size / sizeof(wchar), u'\0');
    std::memcpy(characters.data(), bytes.data(), characters.size() * sizeof(wchar));
    text = ZRBasicString(characters.c_str());
    return true;
}

bool SuiteKey::ReadNumber(const wchar* name, std::uint32_t& number) const
{
    std::uint32_t type = 0;
    std::uint8_t bytes[sizeof number];
    std::uint32_t size = sizeof bytes;
    if (!m_isOpen || RegQueryValueExW(m_key, name, nullptr, &type, bytes, &size) != ERROR_SUCCESS ||
        type != REG_DWORD || size != sizeof bytes) {
        return false;
    }
    std::memcpy(&number, bytes, sizeof number);
    return true;
}

}  // namespace zr::logger
