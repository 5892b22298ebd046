// Which logged data stand behind a device or a group.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"

#include <vector>

namespace zr::desktop {

// The variables that data sets record of these devices: in the order of the devices, of each in that of the data sets,
// and each once.
ZRLoggerInfo LoggedVariables(const std::vector<ZRBasicString>& devices, const std::vector<LoggerDataSet>& sets);
// By the store in force; none where it is away.
ZRLoggerInfo LoggedVariables(const std::vector<ZRBasicString>& devices);

// The tree of viewer settings lists what the user wants to see. Until there is a dialog to choose by, that is all there
// is: variables that a tree which lists any doesn't know yet are added to it. root: of the tree.
void WantAll(const ZRLoggerInfo& info, XmlNode& root);

}  // namespace zr::desktop
