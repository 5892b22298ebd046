// The registry in the test's own process, with the shipped profiles and times that suit a test.
#pragma once

#include "comm/ZRCommSystem.h"
#include "devices/modbus/ModbusDrivers.h"
#include "integration/service/ServiceFixture.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/ServiceTimes.h"
#include "siblings/driversupport/ZRDriverVariable.h"

namespace zr::test {

class RegistryFixture : public ServiceFixture {
protected:
    RegistryFixture() : m_times(CurrentServiceTimes())
    {
        ServiceTimes quick = m_times;
        quick.firstProbe = std::chrono::milliseconds(20);
        quick.longestProbe = std::chrono::milliseconds(40);
        quick.probeCostFactor = 1;
        SetServiceTimes(quick);
        UseProfiles(std::filesystem::path(ZR_RESOURCES) / "devices");
        zr::TakeNotices();
    }
    ~RegistryFixture() override
    {
        m_system.Reset();
        ZRDeviceDriver::ClearFactories();
        SetServiceTimes(m_times);
    }

    static void UseProfiles(const std::filesystem::path& folder)
    {
        std::vector<std::string> errors;
        modbus::RegisterDrivers(folder, errors);
        EXPECT_TRUE(errors.empty()) << errors.front();
    }

    void Load(const std::string& text)
    {
        ASSERT_TRUE(m_document.LoadText(text)) << m_document.Error().Message();
        ASSERT_TRUE(m_system.LoadCfg(*m_document.root->Node(u"CommSystem")));
    }

    static ZRDriverVariable Locked(const ZRBasicString& name)
    {
        ZRDriverVariable variable;
        variable.Setup(name);
        EXPECT_TRUE(variable.Lock());
        return variable;
    }
    static double Number(ZRDriverVariable& variable)
    {
        tagSVariableValue value;
        variable.Value(value);
        return value.type == tagSVariableValue::kBoolean ? value.boolean : value.number;
    }

    ServiceTimes m_times;
    XmlDocument m_document;
    ZRCommSystem m_system;
};

}  // namespace zr::test
