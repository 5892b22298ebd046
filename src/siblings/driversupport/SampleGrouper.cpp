#include "siblings/driversupport/SampleGrouper.h"

#include "siblings/driversupport/CounterRise.h"
#include "siblings/driversupport/VariableStore.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zr {

namespace {

// Four sums side by side, since each addition waits for the one before.
double SumOf(std::span<const double> values)
{
    std::array<double, 4> sums{};
    std::size_t i = 0;
    for (; i + 4 <= values.size(); i += 4) {
        sums[0] += values[i];
        sums[1] += values[i + 1];
        sums[2] += values[i + 2];
        sums[3] += values[i + 3];
    }
    for (; i < values.size(); ++i) {
        sums[0] += values[i];
    }
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

// What a counter counted over readings in a row.
double RiseOf(std::span<const double> values)
{
    bool isRising = true;
    for (std::size_t i = 1; i < values.size(); ++i) {
        isRising = isRising && values[i] >= values[i - 1];
    }
    if (isRising) {
        return values.back() - values.front();
    }
    double rise = 0.0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        rise += CounterRise(values[i - 1], values[i]);
    }
    return rise;
}

}  // namespace

SampleGrouper::SampleGrouper(std::int32_t infoCode, std::span<const std::int64_t> cuts)
    : SampleGrouper(KindOf(infoCode), cuts)
{
}

SampleGrouper::SampleGrouper(Kind kind, std::span<const std::int64_t> cuts)
    : m_kind(kind), m_cuts(cuts), m_values(cuts.empty() ? 0 : cuts.size() - 1), m_counts(m_values.size())
{
}

SampleGrouper::Kind SampleGrouper::KindOf(std::int32_t infoCode)
{
    switch (static_cast<VariableClass>(infoCode)) {
        case VariableClass::Maximum:
            return Kind::Largest;
        case VariableClass::Minimum:
            return Kind::Smallest;
        case VariableClass::State:
            return Kind::Last;
        case VariableClass::Counter:
            return Kind::Consumption;
        default:
            return Kind::Mean;
    }
}

double SampleGrouper::Value(std::size_t group) const
{
    if (m_kind == Kind::Mean && m_counts[group] != 0) {
        return m_values[group] / static_cast<double>(m_counts[group]);
    }
    return m_values[group];
}

void SampleGrouper::AddSamples(std::span<const std::int64_t> times, std::span<const double> values, bool areFinite)
{
    if (m_values.empty()) {
        return;
    }
    if (!areFinite) {
        AddFiniteOf(times, values);
        return;
    }
    std::size_t i = EndOfRun(times, 0, m_cuts.front());
    if (i > 0 && m_kind == Kind::Consumption) {
        AddStep(times[i - 1], values[i - 1]);
    }
    while (i < times.size() && times[i] < m_cuts.back()) {
        MoveTo(times[i]);
        const std::size_t end = EndOfRun(times, i, m_cuts[m_group + 1]);
        if (m_kind == Kind::Consumption) {
            AddCounterRun(times.subspan(i, end - i), values.subspan(i, end - i));
        } else {
            AddRun(values.subspan(i, end - i));
        }
        m_runLength = end - i;
        i = end;
    }
    if (i < times.size() && m_kind == Kind::Consumption) {
        AddStep(times[i], values[i]);
    }
}

void SampleGrouper::AddFiniteOf(std::span<const std::int64_t> times, std::span<const double> values)
{
    std::vector<std::int64_t> finiteTimes;
    std::vector<double> finiteValues;
    for (std::size_t i = 0; i < times.size(); ++i) {
        if (std::isfinite(values[i])) {
            finiteTimes.push_back(times[i]);
            finiteValues.push_back(values[i]);
        }
    }
    AddSamples(finiteTimes, finiteValues, true);
}

bool SampleGrouper::AddSummary(const LoggerSummary& summary)
{
    if (m_values.empty() || !summary.isFinite || (m_kind == Kind::Consumption && !summary.isRising) ||
        summary.firstTime < m_cuts.front() || summary.firstTime >= m_cuts.back()) {
        return false;
    }
    MoveTo(summary.firstTime);
    if (summary.lastTime >= m_cuts[m_group + 1]) {
        return false;
    }
    switch (m_kind) {
        case Kind::Mean:
            AddValue(summary.sum, summary.count);
            break;
        case Kind::Largest:
            AddValue(summary.maximum, summary.count);
            break;
        case Kind::Smallest:
            AddValue(summary.minimum, summary.count);
            break;
        case Kind::Last:
            AddValue(summary.last, summary.count);
            break;
        case Kind::Consumption:
            AddStep(summary.firstTime, summary.first);
            AddStep(summary.lastTime, summary.last);
            break;
    }
    return true;
}

SampleGrouper SampleGrouper::Merged(std::span<const std::int64_t> cuts, std::span<const std::size_t> into) const
{
    SampleGrouper merged(m_kind, cuts);
    for (std::size_t group = 0; group < into.size(); ++group) {
        if (into[group] != kNoGroup && IsValid(group)) {
            merged.m_group = into[group];
            merged.AddValue(m_values[group], m_counts[group]);
        }
    }
    return merged;
}

std::size_t SampleGrouper::EndOfRun(std::span<const std::int64_t> times, std::size_t first, std::int64_t end) const
{
    // Mostly as many as last time.
    const std::size_t guess = first + m_runLength;
    if (guess <= times.size() && times[guess - 1] < end && (guess == times.size() || times[guess] >= end)) {
        return guess;
    }
    const auto from = times.begin() + static_cast<std::ptrdiff_t>(first);
    return static_cast<std::size_t>(std::lower_bound(from, times.end(), end) - times.begin());
}

void SampleGrouper::MoveTo(std::int64_t time)
{
    while (time >= m_cuts[m_group + 1]) {
        ++m_group;
    }
}

void SampleGrouper::AddRun(std::span<const double> values)
{
    switch (m_kind) {
        case Kind::Mean:
            AddValue(SumOf(values), values.size());
            break;
        case Kind::Largest:
            AddValue(*std::max_element(values.begin(), values.end()), values.size());
            break;
        case Kind::Smallest:
            AddValue(*std::min_element(values.begin(), values.end()), values.size());
            break;
        default:
            AddValue(values.back(), values.size());
            break;
    }
}

// What stands for so many samples of the group, by the kind.
void SampleGrouper::AddValue(double value, std::size_t count)
{
    double& held = m_values[m_group];
    const bool isFirst = m_counts[m_group] == 0;
    switch (m_kind) {
        case Kind::Mean:
        case Kind::Consumption:
            held += value;
            break;
        case Kind::Largest:
            held = isFirst ? value : std::max(held, value);
            break;
        case Kind::Smallest:
            held = isFirst ? value : std::min(held, value);
            break;
        case Kind::Last:
            held = value;
            break;
    }
    m_counts[m_group] += count;
}

void SampleGrouper::AddCounterRun(std::span<const std::int64_t> times, std::span<const double> values)
{
    AddStep(times.front(), values.front());
    if (values.size() < 2) {
        return;
    }
    m_values[m_group] += RiseOf(values);
    ++m_counts[m_group];
    m_reading = {times.back(), values.back()};
}

void SampleGrouper::AddStep(std::int64_t time, double value)
{
    const LoggerSample before = m_reading;
    const bool hasBefore = m_hasReading && time > before.time;
    m_reading = {time, value};
    m_hasReading = true;
    if (!hasBefore) {
        return;
    }
    const double rise = CounterRise(before.value, value);
    const auto length = static_cast<double>(time - before.time);
    while (m_readingGroup < m_values.size() && m_cuts[m_readingGroup + 1] <= before.time) {
        ++m_readingGroup;
    }
    for (std::size_t group = m_readingGroup; group < m_values.size() && m_cuts[group] < time; ++group) {
        const std::int64_t begin = std::max(before.time, m_cuts[group]);
        const std::int64_t end = std::min(time, m_cuts[group + 1]);
        m_values[group] += rise * (static_cast<double>(end - begin) / length);
        ++m_counts[group];
    }
}

}  // namespace zr
