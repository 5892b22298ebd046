// DdeClientTransaction: one request of a client and the wait for its reply.
#include "platform/ddeml/posix/Hub.h"

#include <algorithm>

namespace zr::ddeml {

namespace {

UINT TimeoutError(UINT type)
{
    switch (type) {
        case XTYP_ADVSTART:
            return DMLERR_ADVACKTIMEOUT;
        case XTYP_ADVSTOP:
            return DMLERR_UNADVACKTIMEOUT;
        case XTYP_POKE:
            return DMLERR_POKEACKTIMEOUT;
        case XTYP_EXECUTE:
            return DMLERR_EXECACKTIMEOUT;
        default:
            return DMLERR_DATAACKTIMEOUT;
    }
}

// What the caller asks for, its type without the flags of a link.
struct Wanted {
    UINT type;
    UINT linkFlags;
    std::uint32_t item;
    UINT format;
    std::span<const std::uint8_t> data;
};

std::uint32_t FindLink(const Conversation& conversation, const Wanted& wanted)
{
    // Format 0 of a stop is any.
    const auto at = std::find_if(conversation.clientLinks.begin(), conversation.clientLinks.end(), [&](const auto& e) {
        return e.second.item == wanted.item &&
               (e.second.format == wanted.format || (wanted.format == 0 && wanted.type == XTYP_ADVSTOP));
    });
    return at != conversation.clientLinks.end() ? at->first : 0;
}

FrameKind KindOf(UINT type)
{
    switch (type) {
        case XTYP_ADVSTART:
            return FrameKind::AdviseStart;
        case XTYP_ADVSTOP:
            return FrameKind::AdviseStop;
        case XTYP_REQUEST:
            return FrameKind::Request;
        case XTYP_POKE:
            return FrameKind::Poke;
        default:
            return FrameKind::Execute;
    }
}

Frame FrameOf(Hub& hub, const Wanted& wanted, std::uint32_t id, std::uint32_t link)
{
    Frame frame;
    frame.kind = KindOf(wanted.type);
    frame.id = id;
    frame.extra = link;
    frame.data = wanted.data;
    if (wanted.type == XTYP_ADVSTART) {
        frame.flags = static_cast<std::uint8_t>(((wanted.linkFlags & XTYPF_NODATA) != 0 ? kFrameNoData : 0) |
                                                ((wanted.linkFlags & XTYPF_ACKREQ) != 0 ? kFrameAck : 0));
    }
    if (wanted.type != XTYP_EXECUTE && wanted.type != XTYP_ADVSTOP) {
        frame.format = static_cast<std::uint16_t>(wanted.format);
        frame.first = hub.strings.Text(wanted.item);
        frame.second = FormatNameForWire(wanted.format);
    }
    return frame;
}

// Sends the request; the number of its transaction.
std::uint32_t Start(Hub& hub, const ConversationPtr& conversation, const Wanted& wanted, std::uint32_t link,
                    bool isAsync)
{
    Transaction transaction;
    transaction.type = wanted.type;
    transaction.format = wanted.format;
    transaction.item = wanted.item;
    transaction.isAsync = isAsync;
    transaction.link = link;
    if (wanted.type == XTYP_ADVSTART && link == 0) {
        do {
            ++conversation->lastLink;
        } while (conversation->lastLink == 0 || conversation->clientLinks.contains(conversation->lastLink));
        transaction.link = conversation->lastLink;
        transaction.newLink = true;
        hub.strings.Keep(wanted.item, 0);
        conversation->clientLinks.emplace(transaction.link, ClientLink{wanted.item, wanted.format});
    }
    do {
        ++conversation->lastTransaction;
    } while (conversation->lastTransaction == 0 || conversation->transactions.contains(conversation->lastTransaction));
    const std::uint32_t id = conversation->lastTransaction;
    if (isAsync) {
        hub.strings.Keep(wanted.item, 0);
    }
    conversation->transactions.emplace(id, transaction);
    hub.SendNow(conversation, FrameOf(hub, wanted, id, transaction.link));
    return id;
}

// Time is over: the reply is no longer awaited, and a link that the server may yet have started is ended.
void GiveUp(Hub& hub, const ConversationPtr& conversation, Transaction& transaction)
{
    transaction.error = TimeoutError(transaction.type);
    if (transaction.type != XTYP_ADVSTART || !transaction.newLink) {
        return;
    }
    if (const auto at = conversation->clientLinks.find(transaction.link); at != conversation->clientLinks.end()) {
        hub.strings.Release(at->second.item, 0);
        conversation->clientLinks.erase(at);
    }
    Frame stop;
    stop.kind = FrameKind::AdviseStop;
    stop.extra = transaction.link;
    hub.Send(conversation, stop);
}

HDDEDATA Finish(Hub& hub, Instance& instance, const ConversationPtr& conversation, std::uint32_t id, DWORD* result)
{
    const auto at = conversation->transactions.find(id);
    Transaction transaction = at->second;
    if (!transaction.done) {
        GiveUp(hub, conversation, transaction);
    }
    conversation->transactions.erase(id);
    if (result != nullptr) {
        *result = transaction.status;
    }
    if (transaction.error != DMLERR_NO_ERROR) {
        hub.FreeData(transaction.data);
        instance.error = transaction.error;
        return nullptr;
    }
    return transaction.type == XTYP_REQUEST ? transaction.data : zr::ddeml::Reply(1);
}

// DMLERR_NO_ERROR when the request may be sent.
UINT Check(Hub& hub, const Wanted& wanted)
{
    const bool isKnown = wanted.type == XTYP_ADVSTART || wanted.type == XTYP_ADVSTOP || wanted.type == XTYP_REQUEST ||
                         wanted.type == XTYP_POKE || wanted.type == XTYP_EXECUTE;
    if (!isKnown || wanted.format > 0xFFFF || (wanted.type != XTYP_EXECUTE && hub.strings.Text(wanted.item).empty())) {
        return DMLERR_INVALIDPARAMETER;
    }
    return wanted.data.size() > kMaxDataSize ? DMLERR_MEMORY_ERROR : DMLERR_NO_ERROR;
}

HDDEDATA Run(Hub& hub, const ConversationPtr& conversation, const Wanted& wanted, DWORD timeout, DWORD* result)
{
    Instance& instance = *conversation->owner;
    UINT error = Check(hub, wanted);
    if (error == DMLERR_NO_ERROR && timeout != TIMEOUT_ASYNC && instance.inTransaction) {
        error = DMLERR_REENTRANCY;
    }
    const bool isLink = wanted.type == XTYP_ADVSTART || wanted.type == XTYP_ADVSTOP;
    const std::uint32_t link = isLink ? FindLink(*conversation, wanted) : 0;
    if (error == DMLERR_NO_ERROR && wanted.type == XTYP_ADVSTOP && link == 0) {
        error = DMLERR_NOTPROCESSED;
    }
    if (error != DMLERR_NO_ERROR) {
        instance.error = error;
        return nullptr;
    }
    const std::uint32_t id = Start(hub, conversation, wanted, link, timeout == TIMEOUT_ASYNC);
    if (timeout == TIMEOUT_ASYNC) {
        if (result != nullptr) {
            *result = id;
        }
        return zr::ddeml::Reply(1);
    }
    const DWORD owner = instance.id;
    instance.inTransaction = true;
    hub.Await(conversation, id, std::chrono::milliseconds(timeout));
    if (hub.Find(owner) == nullptr) {
        return nullptr;
    }
    instance.inTransaction = false;
    return Finish(hub, instance, conversation, id, result);
}

}  // namespace

}  // namespace zr::ddeml

HDDEDATA DdeClientTransaction(BYTE* data, DWORD size, HCONV conversation, HSZ item, UINT format, UINT type,
                              DWORD timeout, DWORD* result)
{
    using namespace zr::ddeml;
    Hub* hub = Hub::Current();
    const ConversationPtr known = hub != nullptr ? hub->FindConversation(conversation) : nullptr;
    if (known == nullptr || !known->isClient) {
        if (known != nullptr) {
            known->owner->error = DMLERR_INVALIDPARAMETER;
        }
        return nullptr;
    }
    constexpr UINT kLinkFlags = XTYPF_NODATA | XTYPF_ACKREQ;
    const bool isStart = (type & ~kLinkFlags) == XTYP_ADVSTART;
    Wanted wanted{isStart ? XTYP_ADVSTART : type, isStart ? type & kLinkFlags : 0, ToNumber(item), format, {}};
    HDDEDATA given = nullptr;
    if (wanted.type == XTYP_POKE || wanted.type == XTYP_EXECUTE) {
        if (size == 0xFFFFFFFFU) {
            given = reinterpret_cast<HDDEDATA>(data);
            const DataBlock* block = hub->FindData(given);
            if (block == nullptr) {
                known->owner->error = DMLERR_INVALIDPARAMETER;
                return nullptr;
            }
            wanted.data = block->bytes;
        } else if (data != nullptr) {
            wanted.data = {data, size};
        }
    }
    if (wanted.type == XTYP_EXECUTE) {
        wanted.item = 0;
        wanted.format = 0;
    }
    const HDDEDATA reply = Run(*hub, known, wanted, timeout, result);
    if (const DataBlock* block = hub->FindData(given); block != nullptr && !block->appOwned) {
        hub->FreeData(given);
    }
    return reply;
}

BOOL DdeAbandonTransaction(DWORD instance, HCONV conversation, DWORD transaction)
{
    using namespace zr::ddeml;
    Hub* hub = Hub::Current();
    const ConversationPtr known = hub != nullptr ? hub->FindConversation(conversation) : nullptr;
    Instance* owner = hub != nullptr ? hub->Find(instance) : nullptr;
    if (known == nullptr || owner == nullptr || known->owner != owner) {
        if (owner != nullptr) {
            owner->error = DMLERR_INVALIDPARAMETER;
        }
        return 0;
    }
    const std::size_t ended = std::erase_if(known->transactions, [&](const auto& entry) {
        const bool ends = entry.second.isAsync && (transaction == 0 || entry.first == transaction);
        if (ends) {
            hub->strings.Release(entry.second.item, 0);
        }
        return ends;
    });
    if (ended == 0 && transaction != 0) {
        owner->error = DMLERR_UNFOUND_QUEUE_ID;
        return 0;
    }
    return 1;
}
