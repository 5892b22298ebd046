// Recording twenty thousand samples a second.
#pragma once

#include "DemoYear.h"

#include <filesystem>

namespace zr::bench {

// Values are taken from the year. Writes into the folder, which must exist.
void RunRecordBench(const DemoYear& year, const std::filesystem::path& folder);

}  // namespace zr::bench
