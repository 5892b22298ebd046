// When an item posts, and what its replies hold.
#include "dde/ValueEncoding.h"
#include "dde/ZRDDEValues.h"
#include "DdeFixture.h"

#include <cmath>
#include <limits>

namespace zr::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr UINT kUnicodeText = CF_UNICODETEXT;

Bytes Table(double number)
{
    const auto bytes = dde::EncodeXlTable(number);
    return {bytes.begin(), bytes.end()};
}

class ZRTopicItemTest : public DdeFixture {
protected:
    // Sets the item up and takes its first post, so that only a change posts from here on.
    void WatchSettled(const std::u16string& variable)
    {
        Watch(variable);
        EXPECT_EQ(PostsOfUpdate(), 1u);
        EXPECT_EQ(PostsOfUpdate(), 0u);
    }
    void Watch(const std::u16string& variable) { ASSERT_TRUE(item.Setup(Handle(kDevice), Handle(variable))); }
    std::uint64_t PostsOfUpdate()
    {
        return PostsOf([this] { item.Update(); });
    }
    Bytes Reply(UINT format) { return TakeBytes(item.CreateData(format)); }
    Bytes TableReply() { return Reply(ZRDDEServer::XlTableFormat()); }

    ZRDDEValues::ZRTopicItem item;
};

TEST_F(ZRTopicItemTest, TheFirstUpdatePostsThoughNothingChanged)
{
    meter[U1].WriteNumber(230.0);
    Watch(u"U1");
    EXPECT_TRUE(item.firstPost);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_FALSE(item.firstPost);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, AfterAChangeAtFirstTheNextUnchangedValueIsPostedOnceMore)
{
    meter[U1].WriteNumber(230.0);
    Watch(u"U1");
    meter[U1].WriteNumber(231.0);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_TRUE(item.firstPost);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, AnItemThatWasNotSetUpHasNoFirstPost)
{
    EXPECT_FALSE(item.firstPost);
    EXPECT_EQ(item.references, 0);
    EXPECT_FALSE(item.Setup(Handle(kDevice), Handle(u"NONE")));
    EXPECT_FALSE(item.firstPost);
}

TEST_F(ZRTopicItemTest, ANumberThatChangesIsPostedAndAnEqualOneIsNot)
{
    meter[U1].WriteNumber(230.0);
    WatchSettled(u"U1");
    meter[U1].WriteNumber(std::nextafter(230.0, 231.0));
    EXPECT_EQ(PostsOfUpdate(), 1u);
    meter[U1].WriteNumber(item.value.number);
    EXPECT_EQ(PostsOfUpdate(), 0u);
    meter[U1].WriteNumber(0.0);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    meter[U1].WriteNumber(-0.0);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, ANumberThatGoesToNaNOrBackIsNoChange)
{
    meter[U1].WriteNumber(230.0);
    WatchSettled(u"U1");
    meter[U1].WriteNumber(kNaN);
    EXPECT_EQ(PostsOfUpdate(), 0u);
    EXPECT_EQ(item.value.number, 230.0);
    meter[U1].WriteNumber(231.0);
    EXPECT_EQ(PostsOfUpdate(), 1u);
}

TEST_F(ZRTopicItemTest, AnItemThatBeganWithNaNNeverSeesANumberChange)
{
    meter[U1].WriteNumber(kNaN);
    WatchSettled(u"U1");
    meter[U1].WriteNumber(230.0);
    EXPECT_EQ(PostsOfUpdate(), 0u);
    EXPECT_EQ(TableReply(), Table(kNaN));
}

TEST_F(ZRTopicItemTest, ATextThatChangesOnlyInCaseIsPosted)
{
    meter[NOTE].WriteText(u"closed");
    WatchSettled(u"NOTE");
    meter[NOTE].WriteText(u"Closed");
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(item.value.text, ZRBasicString(u"Closed"));
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, TextsAreComparedUpToAZero)
{
    meter[NOTE].WriteText(ZRBasicString(u"on\0a", 4));
    WatchSettled(u"NOTE");
    meter[NOTE].WriteText(ZRBasicString(u"on\0b", 4));
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, ABooleanThatChangesIsPosted)
{
    meter[STATE].WriteBoolean(false);
    WatchSettled(u"STATE");
    meter[STATE].WriteBoolean(true);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, APairIsPostedWhenEitherWordChanges)
{
    meter[PAIR].WriteWords(1, 2);
    WatchSettled(u"PAIR");
    meter[PAIR].WriteWords(3, 2);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    meter[PAIR].WriteWords(3, 4);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, AChangeOfTypeIsPostedThoughThePayloadIsEqual)
{
    meter[STATE].WriteNumber(1.0);
    WatchSettled(u"STATE");
    meter[STATE].WriteBoolean(false);  // as the record's boolean was at the beginning
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(item.value.type, tagSVariableValue::kBoolean);
    EXPECT_EQ(PostsOfUpdate(), 0u);
}

TEST_F(ZRTopicItemTest, AVariableWithoutATypeIsPostedOnEveryUpdateWithItsStoredNumber)
{
    Watch(u"U1");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(PostsOfUpdate(), 1u);
        EXPECT_EQ(TableReply(), Table(0.0));
    }
    item.value.number = 4.5;
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(TableReply(), Table(4.5));
}

TEST_F(ZRTopicItemTest, AValueOfAnotherTypePublishesTheNumberItsRecordHad)
{
    meter[STATE].WriteNumber(7.5);
    WatchSettled(u"STATE");
    for (int i = 0; i < 3; ++i) {
        meter[STATE].WriteBoolean(i % 2 == 0);
        EXPECT_EQ(PostsOfUpdate(), 1u);
        EXPECT_EQ(TableReply(), Table(7.5));
    }
    meter[STATE].WriteText(u"open");
    EXPECT_EQ(PostsOfUpdate(), 1u);
    meter[STATE].WriteWords(1, 2);
    EXPECT_EQ(PostsOfUpdate(), 1u);
    EXPECT_EQ(TableReply(), Table(7.5));
}

TEST_F(ZRTopicItemTest, AnInvalidVariableGoesOnToPublishItsLastNumber)
{
    meter[U1].WriteNumber(230.0);
    WatchSettled(u"U1");
    meter[U1].Invalidate();
    EXPECT_EQ(PostsOfUpdate(), 0u);
    EXPECT_EQ(TableReply(), Table(230.0));
}

TEST_F(ZRTopicItemTest, DecimalsAreThoseOfTheVariablesOwnTextForm)
{
    const TestDevice fine(u"Fine", {u"V"}, 5);
    ASSERT_TRUE(item.Setup(Handle(u"Fine"), Handle(u"V")));
    EXPECT_EQ(item.decimals, 5);
}

TEST_F(ZRTopicItemTest, OnlyXlTableGetsTheTableFormAndNoFormatIsRefused)
{
    meter[U1].WriteNumber(12.5);
    Watch(u"U1");
    EXPECT_EQ(TableReply(), (Bytes{0x10, 0, 4, 0, 1, 0, 1, 0, 1, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0x29, 0x40}));
    const Bytes text = dde::EncodeText(12.5, 2, true);
    ASSERT_EQ(text.size(), 7u);  // "12.50" and its line end
    for (const UINT format : {UINT{CF_TEXT}, kUnicodeText, UINT{0}, UINT{2}, UINT{0xFFFF}}) {
        EXPECT_EQ(Reply(format), text) << format;
    }
}

TEST_F(ZRTopicItemTest, TheReplyIsReadyWhenThePostCallsBack)
{
    meter[U1].WriteNumber(230.0);
    DdeClient client;
    const HCONV conversation = client.Connect(kService, kDevice);
    ASSERT_TRUE(client.Advise(conversation, u"U1"));
    meter[U1].WriteNumber(231.5);
    ZRDDEValues::UpdateValues();
    ASSERT_TRUE(client.WaitForUpdates(1));
    EXPECT_EQ(client.updates[0].item, u"U1");
    EXPECT_EQ(client.updates[0].data, dde::EncodeText(231.5, 2, true));
}

#ifndef _WIN32
// Wine's clients drop data of another format than the link's, so that such a link stays silent there.
TEST_F(ZRTopicItemTest, AUnicodeLinkGetsAHandleMarkedAsText)
{
    meter[U1].WriteNumber(12.5);
    DdeClient client;
    ASSERT_TRUE(client.Advise(client.Connect(kService, kDevice), u"U1", kUnicodeText));
    ZRDDEValues::UpdateValues();
    ASSERT_TRUE(client.WaitForUpdates(1));
    EXPECT_EQ(client.updates[0].format, UINT{CF_TEXT});
    EXPECT_EQ(client.updates[0].data, dde::EncodeText(12.5, 2, true));
}
#endif

TEST_F(ZRTopicItemTest, ATextLinkGetsTheBytesOfTheTextForm)
{
    meter[U1].WriteNumber(12.5);
    DdeClient client;
    ASSERT_TRUE(client.Advise(client.Connect(kService, kDevice), u"U1"));
    ZRDDEValues::UpdateValues();
    ASSERT_TRUE(client.WaitForUpdates(1));
    EXPECT_EQ(client.updates[0].format, UINT{CF_TEXT});
    EXPECT_EQ(client.updates[0].data, dde::EncodeText(12.5, 2, true));
}

TEST_F(ZRTopicItemTest, AWarmLinkIsToldWithoutData)
{
    meter[U1].WriteNumber(12.5);
    DdeClient client;
    ASSERT_TRUE(client.Advise(client.Connect(kService, kDevice), u"U1", CF_TEXT, XTYPF_NODATA));
    ZRDDEValues::UpdateValues();
    ASSERT_TRUE(client.WaitForUpdates(1));
    EXPECT_FALSE(client.updates[0].data);
}

}  // namespace
}  // namespace zr::test
