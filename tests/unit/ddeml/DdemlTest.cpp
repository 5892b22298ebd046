#include "DdemlFixture.h"

namespace zr::ddeml {

using Ddeml = DdemlFixture;

TEST_F(Ddeml, ConfirmsAConversationWithTheNamesAsTheServerSpellsThem)
{
    const HCONV c = Connect();
    ASSERT_NE(c, nullptr);
    ASSERT_TRUE(Await([] { return g_server.Count(XTYP_CONNECT_CONFIRM) == 1; }));
    EXPECT_EQ(g_server.Last(XTYP_CONNECT).second, u"Plant");
    EXPECT_EQ(g_server.Last(XTYP_CONNECT).first, u"Meter");
    EXPECT_EQ(GetStatistics(g_server.instance).conversations, 1U);
}

TEST_F(Ddeml, RefusesAnUnknownService)
{
    EXPECT_EQ(DdeConnect(g_client.instance, ClientString(u"Nobody"), ClientString(u"Meter"), nullptr), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_NO_CONV_ESTABLISHED);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_NO_ERROR);
}

TEST_F(Ddeml, TellsAConversationWithItself)
{
    const HCONV c = DdeConnect(g_server.instance, ServerString(u"Plant"), ServerString(u"Meter"), nullptr);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(g_server.Last(XTYP_CONNECT).data2, 1U);
}

TEST_F(Ddeml, SendsTheValueOfEachPostToAHotLink)
{
    const HCONV c = Connect();
    ASSERT_NE(Transact(c, u"U1", XTYP_ADVSTART), nullptr);
    for (const char* value : {"1", "", "230.1"}) {
        m_value = value;
        Post(u"u1");
        ASSERT_TRUE(Await([] { return !g_client.events.empty() && g_client.events.back().type == XTYP_ADVDATA; }));
        EXPECT_EQ(g_client.events.back().data, value);
        g_client.events.clear();
    }
    EXPECT_EQ(g_server.Count(XTYP_ADVREQ), 3U);
}

TEST_F(Ddeml, CallsBackForDataDuringThePost)
{
    const HCONV c = Connect();
    Transact(c, u"U1", XTYP_ADVSTART);
    Post(u"u1");
    EXPECT_EQ(g_server.Count(XTYP_ADVREQ), 1U);
}

TEST_F(Ddeml, PostsOnlyToTheTopicAndItemGiven)
{
    Transact(Connect(), u"U1", XTYP_ADVSTART);
    Post(u"u1", u"other");
    Post(u"u2");
    EXPECT_EQ(g_server.Count(XTYP_ADVREQ), 0U);
    DdePostAdvise(g_server.instance, nullptr, nullptr);
    EXPECT_EQ(g_server.Count(XTYP_ADVREQ), 1U);
}

TEST_F(Ddeml, CountsTheRequestsThatFollowInOnePost)
{
    Transact(Connect(), u"U1", XTYP_ADVSTART);
    Transact(Connect(), u"U1", XTYP_ADVSTART);
    Transact(Connect(), u"U1", XTYP_ADVSTART);
    Post(u"u1");
    std::vector<ULONG_PTR> left;
    for (const Event& event : g_server.events) {
        if (event.type == XTYP_ADVREQ) {
            left.push_back(event.data1);
        }
    }
    EXPECT_EQ(left, (std::vector<ULONG_PTR>{2, 1, 0}));
}

TEST_F(Ddeml, TellsAWarmLinkWithoutDataAndWithoutAskingForThem)
{
    Transact(Connect(), u"U1", XTYP_ADVSTART | XTYPF_NODATA);
    Post(u"u1");
    ASSERT_TRUE(Await([] { return g_client.Count(XTYP_ADVDATA) == 1; }));
    EXPECT_EQ(g_client.Last(XTYP_ADVDATA).data, "");
    EXPECT_EQ(g_server.Count(XTYP_ADVREQ), 0U);
}

TEST_F(Ddeml, AsksForANewerValueOnceTheClientHasAcknowledged)
{
    Transact(Connect(), u"U1", XTYP_ADVSTART | XTYPF_ACKREQ);
    for (const char* value : {"1", "2", "3"}) {
        m_value = value;
        Post(u"u1");
    }
    ASSERT_TRUE(Await([] { return g_client.Count(XTYP_ADVDATA) == 2; }));
    Settle();
    EXPECT_EQ(g_client.Count(XTYP_ADVDATA), 2U);
    EXPECT_EQ(g_client.Last(XTYP_ADVDATA).data, "3");
    EXPECT_EQ(g_server.Last(XTYP_ADVREQ).data1, CADV_LATEACK);
    EXPECT_EQ(GetStatistics(g_server.instance).merged, 1U);
}

TEST_F(Ddeml, AsksAgainForALinkThatIsStartedTwiceAndKeepsOne)
{
    const HCONV c = Connect();
    EXPECT_NE(Transact(c, u"U1", XTYP_ADVSTART), nullptr);
    EXPECT_NE(Transact(c, u"u1", XTYP_ADVSTART), nullptr);
    EXPECT_EQ(g_server.Count(XTYP_ADVSTART), 2U);
    EXPECT_EQ(GetStatistics(g_server.instance).links, 1U);
    EXPECT_NE(Transact(c, u"U1", XTYP_ADVSTOP), nullptr);
    EXPECT_EQ(GetStatistics(g_server.instance).links, 0U);
    EXPECT_EQ(Transact(c, u"U1", XTYP_ADVSTOP), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_NOTPROCESSED);
}

TEST_F(Ddeml, DeliversDataInTheFormatThatTheServerMarkedThemWith)
{
    g_server.answer = [this](const Event& event) {
        return event.type == XTYP_ADVREQ ? Data(g_server.instance, "x", CF_TEXT) : Serve(event);
    };
    Transact(Connect(), u"U1", XTYP_ADVSTART, 5000, {}, nullptr, CF_UNICODETEXT);
    Post(u"u1");
    ASSERT_TRUE(Await([] { return g_client.Count(XTYP_ADVDATA) == 1; }));
    EXPECT_EQ(g_client.Last(XTYP_ADVDATA).format, CF_TEXT);
}

TEST_F(Ddeml, RepliesToRequestPokeAndExecute)
{
    const HCONV c = Connect();
    const HDDEDATA data = Transact(c, u"U1", XTYP_REQUEST);
    EXPECT_EQ(DdeGetData(data, nullptr, 0, 0), 4U);
    EXPECT_NE(DdeFreeDataHandle(data), 0);
    EXPECT_EQ(DdeFreeDataHandle(data), 0);
    EXPECT_EQ(Transact(c, u"no", XTYP_REQUEST), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_NOTPROCESSED);
    DWORD flags = 0;
    EXPECT_NE(Transact(c, u"U1", XTYP_POKE, 5000, "5", &flags), nullptr);
    EXPECT_EQ(flags, DDE_FACK);
    EXPECT_EQ(g_server.Last(XTYP_POKE).data, "5");
    EXPECT_EQ(Transact(c, u"U1", XTYP_POKE, 5000, "busy"), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_BUSY);
    EXPECT_NE(Transact(c, nullptr, XTYP_EXECUTE, 5000, "go"), nullptr);
    EXPECT_EQ(Transact(c, nullptr, XTYP_EXECUTE, 5000, "no"), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_NOTPROCESSED);
}

TEST_F(Ddeml, CompletesAnAsynchronousTransactionByACallback)
{
    DWORD id = 0;
    EXPECT_NE(Transact(Connect(), u"U1", XTYP_REQUEST, TIMEOUT_ASYNC, {}, &id), nullptr);
    ASSERT_TRUE(Await([] { return g_client.Count(XTYP_XACT_COMPLETE) == 1; }));
    EXPECT_EQ(g_client.Last(XTYP_XACT_COMPLETE).data1, id);
    EXPECT_EQ(g_client.Last(XTYP_XACT_COMPLETE).data, "12.5");
    EXPECT_EQ(g_client.Last(XTYP_XACT_COMPLETE).second, u"U1");
}

TEST_F(Ddeml, ForgetsAnAbandonedTransaction)
{
    DWORD id = 0;
    const HCONV c = Connect();
    Transact(c, u"U1", XTYP_REQUEST, TIMEOUT_ASYNC, {}, &id);
    EXPECT_NE(DdeAbandonTransaction(g_client.instance, c, id), 0);
    EXPECT_EQ(DdeAbandonTransaction(g_client.instance, c, id), 0);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_UNFOUND_QUEUE_ID);
    Settle();
    EXPECT_EQ(g_client.Count(XTYP_XACT_COMPLETE), 0U);
}

TEST_F(Ddeml, EndsATransactionWhenItsTimeIsOver)
{
    const HCONV c = Connect();
    DdeEnableCallback(g_server.instance, nullptr, EC_DISABLE);
    EXPECT_EQ(Transact(c, u"U1", XTYP_REQUEST, 10), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_DATAACKTIMEOUT);
    EXPECT_EQ(Transact(c, u"U1", XTYP_ADVSTART, 10), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_ADVACKTIMEOUT);
    EXPECT_NE(DdeEnableCallback(g_server.instance, nullptr, EC_QUERYWAITING), 0);
    DdeEnableCallback(g_server.instance, nullptr, EC_ENABLEALL);
    // The start that came too late is taken back.
    ASSERT_TRUE(Await([] { return g_server.Count(XTYP_ADVSTOP) == 1; }));
    EXPECT_EQ(GetStatistics(g_server.instance).links, 0U);
}

TEST_F(Ddeml, HoldsUpdatesBackWhileCallbacksAreDisabled)
{
    const HCONV c = Connect();
    Transact(c, u"U1", XTYP_ADVSTART);
    EXPECT_NE(DdeEnableCallback(g_client.instance, c, EC_DISABLE), 0);
    Post(u"u1");
    Post(u"u1");
    Post(u"u1");
    Settle();
    EXPECT_EQ(g_client.Count(XTYP_ADVDATA), 0U);
    DdeEnableCallback(g_client.instance, c, EC_ENABLEONE);
    Settle();
    EXPECT_EQ(g_client.Count(XTYP_ADVDATA), 1U);
    EXPECT_NE(DdeEnableCallback(g_client.instance, c, EC_QUERYWAITING), 0);
    DdeEnableCallback(g_client.instance, c, EC_ENABLEALL);
    Settle();
    EXPECT_EQ(g_client.Count(XTYP_ADVDATA), 3U);
    EXPECT_EQ(DdeEnableCallback(g_client.instance, c, EC_QUERYWAITING), 0);
}

TEST_F(Ddeml, RefusesToEnableCallbacksWithinACallback)
{
    BOOL result = 1;
    g_server.answer = [&](const Event& event) {
        if (event.type == XTYP_REQUEST) {
            result = DdeEnableCallback(g_server.instance, nullptr, EC_DISABLE);
        }
        return Serve(event);
    };
    Transact(Connect(), u"no", XTYP_REQUEST);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(DdeGetLastError(g_server.instance), DMLERR_REENTRANCY);
}

TEST_F(Ddeml, RepeatsATransactionThatTheServerBlocked)
{
    bool blocked = false;
    g_server.answer = [&](const Event& event) {
        if (event.type == XTYP_POKE && !std::exchange(blocked, true)) {
            return Reply(static_cast<std::uintptr_t>(-1));
        }
        return Serve(event);
    };
    const HCONV c = Connect();
    Transact(c, u"U1", XTYP_POKE, TIMEOUT_ASYNC, "5");
    ASSERT_TRUE(Await([&] { return blocked; }));
    DdeEnableCallback(g_server.instance, nullptr, EC_ENABLEALL);
    ASSERT_TRUE(Await([] { return g_client.Count(XTYP_XACT_COMPLETE) == 1; }));
    EXPECT_EQ(g_server.Count(XTYP_POKE), 2U);
}

TEST_F(Ddeml, TellsThePartnerOfADisconnectFromEitherSide)
{
    const HCONV first = Connect();
    Settle();
    EXPECT_NE(DdeDisconnect(first), 0);
    EXPECT_EQ(DdeDisconnect(first), 0);
    ASSERT_TRUE(Await([] { return g_server.Count(XTYP_DISCONNECT) == 1; }));
    EXPECT_EQ(g_client.Count(XTYP_DISCONNECT), 0U);
    const HCONV second = Connect();
    ASSERT_TRUE(Await([] { return g_server.Count(XTYP_CONNECT_CONFIRM) == 2; }));
    EXPECT_NE(DdeDisconnect(g_server.Last(XTYP_CONNECT_CONFIRM).conversation), 0);
    ASSERT_TRUE(Await([] { return g_client.Count(XTYP_DISCONNECT) == 1; }));
    EXPECT_EQ(g_client.Last(XTYP_DISCONNECT).conversation, second);
    EXPECT_EQ(Transact(second, u"U1", XTYP_REQUEST), nullptr);
}

TEST_F(Ddeml, FailsAWaitingTransactionWhenTheServerEnds)
{
    g_server.answer = [this](const Event& event) {
        if (event.type == XTYP_REQUEST) {
            DdeDisconnect(event.conversation);
        }
        return Serve(event);
    };
    EXPECT_EQ(Transact(Connect(), u"no", XTYP_REQUEST), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_SERVER_DIED);
}

TEST_F(Ddeml, SurvivesADisconnectWithinTheRequestForData)
{
    g_server.answer = [this](const Event& event) {
        if (event.type == XTYP_ADVREQ) {
            DdeDisconnect(event.conversation);
        }
        return Serve(event);
    };
    Transact(Connect(), u"U1", XTYP_ADVSTART);
    Transact(Connect(), u"U1", XTYP_ADVSTART);
    Post(u"u1");
    EXPECT_EQ(GetStatistics(g_server.instance).links, 0U);
    EXPECT_EQ(GetStatistics(g_server.instance).conversations, 0U);
    EXPECT_TRUE(Await([] { return g_client.Count(XTYP_DISCONNECT) == 2; }));
}

TEST_F(Ddeml, KeepsTheHandlesOfALinkAliveWhileItLasts)
{
    HSZ item = nullptr;
    const HCONV c = Connect();
    Transact(c, u"Rare", XTYP_ADVSTART);
    item = ServerString(u"rare");
    DdeFreeStringHandle(g_server.instance, item);
    EXPECT_EQ(g_server.Text(item), u"Rare");
}

TEST_F(Ddeml, AnnouncesServicesToAllInstances)
{
    DdeNameService(g_server.instance, ServerString(u"Second"), nullptr, DNS_REGISTER);
    ASSERT_TRUE(
        Await([] { return g_client.Count(XTYP_REGISTER) > 0 && g_client.Last(XTYP_REGISTER).first == u"Second"; }));
    EXPECT_TRUE(g_client.Last(XTYP_REGISTER).second.starts_with(u"Second:("));
    EXPECT_EQ(RegisteredServices(), (std::vector<std::u16string>{u"Plant", u"Second"}));
    DdeNameService(g_server.instance, ServerString(u"SECOND"), nullptr, DNS_UNREGISTER);
    ASSERT_TRUE(Await([] { return g_client.Count(XTYP_UNREGISTER) == 1; }));
    EXPECT_EQ(g_client.Last(XTYP_UNREGISTER).first, u"Second");
}

TEST_F(Ddeml, RefusesDataOfMoreThanOneMebibyte)
{
    EXPECT_EQ(DdeCreateDataHandle(g_client.instance, nullptr, (1U << 20U) + 1, 0, nullptr, CF_TEXT, 0), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_MEMORY_ERROR);
    EXPECT_NE(Transact(Connect(), u"U1", XTYP_POKE, 5000, std::string(1U << 20U, 'x')), nullptr);
    EXPECT_EQ(g_server.Last(XTYP_POKE).data.size(), 1U << 20U);
    EXPECT_EQ(Transact(Connect(), u"U1", XTYP_POKE, 5000, std::string((1U << 20U) + 1, 'x')), nullptr);
    EXPECT_EQ(DdeGetLastError(g_client.instance), DMLERR_MEMORY_ERROR);
}

TEST_F(Ddeml, MakesItsDescriptorReadableWhenThereIsSomethingToDo)
{
    const HCONV c = Connect();
    Transact(c, u"U1", XTYP_ADVSTART);
    Settle();
    Post(u"u1");
    EXPECT_TRUE(Dispatch(std::chrono::milliseconds(0)));
    EXPECT_GE(PollDescriptor(), 0);
}

}  // namespace zr::ddeml
