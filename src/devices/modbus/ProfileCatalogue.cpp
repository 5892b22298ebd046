#include "devices/modbus/ProfileCatalogue.h"

#include "siblings/tools/Utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

namespace zr::modbus {
namespace {

std::vector<std::filesystem::path> ProfileFiles(const std::filesystem::path& folder, std::error_code& failure)
{
    std::vector<std::filesystem::path> files;
    std::filesystem::directory_iterator entry(folder, failure);
    while (!failure && entry != std::filesystem::directory_iterator()) {
        if (entry->path().extension() == ".xml")
            files.push_back(entry->path());
        entry.increment(failure);
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

void ProfileCatalogue::Load(const std::filesystem::path& folder, std::vector<std::string>& errors)
{
    std::error_code failure;
    const auto files = ProfileFiles(folder, failure);
    if (failure)
        errors.push_back(fmt::format("{}: {}", folder.string(), failure.message()));
    for (const std::filesystem::path& file : files) {
        std::string error;
        const auto profile = DeviceProfile::Load(file, error);
        if (profile == nullptr) {
            errors.push_back(error);
        } else if (!m_profiles.emplace(profile->Type(), profile).second) {
            errors.push_back(fmt::format("{}: type: \"{}\" is told by another file of the folder", file.string(),
                                         Utf16ToUtf8(profile->Type())));
        }
    }
}

std::shared_ptr<const DeviceProfile> ProfileCatalogue::Find(const ZRBasicString& type) const
{
    const auto found = m_profiles.find(type);
    return found == m_profiles.end() ? nullptr : found->second;
}

}  // namespace zr::modbus
