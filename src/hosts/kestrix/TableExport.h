// A table of logged data as a file.
#pragma once

#include "logger/TableTexts.h"
#include "profiles/ZRGraphProfile.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/Progress.h"
#include "siblings/tools/TimeZone.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zr::desktop {

// What a file can hold.
enum class ExportKind { Csv, Workbook, Pdf };
// By its extension, in small or capital letters; none for another one.
[[nodiscard]] std::optional<ExportKind> ExportKindOf(const std::filesystem::path& file);
// With its point.
[[nodiscard]] const char* ExtensionOf(ExportKind kind);
// A device or group as the title of a file: what a file system may not take becomes "_".
[[nodiscard]] ZRBasicString FileTitleOf(const ZRBasicString& name);

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

// Each false, with the reason, when the file can't be written, and without one when the user stopped it; the old file
// is then as it was. progress may be null. Any thread, while nobody changes the records; blocks on the disk.
// UTF-8, RFC 4180: commas, CR LF, a line of titles. Times as 2002-12-30T23:58:07+01:00, numbers with a point, an empty
// cell for no value.
bool WriteCsv(const ExportedTable& table, const std::filesystem::path& file, Progress* progress, std::string& reason);
// Workbook of one sheet: local times and numbers as such, and a column with the offset from UTC.
bool WriteXlsx(const ExportedTable& table, const std::filesystem::path& file, Progress* progress, std::string& reason);

// Tells every some thousand records how far a walk through them is.
class ExportProgress {
public:
    // progress may be null. percent: the part of the whole work that the walk is.
    ExportProgress(Progress* progress, int records, int percent)
        : m_progress(progress), m_records(records), m_percent(percent)
    {
    }
    // Before each record. False: the user has stopped the work.
    bool Next();

private:
    static constexpr int kStep = 4096;

    Progress* m_progress;  // Not owned.
    int m_records;
    int m_percent;
    int m_done = 0;
};

}  // namespace zr::desktop
