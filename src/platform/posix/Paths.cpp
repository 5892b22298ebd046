#include "platform/Paths.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <array>
#include <cstdlib>
#include <string>

namespace zr {
namespace {

// Relative paths are to be ignored, by the rules of the XDG base directories.
std::filesystem::path AbsolutePathIn(const char* variable)
{
    const char* const text = std::getenv(variable);
    const std::filesystem::path path = text != nullptr ? text : "";
    return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path HomeFolder()
{
    const std::filesystem::path home = AbsolutePathIn("HOME");
    if (!home.empty()) {
        return home;
    }
    struct passwd entry = {};
    struct passwd* found = nullptr;
    std::array<char, 4096> texts{};
    const bool isKnown = ::getpwuid_r(::getuid(), &entry, texts.data(), texts.size(), &found) == 0 && found != nullptr;
    return isKnown ? entry.pw_dir : "";
}

std::filesystem::path Below(const char* variable, const char* inHome)
{
    const std::filesystem::path base = AbsolutePathIn(variable);
    if (!base.empty()) {
        return base / "kestrix";
    }
    const std::filesystem::path home = HomeFolder();
    return home.empty() ? home : home / inHome / "kestrix";
}

bool IsOwnFolder(const std::filesystem::path& folder)
{
    struct stat status = {};
    return ::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid();
}

}  // namespace

std::filesystem::path ConfigFolder()
{
    return Below("XDG_CONFIG_HOME", ".config");
}

std::filesystem::path DataFolder()
{
    return Below("XDG_DATA_HOME", ".local/share");
}

std::filesystem::path RuntimeFolder()
{
    const std::filesystem::path base = AbsolutePathIn("XDG_RUNTIME_DIR");
    if (!base.empty()) {
        return base / "kestrix";
    }
    const std::string user = std::to_string(::getuid());
    // So that a service and a terminal of one user meet, though only one of them has the variable.
    const std::filesystem::path usual = "/run/user/" + user;
    if (IsOwnFolder(usual)) {
        return usual / "kestrix";
    }
    std::error_code error;
    const std::filesystem::path temporary = std::filesystem::temp_directory_path(error);
    return (error ? std::filesystem::path("/tmp") : temporary) / ("kestrix-" + user);
}

std::filesystem::path ResourceFolder()
{
    const char* const text = std::getenv("KESTRIX_RESOURCES");
    if (text != nullptr && *text != '\0') {
        return text;
    }
    return ProgramFile().parent_path().parent_path() / "share" / "kestrix";
}

std::filesystem::path ProgramFile()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace zr
