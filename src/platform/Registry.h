// The registry: keys that hold named values, below two roots. The operations have the names, arguments and results of
// the system's own; on Windows they are the system's, elsewhere they keep one text file a root
// (docs/formats/registry.md) in ConfigFolder(), so that both roots belong to the user there.
//
// windows.h defines some of these names as macros; only platform/win32 includes it, after this header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zr {

using HKEY = struct RegistryHandle*;

// Not constants, since a pointer can't be one.
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});

inline constexpr std::uint32_t KEY_QUERY_VALUE = 0x0001;
inline constexpr std::uint32_t KEY_SET_VALUE = 0x0002;
inline constexpr std::uint32_t KEY_READ = 0x20019;
inline constexpr std::uint32_t KEY_WRITE = 0x20006;
inline constexpr std::uint32_t KEY_ALL_ACCESS = 0xF003F;

inline constexpr std::uint32_t REG_SZ = 1;  // 16-bit text; its size counts the terminating zero
inline constexpr std::uint32_t REG_BINARY = 3;
inline constexpr std::uint32_t REG_DWORD = 4;

inline constexpr std::uint32_t REG_CREATED_NEW_KEY = 1;
inline constexpr std::uint32_t REG_OPENED_EXISTING_KEY = 2;

inline constexpr std::int32_t ERROR_SUCCESS = 0;
inline constexpr std::int32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr std::int32_t ERROR_ACCESS_DENIED = 5;
inline constexpr std::int32_t ERROR_INVALID_HANDLE = 6;
inline constexpr std::int32_t ERROR_WRITE_FAULT = 29;
inline constexpr std::int32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr std::int32_t ERROR_BAD_PATHNAME = 161;
inline constexpr std::int32_t ERROR_MORE_DATA = 234;

// All: any thread; block on the disk. Key and value names are compared without regard to the case of Latin letters.
// `key` is a root or what an earlier call opened. A null or empty sub-key stands for the key itself, a null or empty
// value name for the key's default value. Reserved arguments are 0 or null.

// ERROR_FILE_NOT_FOUND when there is no such key. The result is closed with RegCloseKey().
std::int32_t RegOpenKeyExW(HKEY key, const char16_t* subKey, std::uint32_t options, std::uint32_t access, HKEY* result);
// As RegOpenKeyExW(), but makes the keys that are missing. The disposition may be null.
std::int32_t RegCreateKeyExW(HKEY key, const char16_t* subKey, std::uint32_t reserved, const char16_t* className,
                             std::uint32_t options, std::uint32_t access, const void* security, HKEY* result,
                             std::uint32_t* disposition);
// Size: in, the bytes at data; out, the bytes of the value. Type, data, or data and size may be null; without data only
// the size is told. ERROR_MORE_DATA when data is too small: type and size are then set and data is left alone.
std::int32_t RegQueryValueExW(HKEY key, const char16_t* name, std::uint32_t* reserved, std::uint32_t* type,
                              std::uint8_t* data, std::uint32_t* size);
// Size in bytes, at most 1 MiB. The bytes are kept as they are: of a text whose terminating zero isn't counted, none
// comes back. A value that stands there already isn't written once more.
std::int32_t RegSetValueExW(HKEY key, const char16_t* name, std::uint32_t reserved, std::uint32_t type,
                            const std::uint8_t* data, std::uint32_t size);
std::int32_t RegCloseKey(HKEY key);

// A line that can't be understood; it is kept as it stands and counts for nothing.
struct RegistryFault {
    std::string file;
    std::size_t line = 0;  // one-based; 0 when the whole file can't be read
    std::string reason;
};

// The faults of both roots' files as they are now, for a host to show. Always empty on Windows. Any thread.
std::vector<RegistryFault> RegistryFaults();

}  // namespace zr
