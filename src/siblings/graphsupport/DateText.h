// How a graph writes dates and times.
#pragma once

#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRDateTime.h"
#include "siblings/tools/ZRLocaleInformation.h"

namespace zr::graph {

// Writes a date by flags into out, and returns it; the logger's FormatDateTime, which stands above this library.
using DateText = ZRBasicString& (*)(ZRBasicString& out, const ZRDateTime& date,
                                    const ZRLocaleInformation<ZRBasicString>& locale, unsigned flags);

}  // namespace zr::graph
