// Packing and unpacking of blocks by themselves.
#pragma once

#include "DemoYear.h"

namespace zr::bench {

// Of hours of the year, all variables.
void RunCodecBench(const DemoYear& year);

}  // namespace zr::bench
