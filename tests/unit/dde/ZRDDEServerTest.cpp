// Services, conversations and the answers to each transaction.
#include "dde/ZRDDEServer.h"

#include "DdeFixture.h"

#ifndef _WIN32
#include <sys/resource.h>
#endif
#include <thread>

namespace zr::test {
namespace {

// What happened, in order.
std::vector<std::string>& Events()
{
    static std::vector<std::string> events;
    return events;
}

class RecordingConversation : public ZRDDEConversation {
public:
    RecordingConversation(HCONV handle, std::string name) : ZRDDEConversation(handle), m_name(std::move(name)) {}
    ~RecordingConversation() override { Record("gone"); }
    bool AdviseStart(UINT format, HSZ, HSZ) override
    {
        Record("start " + std::to_string(format));
        return true;
    }
    void AdviseStop(HSZ, HSZ) override { Record("stop"); }
    HDDEDATA AdviseRequest(UINT, HSZ, HSZ item) override
    {
        std::uint8_t byte = 0x2A;
        return DdeCreateDataHandle(ZRDDEServer::DDEInstance(), &byte, 1, 0, item, CF_TEXT, 0);
    }

private:
    void Record(const std::string& what) { Events().push_back(m_name + " " + what); }
    std::string m_name;
};

bool AcceptAll(DWORD, HSZ)
{
    Events().push_back("accept asked");
    return true;
}
bool RefuseAll(DWORD, HSZ)
{
    Events().push_back("refuse asked");
    return false;
}
ZRDDEConversation* OpenFirst(DWORD, HCONV conversation, HSZ)
{
    Events().push_back("first opened");
    return new RecordingConversation(conversation, "first");
}
ZRDDEConversation* OpenSecond(DWORD, HCONV conversation, HSZ)
{
    Events().push_back("second opened");
    return new RecordingConversation(conversation, "second");
}
ZRDDEConversation* OpenNone(DWORD, HCONV, HSZ)
{
    Events().push_back("none opened");
    return nullptr;
}

HDDEDATA Call(UINT type, HCONV conversation, HSZ hsz1, HSZ hsz2, UINT format = CF_TEXT)
{
    return ZRDDEServer::CallBack(type, format, conversation, hsz1, hsz2, nullptr, 0, 0);
}

HCONV Conversation(std::uintptr_t number)
{
    return reinterpret_cast<HCONV>(number);
}

using Log = std::vector<std::string>;

class ZRDDEServerTest : public DdeFixture {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.Start());
        Events().clear();
    }
    HSZ Name(const std::u16string& text) { return Handle(text); }
};

TEST_F(ZRDDEServerTest, IsReachedBetweenStartAndStopOnly)
{
    EXPECT_EQ(ZRDDEServer::Get(), &server);
    EXPECT_NE(ZRDDEServer::DDEInstance(), 0u);
    EXPECT_EQ(ZRDDEServer::XlTableFormat(), RegisterClipboardFormatW(u"XlTable"));
    server.Stop();
    EXPECT_EQ(ZRDDEServer::Get(), nullptr);
    server.Stop();  // harmless
    EXPECT_TRUE(server.Start());
    EXPECT_EQ(ZRDDEServer::Get(), &server);
}

#ifndef _WIN32  // It asks the system for no descriptors that could run out.
TEST_F(ZRDDEServerTest, StartFailsWhereDdeCantBeBegunAndTheServerIsNotReached)
{
    server.Stop();
    // A thread of its own, since DDE keeps what it once was given.
    std::thread([] {
        rlimit usual{};
        ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
        rlimit none = usual;
        none.rlim_cur = 3;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
        ZRDDEServer unlucky;
        EXPECT_FALSE(unlucky.Start());
        EXPECT_EQ(ZRDDEServer::Get(), nullptr);
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
        EXPECT_TRUE(unlucky.Start()) << "once there are some again";
        EXPECT_EQ(ZRDDEServer::Get(), &unlucky);
    }).join();
}
#endif

TEST_F(ZRDDEServerTest, ConstructingAnotherServerMakesTheStartedOneUnreachable)
{
    // On a thread of its own: the instance that nobody can stop any more ends with the thread.
    std::thread([this] {
        server.Stop();
        ZRDDEServer started;
        ASSERT_TRUE(started.Start());
        started.AddService(kService, &AcceptAll, &OpenFirst);
        const HSZ service = Name(kService);
        const DWORD instance = ZRDDEServer::DDEInstance();
        {
            const ZRDDEServer another;
            EXPECT_EQ(ZRDDEServer::Get(), nullptr);
            EXPECT_EQ(Call(XTYP_CONNECT, nullptr, service, service), nullptr);
        }
        started.Stop();  // does nothing: nothing is started
        DdeUninitialize(instance);
    }).join();
}

TEST_F(ZRDDEServerTest, EveryTransactionAfterStopIsAnsweredWithZero)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    const HSZ service = Name(kService);
    Call(XTYP_CONNECT_CONFIRM, Conversation(1), service, service);
    server.Stop();
    Events().clear();
    for (const UINT type : std::initializer_list<UINT>{XTYP_ADVSTART, XTYP_CONNECT, XTYP_ADVREQ, XTYP_ADVSTOP,
                                                       XTYP_CONNECT_CONFIRM, XTYP_DISCONNECT, XTYP_REQUEST}) {
        EXPECT_EQ(Call(type, Conversation(1), service, service), nullptr) << type;
    }
    EXPECT_EQ(Events(), Log{});
}

TEST_F(ZRDDEServerTest, AServiceThatIsNotRegisteredIsRefusedWithoutAskingAny)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    const HSZ topic = Name(u"topic");
    EXPECT_EQ(Call(XTYP_CONNECT, nullptr, topic, Name(u"ANOTHER")), nullptr);
    EXPECT_EQ(Events(), Log{});
    EXPECT_EQ(Call(XTYP_CONNECT, nullptr, topic, Name(kService)), ddeml::Reply(1));
    EXPECT_EQ(Events(), Log{"accept asked"});
    DdeClient client;
    EXPECT_EQ(client.Connect(u"ANOTHER", u"topic"), nullptr);
    EXPECT_EQ(client.LastError(), UINT{DMLERR_NO_CONV_ESTABLISHED});
}

TEST_F(ZRDDEServerTest, ServiceNamesAreFoundWithoutRegardToCase)
{
    server.AddService(u"ZrTest", &AcceptAll, &OpenFirst);
    DdeClient client;
    EXPECT_NE(client.Connect(u"zrtESt", u"topic"), nullptr);
}

TEST_F(ZRDDEServerTest, OfTwoServicesOfOneNameTheFirstDecidesAndTheLastHasTheConversation)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    server.AddService(kService, &RefuseAll, &OpenSecond);
    const HSZ service = Name(kService);
    EXPECT_EQ(Call(XTYP_CONNECT, nullptr, service, service), ddeml::Reply(1));
    EXPECT_EQ(Events(), Log{"accept asked"});
    Events().clear();

    Call(XTYP_CONNECT_CONFIRM, Conversation(7), service, service);
    EXPECT_EQ(Events(), (Log{"first opened", "second opened"}));  // the first one isn't destroyed
    EXPECT_EQ(server.ConversationCount(), 1u);
    Events().clear();
    EXPECT_EQ(Call(XTYP_ADVSTART, Conversation(7), service, service), ddeml::Reply(1));
    EXPECT_EQ(Events(), Log{"second start 1"});
    Events().clear();
    Call(XTYP_DISCONNECT, Conversation(7), nullptr, nullptr);
    EXPECT_EQ(Events(), Log{"second gone"});
}

TEST_F(ZRDDEServerTest, AServiceThatRefusesFirstIsNotOverruledByALaterOneOfItsName)
{
    server.AddService(kService, &RefuseAll, &OpenFirst);
    server.AddService(kService, &AcceptAll, &OpenSecond);
    const HSZ service = Name(kService);
    EXPECT_EQ(Call(XTYP_CONNECT, nullptr, service, service), nullptr);
    EXPECT_EQ(Events(), Log{"refuse asked"});
}

TEST_F(ZRDDEServerTest, ANullConversationIsNotEntered)
{
    server.AddService(kService, &AcceptAll, &OpenNone);
    const HSZ service = Name(kService);
    Call(XTYP_CONNECT_CONFIRM, Conversation(7), service, service);
    EXPECT_EQ(server.ConversationCount(), 0u);
    EXPECT_EQ(Call(XTYP_ADVSTART, Conversation(7), service, service), nullptr);
}

TEST_F(ZRDDEServerTest, AnUnknownConversationIsIgnored)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    const HSZ name = Name(u"name");
    EXPECT_EQ(Call(XTYP_ADVSTART, Conversation(9), name, name), nullptr);
    EXPECT_EQ(Call(XTYP_ADVREQ, Conversation(9), name, name), nullptr);
    EXPECT_EQ(Call(XTYP_ADVSTOP, Conversation(9), name, name), nullptr);
    EXPECT_EQ(Call(XTYP_DISCONNECT, Conversation(9), nullptr, nullptr), nullptr);
    EXPECT_EQ(Events(), Log{});
}

TEST_F(ZRDDEServerTest, ARequestFailsThoughTheSameItemCanBeAdvised)
{
    server.AddService(kService, &ZRDDEValues::CanConnect, &ZRDDEValues::Connect);
    DdeClient client;
    const HCONV conversation = client.Connect(kService, kDevice);
    ASSERT_NE(conversation, nullptr);
    EXPECT_EQ(client.Transact(conversation, u"U1", CF_TEXT, XTYP_REQUEST), nullptr);
    EXPECT_EQ(client.LastError(), UINT{DMLERR_NOTPROCESSED});
    EXPECT_TRUE(client.Advise(conversation, u"U1"));
    EXPECT_EQ(client.Transact(conversation, u"U1", CF_TEXT, XTYP_REQUEST), nullptr);
}

TEST_F(ZRDDEServerTest, PokesAndCommandsAndConnectsToAnyTopicGetNoAnswer)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    const HSZ service = Name(kService);
    Call(XTYP_CONNECT_CONFIRM, Conversation(7), service, service);
    Events().clear();
    constexpr UINT kWildConnect = 0x20E2;
    for (const UINT type : std::initializer_list<UINT>{XTYP_REQUEST, XTYP_POKE, XTYP_EXECUTE, kWildConnect,
                                                       XTYP_REGISTER, XTYP_UNREGISTER}) {
        EXPECT_EQ(Call(type, Conversation(7), service, service), nullptr) << type;
    }
    EXPECT_EQ(Events(), Log{});
}

TEST_F(ZRDDEServerTest, StopDestroysTheConversationsInTheOrderOfTheirHandles)
{
    server.AddService(u"A", &AcceptAll, &OpenFirst);
    server.AddService(u"B", &AcceptAll, &OpenSecond);
    const HSZ a = Name(u"A");
    const HSZ b = Name(u"B");
    // As unsigned 32-bit numbers: 0x80000001 comes after 2.
    Call(XTYP_CONNECT_CONFIRM, Conversation(0x80000001u), a, a);
    Call(XTYP_CONNECT_CONFIRM, Conversation(2), b, b);
    EXPECT_EQ(server.ConversationCount(), 2u);
    Events().clear();
    server.Stop();
    EXPECT_EQ(Events(), (Log{"second gone", "first gone"}));
}

TEST_F(ZRDDEServerTest, WhatAStopLeftBehindDoesNotComeBackWithTheNextStart)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    HSZ service = Name(kService);
    Call(XTYP_CONNECT_CONFIRM, Conversation(7), service, service);
    server.Stop();
    ASSERT_TRUE(server.Start());
    Events().clear();
    service = Name(kService);
    EXPECT_EQ(Call(XTYP_CONNECT, nullptr, service, service), nullptr);
    EXPECT_EQ(Call(XTYP_ADVSTART, Conversation(7), service, service), nullptr);
    Call(XTYP_DISCONNECT, Conversation(7), nullptr, nullptr);
    EXPECT_EQ(Events(), Log{});
}

TEST_F(ZRDDEServerTest, AConversationLivesFromTheConnectToTheDisconnect)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    DdeClient client;
    const HCONV conversation = client.Connect(kService, u"topic");
    ASSERT_NE(conversation, nullptr);
    EXPECT_TRUE(DdeClient::WaitUntil([this] { return server.ConversationCount() == 1; }));
    EXPECT_TRUE(client.Advise(conversation, u"item", 0x1123));
    EXPECT_TRUE(client.StopAdvise(conversation, u"item", 0x1123));
    DdeDisconnect(conversation);
    EXPECT_TRUE(DdeClient::WaitUntil([this] { return server.ConversationCount() == 0; }));
    EXPECT_EQ(Events(), (Log{"accept asked", "first opened", "first start 4387", "first stop", "first gone"}));
}

TEST_F(ZRDDEServerTest, StopEndsTheConversationsOfTheClients)
{
    server.AddService(kService, &AcceptAll, &OpenFirst);
    DdeClient client;
    const HCONV conversation = client.Connect(kService, u"topic");
    ASSERT_NE(conversation, nullptr);
    server.Stop();
#ifndef _WIN32  // Wine does not tell a client in the server's own process
    EXPECT_TRUE(DdeClient::WaitUntil([&client] { return client.disconnects == 1; }));
#endif
    EXPECT_FALSE(client.Advise(conversation, u"item"));
    EXPECT_EQ(client.Connect(kService, u"topic"), nullptr);
}

}  // namespace
}  // namespace zr::test
