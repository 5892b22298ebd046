// Live values as text.
#pragma once

#include "siblings/driversupport/ZRDriverVariable.h"

#include <string>

namespace zr::supervision {

// The value with its unit, as "230.4 V", in the user's number format; the name of a value of a closed list; "--" while
// it isn't valid.
std::string ValueText(ZRDriverVariable& variable);

}  // namespace zr::supervision
