// Local time of a place and UTC, both ways.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zr {

// Offsets of one place through the years that ZRDateTime holds. Times are whole seconds since 1 January 1970: UTC, or
// local, when they count the calendar and the clock of the place. Immutable but for assignment. Any thread.
class TimeZone {
public:
    // A stretch of UTC with one offset.
    struct Span {
        std::int64_t begin = std::numeric_limits<std::int64_t>::min();
        std::int64_t end = std::numeric_limits<std::int64_t>::max();  // Exclusive.
        std::int32_t offset = 0;                                      // local minus UTC, seconds
    };

    // UTC.
    TimeZone() = default;
    // From changes in order: the moment and the offset from then on.
    TimeZone(std::int32_t firstOffset, std::vector<std::pair<std::int64_t, std::int32_t>> changes);

    // The zone that the process runs in, found by asking the system for each day.
    static TimeZone System();
    // A zone of the system's time zone database, such as "Europe/Paris". False, with an error that names it and zone
    // unchanged, when there is none of that name.
    static bool Find(std::string_view name, TimeZone& zone, std::string& error);

    [[nodiscard]] Span SpanAt(std::int64_t utc) const;
    [[nodiscard]] std::int64_t ToLocal(std::int64_t utc) const { return utc + SpanAt(utc).offset; }
    // Of a local time that occurs twice the first; of one that is skipped the moment of the change.
    [[nodiscard]] std::int64_t ToUtc(std::int64_t local) const;

private:
    std::int32_t m_firstOffset = 0;
    std::vector<std::pair<std::int64_t, std::int32_t>> m_changes;
};

// The zone of the plant: windows, captions and cuts of logged data are local to it. The process's own, unless a host
// has set another.
const TimeZone& PlantZone();
// Call it only while no other thread of the library runs.
void SetPlantZone(TimeZone zone);

// The years that zones are known for: seconds since 1970 of 30 December 1999 and 9 February 2136.
inline constexpr std::int64_t kFirstZoneSecond = 946512000;
inline constexpr std::int64_t kLastZoneSecond = 5241283200;

}  // namespace zr
