#include "platform/AppendFile.h"

#include "platform/win32/FileWriting.h"
#include "platform/win32/Handle.h"

namespace zr {

struct AppendFile::Holding {
    Handle file;
};

AppendFile::AppendFile() = default;
AppendFile::~AppendFile() = default;
AppendFile::AppendFile(AppendFile&& other) noexcept = default;
AppendFile& AppendFile::operator=(AppendFile&& other) noexcept = default;

// Files in the user's folders are private by the access list that they inherit. The file system keeps a journal of
// names, so that there is no folder to flush.
bool AppendFile::Create(const std::filesystem::path& path, std::string& reason)
{
    Close();
    Handle file(::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) {
        return FailBySystem(reason, "can't be made");
    }
    m_holding = std::make_unique<Holding>(Holding{std::move(file)});
    m_size = 0;
    return true;
}

bool AppendFile::Append(std::string_view bytes, std::string& reason)
{
    const HANDLE file = m_holding->file.Get();
    const bool isDone = (WriteAll(file, bytes) || FailBySystem(reason, "can't be written")) &&
                        (::FlushFileBuffers(file) != 0 || FailBySystem(reason, "can't be flushed"));
    if (!isDone) {
        LARGE_INTEGER end = {};
        end.QuadPart = static_cast<LONGLONG>(m_size);
        if (!::SetFilePointerEx(file, end, nullptr, FILE_BEGIN) || !::SetEndOfFile(file)) {
            reason += "; nor can it be cut back";
        }
        Close();
        return false;
    }
    m_size += bytes.size();
    return true;
}

void AppendFile::Close()
{
    m_holding.reset();
    m_size = 0;
}

}  // namespace zr
