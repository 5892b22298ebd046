#include "platform/FileIdentity.h"

#include "platform/posix/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <cerrno>
#include <cstring>

namespace zr {

std::optional<FileIdentity> IdentityOfFile(const std::filesystem::path& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FileIdentity{static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

bool MakePrivateFile(const std::filesystem::path& path, std::string& reason)
{
    const FileDescriptor made(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!made.IsOpen() && errno != EEXIST) {
        reason = std::string("can't be made: ") + std::strerror(errno);
        return false;
    }
    return true;
}

}  // namespace zr
