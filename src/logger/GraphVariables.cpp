#include "logger/GraphVariables.h"

#include "logger/GraphColour.h"

#include <algorithm>

namespace zr::logger {

namespace {

bool HasTitle(const ZRGraphProfile& profile, const ZRBasicString& title)
{
    return std::any_of(profile.VarsBegin(), profile.VarsEnd(),
                       [&](const ZRGraphProfile::CVariableProfile* record) { return record->Title == title; });
}

// A variable that can't be described is added with what the record of it holds then.
void AddCurve(ZRGraphProfile& profile, const ZRDriverVariable& variable, int index, const ColorOf& colorOf)
{
    ZRDeviceDriver::tagSVariableInfo told;
    variable.Info(told);
    profile.AddVariable(variable.fullName, told.description, 0, 0, colorOf(profile, variable.fullName),
                        told.measureUnits, told.valueExponent, told.unitsDecimals, told.infoCode, index,
                        ZRGraphProfile::CVariableProfile::kNoMinimum, ZRGraphProfile::CVariableProfile::kNoMaximum,
                        told.unitsExponent);
}

}  // namespace

void BuildVarsToAdd(ZRGraphProfile& existing, ZRGraphProfile& source, ZRGraphProfile& toAdd)
{
    for (auto record = source.VarsBegin(); record != source.VarsEnd(); ++record) {
        if (!HasTitle(existing, (*record)->Title)) {
            toAdd.AddVariable(**record);
        }
    }
}

int AddVariables(ZRGraphProfile& profile, ZRLoggerInfo& info, const std::vector<ZRBasicString>& names,
                 const ColorOf& colorOf)
{
    ZRLoggerInfo added;
    for (const ZRBasicString& name : names) {
        const auto found = std::find_if(info.variables.begin(), info.variables.end(),
                                        [&](const ZRDriverVariable* variable) { return variable->fullName == name; });
        if (found == info.variables.end()) {
            added.AddVariable(name);
        } else {
            AddCurve(profile, **found, static_cast<int>(std::distance(info.variables.begin(), found)), colorOf);
        }
    }
    added.Lock();
    info.Unlock();
    for (const ZRDriverVariable* variable : added.variables) {
        AddCurve(profile, *variable, static_cast<int>(info.variables.size()), colorOf);
        info.AddVariable(variable->fullName);
    }
    info.Lock();
    return static_cast<int>(names.size());
}

int AddVariables(ZRGraphProfile& profile, ZRLoggerInfo& info, const std::vector<ZRBasicString>& names)
{
    return AddVariables(profile, info, names, [](const ZRGraphProfile& curves, const ZRBasicString& name) {
        return GetColor(curves, name, 0, static_cast<int>(curves.NVars()));
    });
}

}  // namespace zr::logger
