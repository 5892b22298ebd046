#include "siblings/driversupport/ConnectionTypes.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/ZRRSDeviceConnection.h"
#include "siblings/tools/XmlDocument.h"
#include "TestDevice.h"

#include <gtest/gtest.h>

namespace zr::test {

namespace {

using Values = std::vector<std::pair<const char16_t*, const char16_t*>>;

template <typename Connection>
bool Load(Connection& connection, const Values& values)
{
    XmlDocument document;
    document.Create(u"Connection");
    for (const auto& [key, value] : values) {
        document.root->SetValue(key, value);
    }
    return connection.LoadCfg(*document.root);
}

TEST(ConnectionTypesTest, MakesAConnectionOfEachTypeThatDocumentsName)
{
    EXPECT_NE(dynamic_cast<ZRRSDeviceConnection*>(MakeConnection(u"RS").get()), nullptr);
    EXPECT_NE(dynamic_cast<ZRUDPDeviceConnection*>(MakeConnection(u"UDP").get()), nullptr);
    for (const char16_t* type : {u"", u"rs", u"UDP ", u"TCP"}) {
        EXPECT_EQ(MakeConnection(type), nullptr);
    }
}

TEST(ZRRSDeviceConnectionTest, ReadsItsValuesWithTheirDefaults)
{
    ZRRSDeviceConnection connection;
    ASSERT_TRUE(Load(connection, {{u"Name", u"COM"}, {u"Port", u"2"}}));
    EXPECT_EQ(connection.name, u"COM");
    EXPECT_EQ(connection.Port(), 2);
    EXPECT_EQ(connection.Settings().baudRate, 9600);
    EXPECT_EQ(connection.Settings().parity, SerialParity::None);
    EXPECT_EQ(connection.TimeOut(), std::chrono::milliseconds(1000));
    ASSERT_TRUE(Load(connection, {{u"Port", u"2"}, {u"BaudRate", u"19200"}, {u"Parity", u"E"}, {u"TimeOut", u"250"}}));
    EXPECT_EQ(connection.Settings().baudRate, 19200);
    EXPECT_EQ(connection.Settings().parity, SerialParity::Even);
    EXPECT_EQ(connection.TimeOut(), std::chrono::milliseconds(250));
}

TEST(ZRRSDeviceConnectionTest, ATimeOutOfZeroMeansAThousandMilliseconds)
{
    ZRRSDeviceConnection connection;
    ASSERT_TRUE(Load(connection, {{u"Port", u"1"}, {u"TimeOut", u"0"}}));
    EXPECT_EQ(connection.TimeOut(), std::chrono::milliseconds(1000));
}

TEST(ZRRSDeviceConnectionTest, RefusesWhatItCannotUseByName)
{
    const std::pair<Values, const char16_t*> rows[] = {
        {{}, u"Port"},
        {{{u"Port", u"0"}}, u"Port"},
        {{{u"Port", u"-1"}}, u"Port"},
        {{{u"Port", u"1x"}}, u"Port"},
        {{{u"Port", u"99999999999"}}, u"Port"},
        {{{u"Port", u"1"}, {u"BaudRate", u"9601"}}, u"BaudRate"},
        {{{u"Port", u"1"}, {u"Parity", u"mark"}}, u"Parity"},
        {{{u"Port", u"1"}, {u"TimeOut", u"soon"}}, u"TimeOut"},
    };
    for (const auto& [values, culprit] : rows) {
        ZRRSDeviceConnection connection;
        EXPECT_FALSE(Load(connection, values));
        EXPECT_TRUE(connection.LoadError().Text().starts_with(culprit));
    }
}

TEST(ZRRSDeviceConnectionTest, APortIsTheSystemsUnlessTheMapSaysOtherwise)
{
#ifdef _WIN32
    const std::string first = R"(\\.\COM1)";
    const std::string second = R"(\\.\COM2)";
#else
    const std::string first = "/dev/ttyS0";
    const std::string second = "/dev/ttyS1";
#endif
    SetPortMap({{2, "/dev/ttyUSB0"}});
    EXPECT_EQ(PortDevice(1), first);
    EXPECT_EQ(PortDevice(2), "/dev/ttyUSB0");
    SetPortMap({});
    EXPECT_EQ(PortDevice(2), second);
}

TEST(ZRUDPDeviceConnectionTest, ReadsItsValues)
{
    ZRUDPDeviceConnection connection;
    ASSERT_TRUE(Load(connection, {{u"Name", u"N"}, {u"Address", u"meter.local"}, {u"Socket", u"10001"}}));
    EXPECT_EQ(connection.Address(), "meter.local");
    EXPECT_EQ(connection.Socket(), 10001);
}

TEST(ZRUDPDeviceConnectionTest, RefusesWhatItCannotUseByName)
{
    const std::pair<Values, const char16_t*> rows[] = {
        {{{u"Socket", u"1"}}, u"Address"},
        {{{u"Address", u"two words"}, {u"Socket", u"1"}}, u"Address"},
        {{{u"Address", u"a"}}, u"Socket"},
        {{{u"Address", u"a"}, {u"Socket", u"0"}}, u"Socket"},
        {{{u"Address", u"a"}, {u"Socket", u"65536"}}, u"Socket"},
    };
    for (const auto& [values, culprit] : rows) {
        ZRUDPDeviceConnection connection;
        EXPECT_FALSE(Load(connection, values));
        EXPECT_TRUE(connection.LoadError().Text().starts_with(culprit));
    }
}

TEST(DeviceWarningTest, NoticesAreTakenOnceInTheOrderOfTheirComing)
{
    TakeNotices();
    PostNotice(DeviceWarning::StoreAway, u"A", u"info", u"detail");
    PostNotice(DeviceWarning::DeviceSilent, u"B");
    const std::vector<DeviceNotice> notices = TakeNotices();
    ASSERT_EQ(notices.size(), 2u);
    EXPECT_EQ(notices[0].detail, u"detail");
    EXPECT_EQ(notices[1].name, u"B");
    EXPECT_TRUE(TakeNotices().empty());
}

TEST(DeviceWarningTest, AHostThatNeverLooksCostsNoMemory)
{
    TakeNotices();
    const std::size_t dropped = DroppedNotices();
    for (std::size_t i = 0; i < kMaxNotices + 5; ++i) {
        PostNotice(DeviceWarning::StoreAway, u"A");
    }
    EXPECT_EQ(TakeNotices().size(), kMaxNotices);
    EXPECT_EQ(DroppedNotices() - dropped, 5u);
}

}  // namespace

}  // namespace zr::test
