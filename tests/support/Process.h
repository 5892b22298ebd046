// A program as a child process, with pipes for its three streams. Posix.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zr::test {

// Killed and reaped at the latest by the destructor. One thread at a time.
class Process {
public:
    static constexpr std::chrono::milliseconds kPatience{20000};

    // arguments[0] is the program, found by PATH if it holds no "/". Each of extraEnvironment is NAME=VALUE and comes
    // on top of the test's own environment. Started() is false when there is no such program.
    explicit Process(std::vector<std::string> arguments, const std::vector<std::string>& extraEnvironment = {})
    {
        std::array<std::array<int, 2>, 3> pipes{};
        for (std::array<int, 2>& ends : pipes) {
            if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
                return;
            }
        }
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, pipes[0][0], 0);
        ::posix_spawn_file_actions_adddup2(&actions, pipes[1][1], 1);
        ::posix_spawn_file_actions_adddup2(&actions, pipes[2][1], 2);
        std::vector<std::string> environment = Environment(extraEnvironment);
        std::vector<char*> argumentPointers = Pointers(arguments);
        std::vector<char*> environmentPointers = Pointers(environment);
        if (::posix_spawnp(&m_pid, argumentPointers[0], &actions, nullptr, argumentPointers.data(),
                           environmentPointers.data()) != 0) {
            m_pid = -1;
        }
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(pipes[0][0]);
        ::close(pipes[1][1]);
        ::close(pipes[2][1]);
        m_input = pipes[0][1];
        m_streams[0].descriptor = pipes[1][0];
        m_streams[1].descriptor = pipes[2][0];
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process()
    {
        if (m_pid > 0 && !m_status) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, nullptr, 0);
        }
        CloseInput();
        for (const Stream& stream : m_streams) {
            if (stream.descriptor >= 0) {
                ::close(stream.descriptor);
            }
        }
    }

    [[nodiscard]] bool Started() const { return m_pid > 0; }
    [[nodiscard]] pid_t Pid() const { return m_pid; }
    // Whether it has ended by itself or by a signal; never waits.
    [[nodiscard]] bool HasEnded() { return m_pid <= 0 || m_status || Reap(); }
    void Send(int signal) const
    {
        if (m_pid > 0 && !m_status) {
            ::kill(m_pid, signal);
        }
    }

    // False when the child no longer reads; the test program has to ignore SIGPIPE for that.
    bool Write(const std::string& text) const
    {
        return ::write(m_input, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }
    void CloseInput()
    {
        if (m_input >= 0) {
            ::close(m_input);
            m_input = -1;
        }
    }

    // Reads whole lines until one fits and returns it without its line end; none when the stream ends or the time is
    // over before.
    using Predicate = std::function<bool(const std::string&)>;
    std::optional<std::string> ReadLine(const Predicate& fits, std::chrono::milliseconds limit = kPatience)
    {
        return NextLine(m_streams[0], fits, limit);
    }
    std::optional<std::string> ReadErrorLine(const Predicate& fits, std::chrono::milliseconds limit = kPatience)
    {
        return NextLine(m_streams[1], fits, limit);
    }
    std::optional<std::string> ReadLineWith(const std::string& part, std::chrono::milliseconds limit = kPatience)
    {
        return ReadLine([&part](const std::string& line) { return line.find(part) != std::string::npos; }, limit);
    }

    // Exit status, or 128 + number of the signal that ended it; none when it still runs after the time. Reads both
    // streams to their ends meanwhile, so that no child hangs on a full pipe.
    std::optional<int> WaitForExit(std::chrono::milliseconds limit = kPatience)
    {
        const Time deadline = Now() + limit;
        while (AnyOpen() && Now() < deadline) {
            Pump(deadline);
        }
        while (!m_status && m_pid > 0 && !Reap() && Now() < deadline) {
            ::poll(nullptr, 0, 1);
        }
        return m_status;
    }

    // All that has been read of the stream so far.
    [[nodiscard]] const std::string& Output() const { return m_streams[0].text; }
    [[nodiscard]] const std::string& Errors() const { return m_streams[1].text; }

private:
    using Time = std::chrono::steady_clock::time_point;
    struct Stream {
        int descriptor = -1;  // -1 at its end
        std::string text;
        std::size_t taken = 0;  // bytes handed out as lines
    };

    static Time Now() { return std::chrono::steady_clock::now(); }

    static std::vector<std::string> Environment(const std::vector<std::string>& extra)
    {
        std::vector<std::string> result = extra;
        for (char** entry = ::environ; *entry != nullptr; ++entry) {
            const std::string own = *entry;
            bool isReplaced = false;
            for (const std::string& other : extra) {
                isReplaced = isReplaced || own.starts_with(other.substr(0, other.find('=') + 1));
            }
            if (!isReplaced) {
                result.push_back(own);
            }
        }
        return result;
    }

    static std::vector<char*> Pointers(std::vector<std::string>& texts)
    {
        std::vector<char*> pointers;
        for (std::string& text : texts) {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
        return pointers;
    }

    [[nodiscard]] bool AnyOpen() const { return m_streams[0].descriptor >= 0 || m_streams[1].descriptor >= 0; }

    // Reads what comes on either stream until the deadline, once.
    void Pump(Time deadline)
    {
        std::array<pollfd, 2> waited{};
        for (std::size_t i = 0; i < waited.size(); ++i) {
            waited[i] = {m_streams[i].descriptor, POLLIN, 0};
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Now()).count();
        if (::poll(waited.data(), waited.size(), left > 0 ? static_cast<int>(left) : 0) <= 0) {
            return;
        }
        for (std::size_t i = 0; i < waited.size(); ++i) {
            if (waited[i].revents != 0) {
                ReadSome(m_streams[i]);
            }
        }
    }

    static void ReadSome(Stream& stream)
    {
        std::array<char, 65536> bytes{};
        const ssize_t got = ::read(stream.descriptor, bytes.data(), bytes.size());
        if (got > 0) {
            stream.text.append(bytes.data(), static_cast<std::size_t>(got));
        } else if (got == 0 || errno != EINTR) {
            ::close(stream.descriptor);
            stream.descriptor = -1;
        }
    }

    std::optional<std::string> NextLine(Stream& stream, const Predicate& fits, std::chrono::milliseconds limit)
    {
        const Time deadline = Now() + limit;
        for (;;) {
            const std::size_t end = stream.text.find('\n', stream.taken);
            if (end != std::string::npos) {
                const std::string line = stream.text.substr(stream.taken, end - stream.taken);
                stream.taken = end + 1;
                if (fits(line)) {
                    return line;
                }
                continue;
            }
            if (stream.descriptor < 0 || Now() >= deadline) {
                return std::nullopt;
            }
            Pump(deadline);
        }
    }

    bool Reap()
    {
        int status = 0;
        if (::waitpid(m_pid, &status, WNOHANG) != m_pid) {
            return false;
        }
        m_status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        return true;
    }

    pid_t m_pid = -1;
    int m_input = -1;
    std::array<Stream, 2> m_streams;  // standard output, standard error
    std::optional<int> m_status;
};

}  // namespace zr::test
