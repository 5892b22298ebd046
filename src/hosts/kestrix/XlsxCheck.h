// Whether a workbook holds what was written into it.
#pragma once

#include <cstdint>
#include <filesystem>

namespace zr::desktop {

// Reads the parts of the workbook back. False where the file isn't a whole workbook, a part of it is damaged or does
// not come to its end, or the only sheet has another number of rows: the library for workbooks does not notice when its
// temporary files find no room. False for any other file, too. Blocks on the disk.
bool HoldsRows(const std::filesystem::path& workbook, std::int64_t rows);

}  // namespace zr::desktop
