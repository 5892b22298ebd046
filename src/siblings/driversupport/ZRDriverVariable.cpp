#include "siblings/driversupport/ZRDriverVariable.h"

#include "siblings/driversupport/VariableReference.h"

void ZRVariable::Setup(const ZRBasicString& variableName)
{
    Unlock();
    fullName = ZRBasicString(variableName);
}

ZRDriverVariable::~ZRDriverVariable() = default;

ZRDriverVariable::ZRDriverVariable(const ZRDriverVariable& other) = default;

ZRDriverVariable& ZRDriverVariable::operator=(const ZRDriverVariable& other) = default;

bool ZRDriverVariable::Lock()
{
    Unlock();
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driverName;
    ZRBasicString variable;
    SplitFilterDriverVariable(fullName, filter, hour, driverName, variable);

    std::shared_ptr<zr::VariableStore> store;
    ZRDeviceDriver* found = ZRDeviceDriver::FindLive(driverName, store);
    if (found == nullptr || store == nullptr) {
        return false;
    }
    const auto index = store->Table().Find(variable);
    const bool isFull = !filter.IsEmpty() || !hour.IsEmpty();
    if (!index || (isFull && !store->Table()[*index].splittable)) {
        return false;
    }
    driver = found;
    m_store = std::move(store);
    m_index = *index;
    return true;
}

bool ZRDriverVariable::Lock(bool)
{
    return Lock();
}

void ZRDriverVariable::Unlock()
{
    driver = nullptr;
    m_store.reset();
    m_index = 0;
}

bool ZRDriverVariable::IsLocked() const
{
    return m_store != nullptr;
}

bool ZRDriverVariable::Info(ZRDeviceDriver::tagSVariableInfo& info) const
{
    if (m_store == nullptr) {
        return false;
    }
    ZRDeviceDriver::Describe(m_store->Table()[m_index], info);
    return true;
}

bool ZRDriverVariable::IsValid()
{
    return m_store != nullptr && m_store->At(m_index).IsValid();
}

// The live value of a full reference is that of the plain variable: hour types are told apart when data are read.
void ZRDriverVariable::Value(tagSVariableValue& value)
{
    if (m_store != nullptr) {
        m_store->At(m_index).Read(value);
    }
}

const zr::LiveValue* ZRDriverVariable::Live() const
{
    return m_store != nullptr ? &m_store->At(m_index) : nullptr;
}

bool ZRDriverVariable::ValueInfo(ZRDeviceDriver::tagSVariableValueInfo& info) const
{
    if (m_store == nullptr) {
        return false;
    }
    ZRDeviceDriver::Describe(m_store->Table()[m_index], info);
    return true;
}
