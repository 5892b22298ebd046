#include "Checks.h"

#include "Text.h"

#include <array>
#include <cstdio>

namespace conformance {

namespace {

void Print(const std::string& check, const std::string& seen)
{
    std::printf("%s: %s\n", check.c_str(), seen.c_str());
    std::fflush(stdout);
}

std::string YesNo(bool value)
{
    return value ? "yes" : "no";
}

ServerControl* g_server = nullptr;

class Control {
public:
    static void Do(const std::string& command, std::string_view text) { g_server->Run(command, std::string(text)); }

    // The notes of the server as lines below the check, after the posted messages have been handled.
    static void PrintNotes()
    {
        for (const std::string& note : g_server->TakeNotes()) {
            std::printf("  server: %s\n", note.c_str());
        }
        std::fflush(stdout);
    }

    static void DropNotes() { g_server->TakeNotes(); }
};

void PrintNotes(const char* who, Client& client, std::size_t count)
{
    client.AwaitNotes(count);
    for (const std::string& note : client.TakeNotes()) {
        std::printf("  %s: %s\n", who, note.c_str());
    }
    std::fflush(stdout);
}

// Drops what the client and the server noted, what is still on its way included: an update overtakes no other. Asked
// for again where it is lost.
void DropNotes(Client& client, HCONV conversation, const char* topic)
{
    client.Transact(conversation, "fence", CF_TEXT, XTYP_ADVSTART);
    for (int attempt = 0; attempt < 5; ++attempt) {
        Control::Do("post", topic + std::string(" fence"));
        if (client.AwaitNoteWith("fence", std::chrono::seconds(2))) {
            break;
        }
    }
    client.Transact(conversation, "fence", CF_TEXT, XTYP_ADVSTOP);
    client.TakeNotes();
    Control::DropNotes();
}

void CheckConnect(Client& client, const std::string& name, const char* service, std::u16string_view topic)
{
    const HCONV conversation = client.Connect(service, topic);
    Print("connect " + name, conversation != nullptr ? "connected" : "refused, " + ErrorName(client.LastError()));
    if (conversation != nullptr) {
        Print("disconnect " + name, YesNo(DdeDisconnect(conversation) != 0));
        Print("disconnect twice " + name, YesNo(DdeDisconnect(conversation) != 0));
    }
    Control::PrintNotes();
}

void CheckConnects(Client& client)
{
    CheckConnect(client, "unknown service", "NOBODY", u"topic");
    CheckConnect(client, "refused topic", "CONFORM", u"refused");
    CheckConnect(client, "topic", "CONFORM", u"plain");
    CheckConnect(client, "service in lower case", "conform", u"lower");
    CheckConnect(client, "odd characters", "CONFORM", u"a b|c!d'\"\u00E4\u20AC.@#");
    for (const std::size_t length : {1U, 126U, 127U, 128U, 254U, 255U}) {
        CheckConnect(client, "topic of " + std::to_string(length), "CONFORM", std::u16string(length, u't'));
    }
}

void CheckTransaction(Client& client, HCONV conversation, const std::string& name, const char* item, UINT format,
                      UINT type, std::string_view data = {})
{
    DWORD flags = 0;
    const HDDEDATA reply = client.Transact(conversation, item, format, type, data, &flags);
    if (type == XTYP_REQUEST) {
        Print(name, reply != nullptr ? Show(reply) : "refused, " + ErrorName(client.LastError()));
        DdeFreeDataHandle(reply);
    } else if (type == XTYP_POKE) {
        // Whether a refused poke counts as a failure is told differently; its flags are not.
        Print(name, "flags " + FlagsName(flags & 0xC000U));
    } else {
        Print(name, (reply != nullptr ? "accepted" : "refused") + std::string(", flags ") + FlagsName(flags & 0xC000U));
    }
    Control::PrintNotes();
}

// UTF-16 with its final zero, as the bytes of a command.
std::string Command(std::string_view ascii)
{
    std::string bytes;
    for (const char c : ascii) {
        bytes += {c, '\0'};
    }
    return bytes + std::string(2, '\0');
}

void CheckOnce(Client& client)
{
    const HCONV c = client.Connect("CONFORM", u"once");
    Control::DropNotes();
    CheckTransaction(client, c, "request", "value", CF_TEXT, XTYP_REQUEST);
    CheckTransaction(client, c, "request in upper case", "VALUE", CF_TEXT, XTYP_REQUEST);
    CheckTransaction(client, c, "request of a registered format", "value", RegisterClipboardFormatW(u"XlTable"),
                     XTYP_REQUEST);
    CheckTransaction(client, c, "request of format 0", "value", 0, XTYP_REQUEST);
    CheckTransaction(client, c, "request refused", "unknown", CF_TEXT, XTYP_REQUEST);
    CheckTransaction(client, c, "request without item", nullptr, CF_TEXT, XTYP_REQUEST);
    CheckTransaction(client, c, "poke", "value", CF_TEXT, XTYP_POKE, std::string_view("12\0", 3));
    CheckTransaction(client, c, "poke refused", "no", CF_TEXT, XTYP_POKE, "1");
    CheckTransaction(client, c, "poke busy", "busy", CF_TEXT, XTYP_POKE, "1");
    CheckTransaction(client, c, "execute", nullptr, 0, XTYP_EXECUTE, Command("[do(this)]"));
    CheckTransaction(client, c, "execute refused", nullptr, 0, XTYP_EXECUTE, Command("no"));
    DWORD flags = 0;
    Print("unknown transaction", YesNo(client.Transact(c, "value", CF_TEXT, 0x1234, {}, &flags) != nullptr));
    Print("unknown transaction error", ErrorName(client.LastError()));
    Print("no error left", ErrorName(client.LastError()));
    DdeDisconnect(c);
    Control::PrintNotes();
    Print("request after disconnect", YesNo(client.Transact(c, "value", CF_TEXT, XTYP_REQUEST) != nullptr));
    Control::PrintNotes();
}

void CheckPost(Client& client, const std::string& name, const char* target, std::size_t updates, bool tellServer = true)
{
    Control::Do("post", target);
    Print(name, "posted");
    if (tellServer) {
        Control::PrintNotes();
    } else {
        Control::DropNotes();
    }
    PrintNotes("client", client, updates);
}

void CheckLinks(Client& client)
{
    const HCONV c = client.Connect("CONFORM", u"Links");
    Control::DropNotes();
    client.TakeNotes();
    CheckTransaction(client, c, "start hot", "hot", CF_TEXT, XTYP_ADVSTART);
    CheckPost(client, "post hot", "links hot", 1);
    Control::Do("value", std::string_view("\x10\0\x04\0\xFF", 5));
    CheckPost(client, "post other bytes", "Links Hot", 1);
    CheckTransaction(client, c, "start twice", "HOT", CF_TEXT, XTYP_ADVSTART);
    CheckPost(client, "post to a link started twice", "links hot", 1);
    CheckPost(client, "post an unknown item", "links cold", 0);
    CheckTransaction(client, c, "start refused", "no", CF_TEXT, XTYP_ADVSTART);
    CheckTransaction(client, c, "stop", "hot", CF_TEXT, XTYP_ADVSTOP);
    CheckPost(client, "post after stop", "links hot", 0);
    Print("stop twice", YesNo(client.Transact(c, "hot", CF_TEXT, XTYP_ADVSTOP) != nullptr));
    Print("stop unknown", YesNo(client.Transact(c, "never", CF_TEXT, XTYP_ADVSTOP) != nullptr));
    Control::PrintNotes();
    CheckTransaction(client, c, "start warm", "warm", CF_TEXT, XTYP_ADVSTART | XTYPF_NODATA);
    // Whether the server is asked for the data of a warm link is told differently.
    CheckPost(client, "post warm", "links warm", 1, false);
    CheckTransaction(client, c, "start acknowledged", "ack", CF_TEXT, XTYP_ADVSTART | XTYPF_ACKREQ);
    for (int i = 0; i < 3; ++i) {
        CheckPost(client, "post acknowledged", "links ack", 1);
    }
    CheckTransaction(client, c, "start XlTable", "table", RegisterClipboardFormatW(u"XlTable"), XTYP_ADVSTART);
    // What the client gets of a registered format differs; the server's side does not.
    Control::Do("post", "links table");
    Print("post XlTable", "posted");
    Control::PrintNotes();
    DropNotes(client, c, "links");
    CheckTransaction(client, c, "start unicode", "uni", CF_UNICODETEXT, XTYP_ADVSTART);
    CheckPost(client, "post unicode", "links uni", 1);
    CheckTransaction(client, c, "start without item", nullptr, CF_TEXT, XTYP_ADVSTART);
    for (const std::size_t length : {1U, 127U, 128U, 255U}) {
        const std::string item(length, 'i');
        const std::string name = "item of " + std::to_string(length);
        CheckTransaction(client, c, "start " + name, item.c_str(), CF_TEXT, XTYP_ADVSTART);
        CheckPost(client, "post " + name, ("links " + item).c_str(), 1);
        CheckTransaction(client, c, "stop " + name, item.c_str(), CF_TEXT, XTYP_ADVSTOP);
    }
    Print("disconnect with links", YesNo(DdeDisconnect(c) != 0));
    Control::PrintNotes();
    CheckPost(client, "post after disconnect", "links ack", 0);
}

void CheckTwoClients(Client& client, Client& other)
{
    const HCONV first = client.Connect("CONFORM", u"shared");
    const HCONV second = other.Connect("CONFORM", u"SHARED");
    Control::DropNotes();
    client.TakeNotes();
    other.TakeNotes();
    CheckTransaction(client, first, "start first", "value", CF_TEXT, XTYP_ADVSTART);
    CheckTransaction(other, second, "start second", "value", CF_TEXT, XTYP_ADVSTART);
    // Not every system brings both of two updates that go to one thread at once.
    Control::Do("post", "shared value");
    Print("post to two", "posted");
    Control::PrintNotes();
    DropNotes(client, first, "shared");
    DropNotes(other, second, "shared");
    CheckTransaction(client, first, "stop first", "value", CF_TEXT, XTYP_ADVSTOP);
    CheckPost(other, "post to the second", "shared value", 1);
    DdeDisconnect(first);
    DdeDisconnect(second);
    Control::PrintNotes();
}

void CheckManyUpdates(Client& client)
{
    const HCONV c = client.Connect("CONFORM", u"many");
    client.Transact(c, "count", CF_TEXT, XTYP_ADVSTART);
    client.TakeNotes();
    bool inOrder = true;
    for (int i = 0; i < 500; ++i) {
        Control::Do("value", std::to_string(i));
        Control::Do("post", "many count");
        client.AwaitNotes(1);
        const auto notes = client.TakeNotes();
        std::vector<BYTE> last;
        inOrder = inOrder && notes.size() == 1;
    }
    Print("500 updates, each arrived once", YesNo(inOrder));
    DdeDisconnect(c);
    Control::DropNotes();
}

void CheckNames(Client& client)
{
    client.AwaitNotes(0);
    client.TakeNotes();
    Control::Do("register", "SECOND");
    PrintNotes("client", client, 1);
    CheckConnect(client, "second name", "second", u"named");
    Control::Do("unregister", "SECOND");
    PrintNotes("client", client, 1);
    CheckConnect(client, "name that is gone", "SECOND", u"named");
    CheckConnect(client, "first name still", "CONFORM", u"named");
}

void CheckRegister(Client& client)
{
    const HSZ missing = nullptr;
    Print("register no name", YesNo(DdeNameService(client.Instance(), missing, nullptr, DNS_REGISTER) != nullptr));
    Print("register no name error", ErrorName(client.LastError()));
    const HSZ twice = client.String(u"TWICE");
    Print("register", YesNo(DdeNameService(client.Instance(), twice, nullptr, DNS_REGISTER) != nullptr));
    Print("register twice", YesNo(DdeNameService(client.Instance(), twice, nullptr, DNS_REGISTER) != nullptr));
    Print("register twice error", ErrorName(client.LastError()));
    Print("unregister", YesNo(DdeNameService(client.Instance(), twice, nullptr, DNS_UNREGISTER) != nullptr));
}

}  // namespace

void CheckStrings(Client& client)
{
    const DWORD instance = client.Instance();
    const auto create = [instance](std::u16string_view text) {
        return DdeCreateStringHandleW(instance, std::u16string(text).c_str(), CP_WINUNICODE);
    };
    const HSZ first = create(u"Alpha");
    const HSZ second = create(u"aLPHA");
    const HSZ beta = create(u"Beta");
    Print("case does not matter", YesNo(DdeCmpStringHandles(first, second) == 0 && first == second));
    Print("other text", YesNo(DdeCmpStringHandles(first, beta) == 0));
    Print("first spelling stays", Show(instance, second));
    Print("null before a text",
          YesNo(DdeCmpStringHandles(nullptr, first) < 0 && DdeCmpStringHandles(first, nullptr) > 0));
    Print("letters beyond ASCII", YesNo(create(u"\u00E4\u03B1\u0436") == create(u"\u00C4\u0391\u0416")));
    for (const DWORD limit : {1U, 2U, 5U, 6U, 7U}) {
        std::array<char16_t, 16> text{};
        const DWORD copied = DdeQueryStringW(instance, first, text.data(), limit, CP_WINUNICODE);
        Print("query with limit " + std::to_string(limit), std::to_string(copied) + " " + Show(text.data()));
    }
    Print("free", YesNo(DdeFreeStringHandle(instance, first) != 0));
    Print("still held", Show(instance, second));
    Print("free the last", YesNo(DdeFreeStringHandle(instance, second) != 0));
    Print("free once more", YesNo(DdeFreeStringHandle(instance, second) != 0));
    DdeKeepStringHandle(instance, beta);
    DdeFreeStringHandle(instance, beta);
    Print("kept", Show(instance, beta));
    DdeFreeStringHandle(instance, beta);
    Print("unknown instance", YesNo(DdeCreateStringHandleW(0xDEAD, u"x", CP_WINUNICODE) != nullptr));
    Print("unknown instance error", ErrorName(DdeGetLastError(0xDEAD)));
    for (const std::size_t length : {0U, 1U, 127U, 128U, 254U, 255U, 256U, 1000U}) {
        const HSZ string = create(std::u16string(length, u'x'));
        const std::string name = "string of " + std::to_string(length);
        if (string == nullptr) {
            Print(name, "refused");
            continue;
        }
        std::array<char16_t, 300> text{};
        const DWORD whole = DdeQueryStringW(instance, string, nullptr, 0, CP_WINUNICODE);
        const DWORD cut = DdeQueryStringW(instance, string, text.data(), 128, CP_WINUNICODE);
        Print(name, std::to_string(whole) + ", with limit 128 " + std::to_string(cut));
    }
}

void CheckFormats()
{
    const UINT table = RegisterClipboardFormatW(u"XlTable");
    Print("registered format", YesNo(table >= 0xC000 && table <= 0xFFFF));
    Print("again in other case", YesNo(RegisterClipboardFormatW(u"XLTABLE") == table));
    Print("other format", YesNo(RegisterClipboardFormatW(u"Kestrix conformance") != table));
    Print("its name", FormatName(table));
    std::array<char16_t, 4> cut{};
    const int copied = GetClipboardFormatNameW(table, cut.data(), 4);
    Print("its name cut to 3", std::to_string(copied) + " " + Show(cut.data()));
    Print("name of a standard format", std::to_string(GetClipboardFormatNameW(CF_TEXT, cut.data(), 4)));
    Print("empty name", std::to_string(RegisterClipboardFormatW(u"")));
}

void CheckData(Client& client)
{
    std::array<BYTE, 5> bytes{1, 2, 3, 4, 5};
    const DWORD instance = client.Instance();
    const HDDEDATA data = DdeCreateDataHandle(instance, bytes.data(), 5, 0, nullptr, CF_TEXT, 0);
    Print("data", Show(data));
    std::array<BYTE, 4> part{9, 9, 9, 9};
    const DWORD got = DdeGetData(data, part.data(), 3, 3);
    Print("part of it", std::to_string(got) + " " + std::to_string(part[1]) + " " + std::to_string(part[2]));
    Print("behind its end", std::to_string(DdeGetData(data, part.data(), 3, 50)));
    DWORD size = 0;
    const BYTE* access = DdeAccessData(data, &size);
    Print("access", std::to_string(size) + " " + std::to_string(access[4]));
    Print("unaccess", YesNo(DdeUnaccessData(data) != 0));
    Print("free data", YesNo(DdeFreeDataHandle(data) != 0));
    Print("access none", YesNo(DdeAccessData(nullptr, &size) != nullptr));
    const HDDEDATA zeros = DdeCreateDataHandle(instance, nullptr, 4, 0, nullptr, CF_TEXT, HDATA_APPOWNED);
    Print("data without source", Show(zeros));
    DdeFreeDataHandle(zeros);
    const HDDEDATA empty = DdeCreateDataHandle(instance, bytes.data(), 0, 0, nullptr, CF_TEXT, 0);
    Print("no bytes", Show(empty));
    DdeFreeDataHandle(empty);
    Print("data of an unknown instance",
          YesNo(DdeCreateDataHandle(0xDEAD, bytes.data(), 5, 0, nullptr, CF_TEXT, 0) != nullptr));
}

void CheckConversations(ServerControl& server, Client& client, Client& other)
{
    g_server = &server;
    CheckConnects(client);
    CheckOnce(client);
    CheckLinks(client);
    CheckTwoClients(client, other);
    CheckManyUpdates(client);
    CheckNames(client);
    CheckRegister(client);
}

}  // namespace conformance
