#include "comm/ZRCommSystem.h"

#include "comm/WorkerState.h"
#include "platform/Clock.h"
#include "platform/WinThread.h"
#include "siblings/driversupport/ConnectionTypes.h"
#include "siblings/tools/ZRDateTime.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

std::atomic<int> zr::workerState{zr::WORKER_STOPPED};
ZRCommSystem* ZRCommSystem::instance = nullptr;

namespace {

using zr::workerState;

constexpr std::uint32_t kLookMilliseconds = 100;   // how often the worker looks at the clock and at its state
constexpr std::uint32_t kTickMilliseconds = 1000;  // least distance of two ticks

// The workers begun and not joined yet. More than one only after a Start that wasn't answered by a Stop; they all obey
// the one state, so that they can all be joined as soon as it isn't WORKER_RUNNING.
struct Workers {
    std::vector<std::unique_ptr<CWinThread>> threads;
    // A host that ends without Stop still gets its worker joined.
    ~Workers() { workerState = zr::WORKER_STOPPED; }
} workers;

// The system time in UTC, by way of the OLE date: whole seconds.
ZRDateTime UtcNow()
{
    using namespace std::chrono;
    const auto now = floor<seconds>(zr::CurrentClock().Utc());
    const auto midnight = floor<days>(now);
    const year_month_day date(midnight);
    const hh_mm_ss time(now - midnight);
    return ZRDateTime(COleDateTime(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
                                   static_cast<int>(static_cast<unsigned>(date.day())),
                                   static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                                   static_cast<int>(time.seconds().count())));
}

template <typename List>
auto FirstNamed(const List& list, const ZRBasicString& name)
{
    return std::find_if(list.begin(), list.end(), [&name](const auto* entry) { return entry->name == name; });
}

// What FirstNamed finds, for the length of one load: a walk of the list for each of many devices takes too long.
// Meanwhile the objects stay, keep their names, and are only appended to.
template <typename Object>
class FirstOfName {
public:
    explicit FirstOfName(const std::list<Object*>& list)
    {
        for (Object* const each : list) {
            Add(each);
        }
    }
    // Null when there is none of that name.
    [[nodiscard]] Object* Find(const ZRBasicString& name) const
    {
        const auto found = m_objects.find(name.Text());
        return found != m_objects.end() ? found->second : nullptr;
    }
    // An object that is already in, and null, change nothing.
    void Add(Object* object)
    {
        if (object != nullptr) {
            m_objects.emplace(object->name.Text(), object);
        }
    }

private:
    std::unordered_map<std::u16string_view, Object*> m_objects;
};

template <typename List>
void DestroyAll(List& list)
{
    for (const auto* entry : list) {
        delete entry;
    }
    list.clear();
}

}  // namespace

ZRCommSystem::ZRCommSystem()
{
    instance = this;
}

// It is meant that `instance` stays as it is; only the document's singleton clears its own.
ZRCommSystem::~ZRCommSystem()
{
    Reset();
}

ZRCommSystem::DriverList::iterator ZRCommSystem::GetDriver(const ZRBasicString& name)
{
    const auto found =
        std::find_if(drivers.begin(), drivers.end(), [&name](const auto* driver) { return driver->name == name; });
    // It is meant that a miss gives the first driver: callers compare the name.
    return name.IsEmpty() || found == drivers.end() ? drivers.begin() : found;
}

ZRDeviceDriver* ZRCommSystem::NewDriver(const ZRBasicString& type)
{
    ZRDeviceDriver* const driver = ZRDeviceDriver::NewDriver(type);
    if (driver != nullptr) {
        drivers.push_back(driver);
    }
    return driver;
}

void ZRCommSystem::DeleteDriver(ZRDeviceDriver* driver)
{
    drivers.remove(driver);
    delete driver;
}

ZRDeviceConnection* ZRCommSystem::NewConnection(const ZRBasicString& type)
{
    std::unique_ptr<ZRDeviceConnection> connection = zr::MakeConnection(type);
    if (connection == nullptr) {
        return nullptr;
    }
    connections.push_back(connection.get());
    return connection.release();
}

void ZRCommSystem::DeleteConnection(ZRDeviceConnection* connection)
{
    if (connection == nullptr) {
        return;
    }
    // It is meant that the entry stays, so that lookups, Start and Reset follow it later. They must not read freed
    // memory: what they find is a connection without a name that does nothing, and Reset frees it.
    const bool isListed = std::find(connections.begin(), connections.end(), connection) != connections.end();
    if (isListed) {
        ZRDeviceConnection::Bury(connection);
    } else {
        delete connection;
    }
}

void ZRCommSystem::SetupDriverConnection(const ZRBasicString& driver, const ZRBasicString& connection)
{
    const ZRDeviceConnection* const target = Connection(connection);
    MoveDriver(driver, target, target != nullptr ? WorkGroup(target->name) : nullptr);
}

ZRDeviceWorkGroup* ZRCommSystem::MoveDriver(const ZRBasicString& driver, const ZRDeviceConnection* target,
                                            ZRDeviceWorkGroup* targetGroup)
{
    // It is meant that no path unlocks: a lock isn't exclusive.
    ZRDeviceDriver* const locked = ZRDeviceDriver::LockDriver(driver.CStr(), false);
    if (locked == nullptr) {
        return nullptr;
    }
    if (targetGroup != nullptr) {
        const ZRDeviceConnection* const current = ConnectionOfDriver(driver);
        ZRDeviceWorkGroup* const currentGroup = current != nullptr ? WorkGroup(current->name) : nullptr;
        // Also when both are the same group: the driver leaves it and joins again, at the end.
        if (currentGroup != nullptr) {
            currentGroup->Remove(locked);
        }
        targetGroup->Add(locked);
        return targetGroup;
    }
    if (target == nullptr) {
        return nullptr;
    }
    // It is meant that the driver isn't removed from its current group here, other than above.
    groups.push_back(new ZRDeviceWorkGroup(target->name));
    groups.back()->Add(locked);
    return groups.back();
}

ZRDeviceConnection* ZRCommSystem::Connection(const ZRBasicString& name) const
{
    const auto found = FirstNamed(connections, name);
    return found != connections.end() ? *found : nullptr;
}

ZRDeviceWorkGroup* ZRCommSystem::WorkGroup(const ZRBasicString& name) const
{
    const auto found = FirstNamed(groups, name);
    return found != groups.end() ? *found : nullptr;
}

ZRDeviceConnection* ZRCommSystem::ConnectionOfDriver(const ZRBasicString& driver) const
{
    // While a document loads, hardly any driver is in a group yet: asking that first spares the walk.
    if (!ZRDeviceWorkGroup::AnyHasDriver(driver)) {
        return nullptr;
    }
    const auto group =
        std::find_if(groups.begin(), groups.end(), [&driver](const auto* each) { return each->HasDriver(driver); });
    return group != groups.end() ? Connection((*group)->name) : nullptr;
}

bool ZRCommSystem::LoadCfg(const XmlNode& node)
{
    // Connections first: a device looks up its connection by name.
    if (const XmlNode* const connectionsNode = node.Node(u"Connections"); connectionsNode != nullptr) {
        LoadConnections(*connectionsNode);
    }
    if (const XmlNode* const devicesNode = node.Node(u"Devices"); devicesNode != nullptr) {
        LoadDevices(*devicesNode);
    }
    return true;
}

void ZRCommSystem::LoadConnections(const XmlNode& node)
{
    for (const XmlNode* const child : node.children) {
        if (child->tag != u"Connection") {
            continue;
        }
        ZRDeviceConnection* const connection = NewConnection(child->Value(u"Type", u""));
        if (connection != nullptr && !connection->LoadCfg(*child)) {
            DeleteConnection(connection);
        }
    }
}

void ZRCommSystem::LoadDevices(const XmlNode& node)
{
    const FirstOfName<ZRDeviceConnection> connectionOf(connections);
    FirstOfName<ZRDeviceWorkGroup> groupOf(groups);
    for (const XmlNode* const child : node.children) {
        if (child->tag != u"Device") {
            continue;
        }
        ZRDeviceDriver* const driver = NewDriver(child->Value(u"Driver", u""));
        if (driver == nullptr) {
            continue;
        }
        if (!driver->LoadCfg(*child)) {
            DeleteDriver(driver);
            continue;
        }
        const ZRBasicString connection = child->Value(u"Connection", u"");
        if (connection.IsEmpty()) {
            continue;
        }
        // As SetupDriverConnection.
        const ZRDeviceConnection* const target = connectionOf.Find(connection);
        groupOf.Add(MoveDriver(driver->name, target, target != nullptr ? groupOf.Find(target->name) : nullptr));
    }
}

// It is meant that nothing is written: the document is edited and saved by others.
bool ZRCommSystem::SaveCfg(XmlNode& /*node*/) const
{
    return false;
}

void ZRCommSystem::Start()
{
    for (ZRDeviceWorkGroup* const group : groups) {
        ZRDeviceConnection* const connection = Connection(group->name);
        if (connection != nullptr) {
            group->Start(connection);
        }
    }
    workerState = zr::WORKER_RUNNING;
    thread = AfxBeginThread(&WorkerProcedure, this);
    if (thread == nullptr) {
        // It is meant that the groups already started stay started, and that nothing is reported.
        workerState = zr::WORKER_STOPPED;
        return;
    }
    workers.threads.emplace_back(thread);
}

int ZRCommSystem::WorkerProcedure(void* parameter)
{
    if (parameter == nullptr) {
        return -1;
    }
    const auto* const system = static_cast<const ZRCommSystem*>(parameter);
    std::uint32_t last = zr::GetTickCount();
    while (workerState == zr::WORKER_RUNNING) {
        zr::Sleep(kLookMilliseconds);
        // Unsigned, so that the wrap of the counter does no harm.
        if (zr::GetTickCount() - last < kTickMilliseconds) {
            continue;
        }
        // Taken before the groups run, and no tick that was missed is made up for.
        last = zr::GetTickCount();
        const ZRDateTime now = UtcNow();
        for (ZRDeviceWorkGroup* const group : system->groups) {
            group->OneHzCall(now);
        }
    }
    workerState = zr::WORKER_STOPPED;
    return 0;
}

void ZRCommSystem::Stop()
{
    // It is meant that neither wait has a limit, and that the groups are stopped also when no worker ran.
    if (workerState == zr::WORKER_RUNNING) {
        workerState = zr::WORKER_STOPPING;
        while (workerState != zr::WORKER_STOPPED) {
            zr::Sleep(0);
        }
    }
    // Every worker is on its way out by now, if not gone.
    workers.threads.clear();

    for (ZRDeviceWorkGroup* const group : groups) {
        group->Stop();
    }
    bool allAtRest = false;
    do {
        allAtRest = std::all_of(groups.begin(), groups.end(), [](const auto* group) { return group->Stopped(); });
        zr::Sleep(0);
    } while (!allAtRest);
    workerState = zr::WORKER_STOPPED;
}

void ZRCommSystem::Reset()
{
    Stop();
    DestroyAll(groups);
    DestroyAll(connections);
    DestroyAll(drivers);
}
