// Conversations on devices: who may connect, links and their items, and the bookkeeping of two conversations on one
// key.
#include "dde/ZRDDEValues.h"

#include "dde/ValueEncoding.h"
#include "DdeFixture.h"

namespace zr::test {
namespace {

Bytes Table(double number)
{
    const auto bytes = dde::EncodeXlTable(number);
    return {bytes.begin(), bytes.end()};
}

class ZRDDEValuesTest : public DdeFixture {
protected:
    void SetUp() override
    {
        DdeFixture::SetUp();
        topic = Handle(kDevice);
        u1 = Handle(u"U1");
        i1 = Handle(u"I1");
        meter[U1].WriteNumber(230.0);
        meter[I1].WriteNumber(5.0);
    }

    static Bytes ReplyOf(ZRDDEValues& conversation, HSZ topicHandle, HSZ item)
    {
        return TakeBytes(conversation.AdviseRequest(ZRDDEServer::XlTableFormat(), topicHandle, item));
    }
    bool CanConnect(const std::u16string& device)
    {
        return ZRDDEValues::CanConnect(ZRDDEServer::DDEInstance(), Handle(device));
    }

    HSZ topic = nullptr;
    HSZ u1 = nullptr;
    HSZ i1 = nullptr;
};

TEST_F(ZRDDEValuesTest, ADeviceThatIsNotThereRefusesTheConversation)
{
    DdeClient client;
    EXPECT_EQ(client.Connect(kService, u"Meter 2"), nullptr);
    EXPECT_NE(client.Connect(kService, kDevice), nullptr);
}

TEST_F(ZRDDEValuesTest, EachConversationThatIsAcceptedLeavesOneLockOnTheDevice)
{
    const int before = meter.Locks();
    EXPECT_TRUE(CanConnect(kDevice));
    EXPECT_TRUE(CanConnect(kDevice));
    EXPECT_EQ(meter.Locks(), before + 2);
    {
        DdeClient client;
        const HCONV conversation = client.Connect(kService, kDevice);
        ASSERT_NE(conversation, nullptr);
        DdeDisconnect(conversation);
        EXPECT_TRUE(DdeClient::WaitUntil([this] { return server.ConversationCount() == 0; }));
    }
    EXPECT_EQ(meter.Locks(), before + 3);
}

TEST_F(ZRDDEValuesTest, DeviceNamesOfUpTo127CharactersWorkAndLongerOnesAreRefused)
{
    const std::u16string longest(127, u'd');
    const std::u16string tooLong(128, u'e');
    const TestDevice device(ZRBasicString(longest), {u"V"});
    const TestDevice tooLongDevice(ZRBasicString(tooLong), {u"V"});
    const TestDevice cutDevice(ZRBasicString(std::u16string(127, u'e')), {u"V"});  // what cutting would find
    DdeClient client;
    EXPECT_NE(client.Connect(kService, longest), nullptr);
    EXPECT_EQ(client.Connect(kService, tooLong), nullptr);
    EXPECT_EQ(client.Connect(kService, std::u16string(255, u'e')), nullptr);
}

TEST_F(ZRDDEValuesTest, VariableNamesOfUpTo127CharactersWorkAndLongerOnesAreRefused)
{
    const std::u16string longest(127, u'A');
    TestDevice device(u"D", {ZRBasicString(longest), ZRBasicString(std::u16string(128, u'B')),
                             ZRBasicString(std::u16string(127, u'B'))});
    DdeClient client;
    const HCONV conversation = client.Connect(kService, u"D");
    EXPECT_TRUE(client.Advise(conversation, longest));
    EXPECT_FALSE(client.Advise(conversation, std::u16string(128, u'B')));
    EXPECT_FALSE(client.Advise(conversation, std::u16string(255, u'B')));
}

TEST_F(ZRDDEValuesTest, AnUnknownOrOddVariableIsRefusedAndTheConversationStaysOpen)
{
    DdeClient client;
    const HCONV conversation = client.Connect(kService, kDevice);
    for (const char16_t* item : {u"NONE", u".", u"..", u"U1.", u"#", u"@#.", u"U1\n", u" U1", u"\xD800", u"%s%n"}) {
        EXPECT_FALSE(client.Advise(conversation, item));
        EXPECT_EQ(client.LastError(), UINT{DMLERR_NOTPROCESSED});
    }
    EXPECT_TRUE(client.Advise(conversation, u"U1"));
}

TEST_F(ZRDDEValuesTest, AnItemOfNoTextIsRefused)
{
    ZRDDEValues conversation(nullptr, topic);
    EXPECT_FALSE(conversation.AdviseStart(CF_TEXT, topic, nullptr));
    EXPECT_FALSE(conversation.AdviseStart(CF_TEXT, nullptr, u1));
    EXPECT_FALSE(ZRDDEValues::CanConnect(ZRDDEServer::DDEInstance(), nullptr));
}

TEST_F(ZRDDEValuesTest, TheItemIsFoundInLowerCaseAndTheTopicKeepsItsCase)
{
    TestDevice greek(u"Q", {u"ΔU"});
    DdeClient client;
    EXPECT_TRUE(client.Advise(client.Connect(kService, u"Q"), u"δu"));
    EXPECT_TRUE(client.Advise(client.Connect(kService, kDevice), u"u1"));
    // The text of a new handle, since an old one keeps its first spelling.
    const TestDevice mixed(u"MiXed", {u"V"});
    EXPECT_FALSE(CanConnect(u"mixed"));
}

TEST_F(ZRDDEValuesTest, StartingALinkTwiceGivesOneItemAndOneStopEndsIt)
{
    DdeClient client;
    const HCONV conversation = client.Connect(kService, kDevice);
    EXPECT_TRUE(client.Advise(conversation, u"U1"));
    EXPECT_TRUE(client.Advise(conversation, u"U1"));
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 1u);
    EXPECT_EQ(ZRDDEValues::LinkCount(), 1u);
    EXPECT_TRUE(client.StopAdvise(conversation, u"U1"));
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
    EXPECT_EQ(ZRDDEValues::LinkCount(), 0u);
}

TEST_F(ZRDDEValuesTest, StartingALinkTwiceTakesNoSecondReference)
{
    ZRDDEValues conversation(nullptr, topic);
    EXPECT_TRUE(conversation.AdviseStart(CF_TEXT, topic, u1));
    EXPECT_TRUE(conversation.AdviseStart(ZRDDEServer::XlTableFormat(), topic, u1));
    conversation.AdviseStop(topic, u1);
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
    EXPECT_EQ(conversation.AdviseRequest(CF_TEXT, topic, u1), nullptr);
    conversation.AdviseStop(topic, u1);  // no link: nothing
}

TEST_F(ZRDDEValuesTest, AConversationIsNotTiedToItsTopic)
{
    TestDevice other(u"Other", {u"V"});
    ZRDDEValues conversation(nullptr, topic);
    EXPECT_TRUE(conversation.AdviseStart(CF_TEXT, Handle(u"Other"), Handle(u"V")));
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 1u);
}

TEST_F(ZRDDEValuesTest, ALinkThatIsNotHeldHasNoReply)
{
    ZRDDEValues first(nullptr, topic);
    ZRDDEValues second(nullptr, topic);
    ASSERT_TRUE(first.AdviseStart(CF_TEXT, topic, u1));
    EXPECT_EQ(second.AdviseRequest(CF_TEXT, topic, u1), nullptr);
    EXPECT_EQ(first.AdviseRequest(CF_TEXT, topic, i1), nullptr);
}

TEST_F(ZRDDEValuesTest, ASecondConversationOnAKeyKeepsTheValueOfItsSetup)
{
    ZRDDEValues first(nullptr, topic);
    ASSERT_TRUE(first.AdviseStart(CF_TEXT, topic, u1));
    meter[U1].WriteNumber(231.0);
    ZRDDEValues second(nullptr, topic);
    ASSERT_TRUE(second.AdviseStart(CF_TEXT, topic, u1));
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 1u);
    meter[U1].WriteNumber(232.0);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(ReplyOf(first, topic, u1), Table(232.0));
    EXPECT_EQ(ReplyOf(second, topic, u1), Table(231.0));
}

TEST_F(ZRDDEValuesTest, ASecondClientIsWokenWithItsOldValueWhenTheFirstOnesIsPosted)
{
    DdeClient first;
    DdeClient second;
    ASSERT_TRUE(first.Advise(first.Connect(kService, kDevice), u"U1"));
    ASSERT_TRUE(second.Advise(second.Connect(kService, kDevice), u"U1"));
    meter[U1].WriteNumber(231.0);
    ZRDDEValues::UpdateValues();
    ASSERT_TRUE(first.WaitForUpdates(1));
    ASSERT_TRUE(second.WaitForUpdates(1));
    EXPECT_EQ(first.updates[0].data, dde::EncodeText(231.0, 2, true));
    EXPECT_EQ(second.updates[0].data, dde::EncodeText(230.0, 2, true));
}

#ifndef _WIN32  // Wine's clients lose data of a registered format
TEST_F(ZRDDEValuesTest, AClientGetsTheTableForm)
{
    DdeClient client;
    ASSERT_TRUE(client.Advise(client.Connect(kService, kDevice), u"U1", ZRDDEServer::XlTableFormat()));
    ZRDDEValues::UpdateValues();
    ASSERT_TRUE(client.WaitForUpdates(1));
    EXPECT_EQ(client.updates[0].format, ZRDDEServer::XlTableFormat());
    EXPECT_EQ(client.updates[0].data, Table(230.0));
}
#endif

TEST_F(ZRDDEValuesTest, AfterTheSecondConversationStopsNothingIsPostedForTheFirst)
{
    ZRDDEValues first(nullptr, topic);
    ZRDDEValues second(nullptr, topic);
    ASSERT_TRUE(first.AdviseStart(CF_TEXT, topic, u1));
    ASSERT_TRUE(second.AdviseStart(CF_TEXT, topic, u1));
    second.AdviseStop(topic, u1);
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
    meter[U1].WriteNumber(240.0);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRDDEValuesTest, AReplyOnAnItemThatAnotherConversationEndedHasItsLastValue)
{
    ZRDDEValues first(nullptr, topic);
    ZRDDEValues second(nullptr, topic);
    ASSERT_TRUE(first.AdviseStart(CF_TEXT, topic, u1));
    ASSERT_TRUE(second.AdviseStart(CF_TEXT, topic, u1));
    meter[U1].WriteNumber(240.0);
    ZRDDEValues::UpdateValues();
    second.AdviseStop(topic, u1);
    meter[U1].WriteNumber(250.0);
    ZRDDEValues::UpdateValues();
    EXPECT_EQ(ReplyOf(first, topic, u1), Table(240.0));
    EXPECT_TRUE(first.AdviseStart(CF_TEXT, topic, u1));  // the link is still there
    EXPECT_EQ(ReplyOf(first, topic, u1), Table(240.0));
    first.AdviseStop(topic, u1);
    EXPECT_EQ(first.AdviseRequest(CF_TEXT, topic, u1), nullptr);
}

TEST_F(ZRDDEValuesTest, ThePrivateItemOutlivesTheSharedOne)
{
    ZRDDEValues second(nullptr, topic);
    {
        ZRDDEValues first(nullptr, topic);
        ASSERT_TRUE(first.AdviseStart(CF_TEXT, topic, u1));
        ASSERT_TRUE(second.AdviseStart(CF_TEXT, topic, u1));
    }
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
    EXPECT_EQ(ReplyOf(second, topic, u1), Table(230.0));
}

TEST_F(ZRDDEValuesTest, TheEndOfAStaleLinkTakesTheItemOfAThirdConversation)
{
    ZRDDEValues first(nullptr, topic);
    ZRDDEValues second(nullptr, topic);
    ZRDDEValues third(nullptr, topic);
    ASSERT_TRUE(first.AdviseStart(CF_TEXT, topic, u1));
    ASSERT_TRUE(second.AdviseStart(CF_TEXT, topic, u1));
    second.AdviseStop(topic, u1);
    ASSERT_TRUE(third.AdviseStart(CF_TEXT, topic, u1));
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 1u);
    first.AdviseStop(topic, u1);
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
    EXPECT_EQ(ReplyOf(third, topic, u1), Table(230.0));
}

TEST_F(ZRDDEValuesTest, AnItemBeginsWithOneReferenceAndEndsWithIt)
{
    const auto shared = ZRDDEValues::NewItem({topic, u1});
    const auto privateItem = ZRDDEValues::NewItem({topic, u1});
    ASSERT_NE(shared, nullptr);
    ASSERT_NE(privateItem, nullptr);
    EXPECT_NE(shared, privateItem);
    EXPECT_EQ(shared->references, 1);
    EXPECT_EQ(privateItem->references, 1);
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 1u);
    ++shared->references;
    ZRDDEValues::DeleteItem({topic, u1});
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 1u);
    ZRDDEValues::DeleteItem({topic, u1});
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
    EXPECT_FALSE(shared->variable.IsLocked());
    EXPECT_TRUE(privateItem->variable.IsLocked());
    EXPECT_EQ(privateItem->references, 1);
    ZRDDEValues::DeleteItem({topic, u1});  // unknown: nothing
}

TEST_F(ZRDDEValuesTest, TheEndOfAConversationEndsItsLinks)
{
    {
        DdeClient client;
        const HCONV conversation = client.Connect(kService, kDevice);
        ASSERT_TRUE(client.Advise(conversation, u"U1"));
        ASSERT_TRUE(client.Advise(conversation, u"I1"));
        EXPECT_EQ(ZRDDEValues::LinkCount(), 2u);
    }
    EXPECT_TRUE(DdeClient::WaitUntil([] { return ZRDDEValues::LinkCount() == 0; }));
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
}

TEST_F(ZRDDEValuesTest, StopEndsTheLinksOfAllConversations)
{
    DdeClient client;
    ASSERT_TRUE(client.Advise(client.Connect(kService, kDevice), u"U1"));
    server.Stop();
    EXPECT_EQ(ZRDDEValues::LinkCount(), 0u);
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
}

TEST_F(ZRDDEValuesTest, ManyClientsThatComeAndGoLeaveNothingBehind)
{
    for (int i = 0; i < 200; ++i) {
        DdeClient client;
        const HCONV conversation = client.Connect(kService, kDevice);
        ASSERT_TRUE(client.Advise(conversation, u"U1"));
        ZRDDEValues::UpdateValues();
    }
    EXPECT_TRUE(DdeClient::WaitUntil([this] { return server.ConversationCount() == 0; }));
    EXPECT_EQ(ZRDDEValues::LinkCount(), 0u);
    EXPECT_EQ(ZRDDEValues::WatchedItemCount(), 0u);
}

TEST_F(ZRDDEValuesTest, ALinkOutlivesItsDevice)
{
    auto passing = std::make_unique<TestDevice>(u"Passing", std::vector<ZRBasicString>{u"V"});
    (*passing)[0].WriteNumber(1.0);
    const HSZ device = Handle(u"Passing");
    const HSZ variable = Handle(u"V");
    ZRDDEValues conversation(nullptr, device);
    ASSERT_TRUE(conversation.AdviseStart(CF_TEXT, device, variable));
    passing.reset();
    ZRDDEValues::UpdateValues();
    EXPECT_EQ(ReplyOf(conversation, device, variable), Table(1.0));
    EXPECT_FALSE(CanConnect(u"Passing"));
}

}  // namespace
}  // namespace zr::test
