// Where a sample period cuts a stretch of time.
#pragma once

#include "siblings/tools/TimeZone.h"

#include <cstdint>
#include <vector>

namespace zr {

// The moments at which groups of samples begin and end, in seconds since 1970 UTC: `from`, the cuts between, and `to`.
// Empty unless from lies before to. The period is in seconds, at least 1.
//
// Cuts lie in local time. Below a day they count from each midnight, and where the clock is set to another period of
// the day there is a cut as well: the hour that occurs twice is cut twice, a skipped one not at all. From a day on a
// period is so many whole days, counted from 1 January 2000, each from midnight to midnight, be it 23 hours or 25; from
// 31 days on it is a month for every 31 days, counted from January 2000.
std::vector<std::int64_t> PeriodCuts(const TimeZone& zone, std::int64_t from, std::int64_t to, std::int32_t period);

}  // namespace zr
