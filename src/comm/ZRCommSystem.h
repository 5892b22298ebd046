// The registry of everything that talks to a device, and its tick of one second.
#pragma once

#include "siblings/driversupport/ZRDeviceConnection.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/driversupport/ZRDeviceWorkGroup.h"
#include "siblings/tools/XmlDocument.h"
#include "siblings/tools/ZRBasicString.h"

#include <list>

class CWinThread;

// Knows every driver, connection and work group, and decides who belongs to which group and when the groups run. It
// doesn't poll: that is the work group's.
//
// Order of use: construct, LoadCfg, Start, then Stop or Reset, destruct. There is no lock: the three lists change only
// while the worker is stopped, and all operations are called by one thread, which is not the worker.
//
// The lists hold raw pointers and own them; Reset and the destructor destroy groups first (they hold on to the others),
// then connections, then drivers. Names are compared exactly. A group's name is that of its connection, and nothing
// else links the two. Nothing is reported: what can't be built is left out.
class ZRCommSystem {
public:
    using DriverList = std::list<ZRDeviceDriver*>;
    using ConnectionList = std::list<ZRDeviceConnection*>;
    using GroupList = std::list<ZRDeviceWorkGroup*>;

    // Becomes the one that Get() returns.
    ZRCommSystem();
    // Element by element: the copy shares the objects, and Get() goes on returning what it did. Both would destroy the
    // objects, so all but one of them must be given an empty system before they go.
    ZRCommSystem(const ZRCommSystem& other) = default;
    ZRCommSystem& operator=(const ZRCommSystem& other) = default;
    // As Reset. Get() is stale afterwards.
    virtual ~ZRCommSystem();

    // The system constructed last. No test for null.
    static ZRCommSystem& Get() { return *instance; }

    // In order of creation.
    DriverList::iterator DriversBegin() { return drivers.begin(); }
    DriverList::iterator DriversEnd() { return drivers.end(); }
    ConnectionList::iterator ConnectionsBegin() { return connections.begin(); }
    ConnectionList::iterator ConnectionsEnd() { return connections.end(); }
    GroupList::iterator GroupsBegin() { return groups.begin(); }
    GroupList::iterator GroupsEnd() { return groups.end(); }

    // The first driver of that name. The first of all for an empty name and also for a name that nobody has: compare
    // the name again to learn of a miss. The end only while there is no driver.
    DriverList::iterator GetDriver(const ZRBasicString& name);
    // A driver of that type, appended to the list; null, and nothing appended, if no driver class goes by it.
    ZRDeviceDriver* NewDriver(const ZRBasicString& type);
    // Takes the driver off the list and destroys it, also when it isn't in the list. Its work group is not told.
    void DeleteDriver(ZRDeviceDriver* driver);

    // A connection of type "RS" or "UDP", not configured yet, appended to the list; null for any other text.
    ZRDeviceConnection* NewConnection(const ZRBasicString& type);
    // Destroys the connection and leaves its entry in the list: see Bury for what the entry then leads to.
    void DeleteConnection(ZRDeviceConnection* connection);
    // Moves a driver onto the work group of a connection. Nothing happens when either doesn't exist. When the group
    // has to be made first, the driver stays in its old group as well, and ConnectionOfDriver goes on telling the old
    // one. The driver is locked and never unlocked.
    void SetupDriverConnection(const ZRBasicString& driver, const ZRBasicString& connection);

    // The first of that name; null if there is none.
    [[nodiscard]] ZRDeviceConnection* Connection(const ZRBasicString& name) const;
    [[nodiscard]] ZRDeviceWorkGroup* WorkGroup(const ZRBasicString& name) const;
    // The connection of the first group that has the driver; null if none has, or its connection is gone.
    [[nodiscard]] ZRDeviceConnection* ConnectionOfDriver(const ZRBasicString& driver) const;

    // Appends what the `Connections` and `Devices` of the node tell. What isn't known or refuses its node is left out;
    // always true. A second call without Reset appends once more.
    bool LoadCfg(const XmlNode& node);
    // Writes nothing; always false. The document is written by those who edit it.
    bool SaveCfg(XmlNode& node) const;

    // Starts every group that has its connection, then the worker. Does not test whether one runs already.
    void Start();
    // Stops the worker and every group. Blocks until the worker has left its pass and every group has come to rest,
    // without limit. Harmless on a stopped system.
    void Stop();
    // Stops, then destroys everything.
    void Reset();

private:
    void LoadConnections(const XmlNode& node);
    void LoadDevices(const XmlNode& node);
    // Puts the driver of that name into the group of the connection; targetGroup: that group, null if it has to be
    // made. The group that the driver is in then, null if nothing was done.
    ZRDeviceWorkGroup* MoveDriver(const ZRBasicString& driver, const ZRDeviceConnection* target,
                                  ZRDeviceWorkGroup* targetGroup);
    static int WorkerProcedure(void* parameter);

    static ZRCommSystem* instance;

    DriverList drivers;            // Owned.
    ConnectionList connections;    // Owned.
    GroupList groups;              // Owned. Read by the worker on each tick.
    CWinThread* thread = nullptr;  // As AfxBeginThread returned it; nothing reads it afterwards.
};
