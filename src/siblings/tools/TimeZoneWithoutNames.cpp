// Zones by name, where the system has no database of them by these names.
#include "siblings/tools/TimeZone.h"

namespace zr {

bool TimeZone::Find(std::string_view name, TimeZone& zone, std::string& error)
{
    if (name == "UTC" || name == "Etc/UTC") {
        zone = TimeZone();
        return true;
    }
    error = "no time zone of the name \"" + std::string(name) + "\": this system knows its own zone only";
    return false;
}

}  // namespace zr
