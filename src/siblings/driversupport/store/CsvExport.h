// Writes logged data as a CSV file.
#pragma once

#include "siblings/tools/CsvReader.h"
#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRDateTime.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class ZRLoggerInfo;

namespace zr {

class Progress;

// Where the bytes go.
class CsvSink {
public:
    // False when they can't be written.
    virtual bool Write(std::string_view bytes) = 0;
    // Why the last call failed.
    [[nodiscard]] virtual std::string Error() const = 0;

protected:
    ~CsvSink() = default;
};

struct CsvExportOptions {
    std::vector<ZRBasicString> variables;  // references, full ones too; at least one
    ZRDateTime from;                       // local to the plant; no date: from the first sample on
    ZRDateTime to;                         // likewise, exclusive; no date: up to the last
    std::int32_t period = 0;               // seconds; 0: as recorded
    CsvFormat format{',', '.'};
};

// One run an object. Reads from the store in force, groups as ZRLoggerData does, in windows of time, so that memory
// stays bounded however long the range is; what comes out is the same as of one window.
//
// A header row with "time" and the names, each with its unit in brackets where a device tells it; then a row a record.
// Times are local to the plant with their offset from UTC, as 2006-12-16T17:24:00+01:00, with microseconds where they
// aren't whole seconds. Values are the shortest decimals that read back as the same double; what has no value is empty.
class CsvExport {
public:
    explicit CsvExport(CsvExportOptions options);

    enum class Result { Done, Cancelled, Failed };
    // Progress may be null.
    Result Run(CsvSink& sink, Progress* progress);

    [[nodiscard]] std::size_t Rows() const { return m_rows; }  // without the header
    // That aren't empty.
    [[nodiscard]] std::size_t Values() const { return m_values; }
    [[nodiscard]] const std::string& Error() const { return m_error; }
    // What is missing from the file: filter files that aren't fit, and damage in the store. One line each.
    [[nodiscard]] const std::vector<std::string>& Remarks() const { return m_remarks; }

private:
    bool Fail(std::string error);
    void AddRemarks(const std::vector<std::string>& remarks);
    // Sets the ends that are left open. False when the store fails.
    bool FindRange();
    bool WriteHeader(CsvSink& sink, const ZRLoggerInfo& info);
    [[nodiscard]] std::uint32_t NextWindow(std::uint32_t begin) const;
    void AdaptWindow(std::size_t records);

    CsvExportOptions m_options;
    std::uint32_t m_from = 0;        // local, seconds since 2000
    std::uint32_t m_to = 0;          // Exclusive.
    std::uint32_t m_window = 86400;  // of recorded samples, seconds
    std::size_t m_rows = 0;
    std::size_t m_values = 0;
    std::string m_error;
    std::vector<std::string> m_remarks;
};

}  // namespace zr
