#include "platform/SocketWait.h"

#include <winsock2.h>
#include <algorithm>

namespace zr {

bool WaitForSocket(std::intptr_t socket, bool forWriting, std::chrono::milliseconds limit)
{
    const auto events = static_cast<SHORT>(forWriting ? POLLRDNORM | POLLWRNORM : POLLRDNORM);
    WSAPOLLFD waited{static_cast<SOCKET>(socket), events, 0};
    return ::WSAPoll(&waited, 1, static_cast<INT>(std::clamp<long long>(limit.count(), 0, 3600000))) > 0;
}

}  // namespace zr
