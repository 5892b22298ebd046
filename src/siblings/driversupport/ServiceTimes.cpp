#include "siblings/driversupport/ServiceTimes.h"

#include <mutex>

namespace zr {

namespace {

struct GuardedTimes {
    std::mutex guard;
    ServiceTimes times;
};

GuardedTimes& Guarded()
{
    static GuardedTimes guarded;
    return guarded;
}

}  // namespace

ServiceTimes CurrentServiceTimes()
{
    const std::lock_guard lock(Guarded().guard);
    return Guarded().times;
}

void SetServiceTimes(const ServiceTimes& times)
{
    const std::lock_guard lock(Guarded().guard);
    Guarded().times = times;
}

}  // namespace zr
