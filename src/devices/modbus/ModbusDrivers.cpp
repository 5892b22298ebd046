#include "devices/modbus/ModbusDrivers.h"

#include "devices/modbus/ModbusDriver.h"
#include "devices/modbus/ProfileCatalogue.h"

#include <algorithm>

namespace zr::modbus {
namespace {

ProfileCatalogue& Catalogue()
{
    static ProfileCatalogue catalogue;
    return catalogue;
}

ZRDeviceDriver* NewModbusDriver(const ZRBasicString& type)
{
    auto profile = FindProfile(type);
    return profile == nullptr ? nullptr : new ModbusDriver(std::move(profile));
}

void AddImage(const ZRBasicString& image)
{
    auto& images = ZRDeviceDriver::DriverImages();
    if (std::find(images.begin(), images.end(), image) == images.end())
        images.push_back(image);
}

}  // namespace

void RegisterDrivers(const std::filesystem::path& profileFolder, std::vector<std::string>& errors)
{
    ProfileCatalogue catalogue;
    catalogue.Load(profileFolder, errors);
    Catalogue() = std::move(catalogue);
    for (const auto& [type, profile] : Catalogue().Profiles())
        AddImage(profile->Image());
    // A second one does no harm: both ask the present catalogue.
    ZRDeviceDriver::AddFactory(NewModbusDriver);
}

std::shared_ptr<const DeviceProfile> FindProfile(const ZRBasicString& type)
{
    return Catalogue().Find(type);
}

}  // namespace zr::modbus
