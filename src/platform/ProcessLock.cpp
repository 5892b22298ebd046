#include "platform/ProcessLock.h"

#include "platform/FileReplace.h"
#include "platform/Paths.h"

#include <charconv>
#include <cstdint>
#include <cstdio>

namespace zr {

ProcessLock::Result ProcessLock::Take(const std::filesystem::path& document, const std::string& program)
{
    Release();
    const std::filesystem::path folder = RuntimeFolder();
    if (!MakePrivateFolder(folder, m_reason)) {
        return Result::Failed;
    }
    return TakeFile(LockFileOf(document, folder), " " + program + "\n" + TextOfPath(document) + "\n");
}

ProcessLock::Result ProcessLock::TakeAt(const std::filesystem::path& lockFile, const std::string& program)
{
    Release();
    return TakeFile(lockFile, " " + program + "\n" + TextOfPath(lockFile) + "\n");
}

// The first line of a lock file is `PROCESS PROGRAM`, the second the document.
void ProcessLock::ReadHolder(const std::string& text)
{
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, m_otherProcess);
    const std::size_t from = static_cast<std::size_t>(next - text.data()) + 1;
    if (error != std::errc() || from >= text.size()) {
        m_otherProcess = 0;
        m_otherProgram = "another program";
        return;
    }
    m_otherProgram = text.substr(from, text.find('\n', from) - from);
}

std::filesystem::path LockFileOf(const std::filesystem::path& document, const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::path canonical =
        std::filesystem::weakly_canonical(std::filesystem::absolute(document, error), error);
    if (error) {
        canonical = document;
    }
    // FNV-1a, 64 bits.
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char character : TextOfPath(canonical)) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211ULL;
    }
    char name[32];
    std::snprintf(name, sizeof name, "%016llx.lock", static_cast<unsigned long long>(hash));
    return folder / name;
}

}  // namespace zr
