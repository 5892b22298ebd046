// Whether a workbook holds what was written into it.
#pragma once

#include <cstdint>
#include <filesystem>

namespace zr::desktop {

// Reads the rows of the only sheet back. False where the file isn't a whole workbook or the sheet has another number of
// rows, or does not come to its end: the library for workbooks does not notice when its temporary files find no room.
// Blocks on the disk.
bool HoldsRows(const std::filesystem::path& workbook, std::int64_t rows);

}  // namespace zr::desktop
