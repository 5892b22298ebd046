#include "Peer.h"

#include "Text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace conformance {

namespace {

struct ServerState {
    DWORD instance = 0;
    std::vector<std::string> notes;
    std::string value = "12.5";
    UINT markedAs = 0;  // 0: data are marked with the format asked for
    std::vector<HSZ> strings;
};

ServerState g_server;
std::array<std::vector<std::string>, 2> g_notes;
std::array<DWORD, 2> g_instances{};

template <typename Condition>
bool DispatchUntil(Condition holds, std::chrono::milliseconds limit)
{
    const auto until = std::chrono::steady_clock::now() + limit;
    while (!holds() && std::chrono::steady_clock::now() < until) {
        zr::ddeml::Dispatch(std::chrono::milliseconds(100));
    }
    return holds();
}

HSZ ServerString(std::string_view text)
{
    const HSZ string = DdeCreateStringHandleW(g_server.instance, Wide(text).c_str(), CP_WINUNICODE);
    g_server.strings.push_back(string);
    return string;
}

void Note(const std::string& line)
{
    g_server.notes.push_back(line);
}

HDDEDATA MakeData(std::string_view bytes, HSZ item, UINT format)
{
    std::vector<BYTE> copy(bytes.begin(), bytes.end());
    return DdeCreateDataHandle(g_server.instance, copy.data(), static_cast<DWORD>(copy.size()), 0, item, format, 0);
}

// "topic item" of a post.
void PostFor(const std::string& text)
{
    const std::size_t space = text.find(' ');
    DdePostAdvise(g_server.instance, ServerString(text.substr(0, space)), ServerString(text.substr(space + 1)));
}

HDDEDATA OnTopic(UINT type, UINT format, const std::string& topic, const std::string& item, HSZ itemString,
                 HDDEDATA data)
{
    const bool refused = item == "no";
    const bool busy = item == "busy";
    switch (type) {
        case XTYP_CONNECT:
            return zr::ddeml::Reply(topic == "refused" ? 0 : 1);
        case XTYP_ADVSTART:
            return zr::ddeml::Reply(refused ? 0 : 1);
        case XTYP_ADVREQ:
            return MakeData(g_server.value, itemString, g_server.markedAs != 0 ? g_server.markedAs : format);
        case XTYP_REQUEST:
            return item == "value" ? MakeData(g_server.value, itemString, format) : nullptr;
        case XTYP_POKE:
            return zr::ddeml::Reply(refused ? DDE_FNOTPROCESSED : busy ? DDE_FBUSY : DDE_FACK);
        case XTYP_EXECUTE:
            return zr::ddeml::Reply(DdeGetData(data, nullptr, 0, 0) > 6 ? DDE_FACK : DDE_FNOTPROCESSED);
        default:
            return nullptr;
    }
}

HDDEDATA CALLBACK ServerCallback(UINT type, UINT format, HCONV, HSZ hsz1, HSZ hsz2, HDDEDATA data, ULONG_PTR data1,
                                 ULONG_PTR data2)
{
    if (type == XTYP_REGISTER || type == XTYP_UNREGISTER || type == XTYP_DISCONNECT) {
        if (type == XTYP_DISCONNECT) {
            Note(TypeName(type));
        }
        return nullptr;
    }
    const std::string topic = Show(g_server.instance, hsz1);
    const std::string second = Show(g_server.instance, hsz2);
    std::string line = TypeName(type) + " " + FormatName(format) + " " + topic + " " + second;
    if (type == XTYP_ADVREQ) {
        line += " left " + std::to_string(data1 & 0xFFFFU);
    } else if (type == XTYP_CONNECT) {
        line += data2 != 0 ? " same instance" : " other instance";
    } else if (type == XTYP_POKE || type == XTYP_EXECUTE) {
        line += " " + Show(data);
    }
    Note(line);
    return OnTopic(type, format, topic, second, hsz2, data);
}

HDDEDATA OnClientCall(std::size_t number, UINT type, UINT format, HSZ hsz1, HSZ hsz2, HDDEDATA data)
{
    const DWORD instance = g_instances[number];
    std::string line = TypeName(type);
    if (type == XTYP_ADVDATA) {
        line += " " + FormatName(format) + " " + Show(instance, hsz1) + " " + Show(instance, hsz2) + " " + Show(data);
    } else if (type == XTYP_REGISTER) {
        const std::string name = Show(instance, hsz1);
        const bool isPart = hsz2 != nullptr && Show(instance, hsz2).starts_with(name);
        line += " " + name + (isPart ? " and its own name" : "");
    }
    g_notes[number].push_back(line);
    return zr::ddeml::Reply(type == XTYP_ADVDATA ? DDE_FACK : 0);
}

template <std::size_t number>
HDDEDATA CALLBACK ClientCallback(UINT type, UINT format, HCONV, HSZ hsz1, HSZ hsz2, HDDEDATA data, ULONG_PTR, ULONG_PTR)
{
    return OnClientCall(number, type, format, hsz1, hsz2, data);
}

}  // namespace

bool Server::Start()
{
    return DdeInitializeW(&g_server.instance, ServerCallback, 0, 0) == DMLERR_NO_ERROR &&
           DdeNameService(g_server.instance, ServerString("CONFORM"), nullptr, DNS_REGISTER) != nullptr;
}

void Server::Stop()
{
    for (const HSZ string : g_server.strings) {
        DdeFreeStringHandle(g_server.instance, string);
    }
    DdeUninitialize(g_server.instance);
}

void Server::Run(const std::string& command, const std::string& text)
{
    if (command == "value") {
        g_server.value = text;
    } else if (command == "post") {
        PostFor(text);
    } else if (command == "mark") {
        g_server.markedAs = text == "text" ? CF_TEXT : 0;
    } else if (command == "register") {
        DdeNameService(g_server.instance, ServerString(text), nullptr, DNS_REGISTER);
    } else if (command == "unregister") {
        DdeNameService(g_server.instance, ServerString(text), nullptr, DNS_UNREGISTER);
    }
}

std::vector<std::string> Server::TakeNotes()
{
    while (zr::ddeml::Dispatch(std::chrono::milliseconds(0))) {
    }
    return std::exchange(g_server.notes, {});
}

Client::Client(std::size_t number) : m_number(number)
{
    DdeInitializeW(&m_instance, number == 0 ? ClientCallback<0> : ClientCallback<1>, 0, 0);
    g_instances[number] = m_instance;
}

Client::~Client()
{
    for (const HSZ string : m_strings) {
        DdeFreeStringHandle(m_instance, string);
    }
    DdeUninitialize(m_instance);
}

HSZ Client::String(std::u16string_view text)
{
    const HSZ string = DdeCreateStringHandleW(m_instance, std::u16string(text).c_str(), CP_WINUNICODE);
    m_strings.push_back(string);
    return string;
}

HCONV Client::Connect(std::string_view service, std::u16string_view topic)
{
    return DdeConnect(m_instance, String(Wide(service)), String(topic), nullptr);
}

HDDEDATA Client::Transact(HCONV conversation, const char* item, UINT format, UINT type, std::string_view data,
                          DWORD* flags)
{
    std::vector<BYTE> copy(data.begin(), data.end());
    const HSZ itemString = item != nullptr ? String(Wide(item)) : nullptr;
    return DdeClientTransaction(copy.empty() ? nullptr : copy.data(), static_cast<DWORD>(copy.size()), conversation,
                                itemString, format, type, 3000, flags);
}

std::vector<std::string> Client::TakeNotes()
{
    return std::exchange(g_notes[m_number], {});
}

void Client::AwaitNotes(std::size_t count) const
{
    DispatchUntil([&] { return g_notes[m_number].size() >= count; }, std::chrono::seconds(5));
}

bool Client::AwaitNoteWith(std::string_view part, std::chrono::milliseconds limit) const
{
    const auto& notes = g_notes[m_number];
    return DispatchUntil(
        [&] {
            return std::any_of(notes.begin(), notes.end(),
                               [part](const std::string& note) { return note.find(part) != std::string::npos; });
        },
        limit);
}

}  // namespace conformance
