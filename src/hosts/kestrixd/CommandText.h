// Words of the commands' options, and figures for people.
#pragma once

#include "siblings/tools/CsvReader.h"
#include "siblings/tools/TimeZone.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zr::service {

// Each false, with an error that names the option and what it takes, for what isn't understood.

// Seconds: "900", "900s", "15m", "1h", "1d", "1M" (a calendar month, as 31 days); "0" is as recorded.
bool ParsePeriod(std::string_view text, std::int32_t& seconds, std::string& error);
// "," ";" "tab" or nothing, and "." "," or nothing.
bool ParseCsvFormat(std::string_view separator, std::string_view decimal, CsvFormat& format, std::string& error);
// A zone of the system's database; nothing is the plant's own.
bool ParseZone(const std::string& name, TimeZone& zone, std::string& error);
// "now", or a time as in a CSV file, local in the zone unless it says more. UTC, microseconds since 1970.
bool ParseTime(const char* option, const std::string& text, const TimeZone& zone, std::int64_t& utc,
               std::string& error);

// With groups of three digits: "431,595".
std::string CountText(std::size_t count);
// "1 row", "2 rows".
std::string CountText(std::size_t count, const char* one, const char* many);
// As "2006-12-16 17:24:00 +01:00", from UTC in microseconds.
std::string TimeText(std::int64_t utc, const TimeZone& zone);

}  // namespace zr::service
