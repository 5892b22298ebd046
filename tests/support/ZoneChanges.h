// The clock changes of many zones, from tests/data/dst_transitions_2000_2037.csv: the same on every system.
#pragma once

#include "siblings/tools/TimeZone.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace zr::test {

struct ZoneChange {
    std::int64_t utc = 0;
    int before = 0;  // offsets, seconds
    int after = 0;
    std::int64_t lastLocalBefore = 0;
    std::int64_t firstLocalAfter = 0;
};

// Seconds since 1970 of "2000-03-26T01:59:59", as if it were UTC; what follows the minutes may be missing.
inline std::int64_t SecondsOf(const std::string& text)
{
    const auto number = [&](std::size_t at, std::size_t length) { return std::stoi(text.substr(at, length)); };
    const std::chrono::sys_days day = std::chrono::year(number(0, 4)) /
                                      std::chrono::month(static_cast<unsigned>(number(5, 2))) /
                                      std::chrono::day(static_cast<unsigned>(number(8, 2)));
    const int seconds = text.size() > 17 ? number(17, 2) : 0;
    return day.time_since_epoch().count() * std::int64_t{86400} + number(11, 2) * 3600 + number(14, 2) * 60 + seconds;
}

inline std::vector<std::string> Fields(const std::string& line)
{
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, ',');) {
        fields.push_back(field);
    }
    return fields;
}

// The changes of every zone in the table, in order.
inline const std::map<std::string, std::vector<ZoneChange>>& ZoneChanges()
{
    static const auto changes = [] {
        std::map<std::string, std::vector<ZoneChange>> all;
        std::ifstream file(std::string(ZR_TEST_DATA) + "/dst_transitions_2000_2037.csv");
        std::string line;
        std::getline(file, line);
        while (std::getline(file, line)) {
            const std::vector<std::string> fields = Fields(line);
            all[fields.at(0)].push_back({std::stoll(fields.at(1)), std::stoi(fields.at(3)), std::stoi(fields.at(4)),
                                         SecondsOf(fields.at(8)), SecondsOf(fields.at(9))});
        }
        return all;
    }();
    return changes;
}

// A zone of the table.
inline TimeZone ZoneOfTable(const std::string& name)
{
    const std::vector<ZoneChange>& table = ZoneChanges().at(name);
    std::vector<std::pair<std::int64_t, std::int32_t>> changes;
    for (const ZoneChange& change : table) {
        if (change.before != change.after) {
            changes.emplace_back(change.utc, change.after);
        }
    }
    return {table.front().before, std::move(changes)};
}

}  // namespace zr::test
