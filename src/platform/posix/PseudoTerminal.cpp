#include "platform/PseudoTerminal.h"

#include "platform/posix/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace zr {

struct PseudoTerminal::State {
    FileDescriptor device;
    // Kept open: with no one at the other end the device's end would report an error instead of silence.
    FileDescriptor other;
    std::string name;
    std::string link;

    ~State()
    {
        std::array<char, PATH_MAX> target{};
        if (!link.empty() && ::readlink(link.c_str(), target.data(), target.size() - 1) > 0 && name == target.data()) {
            ::unlink(link.c_str());
        }
    }
};

PseudoTerminal::PseudoTerminal() : m_state(std::make_unique<State>()) {}

PseudoTerminal::~PseudoTerminal() = default;

bool PseudoTerminal::IsAvailable()
{
    return true;
}

bool PseudoTerminal::Open(std::string& error)
{
    State& state = *m_state;
    state.device = FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY));
    const int device = state.device.Get();
    std::array<char, 128> name{};
    if (device < 0 || ::grantpt(device) != 0 || ::unlockpt(device) != 0 ||
        ::ptsname_r(device, name.data(), name.size()) != 0) {
        error = std::string("no pseudo-terminal: ") + std::strerror(errno);
        return false;
    }
    state.name = name.data();
    state.other = FileDescriptor(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios mode{};
    if (!state.other.IsOpen() || ::tcgetattr(state.other.Get(), &mode) != 0) {
        error = state.name + ": " + std::strerror(errno);
        return false;
    }
    ::cfmakeraw(&mode);
    const bool isSet = ::tcsetattr(state.other.Get(), TCSANOW, &mode) == 0 &&
                       ::fcntl(device, F_SETFL, O_RDWR | O_NONBLOCK) == 0 && ::fcntl(device, F_SETFD, FD_CLOEXEC) == 0;
    if (!isSet) {
        error = state.name + ": " + std::strerror(errno);
    }
    return isSet;
}

bool PseudoTerminal::Link(const std::string& path, std::string& error)
{
    struct stat old {};
    if (::lstat(path.c_str(), &old) == 0) {
        if (!S_ISLNK(old.st_mode)) {
            error = path + ": exists and isn't a symbolic link";
            return false;
        }
        ::unlink(path.c_str());
    }
    if (::symlink(m_state->name.c_str(), path.c_str()) != 0) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    m_state->link = path;
    return true;
}

std::string PseudoTerminal::Name() const
{
    return m_state->name;
}

std::size_t PseudoTerminal::Read(void* bytes, std::size_t room)
{
    const ssize_t size = ::read(m_state->device.Get(), bytes, room);
    return size > 0 ? static_cast<std::size_t>(size) : 0;
}

void PseudoTerminal::Write(const void* bytes, std::size_t size)
{
    [[maybe_unused]] const ssize_t written = ::write(m_state->device.Get(), bytes, size);
}

int PseudoTerminal::DuplicateDescriptor() const
{
    return m_state->device.IsOpen() ? ::fcntl(m_state->device.Get(), F_DUPFD_CLOEXEC, 0) : -1;
}

}  // namespace zr
