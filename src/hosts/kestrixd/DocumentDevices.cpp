#include "hosts/kestrixd/DocumentDevices.h"

#include "devices/modbus/ModbusDrivers.h"
#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/FileError.h"
#include "siblings/tools/Utf.h"

#include <vector>

namespace zr::service {

DocumentDevices::~DocumentDevices()
{
    m_system.Reset();
    ZRDeviceDriver::ClearFactories();
}

void DocumentDevices::SetDataFolder(const std::filesystem::path& folder)
{
    if (!folder.empty()) {
        m_setup.SetDataFolder(Utf8ToUtf16(TextOfPath(folder)));
    }
}

bool DocumentDevices::Load(const std::filesystem::path& document, std::string& error)
{
    std::vector<std::string> errors;
    modbus::RegisterDrivers(ResourceFolder() / "devices", errors);
    if (!errors.empty()) {
        error = errors.front();
        return false;
    }
    if (!m_document.Load(document)) {
        error = m_document.Error().Message();
        return false;
    }
    if (const XmlNode* const commSystem = m_document.root->Node(u"CommSystem"); commSystem != nullptr) {
        m_system.LoadCfg(*commSystem);
    }
    return true;
}

}  // namespace zr::service
