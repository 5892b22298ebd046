// What a recorder tells of itself, as entries of the warning list.
#pragma once

#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/recorder/RecorderFigures.h"
#include "siblings/tools/ZRBasicString.h"

#include <vector>

namespace zr::supervision {

// In the language in force. stores: the titles of the nodes.
DeviceNotice NoticeOf(const RecorderNotice& notice, const std::vector<ZRBasicString>& stores);

// That nothing of a device is recorded in a data set, since it isn't there.
DeviceNotice NoticeOfMissingDevice(const ZRBasicString& dataSet, const ZRBasicString& device);

// Why a sample isn't recorded, in a few words of the language in force.
ZRBasicString ReasonText(UnrecordedReason reason);

// In the user's number format.
ZRBasicString CountText(std::uint64_t count);

}  // namespace zr::supervision
