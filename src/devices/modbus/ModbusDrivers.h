// Where a host brings in the devices that speak Modbus.
#pragma once

#include "devices/modbus/DeviceProfile.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zr::modbus {

// Loads every profile of the folder, makes ZRDeviceDriver::NewDriver know their types, and adds the names of their
// icons to ZRDeviceDriver::DriverImages(). errors gets one line "FILE:LINE: REASON" for each file that is refused; the
// others serve. A later call takes the place of the earlier one for drivers made from then on. UI thread only.
void RegisterDrivers(const std::filesystem::path& profileFolder, std::vector<std::string>& errors);

// Of the last RegisterDrivers; null if there is none of that type. UI thread only.
std::shared_ptr<const DeviceProfile> FindProfile(const ZRBasicString& type);

}  // namespace zr::modbus
