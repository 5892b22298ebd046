// A table of logged data as a file.
#pragma once

#include "logger/TableTexts.h"
#include "profiles/ZRGraphProfile.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/TimeZone.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zr::desktop {

// What is exported; must outlive the call.
struct ExportedTable {
    std::vector<std::string> titles;          // of all columns, the time first; UTF-8
    std::vector<logger::ValueColumn> values;  // one less
    const ZRLoggerData::CRecordGroup* group = nullptr;
    TimeZone zone;            // of the records' times
    std::string offsetTitle;  // of the column that says how far local time is from UTC
};

// Titles and columns of a table of these variables, in its order; what isn't logged has none. The list must be locked.
void SetColumns(ExportedTable& table, const ZRTableProfile& profile, const ZRLoggerInfo& info);
// Of a graph, in the order of its curves: as a table on the same variables has them.
void SetColumns(ExportedTable& table, const ZRGraphProfile& profile, const ZRLoggerInfo& info);

// The offset from UTC of records in their order, seconds. Of an hour that occurs twice, the second pass is told by the
// order.
class RecordOffsets {
public:
    explicit RecordOffsets(const TimeZone& zone) : m_zone(zone) {}
    std::int32_t Of(const ZRDateTime& local);

private:
    const TimeZone& m_zone;
    std::int64_t m_lastUtc = INT64_MIN;
};
// Such as +01:00.
std::string OffsetText(std::int32_t seconds);

// Each false, with the reason, when the file can't be written; the old one is then as it was.
// UTF-8, RFC 4180: commas, CR LF, a line of titles. Times as 2002-12-30T23:58:07+01:00, numbers with a point, an empty
// cell for no value.
bool WriteCsv(const ExportedTable& table, const std::filesystem::path& file, std::string& reason);
// Workbook of one sheet: local times and numbers as such, and a column with the offset from UTC.
bool WriteXlsx(const ExportedTable& table, const std::filesystem::path& file, std::string& reason);

}  // namespace zr::desktop
