// The operations, as far as they do not need the frames.
#include "platform/Ddeml.h"

#include "platform/ddeml/posix/Hub.h"

#include <algorithm>
#include <cstring>
#include <set>

using zr::ddeml::Callbacks;
using zr::ddeml::ConversationPtr;
using zr::ddeml::DataBlock;
using zr::ddeml::Hub;
using zr::ddeml::Instance;
using zr::ddeml::ToHandle;
using zr::ddeml::ToNumber;

namespace {

Instance* FindInstance(DWORD instance)
{
    Hub* hub = Hub::Current();
    return hub != nullptr ? hub->Find(instance) : nullptr;
}

// 0 of any type, with the error noted.
std::nullptr_t Fail(Instance* instance, UINT error)
{
    if (instance != nullptr) {
        instance->error = error;
    }
    return nullptr;
}

BOOL FailFlag(Instance* instance, UINT error)
{
    Fail(instance, error);
    return 0;
}

}  // namespace

UINT DdeInitializeW(DWORD* instance, PFNCALLBACK callback, DWORD flags, DWORD reserved)
{
    if (instance == nullptr || callback == nullptr || reserved != 0) {
        return DMLERR_INVALIDPARAMETER;
    }
    if (*instance != 0) {
        Instance* known = FindInstance(*instance);
        if (known == nullptr) {
            return DMLERR_INVALIDPARAMETER;
        }
        known->flags = flags;
        return DMLERR_NO_ERROR;
    }
    Hub* hub = Hub::Make();
    if (hub == nullptr) {
        return DMLERR_SYS_ERROR;
    }
    *instance = hub->Begin(callback, flags)->id;
    return DMLERR_NO_ERROR;
}

BOOL DdeUninitialize(DWORD instance)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr) {
        return 0;
    }
    Hub::Current()->End(*known);
    Hub::ReleaseIfIdle();
    return 1;
}

UINT DdeGetLastError(DWORD instance)
{
    Instance* known = FindInstance(instance);
    return known != nullptr ? std::exchange(known->error, DMLERR_NO_ERROR) : DMLERR_INVALIDPARAMETER;
}

HSZ DdeCreateStringHandleW(DWORD instance, const char16_t* text, int codePage)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr || text == nullptr || codePage != CP_WINUNICODE) {
        return Fail(known, DMLERR_INVALIDPARAMETER);
    }
    const std::uint32_t handle = Hub::Current()->strings.Hold(text, instance);
    return handle != 0 ? ToHandle<HSZ>(handle) : Fail(known, DMLERR_INVALIDPARAMETER);
}

BOOL DdeFreeStringHandle(DWORD instance, HSZ string)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr || !Hub::Current()->strings.Release(ToNumber(string), instance)) {
        return FailFlag(known, DMLERR_INVALIDPARAMETER);
    }
    return 1;
}

BOOL DdeKeepStringHandle(DWORD instance, HSZ string)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr || !Hub::Current()->strings.Keep(ToNumber(string), instance)) {
        return FailFlag(known, DMLERR_INVALIDPARAMETER);
    }
    return 1;
}

int DdeCmpStringHandles(HSZ left, HSZ right)
{
    const auto a = reinterpret_cast<std::uintptr_t>(left);
    const auto b = reinterpret_cast<std::uintptr_t>(right);
    return a < b ? -1 : static_cast<int>(a > b);
}

DWORD DdeQueryStringW(DWORD instance, HSZ string, char16_t* buffer, DWORD limit, int codePage)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr || codePage != CP_WINUNICODE) {
        Fail(known, DMLERR_INVALIDPARAMETER);
        return 0;
    }
    const std::u16string_view text = Hub::Current()->strings.Text(ToNumber(string));
    if (text.empty()) {
        Fail(known, DMLERR_INVALIDPARAMETER);
        return 0;
    }
    if (buffer == nullptr) {
        return static_cast<DWORD>(text.size());
    }
    if (limit == 0) {
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(text.size(), limit - 1);
    text.copy(buffer, count);
    buffer[count] = 0;
    return static_cast<DWORD>(count);
}

HDDEDATA DdeNameService(DWORD instance, HSZ name, HSZ reserved, UINT command)
{
    Instance* known = FindInstance(instance);
    const bool registers = command == DNS_REGISTER;
    if (known == nullptr || reserved != nullptr || (!registers && command != DNS_UNREGISTER) ||
        (registers && name == nullptr)) {
        return Fail(known, DMLERR_INVALIDPARAMETER);
    }
    if ((known->flags & APPCMD_CLIENTONLY) != 0) {
        return Fail(known, DMLERR_DLL_USAGE);
    }
    Hub& hub = *Hub::Current();
    const std::uint32_t handle = ToNumber(name);
    const auto at = std::find(known->names.begin(), known->names.end(), handle);
    if (!registers) {
        if (name == nullptr) {
            hub.Unserve(*known);
        } else if (at != known->names.end()) {
            hub.folder.RemoveName(known->token, hub.strings.Text(handle));
            known->names.erase(at);
            hub.strings.Release(handle, 0);
        }
        return zr::ddeml::Reply(1);
    }
    if (at != known->names.end()) {
        return Fail(known, DMLERR_DLL_USAGE);
    }
    const std::u16string text(hub.strings.Text(handle));
    if (text.empty()) {
        return Fail(known, DMLERR_INVALIDPARAMETER);
    }
    if (!hub.Serve(*known) || !hub.folder.AddName(known->token, text)) {
        return Fail(known, DMLERR_SYS_ERROR);
    }
    hub.strings.Keep(handle, 0);
    known->names.push_back(handle);
    return zr::ddeml::Reply(1);
}

HCONV DdeConnect(DWORD instance, HSZ service, HSZ topic, CONVCONTEXT*)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr) {
        return nullptr;
    }
    Hub& hub = *Hub::Current();
    if (hub.strings.Text(ToNumber(service)).empty() || hub.strings.Text(ToNumber(topic)).empty()) {
        return Fail(known, DMLERR_INVALIDPARAMETER);
    }
    const HCONV conversation = hub.Connect(*known, service, topic);
    return conversation != nullptr ? conversation : Fail(hub.Find(instance), DMLERR_NO_CONV_ESTABLISHED);
}

BOOL DdeDisconnect(HCONV conversation)
{
    Hub* hub = Hub::Current();
    const ConversationPtr known = hub != nullptr ? hub->FindConversation(conversation) : nullptr;
    if (known == nullptr) {
        return 0;
    }
    hub->Close(known, false);
    return 1;
}

BOOL DdePostAdvise(DWORD instance, HSZ topic, HSZ item)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr) {
        return 0;
    }
    Hub::Current()->Post(*known, ToNumber(topic), ToNumber(item));
    return 1;
}

namespace {

BOOL QueryWaiting(Hub& hub, Instance& instance, const ConversationPtr& only)
{
    BOOL waiting = 0;
    hub.ForEachConversation(instance, [&](const ConversationPtr& c) {
        if ((only == nullptr || c == only) && !c->held.empty()) {
            waiting = 1;
        }
    });
    return waiting;
}

}  // namespace

BOOL DdeEnableCallback(DWORD instance, HCONV conversation, UINT command)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr) {
        return 0;
    }
    Hub& hub = *Hub::Current();
    const ConversationPtr only = conversation != nullptr ? hub.FindConversation(conversation) : nullptr;
    if (conversation != nullptr && (only == nullptr || only->owner != known)) {
        return FailFlag(known, DMLERR_INVALIDPARAMETER);
    }
    if (command == EC_QUERYWAITING) {
        return QueryWaiting(hub, *known, only);
    }
    if (known->callbackDepth > 0) {
        return FailFlag(known, DMLERR_REENTRANCY);
    }
    Callbacks callbacks = Callbacks::Enabled;
    if (command == EC_DISABLE) {
        callbacks = Callbacks::Disabled;
    } else if (command == EC_ENABLEONE) {
        callbacks = Callbacks::NextOnly;
    } else if (command != EC_ENABLEALL) {
        return FailFlag(known, DMLERR_INVALIDPARAMETER);
    }
    if (only == nullptr) {
        known->callbacks = callbacks;
    }
    hub.ForEachConversation(*known, [&](const ConversationPtr& c) {
        if (only == nullptr || c == only) {
            c->callbacks = callbacks;
            hub.RunHeldLater(*c);
        }
    });
    return 1;
}

HDDEDATA DdeCreateDataHandle(DWORD instance, BYTE* source, DWORD size, DWORD offset, HSZ, UINT format, UINT flags)
{
    Instance* known = FindInstance(instance);
    if (known == nullptr) {
        return nullptr;
    }
    if (size > zr::ddeml::kMaxDataSize) {
        return Fail(known, DMLERR_MEMORY_ERROR);
    }
    Hub& hub = *Hub::Current();
    HDDEDATA data = nullptr;
    if (source != nullptr) {
        data = hub.NewData(instance, {source + offset, size}, format, flags);
    } else {
        data = hub.NewData(instance, {}, format, flags);
        if (DataBlock* block = hub.FindData(data); block != nullptr) {
            block->bytes.resize(size);
        }
    }
    return data != nullptr ? data : Fail(known, DMLERR_MEMORY_ERROR);
}

namespace {

DataBlock* FindBlock(HDDEDATA data)
{
    Hub* hub = Hub::Current();
    return hub != nullptr ? hub->FindData(data) : nullptr;
}

}  // namespace

BYTE* DdeAccessData(HDDEDATA data, DWORD* size)
{
    DataBlock* block = FindBlock(data);
    if (size != nullptr) {
        *size = block != nullptr ? static_cast<DWORD>(block->bytes.size()) : 0;
    }
    if (block == nullptr) {
        return nullptr;
    }
    block->bytes.reserve(1);  // no bytes have an address too
    return block->bytes.data();
}

BOOL DdeUnaccessData(HDDEDATA data)
{
    return FindBlock(data) != nullptr ? 1 : 0;
}

DWORD DdeGetData(HDDEDATA data, BYTE* target, DWORD limit, DWORD offset)
{
    const DataBlock* block = FindBlock(data);
    if (block == nullptr) {
        return 0;
    }
    if (target == nullptr) {
        return static_cast<DWORD>(block->bytes.size());
    }
    const std::size_t from = std::min<std::size_t>(offset, block->bytes.size());
    const std::size_t count = std::min<std::size_t>(limit, block->bytes.size() - from);
    std::copy_n(block->bytes.begin() + static_cast<std::ptrdiff_t>(from), count, target);
    return static_cast<DWORD>(count);
}

BOOL DdeFreeDataHandle(HDDEDATA data)
{
    Hub* hub = Hub::Current();
    return hub != nullptr && hub->FreeData(data) ? 1 : 0;
}

namespace zr::ddeml {

bool Dispatch(std::chrono::milliseconds timeout)
{
    Hub* hub = Hub::Make();
    const bool handled = hub != nullptr && hub->Dispatch(timeout);
    Hub::ReleaseIfIdle();
    return handled;
}

int PollDescriptor()
{
    const Hub* hub = Hub::Current();
    return hub != nullptr ? hub->PollDescriptor() : -1;
}

Statistics GetStatistics(DWORD instance)
{
    const Instance* known = FindInstance(instance);
    if (known == nullptr) {
        return {};
    }
    Statistics statistics = known->statistics;
    statistics.strings = Hub::Current()->strings.Count();
    statistics.data = Hub::Current()->DataCount();
    return statistics;
}

std::size_t PendingUpdates(DWORD instance)
{
    const Instance* known = FindInstance(instance);
    return known != nullptr ? known->pending : 0;
}

std::vector<std::u16string> RegisteredServices()
{
    RuntimeFolder folder;
    if (!folder.Open()) {
        return {};
    }
    // Without regard to case, the first spelling stands for all.
    std::map<std::u16string, std::u16string> byFolded;
    for (const auto& [file, name] : folder.Names()) {
        byFolded.emplace(FoldCase(name), name);
    }
    std::vector<std::u16string> services;
    for (const auto& [folded, name] : byFolded) {
        services.push_back(name);
    }
    return services;
}

}  // namespace zr::ddeml
