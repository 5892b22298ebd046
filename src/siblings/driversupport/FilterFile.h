// The hour types of a filter, by which a variable is split, and when they hold.
#pragma once

#include "siblings/driversupport/hours/HourCalendar.h"
#include "siblings/tools/ZRBasicString.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class XmlDocument;

namespace zr {

// What an `.MVDF` file and its companion tell. The dialogs that choose variables read the two files themselves and say
// nothing of a fault; a host checks with this class the filters that device types name, and tells the user.
class FilterFile {
public:
    static constexpr std::size_t kMaxHourTypes = 64;

    struct HourType {
        ZRBasicString name;                  // by IsValidId, so that it fits into a variable reference
        std::optional<std::uint32_t> color;  // 0xBBGGRR
    };

    // Reads `file` (hour types: the children of the root's child `hourTypes`, of any tag, by their values `name` and
    // `color`, the latter 1 to 6 hexadecimal digits and not a must) and its companion of the same name plus "I", whose
    // root's children "hour" must name the same hour types. The root's child `calendar` tells when they hold; it may be
    // missing, since the dialogs do without. docs/formats/filter-file.md tells the format.
    //
    // False, with error "FILE:LINE: REASON", when one of them can't be read or breaks a rule; the object is then as it
    // was.
    bool Load(const std::filesystem::path& file, std::string& error);

    // As Load, from bytes in memory; name stands for the file in errors.
    bool LoadText(std::string_view filter, std::string_view companion, const std::string& name, std::string& error);

    // In order of the file.
    [[nodiscard]] const std::vector<HourType>& HourTypes() const { return m_hourTypes; }
    // Numbers the hour types in that order. None when the file has none.
    [[nodiscard]] const std::optional<HourCalendar>& Calendar() const { return m_calendar; }

private:
    bool Take(const XmlDocument& filter, const XmlDocument& companion, const std::string& name, std::string& error);

    std::vector<HourType> m_hourTypes;
    std::optional<HourCalendar> m_calendar;
};

// Whether a reference names a filter file by it. References come from documents: a name that leads out of the folder of
// filter files is none.
bool IsFilterName(ZRBasicString::View name);

// What a host or a load says of a filter file without one.
std::string NoCalendarText(const std::filesystem::path& file);

}  // namespace zr
