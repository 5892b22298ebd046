#include "platform/SocketWait.h"

#include <poll.h>
#include <algorithm>
#include <cerrno>

namespace zr {

bool WaitForSocket(std::intptr_t socket, bool forWriting, std::chrono::milliseconds limit)
{
    using SteadyClock = std::chrono::steady_clock;
    const auto deadline = SteadyClock::now() + limit;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
        const auto events = static_cast<short>(forWriting ? POLLIN | POLLOUT : POLLIN);
        pollfd waited{static_cast<int>(socket), events, 0};
        const int count = ::poll(&waited, 1, static_cast<int>(std::clamp<long long>(left.count(), 0, 60000)));
        if (count > 0) {
            return true;
        }
        if ((count < 0 && errno != EINTR) || SteadyClock::now() >= deadline) {
            return false;
        }
    }
}

}  // namespace zr
