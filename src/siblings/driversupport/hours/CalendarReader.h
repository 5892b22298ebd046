// The calendar of a filter file, as text and checked.
#pragma once

#include "siblings/driversupport/hours/HourCalendar.h"
#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"

#include <string>
#include <vector>

namespace zr {

// Reads the element `calendar` (docs/formats/filter-file.md). The hour types are numbered as given. False, with
// calendar unchanged and error "FILE:LINE: REASON", when a rule is broken: every local time must have exactly one
// hour type.
bool ReadCalendar(const XmlNode& node, const std::string& file, const std::vector<ZRBasicString>& hourTypes,
                  HourCalendar& calendar, std::string& error);

}  // namespace zr
