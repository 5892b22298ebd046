#include "siblings/driversupport/IoTimer.h"

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <utility>

namespace zr {

struct IoTimer::Impl : std::enable_shared_from_this<IoTimer::Impl> {
    Impl(asio::io_context& loop, std::function<void()> whenDue) : timer(loop), onDue(std::move(whenDue)) {}

    void Arm()
    {
        armed = due;
        timer.expires_at(due);
        timer.async_wait([self = shared_from_this()](const asio::error_code& error) {
            if (!error) {
                self->Expired();
            }
        });
    }

    void Expired()
    {
        if (isGone || Time::clock::now() < armed) {
            return;  // moved to a later or, by Arm, to an earlier time after it had come due
        }
        armed = Time::max();
        if (due == Time::max()) {
            return;
        }
        if (Time::clock::now() < due) {
            Arm();
            return;
        }
        due = Time::max();
        onDue();
    }

    asio::steady_timer timer;
    std::function<void()> onDue;
    Time due = Time::max();
    Time armed = Time::max();
    bool isGone = false;
};

IoTimer::IoTimer(IoContext& context, std::function<void()> onDue)
    : m_impl(std::make_shared<Impl>(context.Loop(), std::move(onDue)))
{
}

IoTimer::~IoTimer()
{
    m_impl->isGone = true;
    m_impl->timer.cancel();
}

void IoTimer::Set(Time due)
{
    m_impl->due = due;
    if (due < m_impl->armed) {
        m_impl->Arm();
    }
}

void IoTimer::Clear()
{
    m_impl->due = Time::max();
}

}  // namespace zr
