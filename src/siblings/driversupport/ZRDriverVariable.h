// One variable of one device, addressed by its full name.
#pragma once

#include "siblings/driversupport/ZRDeviceDriver.h"

#include <memory>

// What a viewer knows of a variable.
class ZRVariable {
public:
    // The virtual operations stand in the order of their slots.
    /* 0 */ virtual ~ZRVariable() = default;
    /* 1 */ virtual bool Lock() = 0;
    /* 2 */ virtual void Unlock() = 0;
    /* 3 */ virtual bool IsLocked() const = 0;
    /* 4 */ virtual bool Info(ZRDeviceDriver::tagSVariableInfo& info) const = 0;
    /* 5 */ virtual bool IsValid() = 0;
    /* 6 */ virtual void Value(tagSVariableValue& value) = 0;

    // Points the variable at a name; what it was locked on before is let go.
    void Setup(const ZRBasicString& variableName);

    // As given to Setup: `driver.variable` or `file.MVDF@hour#driver.variable`.
    ZRBasicString fullName;
};

// Objects are used by one thread each; the device behind may be polled meanwhile. A locked variable stays safe to read
// when its device goes: it is then not valid any more.
class ZRDriverVariable : public ZRVariable {
public:
    ZRDriverVariable() = default;
    ~ZRDriverVariable() override;
    ZRDriverVariable(const ZRDriverVariable& other);             // same name, locked if the other is
    ZRDriverVariable& operator=(const ZRDriverVariable& other);  // likewise

    // Takes hold of the variable named by Setup. False if the device or the variable isn't there, or a full reference
    // names a variable that can't be split.
    bool Lock() override;
    // As Lock(); the argument is not looked at.
    bool Lock(bool exclusive);
    // Harmless on a variable never locked.
    void Unlock() override;
    bool IsLocked() const override;
    bool Info(ZRDeviceDriver::tagSVariableInfo& info) const override;
    bool IsValid() override;
    // Nothing is written when not locked.
    void Value(tagSVariableValue& value) override;
    bool ValueInfo(ZRDeviceDriver::tagSVariableValueInfo& info) const;
    // The variable's handle at its driver; 0 when not locked.
    [[nodiscard]] unsigned Id() const { return m_store != nullptr ? static_cast<unsigned>(m_index + 1) : 0; }

    // What Value() reads: null when not locked; valid until the variable is unlocked.
    const zr::LiveValue* Live() const;

    // Of a locked variable; null otherwise. Not owned, and stale once the device is gone.
    ZRDeviceDriver* driver = nullptr;

private:
    std::shared_ptr<zr::VariableStore> m_store;
    std::size_t m_index = 0;
};
