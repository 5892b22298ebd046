#include "siblings/driversupport/ZRDeviceDriver.h"

#include "siblings/driversupport/MeasureUnits.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>

namespace {

// The live drivers by name; those of one name in the order in which they took it.
struct LiveDrivers {
    std::mutex guard;
    std::unordered_map<ZRBasicString, std::vector<ZRDeviceDriver*>> byName;
};

LiveDrivers& Live()
{
    // Never destroyed: a driver may go after the static objects.
    static LiveDrivers& live = *new LiveDrivers;
    return live;
}

std::vector<ZRDeviceDriver::Factory>& Factories()
{
    static std::vector<ZRDeviceDriver::Factory> factories;
    return factories;
}

ZRDeviceDriver* FirstOf(const LiveDrivers& live, const ZRBasicString& name)
{
    const auto found = live.byName.find(name);
    return found == live.byName.end() ? nullptr : found->second.front();
}

void Unregister(LiveDrivers& live, const ZRBasicString& name, ZRDeviceDriver* driver)
{
    const auto found = live.byName.find(name);
    if (found == live.byName.end()) {
        return;
    }
    std::erase(found->second, driver);
    if (found->second.empty()) {
        live.byName.erase(found);
    }
}

}  // namespace

const ZRDriverVariableNameIterator ZRDeviceDriver::variableNameIteratorEnd;

std::vector<ZRBasicString>& ZRDeviceDriver::DriverImages()
{
    static std::vector<ZRBasicString> images;
    return images;
}

ZRDeviceDriver::ZRDeviceDriver() = default;

ZRDeviceDriver::~ZRDeviceDriver()
{
    for (zr::DriverKeeper* keeper : std::exchange(m_keepers, {})) {
        keeper->DriverGone(this);
    }
    if (m_registered) {
        LiveDrivers& live = Live();
        const std::lock_guard lock(live.guard);
        Unregister(live, m_registeredName, this);
    }
    if (m_store != nullptr) {
        m_store->InvalidateAll();
    }
}

const CRuntimeClass* ZRDeviceDriver::GetRuntimeClass() const
{
    static constexpr CRuntimeClass kClass{"ZRDeviceDriver"};
    return &kClass;
}

std::chrono::milliseconds ZRDeviceDriver::Period() const
{
    return std::chrono::seconds(1);
}

ZRDeviceTransaction* ZRDeviceDriver::NextTransaction()
{
    return nullptr;
}

void ZRDeviceDriver::TransactionDone(ZRDeviceTransaction&) {}

void ZRDeviceDriver::Release()
{
    int locks = m_locks.load(std::memory_order_relaxed);
    while (locks > 0 && !m_locks.compare_exchange_weak(locks, locks - 1, std::memory_order_relaxed)) {
    }
}

void ZRDeviceDriver::BeginCycle() {}

ZRDeviceTransaction* ZRDeviceDriver::ProbeTransaction()
{
    BeginCycle();
    return NextTransaction();
}

bool ZRDeviceDriver::SetOutput(VariableHandle, double)
{
    return false;
}

bool ZRDeviceDriver::LockVariable(const wchar* variable, VariableHandle& handle)
{
    if (m_store == nullptr) {
        return false;
    }
    const auto index = m_store->Table().Find(variable);
    if (!index) {
        return false;
    }
    handle = *index + 1;  // so that 0 is never a handle
    return true;
}

void ZRDeviceDriver::UnlockVariable(VariableHandle& handle)
{
    handle = 0;
}

bool ZRDeviceDriver::VariableIndex(VariableHandle handle, std::size_t& index) const
{
    if (m_store == nullptr || handle == 0 || handle > m_store->Table().Size()) {
        return false;
    }
    index = handle - 1;
    return true;
}

bool ZRDeviceDriver::IsVariableValid(VariableHandle handle) const
{
    std::size_t index = 0;
    return VariableIndex(handle, index) && m_store->At(index).IsValid();
}

void ZRDeviceDriver::VariableValue(VariableHandle handle, tagSVariableValue& value) const
{
    std::size_t index = 0;
    if (VariableIndex(handle, index)) {
        m_store->At(index).Read(value);
    }
}

bool ZRDeviceDriver::VariableValueInfo(VariableHandle handle, tagSVariableValueInfo& info) const
{
    std::size_t index = 0;
    if (!VariableIndex(handle, index)) {
        return false;
    }
    Describe(m_store->Table()[index], info);
    return true;
}

bool ZRDeviceDriver::VariableInfo(VariableHandle handle, tagSVariableInfo& info) const
{
    std::size_t index = 0;
    if (!VariableIndex(handle, index)) {
        return false;
    }
    Describe(m_store->Table()[index], info);
    return true;
}

void ZRDeviceDriver::Describe(const zr::VariableDescription& variable, tagSVariableInfo& info)
{
    info.name = variable.name.CStr();
    info.description = variable.description.CStr();
    info.infoCode = static_cast<std::int32_t>(variable.variableClass);
    info.measureUnits = variable.measureUnits;
    info.valueExponent = variable.valueExponent;
    info.decimals = variable.decimals;
    info.unitsExponent = variable.unitsExponent;
    info.unitsDecimals = variable.unitsDecimals;
    info.reserved = 0;
    info.flags = (variable.splittable ? kSplittable : 0) | (variable.output ? kOutput : 0);
}

void ZRDeviceDriver::Describe(const zr::VariableDescription& variable, tagSVariableValueInfo& info)
{
    const bool limited = variable.minimum != 0.0 || variable.maximum != 0.0;
    info.description = variable.description.CStr();
    info.decimals = variable.decimals;
    info.minimum = limited ? variable.minimum : std::numeric_limits<double>::lowest();
    info.maximum = limited ? variable.maximum : std::numeric_limits<double>::max();
    info.valueTexts = variable.valueTexts;
    info.values = variable.values;
}

bool ZRDeviceDriver::AcceptsOutput(VariableHandle handle, double value) const
{
    std::size_t index = 0;
    if (!VariableIndex(handle, index) || !m_store->Table()[index].output) {
        return false;
    }
    const zr::VariableDescription& variable = m_store->Table()[index];
    if (!variable.values.empty()) {
        return std::any_of(variable.values.begin(), variable.values.end(),
                           [value](int allowed) { return value == allowed; });
    }
    tagSVariableValueInfo limits;
    Describe(variable, limits);
    return value >= limits.minimum && value <= limits.maximum;  // false for a NaN
}

std::uint8_t ZRDeviceDriver::Unit() const
{
    return 0;
}

const wchar* ZRDeviceDriver::Description() const
{
    return name.CStr();
}

void ZRDeviceDriver::OnlineChanged(bool) {}

bool ZRDeviceDriver::LoadCfg(const XmlNode&)
{
    return false;
}

ZRBasicString ZRDeviceDriver::LoadError() const
{
    return {};
}

std::size_t ZRDeviceDriver::VariableCount() const
{
    return m_store == nullptr ? 0 : m_store->Table().Size();
}

const wchar* ZRDeviceDriver::DriverType() const
{
    return u"";
}

const wchar* ZRDeviceDriver::ImageName() const
{
    return u"";
}

int ZRDeviceDriver::ImageIndex() const
{
    const std::vector<ZRBasicString>& images = DriverImages();
    const auto found = std::find(images.begin(), images.end(), ZRBasicString(ImageName()));
    return found == images.end() ? 0 : static_cast<int>(found - images.begin());
}

const wchar* ZRDeviceDriver::VariableName(std::size_t index) const
{
    return index < VariableCount() ? m_store->Table()[index].name.CStr() : nullptr;
}

ZRDriverVariableNameIterator* ZRDeviceDriver::VariableNameBegin(ZRDriverVariableNameIterator& out)
{
    out = variableNameIteratorEnd;
    if (VariableCount() > 0) {
        out.m_name = VariableName(0);
        out.m_driver = this;
    }
    return &out;
}

bool ZRDeviceDriver::Advance(ZRDriverVariableNameIterator& iterator)
{
    const std::size_t next = iterator.m_position + 1;
    if (iterator.m_name == nullptr || next >= VariableCount()) {
        iterator = variableNameIteratorEnd;
        return false;
    }
    iterator.m_position = next;
    iterator.m_name = VariableName(next);
    return true;
}

const wchar* ZRDeviceDriver::DefaultFilter() const
{
    return nullptr;
}

void ZRDeviceDriver::AddFactory(Factory factory)
{
    if (factory) {
        Factories().push_back(std::move(factory));
    }
}

void ZRDeviceDriver::ClearFactories()
{
    Factories().clear();
}

ZRDeviceDriver* ZRDeviceDriver::NewDriver(const ZRBasicString& type)
{
    for (const Factory& factory : Factories()) {
        if (ZRDeviceDriver* driver = factory(type)) {
            return driver;
        }
    }
    return nullptr;
}

// Not exclusive, and nobody is made to release: several callers lock a driver only to learn that it is there.
ZRDeviceDriver* ZRDeviceDriver::LockDriver(const wchar* name, bool)
{
    LiveDrivers& live = Live();
    const std::lock_guard lock(live.guard);
    ZRDeviceDriver* driver = FirstOf(live, name);
    if (driver != nullptr) {
        driver->m_locks.fetch_add(1, std::memory_order_relaxed);
    }
    return driver;
}

void ZRDeviceDriver::UnlockDriver(ZRDeviceDriver* driver)
{
    if (driver != nullptr) {
        driver->Release();
    }
}

ZRDeviceDriver* ZRDeviceDriver::FindLive(const ZRBasicString& name, std::shared_ptr<zr::VariableStore>& store)
{
    LiveDrivers& live = Live();
    const std::lock_guard lock(live.guard);
    ZRDeviceDriver* driver = FirstOf(live, name);
    if (driver != nullptr) {
        store = driver->m_store;
    }
    return driver;
}

void ZRDeviceDriver::MeasureUnitsText(ZRBasicString& out, int units, int exponent)
{
    zr::MeasureUnitsText(out, units, exponent);
}

void ZRDeviceDriver::SetName(const ZRBasicString& deviceName)
{
    LiveDrivers& live = Live();
    const std::lock_guard lock(live.guard);
    if (m_registered) {
        Unregister(live, m_registeredName, this);
    }
    name = ZRBasicString(deviceName);
    m_registeredName = name;
    live.byName[m_registeredName].push_back(this);
    m_registered = true;
}

void ZRDeviceDriver::SetVariables(std::shared_ptr<const zr::VariableTable> table)
{
    auto store = table == nullptr ? nullptr : std::make_shared<zr::VariableStore>(std::move(table));
    const std::lock_guard lock(Live().guard);
    if (m_store != nullptr) {
        m_store->InvalidateAll();
    }
    m_store = std::move(store);
}

void ZRDeviceDriver::SetOnline(bool online)
{
    if (m_online.exchange(online, std::memory_order_acq_rel) == online) {
        return;
    }
    if (!online && m_store != nullptr) {
        m_store->InvalidateAll();
    }
    OnlineChanged(online);
}

bool ZRDeviceDriver::BeginService(zr::DriverService* service)
{
    const std::lock_guard lock(m_serviceGuard);
    if (m_service != nullptr) {
        return false;
    }
    m_service = service;
    return true;
}

void ZRDeviceDriver::EndService(const zr::DriverService* service)
{
    const std::lock_guard lock(m_serviceGuard);
    if (m_service == service) {
        m_service = nullptr;
    }
}

void ZRDeviceDriver::AskForService()
{
    m_callsForService.store(true, std::memory_order_release);
    // The guard is held over the call so that the group can't end meanwhile; DriverCalls only leaves a note.
    const std::lock_guard lock(m_serviceGuard);
    if (m_service != nullptr) {
        m_service->DriverCalls();
    }
}

void ZRDeviceDriver::AddKeeper(zr::DriverKeeper* keeper)
{
    m_keepers.push_back(keeper);
}

void ZRDeviceDriver::RemoveKeeper(zr::DriverKeeper* keeper)
{
    const auto found = std::find(m_keepers.begin(), m_keepers.end(), keeper);
    if (found != m_keepers.end()) {
        m_keepers.erase(found);
    }
}

bool ZRDeviceDriver::IsKeptBy(const zr::DriverKeeper* keeper) const
{
    return std::find(m_keepers.begin(), m_keepers.end(), keeper) != m_keepers.end();
}

ZRDriverVariableNameIterator ZRDriverVariableNameIterator::operator++(int)
{
    ZRDriverVariableNameIterator before = *this;
    if (m_driver != nullptr) {
        m_driver->Advance(*this);
    }
    return before;
}
