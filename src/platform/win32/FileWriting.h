// What writing a file by handle needs, whoever does it.
#pragma once

#include "platform/win32/Handle.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace zr {

// False, with the number that the system gives the call that just failed after `what`.
inline bool FailBySystem(std::string& reason, const char* what)
{
    reason = std::string(what) + ": system error " + std::to_string(::GetLastError());
    return false;
}

// False when the system refuses; GetLastError then says why.
inline bool WriteAll(HANDLE file, std::string_view bytes)
{
    while (!bytes.empty()) {
        constexpr std::size_t kLargest = 1u << 20;
        DWORD written = 0;
        if (!::WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kLargest)), &written, nullptr)) {
            return false;
        }
        bytes.remove_prefix(written);
    }
    return true;
}

}  // namespace zr
