// By itself, since the system's DDE and the registry of the library can't be known in one file on Windows.
#include "NumberFormatValue.h"

#include "platform/Registry.h"

namespace zr::test {

bool WriteNumberFormatValue(const ZRBasicString& registryKey, RegistryType type, const std::vector<std::uint8_t>& bytes)
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, registryKey.CStr(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS) {
        return false;
    }
    const bool isWritten =
        RegSetValueExW(key, u"DDE_UseLocalNumberFormat", 0, type == RegistryType::Word ? REG_DWORD : REG_BINARY,
                       bytes.data(), static_cast<std::uint32_t>(bytes.size())) == ERROR_SUCCESS;
    RegCloseKey(key);
    return isWritten;
}

}  // namespace zr::test
