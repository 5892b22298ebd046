#include "platform/ProcessLock.h"

#include "platform/FileReplace.h"
#include "platform/posix/FileDescriptor.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace zr {
namespace {

// The folder may lie where everybody can write.
bool IsOwnPrivateFolder(const std::filesystem::path& folder)
{
    struct stat status = {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

std::string Content(int descriptor)
{
    char text[512];
    const ssize_t length = ::pread(descriptor, text, sizeof text, 0);
    return std::string(text, length > 0 ? static_cast<std::size_t>(length) : 0);
}

// The holder writes its name just after it has got the lock.
std::string ContentOfHolder(int descriptor)
{
    std::string text = Content(descriptor);
    for (int tries = 0; tries < 50 && text.find('\n') == text.npos; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        text = Content(descriptor);
    }
    return text;
}

}  // namespace

struct ProcessLock::Holding {
    FileDescriptor descriptor;
};

ProcessLock::ProcessLock() = default;

ProcessLock::~ProcessLock()
{
    Release();
}

ProcessLock::Result ProcessLock::TakeFile(const std::filesystem::path& file, const std::string& holder)
{
    if (!IsOwnPrivateFolder(file.parent_path())) {
        m_reason = "the folder " + TextOfPath(file.parent_path()) + " is open to others";
        return Result::Failed;
    }
    FileDescriptor descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor.IsOpen()) {
        m_reason = TextOfPath(file) + ": " + std::strerror(errno);
        return Result::Failed;
    }
    if (::flock(descriptor.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK) {
            m_reason = TextOfPath(file) + ": " + std::strerror(errno);
            return Result::Failed;
        }
        ReadHolder(ContentOfHolder(descriptor.Get()));
        return Result::HeldByOther;
    }
    const std::string text = std::to_string(::getpid()) + holder;
    // The text serves people only; the lock holds without it.
    if (::ftruncate(descriptor.Get(), 0) != 0 || ::pwrite(descriptor.Get(), text.data(), text.size(), 0) < 0) {
        m_reason = TextOfPath(file) + ": " + std::strerror(errno);
    }
    m_holding = std::make_unique<Holding>(Holding{std::move(descriptor)});
    return Result::Taken;
}

void ProcessLock::Release()
{
    if (m_holding != nullptr && ::ftruncate(m_holding->descriptor.Get(), 0) != 0) {
        m_reason = std::strerror(errno);
    }
    // The file stays: were it removed, a third process could lock a new one beside a second that has this one open.
    m_holding.reset();
}

}  // namespace zr
