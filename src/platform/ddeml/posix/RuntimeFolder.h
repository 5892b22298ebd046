// The folder in which servers are found: one socket an instance, one small file a registered name.
#pragma once

#include <sys/types.h>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr::ddeml {

// A file descriptor that is closed with its owner.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : m_fd(fd) {}
    Descriptor(Descriptor&& other) noexcept : m_fd(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { Reset(); }

    [[nodiscard]] int Get() const { return m_fd; }
    explicit operator bool() const { return m_fd >= 0; }
    void Reset();
    int Release();

private:
    int m_fd = -1;
};

// What ::RuntimeFolder::Connect found.
enum class ConnectState { Connected, Busy, Dead };

// The folder kestrix-dde below $XDG_RUNTIME_DIR, or /tmp/kestrix-<user id>: the user's own, mode 0700, no link.
//   <process>-<random>.sock                   the socket of a serving instance (its token is the part before the dot)
//   <label>-<hash>.<process>-<random>.name    one registered name of it, the text within as UTF-16LE
class RuntimeFolder {
public:
    // False when the folder is absent and cannot be made, or is not safe.
    bool Open();
    [[nodiscard]] int Watched() const { return m_folder.Get(); }
    // For inotify; valid while open.
    [[nodiscard]] std::string WatchPath() const;

    // A listening socket under a new token; none on failure.
    Descriptor Listen(std::string& token) const;
    void RemoveSocket(const std::string& token) const;
    bool AddName(const std::string& token, std::u16string_view name) const;
    void RemoveName(const std::string& token, std::u16string_view name) const;

    // The tokens that registered the name (without regard to case), the oldest first.
    [[nodiscard]] std::vector<std::string> TokensOf(std::u16string_view name) const;
    // File name of each registration and its text.
    [[nodiscard]] std::map<std::string, std::u16string> Names() const;
    // The text of one registration; none when it is gone or damaged.
    [[nodiscard]] std::optional<std::u16string> ReadName(const std::string& file) const;

    // Connects without blocking. The files of a dead server are removed.
    ConnectState Connect(const std::string& token, Descriptor& socket) const;

private:
    void RemoveDead(const std::string& token) const;

    Descriptor m_folder;
};

// Whether the other end of the socket was opened by a process of that user; without one, of this process's own.
bool IsPeerOfUser(int socket, uid_t user);
bool IsPeerOfThisUser(int socket);

}  // namespace zr::ddeml
