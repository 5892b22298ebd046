// A disk that fills up. Posix.
#pragma once

#include <sys/resource.h>
#include <csignal>

namespace zr::test {

// No files grow beyond that while it lives.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) : m_signal(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const struct rlimit small = {bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }

private:
    struct rlimit m_before = {};
    void (*m_signal)(int);
};

}  // namespace zr::test
