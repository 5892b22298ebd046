#include "siblings/driversupport/UdpWire.h"

#include <gtest/gtest.h>
#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/udp.hpp>

#include <array>
#include <functional>

namespace zr::test {

namespace {

using asio::ip::udp;

// One place on this machine; both have the same port.
class Place {
public:
    Place(asio::io_context& loop, const char* address, std::uint16_t port)
        : m_socket(loop, udp::endpoint(asio::ip::make_address(address), port))
    {
        m_socket.non_blocking(true);
    }

    [[nodiscard]] std::uint16_t Port() const { return m_socket.local_endpoint().port(); }
    // What has come, without waiting; who sent it last is answered.
    std::string Take()
    {
        std::array<char, 64> room{};
        asio::error_code error;
        const std::size_t size = m_socket.receive_from(asio::buffer(room), m_asker, 0, error);
        return error ? std::string() : std::string(room.data(), size);
    }
    void Answer(const std::string& text) { m_socket.send_to(asio::buffer(text), m_asker); }

private:
    udp::socket m_socket;
    udp::endpoint m_asker;
};

class UdpWireTest : public testing::Test, private Wire::Listener {
protected:
    UdpWireTest() : here(context.Loop(), "127.0.0.1", 0), there(context.Loop(), "127.0.0.2", here.Port()) {}
    ~UdpWireTest() override
    {
        wire.reset();
        context.Loop().restart();
        context.Loop().poll();
    }

    void BeginOpen(const std::string& address)
    {
        wire = MakeUdpWire(context, *this, address, here.Port(), [this](const std::string& host, HostsFound found) {
            lookedUp.push_back(host);
            // As the system does it: later.
            context.Post([this, found = std::move(found)] { found(addresses, "no such host"); });
        });
        wire->Open();
    }
    void Open(const std::string& address)
    {
        BeginOpen(address);
        Serve([this] { return opened + failed > 0; });
    }
    void LookAgain()
    {
        const std::size_t before = lookedUp.size();
        wire->LookAgain();
        Serve([&] { return lookedUp.size() > before; });
        context.Loop().restart();
        context.Loop().poll();
    }
    // Runs the loop until it holds.
    void Serve(const std::function<bool()>& holds)
    {
        while (!holds()) {
            context.Loop().restart();
            ASSERT_GT(context.Loop().run_one_for(std::chrono::seconds(20)), 0u) << "nothing happens";
        }
    }
    // Whether the request comes to that place and its reply back.
    void ExpectExchange(Place& place)
    {
        const std::array<std::uint8_t, 1> request{'?'};
        wire->Send(request);
        EXPECT_EQ(place.Take(), "?");
        received.clear();
        place.Answer("!");
        Serve([this] { return !received.empty(); });
        EXPECT_EQ(received, "!");
        EXPECT_EQ(foreign, 0);
    }

    IoContext context;
    Place here;
    Place there;
    std::vector<std::string> addresses;
    std::vector<std::string> lookedUp;
    std::unique_ptr<Wire> wire;
    int opened = 0;
    int failed = 0;
    int foreign = 0;
    std::string reason;
    std::string received;

private:
    void WireOpened() override { ++opened; }
    void WireFailed(Wire::Failure failure, const std::string& why) override
    {
        EXPECT_EQ(failure, Wire::Failure::AddressUnknown);
        ++failed;
        reason = why;
        wire.reset();
    }
    void WireReceived(std::span<const std::uint8_t> bytes) override { received.append(bytes.begin(), bytes.end()); }
    void WireForeign() override { ++foreign; }
};

TEST_F(UdpWireTest, NeverLooksUpAnAddressInNumbers)
{
    Open("127.0.0.1");
    wire->LookAgain();
    ExpectExchange(here);
    EXPECT_TRUE(lookedUp.empty());
    EXPECT_EQ(opened, 1);
}

TEST_F(UdpWireTest, FailsWithTheReasonWhenTheNameIsUnknown)
{
    Open("nowhere");
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(reason, "no such host");
    EXPECT_EQ(lookedUp, std::vector<std::string>{"nowhere"});
}

TEST_F(UdpWireTest, TakesTheAddressThatTheNameHasComeToStandFor)
{
    addresses = {"127.0.0.1"};
    Open("converter");
    ExpectExchange(here);
    addresses = {"127.0.0.2"};
    LookAgain();
    ExpectExchange(there);
    EXPECT_EQ(opened, 1) << "the listener isn't to notice";
    here.Answer("late");  // nobody is there any more
    ExpectExchange(there);
}

TEST_F(UdpWireTest, KeepsAnAddressThatHasAnsweredWhileTheNameStandsForIt)
{
    addresses = {"127.0.0.1", "127.0.0.2"};
    Open("converter");
    ExpectExchange(here);
    addresses = {"127.0.0.2", "127.0.0.1"};
    LookAgain();
    ExpectExchange(here);
}

TEST_F(UdpWireTest, GivesTheNextAddressItsTurnWhileNoneAnswers)
{
    addresses = {"127.0.0.1", "127.0.0.2"};
    Open("converter");
    LookAgain();
    ExpectExchange(there);
    addresses = {"127.0.0.1"};
    LookAgain();
    ExpectExchange(here);
}

TEST_F(UdpWireTest, ComesBackToTheFirstAddressAfterTheLast)
{
    addresses = {"127.0.0.1", "127.0.0.2"};
    Open("converter");
    LookAgain();
    LookAgain();
    ExpectExchange(here);
}

TEST_F(UdpWireTest, StaysWhereItIsWhenTheNameCannotBeFoundAgain)
{
    addresses = {"127.0.0.1"};
    Open("converter");
    addresses.clear();
    LookAgain();
    ExpectExchange(here);
    EXPECT_EQ(failed, 0);
}

TEST_F(UdpWireTest, LeavesOutWhatIsNoAddress)
{
    addresses = {"not an address", "127.0.0.2"};
    Open("converter");
    ExpectExchange(there);
}

TEST_F(UdpWireTest, IsDestroyedWhileItsNameIsLookedUp)
{
    addresses = {"127.0.0.1"};
    BeginOpen("converter");
    wire.reset();
    context.Loop().restart();
    context.Loop().poll();
    EXPECT_EQ(opened + failed, 0);
}

}  // namespace

}  // namespace zr::test
