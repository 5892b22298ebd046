#include "platform/Registry.h"

#include <windows.h>
#include <string>

// The macros of windows.h would stand for the names of this library's own.
#undef HKEY_CURRENT_USER
#undef HKEY_LOCAL_MACHINE

namespace zr {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

const wchar_t* Wide(const char16_t* text)
{
    return reinterpret_cast<const wchar_t*>(text);
}

// The roots have the same numbers in both, sign-extended by the system.
::HKEY System(HKEY key)
{
    const auto number = reinterpret_cast<std::uintptr_t>(key);
    if (key == zr::HKEY_CURRENT_USER || key == zr::HKEY_LOCAL_MACHINE) {
        return reinterpret_cast<::HKEY>(static_cast<std::uintptr_t>(static_cast<std::int32_t>(number)));
    }
    return reinterpret_cast<::HKEY>(number);
}

}  // namespace

std::int32_t RegOpenKeyExW(HKEY key, const char16_t* subKey, std::uint32_t options, std::uint32_t access, HKEY* result)
{
    return ::RegOpenKeyExW(System(key), Wide(subKey), options, access, reinterpret_cast<::HKEY*>(result));
}

std::int32_t RegCreateKeyExW(HKEY key, const char16_t* subKey, std::uint32_t reserved, const char16_t* className,
                             std::uint32_t options, std::uint32_t access, const void* /*security*/, HKEY* result,
                             std::uint32_t* disposition)
{
    // The system takes the class for writing and leaves it alone.
    std::wstring ownClass = className != nullptr ? Wide(className) : L"";
    DWORD made = 0;
    const LSTATUS status = ::RegCreateKeyExW(System(key), Wide(subKey), reserved, ownClass.data(), options, access,
                                             nullptr, reinterpret_cast<::HKEY*>(result), &made);
    if (disposition != nullptr) {
        *disposition = made;
    }
    return status;
}

std::int32_t RegQueryValueExW(HKEY key, const char16_t* name, std::uint32_t* reserved, std::uint32_t* type,
                              std::uint8_t* data, std::uint32_t* size)
{
    DWORD ownType = 0;
    DWORD ownSize = size != nullptr ? *size : 0;
    const LSTATUS status = ::RegQueryValueExW(System(key), Wide(name), reinterpret_cast<DWORD*>(reserved), &ownType,
                                              data, size != nullptr ? &ownSize : nullptr);
    if (type != nullptr) {
        *type = ownType;
    }
    if (size != nullptr) {
        *size = ownSize;
    }
    return status;
}

std::int32_t RegSetValueExW(HKEY key, const char16_t* name, std::uint32_t reserved, std::uint32_t type,
                            const std::uint8_t* data, std::uint32_t size)
{
    return ::RegSetValueExW(System(key), Wide(name), reserved, type, data, size);
}

std::int32_t RegCloseKey(HKEY key)
{
    return ::RegCloseKey(System(key));
}

std::vector<RegistryFault> RegistryFaults()
{
    return {};
}

}  // namespace zr
