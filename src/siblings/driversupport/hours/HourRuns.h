// When the hour types of a filter hold over the range of a load.
#pragma once

#include "siblings/driversupport/hours/HourCalendar.h"
#include "siblings/driversupport/store/LoggerStore.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zr {

// Times in microseconds since 1970 UTC. Immutable. Any thread.
class HourRuns {
public:
    // `to` exclusive.
    HourRuns(const HourCalendar& calendar, const TimeZone& zone, std::int64_t from, std::int64_t to);

    // Run i goes from Cuts()[i] to Cuts()[i + 1], exclusive.
    [[nodiscard]] std::span<const std::int64_t> Cuts() const { return m_cuts; }
    [[nodiscard]] std::size_t Size() const { return m_hourTypes.size(); }
    [[nodiscard]] std::size_t HourType(std::size_t run) const { return m_hourTypes[run]; }
    // The run that holds a time; Size() outside the range.
    [[nodiscard]] std::size_t RunAt(std::int64_t time) const;

private:
    std::vector<std::int64_t> m_cuts;
    std::vector<std::size_t> m_hourTypes;  // of each run
};

// Shows another visitor the samples of one hour type alone. Blocks within one run go on as they are or not at all;
// only those on a boundary are unpacked.
class HourFilter final : public LoggerBlockVisitor {
public:
    // Both must outlive this.
    HourFilter(const HourRuns& runs, std::size_t hourType, LoggerBlockVisitor& visitor)
        : m_runs(runs), m_hourType(hourType), m_visitor(visitor)
    {
    }
    bool OnBlock(LoggerBlock& block) override;

private:
    [[nodiscard]] bool IsOurs(std::size_t run) const;

    const HourRuns& m_runs;
    std::size_t m_hourType;
    LoggerBlockVisitor& m_visitor;
};

}  // namespace zr
