// Loading a year out of a store.
#pragma once

#include "DemoYear.h"

#include <filesystem>

namespace zr::bench {

// Writes into the folder, which must exist.
void RunLoadBench(const DemoYear& year, const std::filesystem::path& folder);

}  // namespace zr::bench
