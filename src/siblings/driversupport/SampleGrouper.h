// The samples of one variable, made one value a period.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zr {

// By the class of the variable (zr::VariableClass; an unknown one counts as instantaneous):
//
//   instantaneous  the mean of the samples of the group
//   maximum        the largest            minimum  the smallest
//   state          the last
//   counter        the consumption: the reading at the end of the group less the one at its beginning, both
//                  interpolated between the samples next to the cut, with roll-overs and exchanged meters taken out
//                  (see CounterRise). So a gap is shared out by time, and the sum over all groups is what the meter
//                  counted.
//
// A sample belongs to the group that begins at its time or before and ends after it. Values that aren't finite count
// for nothing. Give samples in order of time; for a counter also the one before the first group and the one after the
// last.
class SampleGrouper {
public:
    // Group i goes from cuts[i] to cuts[i + 1], exclusive. Ascending; must outlive this.
    SampleGrouper(std::int32_t infoCode, std::span<const std::int64_t> cuts);

    // Samples outside all groups serve a counter's readings only.
    void AddSamples(std::span<const std::int64_t> times, std::span<const double> values, bool areFinite);
    // Samples that lie within one group, by what their summary tells. False, with nothing added, when that isn't
    // enough: add the samples then.
    bool AddSummary(const LoggerSummary& summary);

    // The same samples in the groups between other cuts, which must outlive the result: group i goes into group
    // into[i] of those, ascending, or with kNoGroup into none. A group lies wholly within the one it goes into.
    static constexpr std::size_t kNoGroup = static_cast<std::size_t>(-1);
    [[nodiscard]] SampleGrouper Merged(std::span<const std::int64_t> cuts, std::span<const std::size_t> into) const;

    // Whether the samples next to the first and the last cut are of use.
    [[nodiscard]] bool IsCounter() const { return m_kind == Kind::Consumption; }
    [[nodiscard]] std::size_t Size() const { return m_values.size(); }
    // Whether the group holds a value.
    [[nodiscard]] bool IsValid(std::size_t group) const { return m_counts[group] != 0; }
    [[nodiscard]] double Value(std::size_t group) const;

private:
    enum class Kind { Mean, Largest, Smallest, Last, Consumption };
    static Kind KindOf(std::int32_t infoCode);
    SampleGrouper(Kind kind, std::span<const std::int64_t> cuts);

    void AddFiniteOf(std::span<const std::int64_t> times, std::span<const double> values);
    // The end of the samples from first on that lie before a time.
    [[nodiscard]] std::size_t EndOfRun(std::span<const std::int64_t> times, std::size_t first, std::int64_t end) const;
    // Moves on to the group that holds a time, which must lie before the last cut.
    void MoveTo(std::int64_t time);
    void AddRun(std::span<const double> values);
    void AddValue(double value, std::size_t count);
    void AddCounterRun(std::span<const std::int64_t> times, std::span<const double> values);
    // From the reading before to the next one, shared out over the groups between.
    void AddStep(std::int64_t time, double value);

    Kind m_kind;
    std::span<const std::int64_t> m_cuts;
    std::size_t m_group = 0;      // that of the last sample
    std::size_t m_runLength = 1;  // of the last run, a guess for the next
    std::vector<double> m_values;
    std::vector<std::size_t> m_counts;
    bool m_hasReading = false;
    LoggerSample m_reading;          // of a counter, the last one
    std::size_t m_readingGroup = 0;  // that holds it, or the first to end after it
};

}  // namespace zr
