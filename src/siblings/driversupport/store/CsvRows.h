// The rows of a CSV file of logged data as text.
#pragma once

#include "siblings/driversupport/RecordArena.h"
#include "siblings/tools/CsvReader.h"
#include "siblings/tools/TimeZone.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zr {

// A cell, in quotes where it has to be.
void AppendCsvCell(std::string& out, std::string_view cell, char separator);

// Appends rows to a text. One thread.
class CsvRows {
public:
    CsvRows(CsvFormat format, TimeZone zone) : m_format(format), m_zone(std::move(zone)) {}

    // A record at a time in UTC, microseconds since 1970. Returns how many values it has.
    std::size_t Append(std::string& out, std::int64_t utc, std::span<const LoggedValue> values);

private:
    void AppendTime(std::string& out, std::int64_t utc);
    void AppendNumber(std::string& out, double value) const;
    void SetDay(std::int64_t local);

    CsvFormat m_format;
    TimeZone m_zone;
    TimeZone::Span m_span{0, 0, 0};
    std::string m_offset;         // of the span, as text
    std::int64_t m_dayBegin = 0;  // the local day that is cached; the end exclusive
    std::int64_t m_dayEnd = 0;
    std::string m_date;
};

}  // namespace zr
