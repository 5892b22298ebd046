#include "dde/NumberFormatSetting.h"

#include "dde/DdeIds.h"
#include "platform/Registry.h"
#include "siblings/support/ZRKestrixSetup.h"

#include <array>

namespace zr::dde {

bool ReadUseLocalNumberFormat()
{
    HKEY key = nullptr;
    if (ZRKestrixSetup::instance == nullptr ||
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, ZRKestrixSetup::Get().registryKey.CStr(), 0, KEY_QUERY_VALUE, &key) !=
            ERROR_SUCCESS) {
        return true;
    }
    // The type of the value is not looked at, and that is meant: four bytes are the word, fewer its low bytes.
    std::array<std::uint8_t, sizeof(std::uint32_t)> word{};
    std::uint32_t size = word.size();
    const bool isRead =
        RegQueryValueExW(key, kUseLocalNumberFormatValue, nullptr, nullptr, word.data(), &size) == ERROR_SUCCESS;
    RegCloseKey(key);
    return !isRead || word != decltype(word){};
}

}  // namespace zr::dde
