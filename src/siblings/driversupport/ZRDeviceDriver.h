// A device: its variables, their live values, and the requests that fetch them.
#pragma once

#include "siblings/driversupport/CRuntimeClass.h"
#include "siblings/driversupport/VariableStore.h"
#include "siblings/driversupport/ZRDeviceTransaction.h"
#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"
#include "siblings/tools/ZRDateTime.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

// One word, opaque to the caller, valid from LockVariable to UnlockVariable.
using VariableHandle = std::uintptr_t;

class ZRDeviceDriver;
class ZRDriverVariableNameIterator;

namespace zr {

// Whoever polls a driver, seen from the driver.
class DriverService {
public:
    // The driver has a request that can't wait. Any thread; returns at once.
    virtual void DriverCalls() = 0;

protected:
    ~DriverService() = default;
};

// Whoever keeps a driver in a list, seen from the driver.
class DriverKeeper {
public:
    // Called while the driver is being destroyed: its pointer must not be followed any more.
    virtual void DriverGone(ZRDeviceDriver* driver) = 0;

protected:
    ~DriverKeeper() = default;
};

}  // namespace zr

// One live device. Made by NewDriver, configured by LoadCfg, polled by its work group.
//
// Names and values may be read on any thread while a group polls. The polling operations run on the I/O thread of
// the group that the driver is a member of. A driver must be out of every running group when it is destroyed.
class ZRDeviceDriver : public CObject {
public:
    struct tagSVariableInfo {
        const wchar* name = nullptr;         // short name within its driver; lives as long as the driver
        const wchar* description = nullptr;  // text for people; lives as long as the driver
        std::int32_t infoCode = 0;           // class of the variable, see zr::VariableClass
        std::int32_t measureUnits = 0;       // unit code; 7 is the power factor
        std::int32_t valueExponent = 0;      // decimal exponent of the stored value
        std::int32_t decimals = 0;           // of the variable's own text form
        std::int32_t unitsExponent = 0;      // decimal exponent of the displayed unit
        std::int32_t unitsDecimals = 0;      // of a value in the displayed unit
        std::int32_t reserved = 0;
        std::int32_t flags = 0;  // kSplittable, kOutput
    };
    static constexpr std::int32_t kSplittable = 1;  // bit 0: can be split by a filter and hour type
    static constexpr std::int32_t kOutput = 2;      // bit 1: can be set

    // For whoever asks the user for a value.
    struct tagSVariableValueInfo {
        std::int32_t reserved0 = 0;
        const wchar* description = nullptr;
        std::int32_t reserved1[3] = {};
        std::int32_t decimals = 0;
        std::int32_t reserved2[4] = {};
        std::int32_t request = 0;
        std::int32_t reserved3 = 0;
        double maximum = 0.0;
        double minimum = 0.0;
        std::vector<ZRBasicString> valueTexts;  // empty unless the variable has a closed list of values
        std::vector<int> values;                // the integer for each name
    };

    // Names of the device icons, in the order of ImageIndex. Filled by the driver libraries at their start.
    static std::vector<ZRBasicString>& DriverImages();
    static const ZRDriverVariableNameIterator variableNameIteratorEnd;

    ZRDeviceDriver();
    ZRDeviceDriver(const ZRDeviceDriver&) = delete;
    ZRDeviceDriver& operator=(const ZRDeviceDriver&) = delete;

    // The device's name. Read directly; changed only through SetName, by LoadCfg.
    ZRBasicString name;

    // The virtual operations stand in the order of their slots: existing driver classes rely on it.
    /* 0 */ const CRuntimeClass* GetRuntimeClass() const override;
    /* 1 */ ~ZRDeviceDriver() override;
    // How often the device is polled; 0: again as soon as a cycle is over. I/O thread only.
    /* 2 */ virtual std::chrono::milliseconds Period() const;
    // The next request of the present cycle, or null when the cycle is over. Outputs to be set come first, and come
    // also between two cycles, see AskForService. Owned by the driver, not asked for again before TransactionDone.
    // I/O thread only.
    /* 3 */ virtual ZRDeviceTransaction* NextTransaction();
    // What became of it. Writes the values of a reply. I/O thread only.
    /* 4 */ virtual void TransactionDone(ZRDeviceTransaction& transaction);
    // Ends the use begun by LockDriver.
    /* 5 */ virtual void Release();
    // Starts a cycle over: the next NextTransaction gives the first request. I/O thread only.
    /* 6 */ virtual void BeginCycle();
    // A request that only tests whether a parked device is there again; owned by the driver. I/O thread only.
    /* 7 */ virtual ZRDeviceTransaction* ProbeTransaction();
    // Asks for an output to be set, in units of the stored value. False if the variable is no output, or the value
    // is outside its range. The request goes ahead of the polling. Any thread.
    // The base has no way to ask the device and returns false.
    /* 8 */ virtual bool SetOutput(VariableHandle handle, double value);
    // Any thread. False if there is no variable of that name; handle is then unchanged.
    /* 9 */ virtual bool LockVariable(const wchar* variable, VariableHandle& handle);
    /* 10 */ virtual void UnlockVariable(VariableHandle& handle);
    /* 11 */ virtual bool IsVariableValid(VariableHandle handle) const;
    /* 12 */ virtual void VariableValue(VariableHandle handle, tagSVariableValue& value) const;
    /* 13 */ virtual bool VariableValueInfo(VariableHandle handle, tagSVariableValueInfo& info) const;
    /* 14 */ virtual bool VariableInfo(VariableHandle handle, tagSVariableInfo& info) const;
    // Whether requests to this device and to the other are to keep clear of each other; unit on a shared line.
    /* 15 */ virtual std::uint8_t Unit() const;
    /* 16 */ virtual const wchar* Description() const;
    // Told on the I/O thread when the device falls silent (false) or answers again (true).
    /* 17 */ virtual void OnlineChanged(bool online);
    // Reads the `Device` node; false makes the core drop the driver.
    /* 18 */ virtual bool LoadCfg(const XmlNode& node);
    // Why LoadCfg returned false, for the host to show; empty otherwise.
    /* 19 */ virtual ZRBasicString LoadError() const;
    /* 20 */ virtual std::size_t VariableCount() const;
    // The model name.
    /* 21 */ virtual const wchar* DriverType() const;
    /* 22 */ virtual const wchar* ImageName() const;
    // Into DriverImages().
    /* 23 */ virtual int ImageIndex() const;
    /* 24 */ virtual const wchar* VariableName(std::size_t index) const;
    // The first variable name; returns out.
    /* 25 */ virtual ZRDriverVariableNameIterator* VariableNameBegin(ZRDriverVariableNameIterator& out);
    /* 26 */ virtual bool Advance(ZRDriverVariableNameIterator& iterator);
    // The title of the `.MVDF` file proper to this device; null: it can't have one.
    /* 27 */ virtual const wchar* DefaultFilter() const;

    // Makes drivers of some types: null for a type that it doesn't know.
    using Factory = std::function<ZRDeviceDriver*(const ZRBasicString& type)>;
    // Asked in order of registration. UI thread, before NewDriver.
    static void AddFactory(Factory factory);
    static void ClearFactories();
    static ZRDeviceDriver* NewDriver(const ZRBasicString& type);
    // The first live driver of that name, null if there is none. Not exclusive; a caller may never release. Any
    // thread, but the caller sees to it that the driver isn't destroyed meanwhile.
    static ZRDeviceDriver* LockDriver(const wchar* name, bool exclusive);
    static void UnlockDriver(ZRDeviceDriver* driver);
    // The text of a unit in the user's language: prefix for the exponent and symbol, such as "kWh". Empty for an
    // unknown code.
    static void MeasureUnitsText(ZRBasicString& out, int units, int exponent);

    // The store that stands behind the variable of a name; null until LoadCfg made one. Any thread.
    [[nodiscard]] std::shared_ptr<zr::VariableStore> Store() const { return m_store; }
    // False until the first good answer, and while the device is silent. Any thread.
    [[nodiscard]] bool Online() const { return m_online.load(std::memory_order_relaxed); }
    // Its work group only: sets Online, invalidates the values on loss and calls OnlineChanged on a change.
    void SetOnline(bool online);
    // Locks given and not yet ended. Any thread.
    [[nodiscard]] int Locks() const { return m_locks.load(std::memory_order_relaxed); }

    // Its work group only. Only one group serves a driver at a time, though several may hold it: false when another
    // one does.
    bool BeginService(zr::DriverService* service);
    void EndService(const zr::DriverService* service);
    // Whether AskForService was called since the last time. I/O thread only.
    bool TakeServiceCall() { return m_callsForService.exchange(false, std::memory_order_acq_rel); }
    // Who is told when the driver is destroyed. UI thread only.
    void AddKeeper(zr::DriverKeeper* keeper);
    void RemoveKeeper(zr::DriverKeeper* keeper);
    [[nodiscard]] bool IsKeptBy(const zr::DriverKeeper* keeper) const;

protected:
    // Tells the group that NextTransaction has something that goes ahead of the polling, such as an output to be set;
    // NextTransaction is then called before any other driver's turn, also between two cycles. Any thread.
    void AskForService();
    // Names the device and enters it where LockDriver looks, in the order of the calls. From LoadCfg only.
    void SetName(const ZRBasicString& deviceName);
    // Gives the device its variables. From LoadCfg only.
    void SetVariables(std::shared_ptr<const zr::VariableTable> table);

    // Whether that variable is an output that may be set to that value. Any thread.
    [[nodiscard]] bool AcceptsOutput(VariableHandle handle, double value) const;
    // Position of the variable in the table; false for a handle that LockVariable didn't give. Any thread.
    [[nodiscard]] bool VariableIndex(VariableHandle handle, std::size_t& index) const;

private:
    friend class ZRDriverVariable;
    static void Describe(const zr::VariableDescription& variable, tagSVariableInfo& info);
    static void Describe(const zr::VariableDescription& variable, tagSVariableValueInfo& info);
    // The first live driver of that name and its store. Any thread.
    static ZRDeviceDriver* FindLive(const ZRBasicString& name, std::shared_ptr<zr::VariableStore>& store);

    std::shared_ptr<zr::VariableStore> m_store;
    ZRBasicString m_registeredName;
    bool m_registered = false;
    std::atomic<bool> m_online{false};
    std::atomic<int> m_locks{0};
    std::atomic<bool> m_callsForService{false};
    std::mutex m_serviceGuard;
    zr::DriverService* m_service = nullptr;  // guarded by m_serviceGuard
    std::vector<zr::DriverKeeper*> m_keepers;
};

// Walks the variable names of a driver: VariableNameBegin fills it, postfix ++ moves on, the walk ends at
// ZRDeviceDriver::variableNameIteratorEnd. Lives no longer than its driver.
class ZRDriverVariableNameIterator {
public:
    ZRDriverVariableNameIterator() = default;  // the end
    virtual ~ZRDriverVariableNameIterator() = default;
    ZRDriverVariableNameIterator(const ZRDriverVariableNameIterator&) = default;
    ZRDriverVariableNameIterator& operator=(const ZRDriverVariableNameIterator&) = default;

    [[nodiscard]] const wchar* Name() const { return m_name; }
    ZRDriverVariableNameIterator operator++(int);
    friend bool operator==(const ZRDriverVariableNameIterator& left, const ZRDriverVariableNameIterator& right)
    {
        return left.m_position == right.m_position && left.m_name == right.m_name;
    }

private:
    friend class ZRDeviceDriver;
    std::size_t m_position = 0;
    const wchar* m_name = nullptr;
    ZRDeviceDriver* m_driver = nullptr;
};
