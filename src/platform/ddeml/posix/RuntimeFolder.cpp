#include "platform/ddeml/posix/RuntimeFolder.h"

#include "platform/ddeml/posix/StringTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <tuple>
#include <utility>

namespace zr::ddeml {

namespace {

constexpr std::string_view kNameSuffix = ".name";

// A folder of this user that no one else may enter. Made where it is absent.
Descriptor OpenPrivate(int parent, const char* name)
{
    if (mkdirat(parent, name, S_IRWXU) != 0 && errno != EEXIST) {
        return {};
    }
    Descriptor folder(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info {};
    if (!folder || fstat(folder.Get(), &info) != 0 || info.st_uid != geteuid() ||
        (info.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        return {};
    }
    return folder;
}

Descriptor OpenBelowRuntimeFolder()
{
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || runtime[0] != '/') {
        return {};
    }
    const Descriptor parent(open(runtime, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat info {};
    if (!parent || fstat(parent.Get(), &info) != 0 || info.st_uid != geteuid()) {
        return {};
    }
    return OpenPrivate(parent.Get(), "kestrix-dde");
}

Descriptor OpenBelowTemporary()
{
    const std::string name = "/tmp/kestrix-" + std::to_string(geteuid());
    const Descriptor parent = OpenPrivate(AT_FDCWD, name.c_str());
    return parent ? OpenPrivate(parent.Get(), "kestrix-dde") : Descriptor();
}

// Through the open folder, so that neither a long path nor a renamed folder matters.
bool AddressOf(int folder, const std::string& file, sockaddr_un& address)
{
    address = {};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder) + "/" + file;
    if (path.size() >= sizeof address.sun_path) {
        return false;
    }
    path.copy(address.sun_path, path.size());
    return true;
}

const sockaddr* Generic(const sockaddr_un& address)
{
    return reinterpret_cast<const sockaddr*>(&address);
}

// The start of the name for people, its 64-bit FNV-1a hash for the match.
std::string NameKey(std::u16string_view name)
{
    const std::u16string folded = FoldCase(name);
    std::uint64_t hash = 0xCBF29CE484222325U;
    std::string label;
    for (const char16_t unit : folded) {
        for (const unsigned byte : {unit & 0xFFU, static_cast<unsigned>(unit) >> 8U}) {
            hash = (hash ^ byte) * 0x100000001B3U;
        }
        const bool plain = (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9');
        if (label.size() < 24) {
            label += plain ? static_cast<char>(unit) : '_';
        }
    }
    std::array<char, 24> hex{};
    std::snprintf(hex.data(), hex.size(), "-%016llx", static_cast<unsigned long long>(hash));
    return label + hex.data();
}

std::string NameFile(std::u16string_view name, const std::string& token)
{
    return NameKey(name) + "." + token + std::string(kNameSuffix);
}

std::vector<std::string> FilesIn(int folder)
{
    std::vector<std::string> files;
    const int copy = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (copy < 0) {
        return files;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(fdopendir(copy), closedir);
    if (listing == nullptr) {
        close(copy);
        return files;
    }
    while (const dirent* entry = readdir(listing.get())) {
        files.emplace_back(entry->d_name);
    }
    return files;
}

bool IsName(const std::string& file)
{
    return file.ends_with(kNameSuffix) && file.front() != '.';
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    if (this != &other) {
        Reset();
        m_fd = other.Release();
    }
    return *this;
}

void Descriptor::Reset()
{
    if (m_fd >= 0) {
        close(m_fd);
        m_fd = -1;
    }
}

int Descriptor::Release()
{
    return std::exchange(m_fd, -1);
}

bool RuntimeFolder::Open()
{
    m_folder = OpenBelowRuntimeFolder();
    if (!m_folder) {
        m_folder = OpenBelowTemporary();
    }
    return static_cast<bool>(m_folder);
}

std::string RuntimeFolder::WatchPath() const
{
    return "/proc/self/fd/" + std::to_string(m_folder.Get()) + "/.";
}

Descriptor RuntimeFolder::Listen(std::string& token) const
{
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket) {
        return {};
    }
    // Random beside the process number: processes of two containers may share the folder.
    std::random_device random;
    for (int attempt = 0; attempt < 8; ++attempt) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%ld-%08x", static_cast<long>(getpid()), random());
        sockaddr_un address{};
        if (!AddressOf(m_folder.Get(), std::string(text.data()) + ".sock", address)) {
            return {};
        }
        if (bind(socket.Get(), Generic(address), sizeof address) == 0) {
            token = text.data();
            fchmodat(m_folder.Get(), (token + ".sock").c_str(), S_IRUSR | S_IWUSR, 0);
            return listen(socket.Get(), SOMAXCONN) == 0 ? std::move(socket) : Descriptor();
        }
        if (errno != EADDRINUSE) {
            return {};
        }
    }
    return {};
}

void RuntimeFolder::RemoveSocket(const std::string& token) const
{
    unlinkat(m_folder.Get(), (token + ".sock").c_str(), 0);
}

bool RuntimeFolder::AddName(const std::string& token, std::u16string_view name) const
{
    // Complete before it is seen: written beside and renamed.
    const std::string file = NameFile(name, token);
    const std::string draft = "." + file;
    const Descriptor out(openat(m_folder.Get(), draft.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC,
                                S_IRUSR | S_IWUSR));
    if (!out) {
        return false;
    }
    std::vector<std::uint8_t> bytes;
    for (const char16_t unit : name) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFFU));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8U));
    }
    const bool written = write(out.Get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    // The exact time: the file system's own is too coarse to tell the older of two servers.
    std::array<timespec, 2> times{};
    clock_gettime(CLOCK_REALTIME, &times[0]);
    times[1] = times[0];
    futimens(out.Get(), times.data());
    if (written && renameat(m_folder.Get(), draft.c_str(), m_folder.Get(), file.c_str()) == 0) {
        return true;
    }
    unlinkat(m_folder.Get(), draft.c_str(), 0);
    return false;
}

void RuntimeFolder::RemoveName(const std::string& token, std::u16string_view name) const
{
    unlinkat(m_folder.Get(), NameFile(name, token).c_str(), 0);
}

std::optional<std::u16string> RuntimeFolder::ReadName(const std::string& file) const
{
    const Descriptor in(openat(m_folder.Get(), file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    std::array<std::uint8_t, 2 * kMaxStringLength + 2> bytes{};
    const ssize_t size = in ? read(in.Get(), bytes.data(), bytes.size()) : -1;
    if (size < 2 || size % 2 != 0 || static_cast<std::size_t>(size) > 2 * kMaxStringLength) {
        return std::nullopt;
    }
    std::u16string name(static_cast<std::size_t>(size) / 2, u'\0');
    for (std::size_t i = 0; i < name.size(); ++i) {
        name[i] = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8U);
    }
    return name.find(u'\0') == std::u16string::npos ? std::optional(name) : std::nullopt;
}

std::vector<std::string> RuntimeFolder::TokensOf(std::u16string_view name) const
{
    struct Found {
        timespec when;
        std::string token;
    };
    const std::string prefix = NameKey(name) + ".";
    const std::u16string folded = FoldCase(name);
    std::vector<Found> found;
    for (const std::string& file : FilesIn(m_folder.Get())) {
        struct stat info {};
        if (!IsName(file) || !file.starts_with(prefix) || fstatat(m_folder.Get(), file.c_str(), &info, 0) != 0) {
            continue;
        }
        const auto text = ReadName(file);
        if (text && FoldCase(*text) == folded) {
            found.push_back(
                {info.st_mtim, file.substr(prefix.size(), file.size() - prefix.size() - kNameSuffix.size())});
        }
    }
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
        return std::tie(a.when.tv_sec, a.when.tv_nsec, a.token) < std::tie(b.when.tv_sec, b.when.tv_nsec, b.token);
    });
    std::vector<std::string> tokens;
    for (Found& one : found) {
        tokens.push_back(std::move(one.token));
    }
    return tokens;
}

std::map<std::string, std::u16string> RuntimeFolder::Names() const
{
    std::map<std::string, std::u16string> names;
    for (const std::string& file : FilesIn(m_folder.Get())) {
        if (!IsName(file)) {
            continue;
        }
        if (auto text = ReadName(file)) {
            names.emplace(file, std::move(*text));
        }
    }
    return names;
}

ConnectState RuntimeFolder::Connect(const std::string& token, Descriptor& socket) const
{
    sockaddr_un address{};
    socket = Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket || !AddressOf(m_folder.Get(), token + ".sock", address)) {
        return ConnectState::Busy;
    }
    if (connect(socket.Get(), Generic(address), sizeof address) == 0) {
        return IsPeerOfThisUser(socket.Get()) ? ConnectState::Connected : ConnectState::Dead;
    }
    if (errno != ECONNREFUSED && errno != ENOENT) {
        return ConnectState::Busy;
    }
    RemoveDead(token);
    return ConnectState::Dead;
}

void RuntimeFolder::RemoveDead(const std::string& token) const
{
    const std::string suffix = "." + token + std::string(kNameSuffix);
    for (const std::string& file : FilesIn(m_folder.Get())) {
        if (file.ends_with(suffix)) {
            unlinkat(m_folder.Get(), file.c_str(), 0);
        }
    }
    RemoveSocket(token);
}

bool IsPeerOfUser(int socket, uid_t user)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == user;
}

bool IsPeerOfThisUser(int socket)
{
    return IsPeerOfUser(socket, geteuid());
}

}  // namespace zr::ddeml
