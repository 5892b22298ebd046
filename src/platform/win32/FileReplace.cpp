#include "platform/FileReplace.h"

#include "platform/win32/FileWriting.h"
#include "platform/win32/Handle.h"

#include <windows.h>

namespace zr {
namespace {

// Write-through stands in for the flush of the folder.
bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to, std::string& reason)
{
    return ::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) ||
           FailBySystem(reason, "can't be replaced");
}

}  // namespace

bool ReadWholeFile(const std::filesystem::path& path, std::size_t limit, std::string& out, std::string& reason)
{
    out.clear();
    const Handle file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size = {};
    if (!file.IsOpen()) {
        const DWORD error = ::GetLastError();
        const DWORD attributes = ::GetFileAttributesW(path.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            reason = "is a folder";
            return false;
        }
        ::SetLastError(error);
    }
    if (!file.IsOpen() || !::GetFileSizeEx(file.Get(), &size)) {
        return FailBySystem(reason, "can't be opened");
    }
    if (static_cast<unsigned long long>(size.QuadPart) > limit) {
        reason = "larger than " + std::to_string(limit) + " bytes";
        return false;
    }
    out.resize(static_cast<std::size_t>(size.QuadPart));
    DWORD got = 0;
    if (!::ReadFile(file.Get(), out.data(), static_cast<DWORD>(out.size()), &got, nullptr)) {
        out.clear();
        return FailBySystem(reason, "can't be read");
    }
    out.resize(got);
    return true;
}

struct ReplacingFile::State {
    ~State()
    {
        file.Close();
        if (!temporary.empty()) {
            ::DeleteFileW(temporary.c_str());
        }
    }

    std::filesystem::path target;
    std::filesystem::path temporary;  // empty: there is none
    Handle file;
};

ReplacingFile::ReplacingFile() = default;

ReplacingFile::~ReplacingFile() = default;

// Files in the user's folders are private by the access list that they inherit.
bool ReplacingFile::Open(const std::filesystem::path& path, std::string& reason)
{
    auto state = std::make_unique<State>();
    state->target = path;
    std::filesystem::path temporary = path;
    temporary +=
        L"." + std::to_wstring(::GetCurrentProcessId()) + L"." + std::to_wstring(::GetCurrentThreadId()) + L".tmp";
    state->file = Handle(
        ::CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!state->file.IsOpen()) {
        return FailBySystem(reason, "no temporary file can be made beside it");
    }
    state->temporary = std::move(temporary);
    m_state = std::move(state);
    return true;
}

bool ReplacingFile::Write(std::string_view bytes, std::string& reason)
{
    if (!WriteAll(m_state->file.Get(), bytes)) {
        FailBySystem(reason, "can't be written");
        m_state.reset();
        return false;
    }
    return true;
}

bool ReplacingFile::Commit(std::string& reason)
{
    const std::unique_ptr<State> state = std::move(m_state);
    if (!::FlushFileBuffers(state->file.Get())) {
        return FailBySystem(reason, "can't be flushed");
    }
    state->file.Close();
    if (!MoveOver(state->temporary, state->target, reason)) {
        return false;
    }
    state->temporary.clear();
    return true;
}

bool PutFileInPlace(const std::filesystem::path& written, const std::filesystem::path& target, std::string& reason)
{
    Handle file(
        ::CreateFileW(written.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) {
        return FailBySystem(reason, "can't be opened");
    }
    if (!::FlushFileBuffers(file.Get())) {
        return FailBySystem(reason, "can't be flushed");
    }
    file.Close();
    return MoveOver(written, target, reason);
}

// Write-through and the journal of the file system stand in for it.
bool FlushFolder(const std::filesystem::path&, std::string&)
{
    return true;
}

bool MakePrivateFolder(const std::filesystem::path& folder, std::string& reason)
{
    std::error_code error;
    if (folder.empty()) {
        reason = "the system tells no folder";
        return false;
    }
    std::filesystem::create_directories(folder, error);
    if (error) {
        reason = "the folder " + TextOfPath(folder) + " can't be made: " + error.message();
        return false;
    }
    return true;
}

bool CanOthersRead(const std::filesystem::path&)
{
    return false;
}

}  // namespace zr
