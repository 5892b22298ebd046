// The summaries of the blocks of one variable on one day of UTC as one row of bytes, so that a year is read in a few
// hundred rows. docs/formats/logger-store.md tells the format.
#pragma once

#include "siblings/driversupport/store/BlockPacking.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace zr {

inline constexpr int kHoursOfDay = 24;

// Days since 1 January 1970 UTC.
std::int64_t DayOf(std::int64_t hour);
// The hour at which a day begins. Days that no time of ours lies in, as a file from outside may name them, count as one
// far away.
std::int64_t FirstHourOf(std::int64_t day);

class DayDigest {
public:
    DayDigest() = default;
    DayDigest(std::int64_t series, std::int64_t day) : m_series(series), m_day(day) {}

    // False when the bytes are not what Encode gave for that series and day; the digest is then empty.
    bool Decode(std::span<const std::uint8_t> bytes);
    [[nodiscard]] std::vector<std::uint8_t> Encode() const;

    // Hours are those since 1970, of this day.
    void Put(std::int64_t hour, const StoredSummary& summary);
    void Remove(std::int64_t hour);
    // Null when there is no block, or the hour is of another day.
    [[nodiscard]] const StoredSummary* Find(std::int64_t hour) const;
    [[nodiscard]] bool IsEmpty() const { return m_hours == 0; }
    // A bit for each hour of the day that has a block, the first lowest.
    [[nodiscard]] std::uint32_t Hours() const { return m_hours; }
    [[nodiscard]] std::int64_t FirstHour() const { return FirstHourOf(m_day); }

private:
    [[nodiscard]] std::size_t IndexOf(std::int64_t hour) const { return static_cast<std::size_t>(hour - FirstHour()); }

    std::int64_t m_series = 0;
    std::int64_t m_day = 0;
    std::uint32_t m_hours = 0;
    std::array<StoredSummary, kHoursOfDay> m_summaries;
};

}  // namespace zr
