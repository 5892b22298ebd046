#include "logger/GraphLayout.h"

#include "siblings/driversupport/VariableReference.h"

#include <algorithm>
#include <cstddef>

namespace zr::logger {

namespace {

using Record = ZRGraphProfile::CVariableProfile;

// As neighbours changing places while they stand wrong would do it: what is equal keeps its order.
template <typename Less>
void SortFirst(ZRGraphProfile& profile, int count, Less less)
{
    std::vector<Record*> records(profile.VarsBegin(), profile.VarsEnd());
    const auto end = records.begin() + std::clamp<std::ptrdiff_t>(count, 0, std::ssize(records));
    std::stable_sort(records.begin(), end, less);
    std::copy(records.begin(), records.end(), profile.VarsBegin());
}

}  // namespace

void SortByUnit(ZRGraphProfile& profile, int count)
{
    SortFirst(profile, count,
              [](const Record* left, const Record* right) { return left->MeasureUnits < right->MeasureUnits; });
}

void SortByZone(ZRGraphProfile& profile)
{
    SortFirst(profile, static_cast<int>(profile.NVars()), [](const Record* left, const Record* right) {
        return left->Zone != right->Zone ? left->Zone < right->Zone : left->MeasureUnits < right->MeasureUnits;
    });
}

void CutZones(ZRGraphProfile& profile)
{
    for (auto at = profile.VarsBegin(); at != profile.VarsEnd(); ++at) {
        (*at)->Zone = std::min((*at)->Zone, kGraphZones - 1);
    }
}

void RenumberZones(ZRGraphProfile& profile)
{
    int expected = 0;
    auto at = profile.VarsBegin();
    while (at != profile.VarsEnd()) {
        if ((*at)->Zone != expected && at != profile.VarsBegin()) {
            ++expected;
        }
        if ((*at)->Zone == expected) {
            ++at;
            continue;
        }
        for (const int zone = (*at)->Zone; at != profile.VarsEnd() && (*at)->Zone == zone; ++at) {
            (*at)->Zone = expected;
        }
    }
}

AxisRuns FindAxisRuns(const ZRGraphProfile& profile, bool firstTime)
{
    AxisRuns runs;
    runs.perZone[0] = 1;
    std::size_t zone = 0;
    const Record* before = nullptr;
    for (auto at = profile.VarsBegin(); at != profile.VarsEnd(); before = *at, ++at) {
        const Record& record = **at;
        if (before == nullptr) {
            runs.sizes.push_back(1);
        } else if (record.Zone == before->Zone && record.MeasureUnits == before->MeasureUnits) {
            ++runs.sizes.back();
        } else {
            runs.sizes.push_back(1);
            const bool isNewZone = record.Zone != before->Zone;
            zone += isNewZone ? 1 : 0;
            // Settings with zones below 0 can have more zones than there are; those count for nothing.
            if (zone < runs.perZone.size() && (isNewZone || !firstTime)) {
                ++runs.perZone[zone];
            }
        }
    }
    return runs;
}

bool MultipleDevices(const ZRGraphProfile& profile)
{
    if (profile.NVars() == 0) {
        return false;
    }
    const ZRBasicString first = DriverOf((*profile.VarsBegin())->Name);
    return std::any_of(profile.VarsBegin(), profile.VarsEnd(),
                       [&](const Record* record) { return DriverOf(record->Name) != first; });
}

void ChangeNamesVars(ZRGraphProfile& profile, const ZRLoggerInfo& info)
{
    const int mode = MultipleDevices(profile) ? kTitleAmongDevices : kTitleInDevice;
    for (auto at = profile.VarsBegin(); at != profile.VarsEnd(); ++at) {
        for (ZRDriverVariable* variable : info.variables) {
            if (variable->fullName == (*at)->Name) {
                GetTitleVariable(*variable, (*at)->Title, mode);
                return;
            }
        }
    }
}

graph::CurveInfo CurveOf(const ZRGraphProfile::CVariableProfile& record)
{
    const auto lineType = static_cast<unsigned>(record.LineType);
    const unsigned style = lineType & 0xFFU;
    const auto width = static_cast<int>((lineType >> 8U) & 0xFFU);
    graph::CurveInfo curve;
    curve.index = record.Index;
    curve.maximum = record.Maximum == Record::kNoMaximum ? graph::kNoLimit : record.Maximum;
    curve.minimum = record.Minimum == Record::kNoMinimum ? graph::kNoLimit : record.Minimum;
    curve.pen = {style <= graph::PS_DASHDOTDOT ? style : graph::PS_SOLID, std::clamp(width, 1, 9), record.Color};
    curve.brush = {graph::BS_SOLID, record.Color, 0};
    return curve;
}

}  // namespace zr::logger
