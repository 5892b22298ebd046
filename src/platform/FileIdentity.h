// Whether a path still names the file that it did.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace zr {

// Two files that exist at the same time never share one.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t file = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

// Empty when the path names no file. Any thread.
std::optional<FileIdentity> IdentityOfFile(const std::filesystem::path& path);

// Makes an empty file of mode 0600 unless there is one of any kind already. False when there is none then; reason says
// why. Any thread.
bool MakePrivateFile(const std::filesystem::path& path, std::string& reason);

}  // namespace zr
