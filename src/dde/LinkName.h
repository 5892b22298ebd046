// Names that a DDE client sends.
#pragma once

#include "platform/Ddeml.h"
#include "siblings/tools/ZRBasicString.h"

namespace zr::dde {

// The text of a handle that names a device or a variable. False, with out unchanged, for an unknown handle and for a
// text that is longer than kMaxNameLength.
bool ReadLinkName(DWORD instance, HSZ handle, ZRBasicString& out);

}  // namespace zr::dde
