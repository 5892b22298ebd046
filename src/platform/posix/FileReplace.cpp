#include "platform/FileReplace.h"

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileWriting.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace zr {
namespace {

bool ReadUpTo(int descriptor, std::size_t limit, std::string& out, std::string& reason)
{
    std::size_t filled = 0;
    for (;;) {
        if (filled == out.size()) {
            out.resize(filled + 65536);
        }
        const ssize_t got = ::read(descriptor, out.data() + filled, out.size() - filled);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return FailBySystem(reason, "can't be read");
        }
        if (got == 0) {
            out.resize(filled);
            return true;
        }
        filled += static_cast<std::size_t>(got);
        if (filled > limit) {
            reason = "larger than " + std::to_string(limit) + " bytes";
            return false;
        }
    }
}

// The file that a chain of symbolic links ends at, which need not exist.
std::filesystem::path Resolved(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::path resolved = path;
    for (int hops = 0; hops < 40 && std::filesystem::is_symlink(resolved, error); ++hops) {
        const std::filesystem::path target = std::filesystem::read_symlink(resolved, error);
        if (error) {
            break;
        }
        resolved = resolved.parent_path() / target;
    }
    return resolved;
}

}  // namespace

bool ReadWholeFile(const std::filesystem::path& path, std::size_t limit, std::string& out, std::string& reason)
{
    out.clear();
    // Non-blocking, so that a pipe without a writer is refused instead of waited for.
    const FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!descriptor.IsOpen() || ::fstat(descriptor.Get(), &status) != 0) {
        return FailBySystem(reason, "can't be opened");
    }
    if (!S_ISREG(status.st_mode)) {
        reason = S_ISDIR(status.st_mode) ? "is a folder" : "is not a regular file";
        return false;
    }
    if (static_cast<unsigned long long>(status.st_size) > limit) {
        reason = "larger than " + std::to_string(limit) + " bytes";
        return false;
    }
    // One byte more than the file holds, so that the read that finds the end needs no growth.
    out.resize(static_cast<std::size_t>(status.st_size) + 1);
    if (!ReadUpTo(descriptor.Get(), limit, out, reason)) {
        out.clear();
        return false;
    }
    return true;
}

struct ReplacingFile::State {
    ~State()
    {
        if (!temporary.empty()) {
            ::unlink(temporary.c_str());
        }
    }

    std::filesystem::path target;
    std::filesystem::path folder;
    std::string temporary;  // empty: there is none
    FileDescriptor descriptor;
};

ReplacingFile::ReplacingFile() = default;

ReplacingFile::~ReplacingFile() = default;

bool ReplacingFile::Open(const std::filesystem::path& path, std::string& reason)
{
    m_state = std::make_unique<State>();
    m_state->target = Resolved(path);
    m_state->folder = m_state->target.has_parent_path() ? m_state->target.parent_path() : ".";
    std::string temporary = (m_state->folder / ("." + m_state->target.filename().string() + ".XXXXXX")).string();
    // mkostemp makes it with mode 0600.
    m_state->descriptor = FileDescriptor(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!m_state->descriptor.IsOpen()) {
        FailBySystem(reason, "no temporary file can be made beside it");
        m_state.reset();
        return false;
    }
    m_state->temporary = std::move(temporary);
    return true;
}

bool ReplacingFile::Write(std::string_view bytes, std::string& reason)
{
    if (!WriteAll(m_state->descriptor.Get(), bytes)) {
        FailBySystem(reason, "can't be written");
        m_state.reset();
        return false;
    }
    return true;
}

bool ReplacingFile::Commit(std::string& reason)
{
    const std::unique_ptr<State> state = std::move(m_state);
    if (::fsync(state->descriptor.Get()) != 0) {
        return FailBySystem(reason, "can't be flushed");
    }
    if (!state->descriptor.Close()) {
        return FailBySystem(reason, "can't be closed");
    }
    if (::rename(state->temporary.c_str(), state->target.c_str()) != 0) {
        return FailBySystem(reason, "can't be replaced");
    }
    state->temporary.clear();
    return FlushFolder(state->folder, reason);
}

bool PutFileInPlace(const std::filesystem::path& written, const std::filesystem::path& target, std::string& reason)
{
    FileDescriptor descriptor(::open(written.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor.IsOpen() || ::fchmod(descriptor.Get(), S_IRUSR | S_IWUSR) != 0) {
        return FailBySystem(reason, "can't be opened");
    }
    if (::fsync(descriptor.Get()) != 0) {
        return FailBySystem(reason, "can't be flushed");
    }
    if (::rename(written.c_str(), target.c_str()) != 0) {
        return FailBySystem(reason, "can't be replaced");
    }
    return FlushFolder(target.has_parent_path() ? target.parent_path() : ".", reason);
}

bool FlushFolder(const std::filesystem::path& folder, std::string& reason)
{
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems can't flush a folder and say so by EINVAL; there is nothing more to do there.
    if (!descriptor.IsOpen() || (::fsync(descriptor.Get()) != 0 && errno != EINVAL)) {
        return FailBySystem(reason, "the folder can't be flushed");
    }
    return true;
}

bool MakePrivateFolder(const std::filesystem::path& folder, std::string& reason)
{
    std::error_code error;
    if (folder.empty()) {
        reason = "the system tells no folder";
        return false;
    }
    if (std::filesystem::is_directory(folder, error)) {
        return true;
    }
    if (folder.has_parent_path() && folder.parent_path() != folder &&
        !MakePrivateFolder(folder.parent_path(), reason)) {
        return false;
    }
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
        return FailBySystem(reason, ("the folder " + folder.string() + " can't be made").c_str());
    }
    return true;
}

bool CanOthersRead(const std::filesystem::path& path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && (status.st_mode & (S_IRGRP | S_IROTH)) != 0;
}

}  // namespace zr
