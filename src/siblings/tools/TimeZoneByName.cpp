// Zones by name, where the system has a database of them.
#include "siblings/tools/TimeZone.h"

#include <date/tz.h>
#include <exception>

namespace zr {

namespace {

TimeZone ZoneFrom(const date::time_zone& found)
{
    const date::sys_seconds last{std::chrono::seconds(kLastZoneSecond)};
    date::sys_info info = found.get_info(date::sys_seconds{std::chrono::seconds(kFirstZoneSecond)});
    const auto firstOffset = static_cast<std::int32_t>(info.offset.count());
    std::int32_t offset = firstOffset;
    std::vector<std::pair<std::int64_t, std::int32_t>> changes;
    while (info.end < last) {
        info = found.get_info(info.end);
        // Some changes are of the name alone.
        if (info.offset.count() != offset) {
            offset = static_cast<std::int32_t>(info.offset.count());
            changes.emplace_back(info.begin.time_since_epoch().count(), offset);
        }
    }
    return {firstOffset, std::move(changes)};
}

}  // namespace

bool TimeZone::Find(std::string_view name, TimeZone& zone, std::string& error)
{
    try {
        zone = ZoneFrom(*date::locate_zone(std::string(name)));
        return true;
    } catch (const std::exception&) {
        error = "no time zone of the name \"" + std::string(name) + "\" in this system's database";
        return false;
    }
}

}  // namespace zr
