// What the system's DDEML does not offer itself: waiting for work on the calling thread.
#include "platform/Ddeml.h"

namespace zr::ddeml {

bool Dispatch(std::chrono::milliseconds timeout)
{
    const auto wait = static_cast<DWORD>(timeout.count() < 0 ? 0 : timeout.count());
    if (MsgWaitForMultipleObjectsEx(0, nullptr, wait, QS_ALLINPUT, MWMO_INPUTAVAILABLE) != WAIT_OBJECT_0) {
        return false;
    }
    MSG message;
    bool handled = false;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
        handled = true;
    }
    return handled;
}

int PollDescriptor()
{
    return -1;
}

Statistics GetStatistics(DWORD)
{
    return {};
}

std::size_t PendingUpdates(DWORD)
{
    return 0;
}

std::vector<std::u16string> RegisteredServices()
{
    return {};
}

}  // namespace zr::ddeml
