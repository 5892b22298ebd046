// When samples are due: at the multiples of a period in UTC, whatever becomes of the clock.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zr {

// Decides for several periods at once; knows no clock, only what it is told. The steady time tells how long something
// took, so that a clock that was set is told from a computer that was held up:
// - Set forward by more than a second: the times that were left out are no one's loss; it goes on with the next.
// - Set back by more than a second: a time that was lived through before is not due again, and counts as set back; any
//   other is due. Smaller steps lengthen or shorten a wait and nothing else.
// - Held up: the newest time is still due for a tenth of its period, at least a second and at most a minute; what was
//   missed counts as late.
// Nothing here loops over the times that were missed.
class SamplePlan {
public:
    struct Moment {
        std::int64_t utc = 0;  // microseconds since 1970
        std::chrono::steady_clock::time_point steady;
    };

    // What has become of one period since the last time. Counts are of times at which a sample was due.
    struct Due {
        std::size_t index = 0;  // of the period
        bool isDue = false;
        std::int64_t time = 0;  // at which the sample counts, microseconds UTC; of use when it is due
        std::uint64_t late = 0;
        std::uint64_t clockSetBack = 0;
    };

    // periods: in seconds, at least 1.
    explicit SamplePlan(std::span<const std::int32_t> periods);

    // Begins, or goes on after a pause: what came before now isn't due. What was lived through is still known.
    void Begin(Moment now);
    // What has fallen due since Begin or the last call; valid until the next one. Periods of which there is nothing to
    // tell are left out.
    std::span<const Due> Take(Moment now);
    // By how many microseconds the clock was found set at the last Take: negative when it was set back; 0 when it was
    // not, or by no more than a second.
    [[nodiscard]] std::int64_t Step() const { return m_step; }
    // From now until something is due, if the clock isn't set. 0 when something is due already.
    [[nodiscard]] std::chrono::microseconds UntilNext(Moment now) const;

private:
    // Times at one period's pace that were lived through; both inclusive.
    struct Interval {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };
    struct Pace {
        std::int64_t period = 0;      // microseconds
        std::vector<Interval> lived;  // in order, none touching the next
    };

    static std::uint64_t CountLived(const Pace& pace, Interval range);
    static bool IsLived(const Pace& pace, std::int64_t time);
    static void Live(Pace& pace, Interval range);

    std::vector<Pace> m_paces;
    Moment m_last;
    std::int64_t m_livedUntil = 0;  // what comes after it is to be looked at
    std::int64_t m_step = 0;
    std::vector<Due> m_due;
};

}  // namespace zr
