#include "platform/AppendFile.h"

#include "platform/FileReplace.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileWriting.h"

#include <fcntl.h>
#include <unistd.h>

namespace zr {

struct AppendFile::Holding {
    FileDescriptor descriptor;
};

AppendFile::AppendFile() = default;
AppendFile::~AppendFile() = default;
AppendFile::AppendFile(AppendFile&& other) noexcept = default;
AppendFile& AppendFile::operator=(AppendFile&& other) noexcept = default;

bool AppendFile::Create(const std::filesystem::path& path, std::string& reason)
{
    Close();
    FileDescriptor descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0600));
    if (!descriptor.IsOpen()) {
        return FailBySystem(reason, "can't be made");
    }
    if (!FlushFolder(path.has_parent_path() ? path.parent_path() : ".", reason)) {
        ::unlink(path.c_str());
        return false;
    }
    m_holding = std::make_unique<Holding>(Holding{std::move(descriptor)});
    m_size = 0;
    return true;
}

bool AppendFile::Append(std::string_view bytes, std::string& reason)
{
    const int descriptor = m_holding->descriptor.Get();
    const bool isDone = (WriteAll(descriptor, bytes) || FailBySystem(reason, "can't be written")) &&
                        (::fsync(descriptor) == 0 || FailBySystem(reason, "can't be flushed"));
    if (!isDone) {
        // After a flush that failed nobody can tell what is on the disk: the file isn't written any more.
        if (::ftruncate(descriptor, static_cast<off_t>(m_size)) != 0) {
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
