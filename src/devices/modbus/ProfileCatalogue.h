// All device profiles of a folder.
#pragma once

#include "devices/modbus/DeviceProfile.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zr::modbus {

// Immutable once loaded; then any thread.
class ProfileCatalogue {
public:
    // Reads every *.xml of the folder, in order of their names. A file that is refused, or names a type that an
    // earlier one has, adds one line to errors and is left out; so does a folder that can't be read.
    void Load(const std::filesystem::path& folder, std::vector<std::string>& errors);

    // Null if there is none of that type; compared exactly.
    [[nodiscard]] std::shared_ptr<const DeviceProfile> Find(const ZRBasicString& type) const;
    // By type, in order of the types.
    [[nodiscard]] const std::map<ZRBasicString, std::shared_ptr<const DeviceProfile>>& Profiles() const
    {
        return m_profiles;
    }

private:
    std::map<ZRBasicString, std::shared_ptr<const DeviceProfile>> m_profiles;
};

}  // namespace zr::modbus
