#include "siblings/driversupport/ZRDeviceWorkGroup.h"

#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/ServiceTimes.h"
#include "siblings/driversupport/UdpWire.h"
#include "siblings/driversupport/ZRRSDeviceConnection.h"
#include "TestDevice.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <fcntl.h>
#include <pty.h>
#include <unistd.h>
#endif

#include <random>

namespace zr::test {

namespace {

using namespace std::chrono_literals;

constexpr int kSilent = static_cast<int>(DeviceWarning::DeviceSilent);
constexpr int kDamaged = static_cast<int>(DeviceWarning::DeviceAnswersDamaged);
constexpr int kAgain = static_cast<int>(DeviceWarning::DeviceAnswersAgain);

class ZRDeviceWorkGroupTest : public testing::Test {
protected:
    ZRDeviceWorkGroupTest()
    {
        ServiceTimes times;
        times.firstProbe = 10ms;
        times.longestProbe = 20ms;
        times.probeCostFactor = 1;
        times.firstReopen = 10ms;
        times.longestReopen = 20ms;
        times.leastQuiet = 5ms;
        SetServiceTimes(times);
    }
    ~ZRDeviceWorkGroupTest() override
    {
        SetServiceTimes({});
        SetPortMap({});
    }

    void Configure(const UdpDevice& device, const std::string& timeOut)
    {
        test::Configure(connection, {{u"Name", "NET"},
                                     {u"Address", "127.0.0.1"},
                                     {u"Socket", std::to_string(device.Port())},
                                     {u"TimeOut", timeOut}});
    }

    ZRUDPDeviceConnection connection;
};

TEST_F(ZRDeviceWorkGroupTest, HasNoDriverThatWasOnlyCreated)
{
    EchoDriver driver(u"ONLY CREATED", 1, 0ms);
    const ZRDeviceWorkGroup group(u"NET");
    EXPECT_FALSE(group.HasDriver(u"ONLY CREATED"));
    EXPECT_FALSE(ZRDeviceWorkGroup::AnyHasDriver(u"ONLY CREATED"));
}

TEST_F(ZRDeviceWorkGroupTest, HasADriverFromAddToRemove)
{
    EchoDriver driver(u"D", 1, 0ms);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    group.Add(&driver);
    EXPECT_TRUE(group.HasDriver(u"D"));
    EXPECT_TRUE(ZRDeviceWorkGroup::AnyHasDriver(u"D"));
    group.Remove(&driver);
    EXPECT_FALSE(group.HasDriver(u"D"));
    EXPECT_FALSE(ZRDeviceWorkGroup::AnyHasDriver(u"D"));
}

TEST_F(ZRDeviceWorkGroupTest, KeepsADestroyedDriverByNameAndNeverServesIt)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    ZRDeviceWorkGroup group(u"NET");
    {
        EchoDriver driver(u"GONE", 1, 0ms);
        group.Add(&driver);
    }
    EXPECT_TRUE(group.HasDriver(u"GONE"));
    EXPECT_TRUE(group.Start(&connection));
    group.Stop();
    EXPECT_TRUE(WaitFor([&] { return group.Stopped(); }));
    EXPECT_EQ(device.requests, 0);
}

TEST_F(ZRDeviceWorkGroupTest, CountsTicksWithoutBeingStarted)
{
    ZRDeviceWorkGroup group(u"NET");
    EXPECT_FALSE(group.LastTick().IsValid());
    group.OneHzCall(ZRDateTime(77, 5));
    group.OneHzCall(ZRDateTime(78, 6));
    EXPECT_EQ(group.Ticks(), 2u);
    EXPECT_EQ(group.LastTick(), ZRDateTime(78, 6));
}

TEST_F(ZRDeviceWorkGroupTest, StartIsRefusedWithoutAConnectionAndWhileItServes)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    ZRDeviceWorkGroup group(u"NET");
    ZRDeviceWorkGroup other(u"NET");
    EXPECT_FALSE(group.Start(nullptr));
    EXPECT_TRUE(group.Start(&connection));
    EXPECT_FALSE(group.Start(&connection));
    EXPECT_FALSE(other.Start(&connection));
}

TEST_F(ZRDeviceWorkGroupTest, StartIsRefusedOverABuriedConnection)
{
    auto* buried = new ZRUDPDeviceConnection;
    ZRDeviceConnection* entry = buried;
    ZRDeviceConnection::Bury(entry);
    ZRDeviceWorkGroup group(u"NET");
    EXPECT_FALSE(group.Start(entry));
    EXPECT_TRUE(group.Stopped());
    delete entry;
}

TEST_F(ZRDeviceWorkGroupTest, BringsValuesOverUdp)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    EchoDriver first(u"FIRST", 10, 0ms, 3);
    EchoDriver second(u"SECOND", 20, 0ms, 2);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&first);
    group.Add(&second);
    ASSERT_TRUE(group.Start(&connection));
    EXPECT_TRUE(WaitFor([&] { return first.replies > 100 && second.replies > 100; }));
    EXPECT_TRUE(first.Online());
    tagSVariableValue value;
    first.Store()->At(2).Read(value);
    EXPECT_EQ(value.number, 12.0);
    EXPECT_EQ(first.wrongValues + second.wrongValues, 0);

    group.Stop();
    EXPECT_TRUE(WaitFor([&] { return group.Stopped(); }));
    EXPECT_FALSE(first.Online());
    EXPECT_FALSE(first.Store()->At(2).IsValid());
    EXPECT_EQ(CountNotices(kSilent, u"FIRST") + CountNotices(kAgain, u"FIRST"), 0);
}

TEST_F(ZRDeviceWorkGroupTest, BeginsCyclesOfASecondOnTheTick)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    EchoDriver driver(u"TICKED", 1, 1s);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    for (int tick = 1; tick <= 20; ++tick) {
        ASSERT_TRUE(WaitFor([&] { return driver.replies == tick; }));
        group.OneHzCall(ZRDateTime(static_cast<std::uint32_t>(tick), 0));
    }
    EXPECT_TRUE(WaitFor([&] { return driver.replies == 21; }));
    EXPECT_EQ(group.Ticks(), 20u);
}

TEST_F(ZRDeviceWorkGroupTest, BeginsShorterCyclesByTime)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    EchoDriver driver(u"TIMED", 1, 3ms);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    EXPECT_TRUE(WaitFor([&] { return driver.replies > 20; }));
}

TEST_F(ZRDeviceWorkGroupTest, SetsAnOutputBetweenTwoCycles)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    EchoDriver driver(u"OUT", 1, 1h);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    ASSERT_TRUE(WaitFor([&] { return driver.replies == 1; }));
    VariableHandle handle = 0;
    ASSERT_TRUE(driver.LockVariable(u"V0", handle));
    EXPECT_FALSE(driver.SetOutput(handle, 201.0));
    EXPECT_TRUE(driver.SetOutput(handle, 7.0));
    EXPECT_TRUE(WaitFor([&] { return driver.outputsSent == 1; }));
}

TEST_F(ZRDeviceWorkGroupTest, ServesADriverOfTwoGroupsInTheOneThatStartsFirst)
{
    UdpDevice device(AnswerAtOnce);
    UdpDevice other(AnswerAtOnce);
    Configure(device, "1000");
    ZRUDPDeviceConnection second;
    test::Configure(second, {{u"Name", "B"}, {u"Address", "127.0.0.1"}, {u"Socket", std::to_string(other.Port())}});
    EchoDriver driver(u"TWICE", 1, 0ms);
    ZRDeviceWorkGroup a(u"NET");
    ZRDeviceWorkGroup b(u"B");
    a.Add(&driver);
    b.Add(&driver);
    ASSERT_TRUE(a.Start(&connection));
    ASSERT_TRUE(b.Start(&second));
    ASSERT_TRUE(WaitFor([&] { return driver.replies > 10; }));
    EXPECT_EQ(other.requests, 0);
}

TEST_F(ZRDeviceWorkGroupTest, TellsOnceThatADeviceIsSilentAndOnceThatItIsBack)
{
    std::atomic<bool> isMute{false};
    UdpDevice device([&](UdpDevice& self, std::span<const std::uint8_t> request) {
        if (!isMute) {
            AnswerAtOnce(self, request);
        }
    });
    Configure(device, "4");
    EchoDriver driver(u"FLAPS", 1, 1ms);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    ASSERT_TRUE(WaitFor([&] { return driver.Online(); }));
    const int descriptors = OpenDescriptors();
    const int threads = RunningThreads();
    const int silent = CountNotices(kSilent, u"FLAPS");
    for (int flap = 1; flap <= 200; ++flap) {
        isMute = true;
        ASSERT_TRUE(WaitFor([&] { return CountNotices(kSilent, u"FLAPS") > CountNotices(kAgain, u"FLAPS"); }));
        ASSERT_TRUE(WaitFor([&] { return !driver.Online(); }));
        const int timeouts = driver.timeouts;
        ASSERT_TRUE(WaitFor([&] { return driver.timeouts > timeouts; }));  // a probe, which isn't told
        EXPECT_FALSE(driver.Store()->At(0).IsValid());
        isMute = false;
        ASSERT_TRUE(WaitFor(
            [&] { return driver.Online() && CountNotices(kAgain, u"FLAPS") == CountNotices(kSilent, u"FLAPS"); }));
    }
    EXPECT_GE(CountNotices(kSilent, u"FLAPS") - silent, 200);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(RunningThreads(), threads);
    EXPECT_EQ(driver.wrongValues, 0);
}

TEST_F(ZRDeviceWorkGroupTest, WarnsOnceOfADeviceThatWasNeverThereAndPicksItUp)
{
    std::atomic<bool> isMute{true};
    UdpDevice device([&](UdpDevice& self, std::span<const std::uint8_t> request) {
        if (!isMute) {
            AnswerAtOnce(self, request);
        }
    });
    Configure(device, "3");
    EchoDriver driver(u"ABSENT", 1, 1ms);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    ASSERT_TRUE(WaitFor([&] { return driver.timeouts > 6; }));
    EXPECT_FALSE(driver.Online());
    EXPECT_EQ(CountNotices(kSilent, u"ABSENT"), 1);
    isMute = false;
    ASSERT_TRUE(WaitFor([&] { return driver.Online(); }));
    EXPECT_TRUE(WaitFor([&] { return CountNotices(kAgain, u"ABSENT") == 1; }));
}

TEST_F(ZRDeviceWorkGroupTest, TellsADeviceThatOnlySendsDamageFromASilentOne)
{
    std::atomic<bool> isBroken{true};
    UdpDevice device([&](UdpDevice& self, std::span<const std::uint8_t> request) {
        std::vector<std::uint8_t> reply = EchoReply(request[1], static_cast<std::uint8_t>(request[1] + request[2]));
        reply[3] = static_cast<std::uint8_t>(reply[3] + (isBroken ? 1 : 0));
        self.Send(reply);
    });
    Configure(device, "250");
    EchoDriver driver(u"BROKEN", 1, 1ms);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    ASSERT_TRUE(WaitFor([&] { return CountNotices(kSilent, u"BROKEN") + CountNotices(kDamaged, u"BROKEN") > 0; }));
    EXPECT_EQ(CountNotices(kDamaged, u"BROKEN"), 1);
    EXPECT_FALSE(driver.Online());
    isBroken = false;
    EXPECT_TRUE(WaitFor([&] { return CountNotices(kAgain, u"BROKEN") == 1; }));
    EXPECT_TRUE(WaitFor([&] { return driver.Online() && driver.Store()->At(0).IsValid(); }));
    EXPECT_EQ(CountNotices(kSilent, u"BROKEN"), 0);
}

TEST_F(ZRDeviceWorkGroupTest, NeverBelievesWhatIsLateDoubledDamagedCutOrForeign)
{
    std::mt19937 random(7);
    std::vector<std::uint8_t> late;
    UdpDevice device([&](UdpDevice& self, std::span<const std::uint8_t> request) {
        std::vector<std::uint8_t> reply = EchoReply(request[1], static_cast<std::uint8_t>(request[1] + request[2]));
        const std::vector<std::uint8_t> whole = reply;
        switch (random() % 12) {
            case 0:  // doubled
                self.Send(reply);
                break;
            case 1:  // damaged
                reply[2] = static_cast<std::uint8_t>(reply[2] + 100);
                break;
            case 2:  // cut
                reply.resize(3);
                break;
            case 3:  // foreign, with a value that would be taken
                self.SendForeign(EchoReply(request[1], 111));
                break;
            case 4:  // of another unit
                self.Send(EchoReply(static_cast<std::uint8_t>(request[1] + 1), 111));
                break;
            case 5:  // late: comes before the reply to some later request of any unit
                late = whole;
                return;
            default:
                break;
        }
        if (!late.empty() && late[1] != request[1]) {
            self.Send(late);
            late.clear();
        }
        self.Send(reply);
    });
    Configure(device, "20");
    EchoDriver first(u"DOUBT 1", 10, 0ms, 4);
    EchoDriver second(u"DOUBT 2", 50, 0ms, 4);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&first);
    group.Add(&second);
    ASSERT_TRUE(group.Start(&connection));
    EXPECT_TRUE(WaitFor([&] { return first.replies > 100 && second.replies > 100; }, 60s));
    EXPECT_EQ(first.wrongValues + second.wrongValues, 0);
    EXPECT_GT(connection.Counters().droppedFrames, 0u);
    EXPECT_GT(connection.Counters().timeouts, 0u);
    EXPECT_EQ(CountNotices(static_cast<int>(DeviceWarning::ForeignFrames), u"NET"), 1);
}

TEST_F(ZRDeviceWorkGroupTest, ADoubleIsNeverTakenForTheReplyToARequestThatHasNone)
{
    std::vector<std::uint8_t> last;
    std::uint8_t unanswered = 0;
    UdpDevice device([&](UdpDevice& self, std::span<const std::uint8_t> request) {
        const std::uint8_t reg = request[2];
        // Every other register goes without an answer the first time, and the reply before comes twice.
        if (reg % 2 == 1 && std::exchange(unanswered, reg) != reg) {
            self.Send(last);
            return;
        }
        unanswered = 0;
        last = EchoReply(request[1], static_cast<std::uint8_t>(request[1] + reg));
        self.Send(last);
    });
    Configure(device, "20");
    EchoDriver driver(u"DOUBLES", 10, 0ms, 4);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    EXPECT_TRUE(WaitFor([&] { return driver.replies > 40; }));
    EXPECT_EQ(driver.wrongValues, 0);
    EXPECT_GT(connection.Counters().droppedFrames, 0u);
}

TEST_F(ZRDeviceWorkGroupTest, ReadsRegistersThatHoldTheSameOneAfterTheOther)
{
    UdpDevice device(
        [](UdpDevice& self, std::span<const std::uint8_t> request) { self.Send(EchoReply(request[1], 77)); });
    Configure(device, "1000");
    EchoDriver driver(u"SAME", 10, 0ms, 4);
    driver.isRight = [](std::uint8_t, std::uint8_t value) { return value == 77; };
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    EXPECT_TRUE(WaitFor([&] { return driver.replies > 40; }));
    EXPECT_EQ(driver.wrongValues + driver.timeouts, 0);
}

TEST_F(ZRDeviceWorkGroupTest, SendsARequestOnceThatMayNotBeRepeated)
{
    std::atomic<int> outputs{0};
    UdpDevice device([&](UdpDevice& self, std::span<const std::uint8_t> request) {
        outputs += request[2] > 1 ? 1 : 0;
        self.Send(EchoReply(request[1], 77));  // an echo like the last reply is held back
    });
    Configure(device, "1000");
    EchoDriver driver(u"ONCE", 10, 0ms, 2);
    driver.isRight = [](std::uint8_t, std::uint8_t value) { return value == 77; };
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    VariableHandle handle = 0;
    ASSERT_TRUE(driver.LockVariable(u"V0", handle));
    for (int output = 1; output <= 10; ++output) {
        ASSERT_TRUE(driver.SetOutput(handle, 100.0 + output));
        ASSERT_TRUE(WaitFor([&] { return driver.outputsSent == output; }));
    }
    EXPECT_EQ(outputs, 10);
}

TEST_F(ZRDeviceWorkGroupTest, StopsAtRandomMomentsWithoutALeak)
{
    UdpDevice device([](UdpDevice& self, std::span<const std::uint8_t> request) {
        if (self.requests % 3 != 0) {
            AnswerAtOnce(self, request);
        }
    });
    Configure(device, "60000");
    EchoDriver driver(u"STOPS", 1, 0ms);
    const int descriptors = OpenDescriptors();
    const int threads = RunningThreads();
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round) {
        ZRDeviceWorkGroup group(u"NET");
        group.Add(&driver);
        const int enough = device.requests + static_cast<int>(random() % 2);
        ASSERT_TRUE(group.Start(&connection));
        ASSERT_TRUE(WaitFor([&] { return device.requests >= enough; }));
        group.OneHzCall(ZRDateTime(1, 0));
        group.Stop();
        ASSERT_TRUE(WaitFor([&] { return group.Stopped(); }));
        ASSERT_EQ(connection.Counters().timeouts, 0u) << "it waited for a mute device";
        group.OneHzCall(ZRDateTime(2, 0));
    }
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_TRUE(WaitFor([&] { return RunningThreads() == threads; }));
    EXPECT_EQ(driver.wrongValues, 0);
}

TEST_F(ZRDeviceWorkGroupTest, StopsTwiceAndStartsAgain)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    EchoDriver driver(u"AGAIN", 1, 0ms);
    ZRDeviceWorkGroup group(u"NET");
    group.Add(&driver);
    EXPECT_TRUE(group.Stopped());
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(group.Start(&connection));
        const int before = driver.replies;
        ASSERT_TRUE(WaitFor([&] { return driver.replies > before; }));
        group.Stop();
        group.Stop();
        ASSERT_TRUE(WaitFor([&] { return group.Stopped(); }));
    }
}

TEST_F(ZRDeviceWorkGroupTest, ComesToRestWhenItIsDestroyedWhileItRuns)
{
    UdpDevice mute([](UdpDevice&, std::span<const std::uint8_t>) {});
    Configure(mute, "9000");
    EchoDriver driver(u"MUTE", 1, 0ms);
    {
        ZRDeviceWorkGroup group(u"NET");
        group.Add(&driver);
        ASSERT_TRUE(group.Start(&connection));
        ASSERT_TRUE(WaitFor([&] { return mute.requests == 1; }));
    }
    EXPECT_EQ(driver.cancelled, 1);
}

TEST_F(ZRDeviceWorkGroupTest, ComesToRestHoweverOftenItIsDestroyedJustAfterItsStart)
{
    UdpDevice device(AnswerAtOnce);
    Configure(device, "1000");
    EchoDriver driver(u"BRIEF", 1, 0ms);
    ZRUDPDeviceConnection other;
    ZRDeviceWorkGroup bystander(u"NET");  // keeps the threads
    test::Configure(other, {{u"Name", "OTHER"}, {u"Address", "127.0.0.1"}, {u"Socket", "9"}});
    ASSERT_TRUE(bystander.Start(&other));
    for (int round = 0; round < 3000; ++round) {
        ZRDeviceWorkGroup group(u"NET");
        group.Add(&driver);
        ASSERT_TRUE(group.Start(&connection));
    }
    EXPECT_FALSE(driver.Online());
}

#ifndef _WIN32  // It has no pseudo-terminals that serve as serial ports.
// A device at the far end of a pseudo-terminal, played by the test itself.
class SerialEnd {
public:
    SerialEnd()
    {
        std::array<char, 128> path{};
        int slave = -1;
        EXPECT_EQ(::openpty(&master, &slave, path.data(), nullptr, nullptr), 0);
        ::fcntl(master, F_SETFL, O_NONBLOCK);
        ::close(slave);
        device = path.data();
    }
    ~SerialEnd() { ::close(master); }
    SerialEnd(const SerialEnd&) = delete;
    SerialEnd& operator=(const SerialEnd&) = delete;

    // Answers one request if one is there, in two pieces with noise ahead of it.
    void AnswerOne(bool withNoise)
    {
        std::array<std::uint8_t, 64> room{};
        const ssize_t size = ::read(master, room.data(), room.size());
        if (size < 4) {
            return;
        }
        std::vector<std::uint8_t> reply = EchoReply(room[1], static_cast<std::uint8_t>(room[1] + room[2]));
        if (withNoise) {
            reply.insert(reply.begin(), {0x00, 0xFF, 'x'});
        }
        EXPECT_EQ(::write(master, reply.data(), 2), 2);
        EXPECT_EQ(::write(master, reply.data() + 2, reply.size() - 2), static_cast<ssize_t>(reply.size() - 2));
    }

    int master = -1;
    std::string device;
};

TEST_F(ZRDeviceWorkGroupTest, BringsValuesOverASerialPortThroughNoise)
{
    SerialEnd end;
    SetPortMap({{3, end.device}});
    ZRRSDeviceConnection serial;
    test::Configure(serial, {{u"Name", "COM"}, {u"Port", "3"}, {u"BaudRate", "19200"}});
    EchoDriver driver(u"SERIAL", 5, 0ms, 2);
    ZRDeviceWorkGroup group(u"COM");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&serial));
    EXPECT_TRUE(WaitFor([&] {
        end.AnswerOne(driver.replies % 2 == 0);
        return driver.replies > 20;
    }));
    EXPECT_EQ(driver.wrongValues, 0);
    EXPECT_GT(serial.Counters().droppedFrames, 0u);
    EXPECT_EQ(serial.Counters().timeouts, 0u);
}

TEST_F(ZRDeviceWorkGroupTest, OpensALostPortAgainWithOneWarningForAllItsDevices)
{
    constexpr int kLost = static_cast<int>(DeviceWarning::ConnectionLost);
    constexpr int kOpened = static_cast<int>(DeviceWarning::ConnectionOpened);
    auto end = std::make_unique<SerialEnd>();
    SetPortMap({{4, end->device}});
    ZRRSDeviceConnection serial;
    test::Configure(serial, {{u"Name", "LOST"}, {u"Port", "4"}, {u"TimeOut", "5000"}});
    EchoDriver driver(u"ON LOST", 5, 0ms);
    ZRDeviceWorkGroup group(u"LOST");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&serial));
    ASSERT_TRUE(WaitFor([&] {
        end->AnswerOne(false);
        return driver.Online();
    }));
    EXPECT_EQ(CountNotices(kLost, u"LOST") + CountNotices(kOpened, u"LOST"), 0);
    SetPortMap({{4, "/nowhere/at/all"}});
    end.reset();
    ASSERT_TRUE(WaitFor([&] { return CountNotices(kLost, u"LOST") == 1 && !driver.Online(); }));
    EXPECT_FALSE(driver.Store()->At(0).IsValid());

    end = std::make_unique<SerialEnd>();
    SetPortMap({{4, end->device}});
    ASSERT_TRUE(WaitFor([&] {
        end->AnswerOne(false);
        return driver.Online();
    }));
    EXPECT_EQ(CountNotices(kLost, u"LOST"), 1);
    EXPECT_EQ(CountNotices(kOpened, u"LOST"), 1);
    EXPECT_EQ(CountNotices(kSilent, u"ON LOST") + CountNotices(kAgain, u"ON LOST"), 0);
    EXPECT_EQ(driver.wrongValues, 0);
}
#endif

// Its host name stands for the addresses that the test says.
class NamedConnection final : public ZRUDPDeviceConnection {
public:
    explicit NamedConnection(const UdpDevice& device)
    {
        test::Configure(
            *this,
            {{u"Name", "MOVED"}, {u"Address", "there"}, {u"Socket", std::to_string(device.Port())}, {u"TimeOut", "4"}});
    }

    std::atomic<int> lookups{0};
    std::atomic<bool> hasMoved{false};

protected:
    std::unique_ptr<Wire> MakeWire(IoContext& wireContext, Wire::Listener& listener) override
    {
        const HostLookup lookup = [this](const std::string&, const HostsFound& found) {
            ++lookups;
            found({hasMoved ? "127.0.0.1" : "127.0.0.2"}, {});
        };
        return MakeUdpWire(wireContext, listener, Address(), static_cast<std::uint16_t>(Socket()), lookup);
    }
};

TEST_F(ZRDeviceWorkGroupTest, FindsDevicesThatHaveMovedAfterLongSilence)
{
    ServiceTimes times = CurrentServiceTimes();
    times.longSilence = 10ms;
    SetServiceTimes(times);
    UdpDevice device(AnswerAtOnce);
    NamedConnection named(device);
    EchoDriver driver(u"MOVES", 1, 1ms);
    ZRDeviceWorkGroup group(u"MOVED");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&named));
    ASSERT_TRUE(WaitFor([&] { return named.lookups > 2; }));
    EXPECT_FALSE(driver.Online());
    named.hasMoved = true;
    EXPECT_TRUE(WaitFor([&] { return driver.Online(); }));
    group.Stop();
    EXPECT_TRUE(WaitFor([&] { return group.Stopped(); }));
}

TEST_F(ZRDeviceWorkGroupTest, TakesAHostNameForAnAddress)
{
    UdpDevice device(AnswerAtOnce);
    test::Configure(connection,
                    {{u"Name", "NAMED"}, {u"Address", "localhost"}, {u"Socket", std::to_string(device.Port())}});
    EchoDriver driver(u"BY NAME", 1, 0ms);
    ZRDeviceWorkGroup group(u"NAMED");
    group.Add(&driver);
    ASSERT_TRUE(group.Start(&connection));
    EXPECT_TRUE(WaitFor([&] { return driver.Online(); }));
}

}  // namespace

}  // namespace zr::test
