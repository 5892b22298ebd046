// The devices of one connection, polled in turn.
#pragma once

#include "siblings/driversupport/ZRDeviceConnection.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#include <memory>

// A state machine on the I/O pool. Its operations are called by one thread (and OneHzCall by the worker); each returns
// at once. Membership changes only while it is stopped. Comes to rest by itself at destruction if it must.
//
// A driver may be a member of several groups; the first of them that starts serves it, the others leave it alone.
class ZRDeviceWorkGroup {
public:
    explicit ZRDeviceWorkGroup(const ZRBasicString& connectionName);
    ZRDeviceWorkGroup(const ZRDeviceWorkGroup&) = delete;
    ZRDeviceWorkGroup& operator=(const ZRDeviceWorkGroup&) = delete;
    virtual ~ZRDeviceWorkGroup();

    // The name of its connection.
    ZRBasicString name;

    // Not owned. A member that is destroyed stays a member by its name, and is served no more.
    void Add(ZRDeviceDriver* driver);
    void Remove(ZRDeviceDriver* driver);
    // By the name that the driver had when it was added.
    [[nodiscard]] bool HasDriver(const ZRBasicString& driverName) const;
    // Whether any work group at all has a driver of that name; quick. Any thread.
    [[nodiscard]] static bool AnyHasDriver(const ZRBasicString& driverName);

    // Begins to serve its drivers over that connection. Not owned; must outlive the service. False when it already
    // does, when somebody else uses the connection, or when the connection can't begin to open.
    bool Start(ZRDeviceConnection* connection);
    // The tick of the second. Returns at once. Worker thread only.
    void OneHzCall(const ZRDateTime& utcNow);
    // Asks the group to stop; returns at once. Harmless on a stopped group. Its devices are offline then.
    void Stop();
    // True once nothing of it runs any more: within 3 s of Stop, however mute the devices are.
    [[nodiscard]] bool Stopped() const;

    // Ticks received since it was made. Any thread.
    [[nodiscard]] std::uint64_t Ticks() const;
    // The time that came with the last tick; no date before the first. Any thread.
    [[nodiscard]] ZRDateTime LastTick() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};
