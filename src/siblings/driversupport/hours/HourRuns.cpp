#include "siblings/driversupport/hours/HourRuns.h"

#include <algorithm>

namespace zr {

namespace {

constexpr std::int64_t kMicros = 1000000;

class FilteredBlock final : public LoggerBlock {
public:
    FilteredBlock(std::vector<std::int64_t> times, std::vector<double> values)
        : m_times(std::move(times)), m_values(std::move(values))
    {
        summary = Summarise(m_times, m_values);
    }
    bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) override
    {
        times = m_times;
        values = m_values;
        return true;
    }

private:
    std::vector<std::int64_t> m_times;
    std::vector<double> m_values;
};

}  // namespace

HourRuns::HourRuns(const HourCalendar& calendar, const TimeZone& zone, std::int64_t from, std::int64_t to)
{
    // The range lies after 1970 and may begin and end within a second.
    for (const HourCalendar::Run& run : calendar.Runs(zone, from / kMicros, (to + kMicros - 1) / kMicros)) {
        m_cuts.push_back(run.from * kMicros);
        m_hourTypes.push_back(run.hourType);
    }
    if (!m_cuts.empty()) {
        m_cuts.front() = from;
        m_cuts.push_back(to);
    }
}

std::size_t HourRuns::RunAt(std::int64_t time) const
{
    const auto next = std::upper_bound(m_cuts.begin(), m_cuts.end(), time);
    return next == m_cuts.begin() || next == m_cuts.end() ? Size()
                                                          : static_cast<std::size_t>(next - m_cuts.begin()) - 1;
}

bool HourFilter::IsOurs(std::size_t run) const
{
    return run < m_runs.Size() && m_runs.HourType(run) == m_hourType;
}

bool HourFilter::OnBlock(LoggerBlock& block)
{
    const std::size_t run = m_runs.RunAt(block.summary.firstTime);
    if (run == m_runs.RunAt(block.summary.lastTime) && run < m_runs.Size()) {
        return !IsOurs(run) || m_visitor.OnBlock(block);
    }
    std::span<const std::int64_t> times;
    std::span<const double> values;
    if (!block.Samples(times, values) || times.size() != values.size()) {
        // What is damaged is left out; the checks of the store name it.
        return true;
    }
    std::vector<std::int64_t> ourTimes;
    std::vector<double> ourValues;
    for (std::size_t i = 0; i < times.size(); ++i) {
        if (IsOurs(m_runs.RunAt(times[i]))) {
            ourTimes.push_back(times[i]);
            ourValues.push_back(values[i]);
        }
    }
    if (ourTimes.empty()) {
        return true;
    }
    FilteredBlock filtered(std::move(ourTimes), std::move(ourValues));
    return m_visitor.OnBlock(filtered);
}

}  // namespace zr
