// All devices of the registry under watch.
#pragma once

#include "diagnostics/ZRDebugInfo.h"
#include "hosts/kestrix/DeviceTree.h"
#include "hosts/kestrix/DeviceWatch.h"
#include "siblings/tools/ZRBasicString.h"

#include <map>
#include <memory>
#include <vector>

namespace zr::desktop {

// Made after a load, gone before a reset. UI thread only.
class PlantWatch {
public:
    // The devices of ZRCommSystem, in its order.
    PlantWatch();

    // Reads every device, and what the warning list has that is new.
    void Update(const ZRDebugInfo& warnings, bool isPolled);

    [[nodiscard]] const std::vector<ZRBasicString>& Names() const { return m_names; }
    // Null if there is no such device. Of several of one name the first.
    [[nodiscard]] DeviceWatch* Find(const ZRBasicString& device) const;
    // The worst state of the devices below a node; OnLine when there are none.
    [[nodiscard]] DeviceState StateOf(const DeviceTree& tree, std::size_t node) const;
    [[nodiscard]] int OnLine() const;

private:
    std::vector<ZRBasicString> m_names;
    std::map<ZRBasicString, std::unique_ptr<DeviceWatch>> m_devices;
    int m_warningsSeen = 0;
};

}  // namespace zr::desktop
