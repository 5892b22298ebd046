#include "hosts/kestrix/PlantWatch.h"

#include "comm/ZRCommSystem.h"
#include "siblings/driversupport/DeviceWarning.h"

#include <algorithm>

namespace zr::desktop {

PlantWatch::PlantWatch()
{
    ZRCommSystem& system = ZRCommSystem::Get();
    for (auto driver = system.DriversBegin(); driver != system.DriversEnd(); ++driver) {
        std::unique_ptr<DeviceWatch>& watch = m_devices[(*driver)->name];
        if (watch == nullptr) {
            watch = std::make_unique<DeviceWatch>(**driver);
            m_names.push_back((*driver)->name);
        }
    }
}

void PlantWatch::Update(const ZRDebugInfo& warnings, bool isPolled)
{
    // The list was emptied meanwhile.
    m_warningsSeen = std::min(m_warningsSeen, warnings.Size());
    for (; m_warningsSeen < warnings.Size(); ++m_warningsSeen) {
        if (warnings.Type(m_warningsSeen) != static_cast<int>(DeviceWarning::DeviceSilent)) {
            continue;
        }
        if (DeviceWatch* const device = Find(warnings.Name(m_warningsSeen)); device != nullptr) {
            device->FellSilent();
        }
    }
    for (const auto& [name, watch] : m_devices) {
        watch->Update(isPolled);
    }
}

DeviceWatch* PlantWatch::Find(const ZRBasicString& device) const
{
    const auto found = m_devices.find(device);
    return found != m_devices.end() ? found->second.get() : nullptr;
}

DeviceState PlantWatch::StateOf(const DeviceTree& tree, std::size_t node) const
{
    DeviceState worst = DeviceState::OnLine;
    for (const ZRBasicString& device : tree.DevicesOf(node)) {
        if (const DeviceWatch* const watch = Find(device); watch != nullptr) {
            worst = std::max(worst, watch->State());
        }
    }
    return worst;
}

int PlantWatch::OnLine() const
{
    return static_cast<int>(std::count_if(m_devices.begin(), m_devices.end(), [](const auto& entry) {
        return entry.second->State() == DeviceState::OnLine || entry.second->State() == DeviceState::Alarm;
    }));
}

}  // namespace zr::desktop
