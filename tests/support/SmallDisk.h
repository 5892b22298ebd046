// A disk that fills up. Posix.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <csignal>

namespace zr::test {

// No file of the process grows beyond that while it lives; what fails is the write, not the process. One at a time.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) : m_signal(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &m_before), 0);
        const struct rlimit small = {bytes, m_before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk()
    {
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &m_before), 0);
        std::signal(SIGXFSZ, m_signal);
    }

private:
    struct rlimit m_before = {};
    void (*m_signal)(int);
};

}  // namespace zr::test
