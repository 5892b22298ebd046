// Which logged data stand behind a device or a group.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/ZRLoggerInfo.h"
#include "siblings/tools/ZRBasicString.h"

#include <vector>

namespace zr::desktop {

// The variables that data sets record of these devices: in the order of the devices, of each in that of the data sets,
// and each once.
ZRLoggerInfo LoggedVariables(const std::vector<ZRBasicString>& devices, const std::vector<LoggerDataSet>& sets);
// By the store in force; none where it is away.
ZRLoggerInfo LoggedVariables(const std::vector<ZRBasicString>& devices);

}  // namespace zr::desktop
