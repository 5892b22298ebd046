#include "dde/ZRDDEServer.h"

#include "dde/DdeIds.h"
#include "dde/NumberFormatSetting.h"
#include "dde/ZRDDEConversation.h"

#include <algorithm>

namespace {

// A format has 16 bits. Some systems carry the sign of a registered one into the upper half.
constexpr UINT kFormatMask = 0xFFFF;

}  // namespace

ZRDDEServer* ZRDDEServer::server = nullptr;

ZRDDEServer::ZRDDEServer()
{
    server = nullptr;
}

ZRDDEServer::~ZRDDEServer()
{
    Stop();
    conversations.clear();  // Stop destroyed what the entries led to
    services.clear();
}

bool ZRDDEServer::Start()
{
    useLocalNumberFormat = zr::dde::ReadUseLocalNumberFormat();
    instance = 0;  // DDE takes any other number for an instance whose flags are to change
    if (DdeInitializeW(&instance, &ZRDDEServer::CallBack, 0, 0) != DMLERR_NO_ERROR) {
        return false;
    }
    server = this;
    xlTableFormat = RegisterClipboardFormatW(zr::dde::kXlTableFormatName);
    return true;
}

void ZRDDEServer::Stop()
{
    if (server == nullptr) {
        return;
    }
    // The entries and the records stay, and that is meant; they lead nowhere, so that a server that is started again
    // finds nothing stale.
    for (auto& [handle, conversation] : conversations) {
        delete conversation;
        conversation = nullptr;
    }
    server = nullptr;
    for (ZRDDEService& service : services) {
        if (service.name != nullptr) {
            DdeFreeStringHandle(instance, service.name);
            service.name = nullptr;
        }
    }
    DdeUninitialize(instance);  // unregisters the names as well
}

void ZRDDEServer::AddService(const wchar* name, CanConnectFunction canConnect, ConnectFunction connect)
{
    const HSZ handle = DdeCreateStringHandleW(instance, name, CP_WINUNICODE);
    DdeNameService(instance, handle, nullptr, DNS_REGISTER);
    services.push_back({handle, canConnect, connect});
}

std::size_t ZRDDEServer::ConversationCount() const
{
    return static_cast<std::size_t>(std::count_if(conversations.begin(), conversations.end(),
                                                  [](const auto& entry) { return entry.second != nullptr; }));
}

HDDEDATA CALLBACK ZRDDEServer::CallBack(UINT type, UINT format, HCONV conversation, HSZ hsz1, HSZ hsz2, HDDEDATA,
                                        ULONG_PTR, ULONG_PTR)
{
    if (server == nullptr) {
        return nullptr;
    }
    format &= kFormatMask;
    switch (type) {
        case XTYP_ADVSTART:
            return zr::ddeml::Reply(server->AdviseStart(format, conversation, hsz1, hsz2) ? 1 : 0);
        case XTYP_CONNECT:
            return zr::ddeml::Reply(server->CanConnect(hsz2, hsz1) ? 1 : 0);
        case XTYP_ADVREQ:
            return server->AdviseRequest(format, conversation, hsz1, hsz2);
        case XTYP_ADVSTOP:
            server->AdviseStop(conversation, hsz1, hsz2);
            return nullptr;
        case XTYP_CONNECT_CONFIRM:
            server->Connect(hsz2, conversation, hsz1);
            return nullptr;
        case XTYP_DISCONNECT:
            server->Disconnect(conversation);
            return nullptr;
        default:
            return nullptr;
    }
}

bool ZRDDEServer::CanConnect(HSZ service, HSZ topic)
{
    const auto found = std::find_if(services.begin(), services.end(), [service](const ZRDDEService& candidate) {
        return DdeCmpStringHandles(candidate.name, service) == 0;
    });
    return found != services.end() && found->canConnect(instance, topic);
}

// Unlike CanConnect this does not end at the first service of the name, and the conversation that was entered first is
// not destroyed when another takes its entry. Both are meant.
void ZRDDEServer::Connect(HSZ service, HCONV conversation, HSZ topic)
{
    for (const ZRDDEService& candidate : services) {
        if (DdeCmpStringHandles(candidate.name, service) != 0) {
            continue;
        }
        ZRDDEConversation* const opened = candidate.connect(instance, conversation, topic);
        if (opened == nullptr) {
            continue;
        }
        ZRDDEConversation*& entry = conversations[conversation];
        if (entry != nullptr) {
            overwritten.emplace_back(entry);
        }
        entry = opened;
    }
}

void ZRDDEServer::Disconnect(HCONV conversation)
{
    const auto found = conversations.find(conversation);
    if (found == conversations.end()) {
        return;
    }
    delete found->second;
    conversations.erase(found);
}

bool ZRDDEServer::AdviseStart(UINT format, HCONV conversation, HSZ topic, HSZ item)
{
    ZRDDEConversation* const found = Find(conversation);
    return found != nullptr && found->AdviseStart(format, topic, item);
}

void ZRDDEServer::AdviseStop(HCONV conversation, HSZ topic, HSZ item)
{
    if (ZRDDEConversation* const found = Find(conversation); found != nullptr) {
        found->AdviseStop(topic, item);
    }
}

HDDEDATA ZRDDEServer::AdviseRequest(UINT format, HCONV conversation, HSZ topic, HSZ item)
{
    ZRDDEConversation* const found = Find(conversation);
    return found != nullptr ? found->AdviseRequest(format, topic, item) : nullptr;
}

ZRDDEConversation* ZRDDEServer::Find(HCONV conversation) const
{
    const auto found = conversations.find(conversation);
    return found != conversations.end() ? found->second : nullptr;
}
