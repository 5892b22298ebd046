#include "siblings/driversupport/IoContext.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <utility>

namespace zr {

namespace {

// After it emptied its queue, a loop looks once more so much later, instead of being woken for each late entry.
constexpr std::chrono::milliseconds kLinger{2};

}  // namespace

struct IoContext::Impl {
    asio::io_context loop{1};
    asio::executor_work_guard<asio::io_context::executor_type> work = asio::make_work_guard(loop);
    asio::steady_timer linger{loop};
};

IoContext::IoContext() : m_impl(std::make_unique<Impl>()) {}

IoContext::~IoContext()
{
    IoTask* task = m_head.exchange(nullptr, std::memory_order_acquire);
    while (task != nullptr) {
        const std::shared_ptr<IoTask> self = std::move(task->m_self);
        task = task->m_next;
    }
}

void IoContext::Serve()
{
    m_impl->loop.run();
}

void IoContext::End()
{
    m_impl->work.reset();
    m_impl->loop.stop();
}

void IoContext::Post(std::function<void()> job)
{
    asio::post(m_impl->loop, std::move(job));
}

asio::io_context& IoContext::Loop()
{
    return m_impl->loop;
}

void IoContext::Push(std::shared_ptr<IoTask> task)
{
    IoTask* raw = task.get();
    raw->m_self = std::move(task);
    IoTask* head = m_head.load(std::memory_order_relaxed);
    do {
        raw->m_next = head;
    } while (!m_head.compare_exchange_weak(head, raw, std::memory_order_seq_cst, std::memory_order_relaxed));
}

void IoContext::Queue(std::shared_ptr<IoTask> task)
{
    Push(std::move(task));
    if (!m_awake.load(std::memory_order_seq_cst) && !m_awake.exchange(true, std::memory_order_seq_cst)) {
        asio::post(m_impl->loop, [this] { Drain(); });
    }
}

void IoContext::QueueUrgent(std::shared_ptr<IoTask> task)
{
    Push(std::move(task));
    asio::post(m_impl->loop, [this] { RunQueued(); });
}

bool IoContext::RunQueued()
{
    // The last one pushed is on top: turned round, so that they run in the order of their coming.
    IoTask* top = m_head.exchange(nullptr, std::memory_order_seq_cst);
    IoTask* first = nullptr;
    while (top != nullptr) {
        IoTask* next = std::exchange(top->m_next, first);
        first = std::exchange(top, next);
    }
    const bool any = first != nullptr;
    while (first != nullptr) {
        const std::shared_ptr<IoTask> task = std::move(first->m_self);
        first = task->m_next;
        task->m_queued.exchange(false, std::memory_order_acq_rel);
        task->Run();
    }
    return any;
}

void IoContext::Drain()
{
    if (!RunQueued()) {
        m_awake.store(false, std::memory_order_seq_cst);
        const bool missed = m_head.load(std::memory_order_seq_cst) != nullptr;
        if (!missed || m_awake.exchange(true, std::memory_order_seq_cst)) {
            return;
        }
        RunQueued();
    }
    m_impl->linger.expires_after(kLinger);
    m_impl->linger.async_wait([this](const asio::error_code& error) {
        if (!error) {
            Drain();
        }
    });
}

}  // namespace zr
