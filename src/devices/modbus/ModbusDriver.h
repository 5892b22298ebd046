// A device that speaks Modbus; its profile says what it measures.
#pragma once

#include "devices/modbus/DeviceProfile.h"
#include "devices/modbus/ModbusTransaction.h"
#include "devices/modbus/OutputQueue.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zr::modbus {

// Threads are those of ZRDeviceDriver.
//
// A cycle is the requests of the profile's plan in order. An answer that refuses a request makes the variables of that
// request invalid and is posted once as DeviceRefusesRequest, until the request succeeds again; the others go on. A
// request without an answer leaves its variables as they are: whether the device has fallen silent is for its group
// to find.
//
// An output that is asked for goes ahead of the cycle and is read back right after; OutputSwitched, OutputRefused or
// OutputTimedOut tells what became of it. One that couldn't be sent within kOutputLife is given up, so that a device
// that comes back after an hour isn't switched by an old wish.
class ModbusDriver : public ZRDeviceDriver {
public:
    static const CRuntimeClass runtimeClass;
    static constexpr std::chrono::seconds kOutputLife{10};

    explicit ModbusDriver(std::shared_ptr<const DeviceProfile> profile);

    const CRuntimeClass* GetRuntimeClass() const override { return &runtimeClass; }
    std::chrono::milliseconds Period() const override { return m_period; }
    ZRDeviceTransaction* NextTransaction() override;
    void TransactionDone(ZRDeviceTransaction& transaction) override;
    void BeginCycle() override;
    // The first read of the plan; an output never serves as a probe.
    ZRDeviceTransaction* ProbeTransaction() override;
    bool SetOutput(VariableHandle handle, double value) override;
    std::uint8_t Unit() const override { return m_unit; }
    const wchar* Description() const override { return m_description.CStr(); }
    // Reads these values of a `Device` node, all text; others are left to whom they concern:
    //   Name         by IsValidId
    //   Unit         1 to 247, default 1
    //   Period       seconds between the starts of two cycles, 0 to 86400 with a decimal point; 0: continuous;
    //                default: the profile's
    //   Description  up to 200 characters; default: the profile's
    // On false nothing is changed but LoadError.
    bool LoadCfg(const XmlNode& node) override;
    // "NAME: REASON".
    ZRBasicString LoadError() const override { return m_loadError; }
    const wchar* DriverType() const override { return m_profile->Type().CStr(); }
    const wchar* ImageName() const override { return m_profile->Image().CStr(); }
    const wchar* DefaultFilter() const override;

    [[nodiscard]] const DeviceProfile& Profile() const { return *m_profile; }

private:
    ZRDeviceTransaction* PrepareRead(std::size_t read);
    bool PrepareOutput(const OutputQueue::Output& output);
    ZRDeviceTransaction* NextOutput();
    void ReadDone(std::size_t read);
    void OutputDone(const OutputQueue::Output& output);
    void GiveUpOldOutputs();
    void WriteValue(std::size_t variable, std::span<const std::uint8_t> data, std::size_t offset);
    void Refused(std::size_t read, Exception exception);
    [[nodiscard]] std::string OutputText(const OutputQueue::Output& output) const;
    void Post(DeviceWarning type, const OutputQueue::Output& output) const;

    const std::shared_ptr<const DeviceProfile> m_profile;
    std::chrono::milliseconds m_period;
    std::uint8_t m_unit = 1;
    ZRBasicString m_description;
    ZRBasicString m_loadError;
    OutputQueue m_outputs;

    // I/O thread only.
    ModbusTransaction m_transaction;
    std::size_t m_next = 0;                          // of the plan, in the present cycle
    std::optional<std::size_t> m_reading;            // request of the plan under way
    std::optional<OutputQueue::Output> m_switching;  // output under way
    std::optional<std::size_t> m_readBack;           // request that reads an output just set
    std::vector<bool> m_refused;                     // by request of the plan: already posted
};

}  // namespace zr::modbus
