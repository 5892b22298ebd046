// The order of a graph's curves, their zones, their titles, and what the graph is told of each.
#pragma once

#include "profiles/ZRGraphProfile.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/graphsupport/CurveInfo.h"

#include <array>
#include <vector>

namespace zr::logger {

// Zones are numbered 0 to 5.
inline constexpr int kGraphZones = 6;

// Sorts the first so many records by unit, ascending; records of one unit keep their order.
void SortByUnit(ZRGraphProfile& profile, int count);
// All records by zone and within a zone by unit, likewise.
void SortByZone(ZRGraphProfile& profile);
// Zones beyond the last become the last.
void CutZones(ZRGraphProfile& profile);
// The zones of sorted records become 0, 1, 2 without gaps.
void RenumberZones(ZRGraphProfile& profile);

// Of each zone, how many runs it has.
using RunsPerZone = std::array<int, kGraphZones>;

// Stretches of neighbouring records of one zone and one unit; each has a value scale of its own.
struct AxisRuns {
    std::vector<int> sizes;  // records of each
    RunsPerZone perZone{};
};
// Of sorted and renumbered records. firstTime: see LoggerGraph::UpdateSetup.
AxisRuns FindAxisRuns(const ZRGraphProfile& profile, bool firstTime);

// Whether records belong to more than one device.
bool MultipleDevices(const ZRGraphProfile& profile);
// Titles the first record whose variable is logged, with the device's name where there are several. Meant: that one
// alone, the others keep their titles.
void ChangeNamesVars(ZRGraphProfile& profile, const ZRLoggerInfo& info);

// All that a graph is told of a record but its zone.
graph::CurveInfo CurveOf(const ZRGraphProfile::CVariableProfile& record);

}  // namespace zr::logger
