// What the tests of the communication core share: a driver class of the plainest kind and documents.
#pragma once

#include "comm/WorkerState.h"
#include "comm/ZRCommSystem.h"
#include "siblings/driversupport/ZRDeviceDriver.h"
#include "siblings/tools/XmlDocument.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <iterator>
#include <string>

namespace zr::test {

// A device without requests; refuses a node that has the value Refuse.
class PlainDriver : public ZRDeviceDriver {
public:
    ~PlainDriver() override
    {
        --alive;
        if (OnDestroyed) {
            OnDestroyed(*this);
        }
    }
    PlainDriver() { ++alive; }

    void BeginCycle() override { ++cycles; }
    ZRDeviceTransaction* NextTransaction() override { return nullptr; }
    bool LoadCfg(const XmlNode& node) override
    {
        SetName(node.Value(u"Name", u""));
        return !node.HasValue(u"Refuse");
    }

    std::atomic<int> cycles{0};  // begun by its work group
    std::function<void(const PlainDriver&)> OnDestroyed;
    static inline int alive = 0;
};

class CommFixture : public ::testing::Test {
protected:
    CommFixture()
    {
        ZRDeviceDriver::ClearFactories();
        ZRDeviceDriver::AddFactory(
            [](const ZRBasicString& type) -> ZRDeviceDriver* { return type == u"PLAIN" ? new PlainDriver : nullptr; });
    }
    ~CommFixture() override
    {
        ZRDeviceDriver::ClearFactories();
        EXPECT_EQ(PlainDriver::alive, 0) << "a driver was left";
        EXPECT_EQ(workerState, WORKER_STOPPED);
    }

    // Loads the children of a CommSystem node.
    static bool Load(ZRCommSystem& system, const std::string& connections, const std::string& devices)
    {
        XmlDocument document;
        EXPECT_TRUE(document.LoadText("<CommSystem><Connections>" + connections + "</Connections><Devices>" + devices +
                                      "</Devices></CommSystem>"))
            << document.Error().Message();
        return document.root != nullptr && system.LoadCfg(*document.root);
    }
    static std::string Udp(const std::string& name, const std::string& more = "")
    {
        return "<Connection Name=\"" + name + "\" Type=\"UDP\" Address=\"127.0.0.1\" Socket=\"10001\" " + more + "/>";
    }
    // A connection that refuses its own node.
    static std::string BadUdp(const std::string& name)
    {
        return "<Connection Name=\"" + name + "\" Type=\"UDP\" Address=\"127.0.0.1\" Socket=\"none\"/>";
    }
    static std::string Device(const std::string& name, const std::string& connection = "", const std::string& more = "")
    {
        return "<Device Driver=\"PLAIN\" Name=\"" + name + "\" Connection=\"" + connection + "\" " + more + "/>";
    }

    static auto DriverCount(ZRCommSystem& system) { return std::distance(system.DriversBegin(), system.DriversEnd()); }
    static auto ConnectionCount(ZRCommSystem& system)
    {
        return std::distance(system.ConnectionsBegin(), system.ConnectionsEnd());
    }
    static auto GroupCount(ZRCommSystem& system) { return std::distance(system.GroupsBegin(), system.GroupsEnd()); }
};

}  // namespace zr::test
