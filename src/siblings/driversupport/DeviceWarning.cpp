#include "siblings/driversupport/DeviceWarning.h"

#include <mutex>
#include <utility>

namespace zr {

namespace {

struct NoticeQueue {
    std::mutex guard;
    std::vector<DeviceNotice> notices;
    std::size_t dropped = 0;
};

NoticeQueue& Queue()
{
    static NoticeQueue queue;
    return queue;
}

}  // namespace

void PostNotice(DeviceWarning type, const ZRBasicString& name, const ZRBasicString& info, const ZRBasicString& detail)
{
    NoticeQueue& queue = Queue();
    const std::lock_guard lock(queue.guard);
    if (queue.notices.size() >= kMaxNotices) {
        ++queue.dropped;
        return;
    }
    queue.notices.push_back({type, name, info, detail});
}

std::vector<DeviceNotice> TakeNotices()
{
    NoticeQueue& queue = Queue();
    const std::lock_guard lock(queue.guard);
    return std::exchange(queue.notices, {});
}

std::size_t DroppedNotices()
{
    NoticeQueue& queue = Queue();
    const std::lock_guard lock(queue.guard);
    return queue.dropped;
}

}  // namespace zr
