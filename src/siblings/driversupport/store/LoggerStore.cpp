#include "siblings/driversupport/store/LoggerStore.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace zr {

namespace {

std::atomic<LoggerStore*> g_store = nullptr;

}  // namespace

LoggerSummary Summarise(std::span<const std::int64_t> times, std::span<const double> values)
{
    LoggerSummary summary;
    summary.firstTime = times.front();
    summary.lastTime = times.back();
    summary.count = values.size();
    summary.first = summary.minimum = summary.maximum = values.front();
    summary.last = values.back();
    summary.isRising = summary.isFinite = true;
    double before = values.front();
    for (const double value : values) {
        summary.isFinite = summary.isFinite && std::isfinite(value);
        summary.isRising = summary.isRising && value >= before;
        summary.minimum = std::min(summary.minimum, value);
        summary.maximum = std::max(summary.maximum, value);
        summary.sum += value;
        before = value;
    }
    return summary;
}

LoggerStore* CurrentLoggerStore()
{
    return g_store.load(std::memory_order_acquire);
}

void SetLoggerStore(LoggerStore* store)
{
    g_store.store(store, std::memory_order_release);
}

}  // namespace zr
