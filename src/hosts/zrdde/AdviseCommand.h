// zrdde advise: links, and what arrives on them.
#pragma once

#include "hosts/zrdde/Options.h"

namespace zr::ddeclient {

// Prints values on standard output until the count, the time or the conversation ends. Returns the exit status, after
// saying on standard error what went wrong.
int Advise(const Options& options);

}  // namespace zr::ddeclient
