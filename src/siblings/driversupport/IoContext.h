// A thread's worth of input and output: what runs on it, and the ways to reach it from other threads.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

namespace asio {
class io_context;
}

namespace zr {

// Something that other threads ask to be run on an I/O thread, over and over, without cost while it is already waiting.
class IoTask {
public:
    IoTask() = default;
    IoTask(const IoTask&) = delete;
    IoTask& operator=(const IoTask&) = delete;
    virtual ~IoTask() = default;

    // I/O thread only.
    virtual void Run() = 0;

protected:
    // Whether the caller is to hand the task to IoContext::Queue; false while it waits there already, in which case
    // its next Run sees all that the caller wrote before. Any thread.
    bool ClaimQueue() { return !m_queued.exchange(true, std::memory_order_acq_rel); }

private:
    friend class IoContext;
    std::atomic<bool> m_queued{false};
    IoTask* m_next = nullptr;
    std::shared_ptr<IoTask> m_self;  // while queued, so that the queue never holds a stale entry
};

// One event loop, served by one thread.
class IoContext {
public:
    IoContext();
    ~IoContext();
    IoContext(const IoContext&) = delete;
    IoContext& operator=(const IoContext&) = delete;

    // Runs the loop until End. Called once, by its thread.
    void Serve();
    // Any thread.
    void End();

    // Runs that later on the loop. Any thread.
    void Post(std::function<void()> job);
    // Runs a task that was claimed within a few milliseconds; many of them cost a single wake-up. Any thread.
    void Queue(std::shared_ptr<IoTask> task);
    // As Queue, but at once. Any thread.
    void QueueUrgent(std::shared_ptr<IoTask> task);

    // For those who open sockets, ports and timers on it.
    [[nodiscard]] asio::io_context& Loop();

private:
    void Push(std::shared_ptr<IoTask> task);
    bool RunQueued();
    void Drain();

    struct Impl;
    std::unique_ptr<Impl> m_impl;
    std::atomic<IoTask*> m_head{nullptr};
    std::atomic<bool> m_awake{false};  // Drain is posted, or will come by timer
};

}  // namespace zr
