// A CSV file into a database of a row a record.
#pragma once

#include <cstddef>
#include <filesystem>

namespace zr::bench {

// Reads a file of a time and seven numbers a line with the standard library, and inserts each line as a row of an
// SQLite table in one transaction, with the same durability as our store. Returns how many numbers it inserted; 0 when
// it failed.
std::size_t ImportIntoRows(const std::filesystem::path& csv, const std::filesystem::path& database);

}  // namespace zr::bench
