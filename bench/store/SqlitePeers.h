// The same year in plain tables of SQLite, read into the same records: what the store is compared with.
#pragma once

#include "DemoYear.h"
#include "siblings/driversupport/RecordArena.h"

#include <filesystem>

namespace zr::bench {

// A row a sample: series, time and value, the first two the key.
class RowASample {
public:
    static void Write(const std::filesystem::path& file, const DemoYear& year);
    static RecordArena Load(const std::filesystem::path& file);
};

// A row a record: the time, which is the key, and ten values.
class RowARecord {
public:
    static void Write(const std::filesystem::path& file, const DemoYear& year);
    static RecordArena Load(const std::filesystem::path& file);
};

}  // namespace zr::bench
