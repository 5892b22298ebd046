// The two threads on which all lines are served.
#pragma once

#include "siblings/driversupport/IoContext.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <thread>

namespace zr {

// Made for the first who needs it; joins its threads when the last one lets go, which must not happen on one of them.
class IoPool {
public:
    static constexpr std::size_t kThreads = 2;

    // The one pool of the program. Null when no thread can be started. Any thread.
    static std::shared_ptr<IoPool> Acquire();
    ~IoPool();
    IoPool(const IoPool&) = delete;
    IoPool& operator=(const IoPool&) = delete;

    // One of its contexts, each in turn. Any thread.
    IoContext& Deal();

private:
    IoPool();

    std::array<IoContext, kThreads> m_contexts;
    std::array<std::thread, kThreads> m_threads;
    std::atomic<std::size_t> m_dealt{0};
};

}  // namespace zr
