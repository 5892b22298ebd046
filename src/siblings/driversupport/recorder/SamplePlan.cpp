#include "siblings/driversupport/recorder/SamplePlan.h"

#include <algorithm>
#include <limits>

namespace zr {
namespace {

constexpr std::int64_t kSecond = 1000000;
// Less than that is a clock being steered, not set.
constexpr std::int64_t kSmallestStep = kSecond;
constexpr std::int64_t kLeastTolerance = kSecond;
constexpr std::int64_t kMostTolerance = 60 * kSecond;
// Each time that the clock is set makes one interval more; beyond this the nearest two are taken for one.
constexpr std::size_t kMostIntervals = 256;

std::int64_t Floor(std::int64_t time, std::int64_t period)
{
    const std::int64_t rest = time % period;
    return time - rest - (rest < 0 ? period : 0);
}

}  // namespace

SamplePlan::SamplePlan(std::span<const std::int32_t> periods)
{
    for (const std::int32_t period : periods) {
        m_paces.push_back({std::max<std::int32_t>(period, 1) * kSecond, {}});
    }
}

void SamplePlan::Begin(Moment now)
{
    m_last = now;
    m_livedUntil = now.utc;
    m_step = 0;
}

std::span<const SamplePlan::Due> SamplePlan::Take(Moment now)
{
    const std::int64_t passed = std::max<std::int64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(now.steady - m_last.steady).count(), 0);
    const std::int64_t step = now.utc - m_last.utc - passed;
    m_step = step > kSmallestStep || step < -kSmallestStep ? step : 0;
    // After a step only the time that has really passed counts, and where the clock now says that it was.
    const std::int64_t from = m_step != 0 ? now.utc - passed : m_livedUntil;
    m_livedUntil = m_step != 0 ? now.utc : std::max(m_livedUntil, now.utc);
    m_last = now;

    m_due.clear();
    for (std::size_t i = 0; i < m_paces.size(); ++i) {
        Pace& pace = m_paces[i];
        const Interval range = {Floor(from, pace.period) + pace.period, Floor(now.utc, pace.period)};
        if (range.first > range.last) {
            continue;
        }
        const auto times = static_cast<std::uint64_t>((range.last - range.first) / pace.period) + 1;
        const std::int64_t tolerance = std::clamp(pace.period / 10, kLeastTolerance, kMostTolerance);
        Due due;
        due.index = i;
        due.time = range.last;
        due.isDue = now.utc - range.last < tolerance && !IsLived(pace, range.last);
        due.clockSetBack = CountLived(pace, range);
        due.late = times - due.clockSetBack - (due.isDue ? 1 : 0);
        Live(pace, range);
        m_due.push_back(due);
    }
    return m_due;
}

std::chrono::microseconds SamplePlan::UntilNext(Moment now) const
{
    std::int64_t next = std::numeric_limits<std::int64_t>::max();
    for (const Pace& pace : m_paces) {
        next = std::min(next, Floor(m_livedUntil, pace.period) + pace.period);
    }
    return std::chrono::microseconds(std::max<std::int64_t>(next - now.utc, 0));
}

bool SamplePlan::IsLived(const Pace& pace, std::int64_t time)
{
    return CountLived(pace, {time, time}) > 0;
}

std::uint64_t SamplePlan::CountLived(const Pace& pace, Interval range)
{
    std::uint64_t count = 0;
    for (const Interval& lived : pace.lived) {
        const std::int64_t first = std::max(lived.first, range.first);
        const std::int64_t last = std::min(lived.last, range.last);
        count += first <= last ? static_cast<std::uint64_t>((last - first) / pace.period) + 1 : 0;
    }
    return count;
}

void SamplePlan::Live(Pace& pace, Interval range)
{
    std::vector<Interval>& lived = pace.lived;
    const auto touches = [&](const Interval& other) {
        return other.first <= range.last + pace.period && range.first <= other.last + pace.period;
    };
    // Those that touch it stand together.
    const auto first = std::find_if(lived.begin(), lived.end(),
                                    [&](const Interval& other) { return touches(other) || other.first > range.last; });
    auto last = first;
    for (; last != lived.end() && touches(*last); ++last) {
        range = {std::min(range.first, last->first), std::max(range.last, last->last)};
    }
    lived.insert(lived.erase(first, last), range);
    if (lived.size() <= kMostIntervals) {
        return;
    }
    auto nearest = lived.begin();
    for (auto i = lived.begin(); i + 1 != lived.end(); ++i) {
        nearest = (i + 1)->first - i->last < (nearest + 1)->first - nearest->last ? i : nearest;
    }
    nearest->last = (nearest + 1)->last;
    lived.erase(nearest + 1);
}

}  // namespace zr
