#include "siblings/driversupport/IoPool.h"

#include <mutex>
#include <system_error>

namespace zr {

std::shared_ptr<IoPool> IoPool::Acquire()
{
    static std::mutex guard;
    static std::weak_ptr<IoPool> present;
    const std::lock_guard lock(guard);
    std::shared_ptr<IoPool> pool = present.lock();
    if (pool != nullptr) {
        return pool;
    }
    try {
        pool.reset(new IoPool);
    } catch (const std::system_error&) {
        return nullptr;
    }
    present = pool;
    return pool;
}

IoPool::IoPool()
{
    for (std::size_t i = 0; i < kThreads; ++i) {
        try {
            m_threads[i] = std::thread([context = &m_contexts[i]] { context->Serve(); });
        } catch (const std::system_error&) {
            for (std::size_t started = 0; started < i; ++started) {
                m_contexts[started].End();
                m_threads[started].join();
            }
            throw;
        }
    }
}

IoPool::~IoPool()
{
    for (IoContext& context : m_contexts) {
        context.End();
    }
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

IoContext& IoPool::Deal()
{
    return m_contexts[m_dealt.fetch_add(1, std::memory_order_relaxed) % kThreads];
}

}  // namespace zr
