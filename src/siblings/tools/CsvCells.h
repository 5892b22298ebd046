// Numbers and times in the cells of a CSV file.
#pragma once

#include "siblings/tools/TimeZone.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace zr {

// The cell without blanks at both ends.
std::string_view TrimCsvCell(std::string_view cell);

// The whole of a trimmed cell as a finite number with that decimal mark, exactly rounded; no groups of digits. False,
// with value unchanged, when it isn't one. Any thread.
bool ParseCsvNumber(std::string_view cell, char decimal, double& value);

// Reads times as `2006-12-16T17:24`, with a blank for the T, with seconds and up to six decimals of them (point or
// comma) or without a time of day; local, or with `Z`, `+01:00`, `+0100` or `+01` behind. Or Unix seconds with or
// without decimals.
//
// Local times are looked at in the order of the file, which tells the two passes of the hour that occurs twice: the
// first until the time goes back, then the second; the other way round in a file that runs backwards. A time equal to
// the one before is the same pass, unless the rows are as far apart as the pass is long. One thread.
class CsvTimes {
public:
    explicit CsvTimes(TimeZone zone) : m_zone(std::move(zone)) {}

    // Of a trimmed cell; UTC in microseconds since 1970. Null, or else what is wrong, to be set behind the cell's text.
    const char* Read(std::string_view cell, std::int64_t& utc);

private:
    const char* ReadCalendar(std::string_view cell, std::int64_t& utc);
    // Days since 1970 of the first ten characters. False when they are no date.
    bool ReadDate(std::string_view cell, std::int64_t& day);
    // Seconds since 1970, both ways. False for a time that is skipped.
    bool ToUtc(std::int64_t local, std::int64_t& utc);
    // fold: the moment of the change; length: seconds that occur twice.
    bool IsSecondPass(std::int64_t local, std::int64_t fold, std::int64_t length);

    TimeZone m_zone;
    // Local times that have one offset for certain; the end exclusive.
    std::int64_t m_plainBegin = 0;
    std::int64_t m_plainEnd = 0;
    std::int32_t m_plainOffset = 0;
    // The local time before.
    bool m_hasLast = false;
    std::int64_t m_lastLocal = 0;
    std::int64_t m_lastUtc = 0;
    std::int64_t m_lastStep = 0;
    std::int64_t m_fold = 0;  // the change whose doubled hour it was in; 0: in none
    bool m_isBackwards = false;
    bool m_isSecondPass = false;
    // The date that was read last.
    std::array<char, 10> m_dateText{};
    std::int64_t m_date = 0;
};

}  // namespace zr
