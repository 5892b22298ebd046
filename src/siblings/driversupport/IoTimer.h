// A deadline on an I/O thread.
#pragma once

#include "siblings/driversupport/IoContext.h"

#include <chrono>
#include <functional>
#include <memory>

namespace zr {

// Calls back once at the time that was set last. Moving it to a later time, over and over, costs nothing: what is
// armed stays armed and looks again when it expires. I/O thread only, except for construction.
class IoTimer {
public:
    using Time = std::chrono::steady_clock::time_point;

    // May be destroyed in its own call-back.
    IoTimer(IoContext& context, std::function<void()> onDue);
    ~IoTimer();
    IoTimer(const IoTimer&) = delete;
    IoTimer& operator=(const IoTimer&) = delete;

    void Set(Time due);
    void Clear();

private:
    struct Impl;
    std::shared_ptr<Impl> m_impl;
};

}  // namespace zr
