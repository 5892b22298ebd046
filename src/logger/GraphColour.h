// The colour of a curve that comes into a graph.
#pragma once

#include "profiles/ZRGraphProfile.h"
#include "siblings/tools/ZRBasicString.h"

namespace zr::logger {

// Blue in the high byte of three, red in the low one. Of a variable split by a filter, the colour that its hour type
// has in the filter file of that name in the data folder, unless one of the first `count` records of the profile has it
// in that zone; otherwise the first of the predefined colours that none of them has there; and where all are taken, the
// next of them by a counter that goes on as long as the process does. UI thread only.
unsigned long GetColor(const ZRGraphProfile& profile, const ZRBasicString& name, int zone, int count);

}  // namespace zr::logger
