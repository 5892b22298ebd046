// The filters that the variables of one load are split by.
#pragma once

#include "siblings/driversupport/hours/HourRuns.h"
#include "siblings/tools/TimeZone.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zr {

// Reads each filter file once, from the folder of filter files (ZRKestrixSetup::dataFolder), so that a load sees the
// calendar of its own moment.
class HourSplit {
public:
    // Nothing to split.
    HourSplit() = default;
    // A range in microseconds since 1970 UTC, `to` exclusive.
    HourSplit(const TimeZone& zone, std::int64_t from, std::int64_t to) : m_zone(zone), m_from(from), m_to(to) {}

    // An hour type of a filter. Without runs it can't be told when it holds.
    struct Hours {
        std::shared_ptr<const HourRuns> runs;
        std::size_t hourType = 0;
    };
    // By the parts of a full reference. Blocks on the disk.
    Hours Find(const ZRBasicString& filter, const ZRBasicString& hour);
    // Why hour types couldn't be found: one line each, in order, with file and line where there is one.
    [[nodiscard]] const std::vector<std::string>& Problems() const { return m_problems; }

private:
    struct Filter {
        std::vector<ZRBasicString> hourTypes;
        std::shared_ptr<const HourRuns> runs;  // null when the file isn't fit; it is told of once
    };
    const Filter& Read(const ZRBasicString& name);
    void AddProblem(const std::string& problem);

    TimeZone m_zone;
    std::int64_t m_from = 0;
    std::int64_t m_to = 0;
    std::map<ZRBasicString, Filter> m_filters;
    std::vector<std::string> m_problems;
};

}  // namespace zr
