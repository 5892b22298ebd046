// What writing a file by descriptor needs, whoever does it.
#pragma once

#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

namespace zr {

// False, with what the system says of the call that just failed after `what`.
inline bool FailBySystem(std::string& reason, const char* what)
{
    const int error = errno;
    reason = std::string(what) + ": " + std::strerror(error);
    return false;
}

// False when the system refuses; errno then says why.
inline bool WriteAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace zr
