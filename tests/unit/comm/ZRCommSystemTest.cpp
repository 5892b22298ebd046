// The registry: what a document makes of it, and what each operation does to the lists.
#include "comm/ZRCommSystem.h"

#include "CommFixture.h"
#include "siblings/driversupport/ZRRSDeviceConnection.h"
#include "siblings/driversupport/ZRUDPDeviceConnection.h"

#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace {

using zr::test::PlainDriver;

class ZRCommSystemTest : public zr::test::CommFixture {};

TEST_F(ZRCommSystemTest, LoadsADocumentWithNothingInIt)
{
    ZRCommSystem system;
    XmlDocument document;
    document.Create(u"CommSystem");
    EXPECT_TRUE(system.LoadCfg(*document.root));
    EXPECT_TRUE(Load(system, "", ""));
    EXPECT_EQ(system.DriversBegin(), system.DriversEnd());
    EXPECT_EQ(system.ConnectionsBegin(), system.ConnectionsEnd());
    EXPECT_EQ(system.GroupsBegin(), system.GroupsEnd());
}

TEST_F(ZRCommSystemTest, LoadsConnectionsAndDevicesInTheOrderOfTheDocument)
{
    ZRCommSystem system;
    EXPECT_TRUE(Load(system, Udp("B") + Udp("A"), Device("M2", "A") + Device("M1", "B")));
    EXPECT_EQ((*system.ConnectionsBegin())->name, u"B");
    EXPECT_EQ((*std::next(system.ConnectionsBegin()))->name, u"A");
    EXPECT_EQ((*system.DriversBegin())->name, u"M2");
    EXPECT_EQ((*std::next(system.DriversBegin()))->name, u"M1");
    // A group is made when its first device is set up.
    EXPECT_EQ((*system.GroupsBegin())->name, u"A");
    EXPECT_EQ((*std::next(system.GroupsBegin()))->name, u"B");
}

TEST_F(ZRCommSystemTest, GetDriverGivesTheEndWhileThereIsNoDriver)
{
    ZRCommSystem system;
    EXPECT_EQ(system.GetDriver(u"M1"), system.DriversEnd());
    EXPECT_EQ(system.GetDriver(u""), system.DriversEnd());
}

TEST_F(ZRCommSystemTest, GetDriverFindsTheFirstOfItsName)
{
    ZRCommSystem system;
    Load(system, "", Device("M1") + Device("M2") + Device("M2"));
    EXPECT_EQ(system.GetDriver(u"M2"), std::next(system.DriversBegin()));
}

TEST_F(ZRCommSystemTest, GetDriverGivesTheFirstDriverForAnUnknownName)
{
    ZRCommSystem system;
    Load(system, "", Device("M1") + Device("M2"));
    EXPECT_EQ(system.GetDriver(u"M3"), system.DriversBegin());
    EXPECT_EQ(system.GetDriver(u"m2"), system.DriversBegin()) << "names are compared exactly";
}

TEST_F(ZRCommSystemTest, GetDriverGivesTheFirstDriverForAnEmptyName)
{
    ZRCommSystem system;
    Load(system, "", Device("M1") + Device("M2"));
    EXPECT_EQ(system.GetDriver(u""), system.DriversBegin());
}

TEST_F(ZRCommSystemTest, NewDriverAppendsWhatTheFactoryMakes)
{
    ZRCommSystem system;
    ZRDeviceDriver* const first = system.NewDriver(u"PLAIN");
    ZRDeviceDriver* const second = system.NewDriver(u"PLAIN");
    EXPECT_EQ(system.NewDriver(u"UNKNOWN"), nullptr);
    ASSERT_EQ(DriverCount(system), 2);
    EXPECT_EQ(*system.DriversBegin(), first);
    EXPECT_EQ(*std::next(system.DriversBegin()), second);
}

TEST_F(ZRCommSystemTest, DeleteDriverRemovesEveryEntryOfTheDriver)
{
    ZRCommSystem system;
    ZRDeviceDriver* const twice = system.NewDriver(u"PLAIN");
    ZRDeviceDriver* const other = system.NewDriver(u"PLAIN");
    ZRDeviceDriver* const replaced = system.NewDriver(u"PLAIN");
    *std::next(system.DriversBegin(), 2) = twice;
    delete replaced;

    system.DeleteDriver(twice);
    ASSERT_EQ(DriverCount(system), 1);
    EXPECT_EQ(*system.DriversBegin(), other);
    EXPECT_EQ(PlainDriver::alive, 1);
}

TEST_F(ZRCommSystemTest, DeleteDriverDestroysADriverThatIsNotListed)
{
    ZRCommSystem system;
    system.NewDriver(u"PLAIN");
    system.DeleteDriver(new PlainDriver);
    EXPECT_EQ(PlainDriver::alive, 1);
    EXPECT_EQ(DriverCount(system), 1);
    system.DeleteDriver(nullptr);
    EXPECT_EQ(DriverCount(system), 1);
}

TEST_F(ZRCommSystemTest, NewConnectionMakesTheClassOfItsType)
{
    ZRCommSystem system;
    EXPECT_NE(dynamic_cast<ZRRSDeviceConnection*>(system.NewConnection(u"RS")), nullptr);
    EXPECT_NE(dynamic_cast<ZRUDPDeviceConnection*>(system.NewConnection(u"UDP")), nullptr);
    EXPECT_EQ(ConnectionCount(system), 2);
}

TEST_F(ZRCommSystemTest, NewConnectionTakesTheTypeExactly)
{
    ZRCommSystem system;
    for (const wchar* const type : {u"TCP", u"rs", u"udp", u"RS ", u""}) {
        EXPECT_EQ(system.NewConnection(type), nullptr);
    }
    EXPECT_EQ(ConnectionCount(system), 0);
}

TEST_F(ZRCommSystemTest, SkipsAConnectionOfAnUnknownType)
{
    ZRCommSystem system;
    EXPECT_TRUE(Load(system,
                     "<Connection Name=\"T\" Type=\"TCP\"/><Connection Name=\"L\" Type=\"rs\" Port=\"1\"/>"
                     "<Connection Name=\"N\"/>" +
                         Udp("A"),
                     ""));
    ASSERT_EQ(ConnectionCount(system), 1);
    EXPECT_EQ((*system.ConnectionsBegin())->name, u"A");
}

TEST_F(ZRCommSystemTest, IgnoresChildrenWithOtherTags)
{
    ZRCommSystem system;
    EXPECT_TRUE(Load(system, "<connection Name=\"A\" Type=\"UDP\" Address=\"127.0.0.1\" Socket=\"1\"/><Line/>",
                     "<device Driver=\"PLAIN\" Name=\"M1\"/><Group/>"));
    EXPECT_EQ(ConnectionCount(system), 0);
    EXPECT_EQ(DriverCount(system), 0);
}

TEST_F(ZRCommSystemTest, SkipsADeviceOfAnUnknownType)
{
    ZRCommSystem system;
    EXPECT_TRUE(Load(system, Udp("A"), "<Device Driver=\"plain\" Name=\"M1\" Connection=\"A\"/>" + Device("M2", "A")));
    ASSERT_EQ(DriverCount(system), 1);
    EXPECT_EQ((*system.DriversBegin())->name, u"M2");
}

TEST_F(ZRCommSystemTest, DropsADeviceThatRefusesItsNode)
{
    ZRCommSystem system;
    EXPECT_TRUE(Load(system, Udp("A"), Device("M1", "A", "Refuse=\"1\"") + Device("M2", "A")));
    EXPECT_EQ(DriverCount(system), 1);
    EXPECT_EQ(PlainDriver::alive, 1);
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), nullptr);
}

TEST_F(ZRCommSystemTest, ASecondLoadWithoutResetAppends)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    EXPECT_TRUE(Load(system, Udp("B"), Device("M2", "A")));
    EXPECT_EQ(ConnectionCount(system), 2);
    EXPECT_EQ(DriverCount(system), 2);
    EXPECT_EQ(GroupCount(system), 1);
}

TEST_F(ZRCommSystemTest, KeepsTheEntryOfAConnectionThatRefusedItsNode)
{
    ZRCommSystem system;
    EXPECT_TRUE(Load(system, BadUdp("A") + Udp("B"), Device("M1", "A") + Device("M2", "B")));
    EXPECT_EQ(ConnectionCount(system), 2);
    // Lookups pass the stale entry: it leads to something without a name.
    EXPECT_EQ(system.Connection(u"A"), nullptr);
    ASSERT_NE(system.Connection(u"B"), nullptr);
    EXPECT_EQ(system.Connection(u"B")->name, u"B");
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), nullptr);
    // So do these.
    system.Start();
    system.Reset();
    EXPECT_EQ(ConnectionCount(system), 0);
}

TEST_F(ZRCommSystemTest, DeleteConnectionLeavesTheEntryInTheList)
{
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B"), "");
    ZRDeviceConnection* const connection = system.Connection(u"A");
    system.DeleteConnection(connection);
    ASSERT_EQ(ConnectionCount(system), 2);
    EXPECT_EQ(*system.ConnectionsBegin(), connection);
    EXPECT_EQ(system.Connection(u"A"), nullptr);
    // Once more through the stale pointer, as a caller that kept it might.
    system.DeleteConnection(connection);
    EXPECT_EQ(ConnectionCount(system), 2);
}

TEST_F(ZRCommSystemTest, DeleteConnectionDestroysOneThatIsNotListed)
{
    class WatchedConnection : public ZRUDPDeviceConnection {
    public:
        explicit WatchedConnection(bool& destroyed) : m_destroyed(destroyed) {}
        ~WatchedConnection() override { m_destroyed = true; }

    private:
        bool& m_destroyed;
    };
    ZRCommSystem system;
    bool destroyed = false;
    system.DeleteConnection(new WatchedConnection(destroyed));
    EXPECT_TRUE(destroyed);
    system.DeleteConnection(nullptr);
    EXPECT_EQ(ConnectionCount(system), 0);
}

TEST_F(ZRCommSystemTest, ConnectionAndWorkGroupGiveTheFirstOfTheirName)
{
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("A"), Device("M1", "A"));
    EXPECT_EQ(system.Connection(u"A"), *system.ConnectionsBegin());
    EXPECT_EQ(system.WorkGroup(u"A"), *system.GroupsBegin());
    EXPECT_EQ(system.Connection(u"a"), nullptr);
    EXPECT_EQ(system.WorkGroup(u"a"), nullptr);
    EXPECT_EQ(system.Connection(u"B"), nullptr);
    EXPECT_EQ(system.WorkGroup(u"B"), nullptr);
}

TEST_F(ZRCommSystemTest, ADeviceWithAnEmptyConnectionStaysInNoGroup)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "") + "<Device Driver=\"PLAIN\" Name=\"M2\"/>");
    EXPECT_EQ(DriverCount(system), 2);
    EXPECT_EQ(GroupCount(system), 0);
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), nullptr);
    EXPECT_EQ(system.ConnectionOfDriver(u"M2"), nullptr);
}

TEST_F(ZRCommSystemTest, ADeviceOfAConnectionThatDoesNotExistStaysInNoGroup)
{
    ZRCommSystem system;
    EXPECT_TRUE(Load(system, Udp("A"), Device("M1", "B")));
    EXPECT_EQ(DriverCount(system), 1);
    EXPECT_EQ(GroupCount(system), 0);
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), nullptr);
}

TEST_F(ZRCommSystemTest, TwoDevicesOfOneConnectionShareTheGroupOfTheFirst)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A") + Device("M2", "A"));
    ASSERT_EQ(GroupCount(system), 1);
    const ZRDeviceWorkGroup* const group = system.WorkGroup(u"A");
    ASSERT_NE(group, nullptr);
    EXPECT_TRUE(group->HasDriver(u"M1"));
    EXPECT_TRUE(group->HasDriver(u"M2"));
    EXPECT_EQ(system.ConnectionOfDriver(u"M2"), system.Connection(u"A"));
}

TEST_F(ZRCommSystemTest, MovingADriverToAConnectionWithAGroupTakesItOutOfTheOldOne)
{
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B"), Device("M1", "A") + Device("M2", "B"));
    system.SetupDriverConnection(u"M1", u"B");
    EXPECT_FALSE(system.WorkGroup(u"A")->HasDriver(u"M1"));
    EXPECT_TRUE(system.WorkGroup(u"B")->HasDriver(u"M1"));
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), system.Connection(u"B"));
}

TEST_F(ZRCommSystemTest, MovingADriverToAConnectionWithoutAGroupLeavesItInTheOldOneAsWell)
{
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B"), Device("M1", "A"));
    system.SetupDriverConnection(u"M1", u"B");
    ASSERT_NE(system.WorkGroup(u"B"), nullptr);
    EXPECT_TRUE(system.WorkGroup(u"A")->HasDriver(u"M1"));
    EXPECT_TRUE(system.WorkGroup(u"B")->HasDriver(u"M1"));
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), system.Connection(u"A")) << "the older group is found first";
}

TEST_F(ZRCommSystemTest, SettingADriverUpOnItsOwnConnectionLetsItLeaveAndRejoin)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.SetupDriverConnection(u"M1", u"A");
    EXPECT_TRUE(system.WorkGroup(u"A")->HasDriver(u"M1"));
    // It is a member once only: one Remove is enough.
    system.WorkGroup(u"A")->Remove(*system.DriversBegin());
    EXPECT_FALSE(system.WorkGroup(u"A")->HasDriver(u"M1"));
}

TEST_F(ZRCommSystemTest, SettingUpAnUnknownDriverOrConnectionChangesNothing)
{
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B"), Device("M1", "A"));
    system.SetupDriverConnection(u"M9", u"B");
    system.SetupDriverConnection(u"M1", u"C");
    EXPECT_EQ(GroupCount(system), 1);
    EXPECT_TRUE(system.WorkGroup(u"A")->HasDriver(u"M1"));
}

TEST_F(ZRCommSystemTest, SettingADriverUpLocksItAndNeverUnlocksIt)
{
    ZRCommSystem system;
    Load(system, Udp("A") + Udp("B"), Device("M1"));
    const ZRDeviceDriver& driver = **system.DriversBegin();
    EXPECT_EQ(driver.Locks(), 0);
    system.SetupDriverConnection(u"M1", u"A");  // a new group
    EXPECT_EQ(driver.Locks(), 1);
    system.SetupDriverConnection(u"M1", u"A");  // a group that exists
    EXPECT_EQ(driver.Locks(), 2);
    system.SetupDriverConnection(u"M1", u"C");  // no connection
    EXPECT_EQ(driver.Locks(), 3);
}

TEST_F(ZRCommSystemTest, ConnectionOfDriverIsNullWhenTheConnectionOfItsGroupHasGone)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.DeleteConnection(system.Connection(u"A"));
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), nullptr);
}

TEST_F(ZRCommSystemTest, SaveCfgReturnsFalseAndLeavesTheNode)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    XmlDocument document;
    document.Create(u"CommSystem");
    document.root->SetValue(u"Kept", u"as it is");
    const std::string before = document.SaveText();
    EXPECT_FALSE(system.SaveCfg(*document.root));
    EXPECT_EQ(document.SaveText(), before);
}

TEST_F(ZRCommSystemTest, ResetDestroysGroupsThenConnectionsThenDrivers)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A") + Device("M2", "A"));
    std::vector<ZRBasicString> destroyed;
    for (auto each = system.DriversBegin(); each != system.DriversEnd(); ++each) {
        auto* const driver = dynamic_cast<PlainDriver*>(*each);
        ASSERT_NE(driver, nullptr);
        driver->OnDestroyed = [&](const PlainDriver& gone) {
            destroyed.push_back(gone.name);
            EXPECT_EQ(GroupCount(system), 0);
            EXPECT_EQ(ConnectionCount(system), 0);
            EXPECT_FALSE(ZRDeviceWorkGroup::AnyHasDriver(gone.name));
        };
    }
    system.Reset();
    EXPECT_EQ(destroyed, (std::vector<ZRBasicString>{u"M1", u"M2"}));
    EXPECT_EQ(DriverCount(system), 0);
}

TEST_F(ZRCommSystemTest, LoadsAgainAfterReset)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    system.Reset();
    Load(system, Udp("A"), Device("M1", "A"));
    EXPECT_EQ(DriverCount(system), 1);
    EXPECT_EQ(system.ConnectionOfDriver(u"M1"), system.Connection(u"A"));
}

TEST_F(ZRCommSystemTest, TheDestructorDestroysEverything)
{
    {
        ZRCommSystem system;
        Load(system, Udp("A"), Device("M1", "A") + Device("M2"));
        EXPECT_EQ(PlainDriver::alive, 2);
    }
    EXPECT_EQ(PlainDriver::alive, 0);
}

TEST_F(ZRCommSystemTest, GetGivesTheSystemConstructedLast)
{
    const ZRCommSystem first;
    EXPECT_EQ(&ZRCommSystem::Get(), &first);
    const ZRCommSystem second;
    EXPECT_EQ(&ZRCommSystem::Get(), &second);
}

TEST_F(ZRCommSystemTest, TheInstanceIsStaleAfterDestruction)
{
    alignas(ZRCommSystem) std::byte storage[sizeof(ZRCommSystem)];
    auto* const system = new (storage) ZRCommSystem;
    system->~ZRCommSystem();
    EXPECT_EQ(static_cast<void*>(&ZRCommSystem::Get()), static_cast<void*>(storage));
}

TEST_F(ZRCommSystemTest, CopiesShareTheObjectsAndLeaveTheInstance)
{
    ZRCommSystem system;
    Load(system, Udp("A"), Device("M1", "A"));
    const ZRCommSystem empty;
    ZRCommSystem last;

    ZRCommSystem copy(system);
    ZRCommSystem assigned(empty);
    assigned = system;
    EXPECT_EQ(&ZRCommSystem::Get(), &last);
    for (ZRCommSystem* const each : {&copy, &assigned}) {
        ASSERT_EQ(DriverCount(*each), 1);
        EXPECT_EQ(*each->DriversBegin(), *system.DriversBegin());
        EXPECT_EQ(each->Connection(u"A"), system.Connection(u"A"));
        EXPECT_EQ(each->WorkGroup(u"A"), system.WorkGroup(u"A"));
        // All but one let go of the objects before they are destroyed.
        *each = empty;
        EXPECT_EQ(DriverCount(*each), 0);
    }
    EXPECT_EQ(PlainDriver::alive, 1);
}

}  // namespace
