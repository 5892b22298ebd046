#include "platform/ProcessLock.h"

#include "platform/FileReplace.h"
#include "platform/win32/Handle.h"

namespace zr {

// The lock is an open file that others may read and not open for writing; the system closes it with a dead process.
struct ProcessLock::Holding {
    Handle file;
};

ProcessLock::ProcessLock() = default;

ProcessLock::~ProcessLock()
{
    Release();
}

ProcessLock::Result ProcessLock::TakeFile(const std::filesystem::path& path, const std::string& holder)
{
    Handle file(::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) {
        if (::GetLastError() != ERROR_SHARING_VIOLATION) {
            m_reason = TextOfPath(path) + ": system error " + std::to_string(::GetLastError());
            return Result::Failed;
        }
        const Handle reader(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        char text[512];
        DWORD length = 0;
        if (!reader.IsOpen() || !::ReadFile(reader.Get(), text, sizeof text, &length, nullptr)) {
            length = 0;
        }
        ReadHolder(std::string(text, length));
        return Result::HeldByOther;
    }
    const std::string text = std::to_string(::GetCurrentProcessId()) + holder;
    DWORD written = 0;
    // The text serves people only; the lock holds without it.
    ::WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    m_holding = std::make_unique<Holding>(Holding{std::move(file)});
    return Result::Taken;
}

void ProcessLock::Release()
{
    m_holding.reset();
}

}  // namespace zr
