#include "platform/FileIdentity.h"

#include "platform/win32/Handle.h"

#include <windows.h>

namespace zr {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

}  // namespace

std::optional<FileIdentity> IdentityOfFile(const std::filesystem::path& path)
{
    const Handle file(
        ::CreateFileW(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION status = {};
    if (!file.IsOpen() || !::GetFileInformationByHandle(file.Get(), &status)) {
        return std::nullopt;
    }
    return FileIdentity{status.dwVolumeSerialNumber,
                        (std::uint64_t{status.nFileIndexHigh} << 32) | status.nFileIndexLow};
}

// Files in the user's folders are private by the access list that they inherit.
bool MakePrivateFile(const std::filesystem::path& path, std::string& reason)
{
    const Handle made(
        ::CreateFileW(path.c_str(), GENERIC_WRITE, kShareAll, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!made.IsOpen() && ::GetLastError() != ERROR_FILE_EXISTS) {
        reason = "can't be made: system error " + std::to_string(::GetLastError());
        return false;
    }
    return true;
}

}  // namespace zr
