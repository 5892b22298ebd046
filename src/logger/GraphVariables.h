// How variables come into the profile of a graph.
#pragma once

#include "profiles/ZRGraphProfile.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/ZRBasicString.h"

#include <functional>
#include <vector>

namespace zr::logger {

// Appends to toAdd each record of source whose title no record of existing has.
void BuildVarsToAdd(ZRGraphProfile& existing, ZRGraphProfile& source, ZRGraphProfile& toAdd);

// The colour of a curve that is about to be added to a profile.
using ColorOf = std::function<unsigned long(ZRGraphProfile& profile, const ZRBasicString& name)>;

// Appends a curve for each name, those of variables that info has already first: in zone 0, solid, without limits, by
// the variable's description. Names that info lacks are added to it; it is locked then. The number of names. UI thread
// only.
int AddVariables(ZRGraphProfile& profile, ZRLoggerInfo& info, const std::vector<ZRBasicString>& names,
                 const ColorOf& colorOf);
// With a colour that is new in the zone; see GetColor.
int AddVariables(ZRGraphProfile& profile, ZRLoggerInfo& info, const std::vector<ZRBasicString>& names);

}  // namespace zr::logger
