// What a client does: connecting, waiting for replies, taking updates.
#include "platform/ddeml/posix/Hub.h"

#include <algorithm>

namespace zr::ddeml {

namespace {

using Steady = std::chrono::steady_clock;
constexpr std::chrono::seconds kConnectLimit{5};

std::chrono::milliseconds Left(Steady::time_point until)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Steady::now());
    return std::max(left, std::chrono::milliseconds(0));
}

}  // namespace

HCONV Hub::Connect(Instance& instance, HSZ service, HSZ topic)
{
    const std::u16string serviceText(strings.Text(ToNumber(service)));
    const std::u16string topicText(strings.Text(ToNumber(topic)));
    const DWORD id = instance.id;
    for (const std::string& token : folder.TokensOf(serviceText)) {
        const Steady::time_point until = Steady::now() + kConnectLimit;
        Descriptor socket;
        ConnectState state = folder.Connect(token, socket);
        while (state == ConnectState::Busy && Left(until).count() > 0) {
            Dispatch(std::min(Left(until), std::chrono::milliseconds(5)));
            state = folder.Connect(token, socket);
        }
        const ConversationPtr conversation =
            state == ConnectState::Connected && Find(id) != nullptr ? Add(instance, std::move(socket), true) : nullptr;
        if (conversation == nullptr) {
            continue;
        }
        Frame connect;
        connect.kind = FrameKind::Connect;
        connect.format = kProtocol;
        connect.id = static_cast<std::uint32_t>(instance.self);
        connect.extra = static_cast<std::uint32_t>(instance.self >> 32U);
        connect.first = serviceText;
        connect.second = topicText;
        SendNow(conversation, connect);
        while (conversation->state == ConversationState::Connecting && Left(until).count() > 0) {
            Dispatch(Left(until));
        }
        if (conversation->state == ConversationState::Open) {
            return ToHandle<HCONV>(conversation->handle);
        }
        if (Find(id) == nullptr) {
            return nullptr;
        }
        Close(conversation, false);
    }
    return nullptr;
}

void Hub::OnAcceptFrame(const ConversationPtr& conversation, const Frame& frame)
{
    conversation->service = strings.Hold(frame.first, 0);
    conversation->topic = strings.Hold(frame.second, 0);
    conversation->sameInstance = frame.extra != 0;
    conversation->state = ConversationState::Open;
    conversation->callbacks = conversation->owner->callbacks;
    ++conversation->owner->statistics.conversations;
}

void Hub::Await(const ConversationPtr& conversation, std::uint32_t transaction, std::chrono::milliseconds timeout)
{
    const Steady::time_point until = Steady::now() + timeout;
    const auto done = [&] {
        const auto at = conversation->transactions.find(transaction);
        return at == conversation->transactions.end() || at->second.done ||
               conversation->state == ConversationState::Closed;
    };
    while (!done()) {
        const auto left = Left(until);
        Dispatch(left);
        if (left.count() == 0) {
            return;
        }
    }
}

bool Hub::HandleClientFrame(const ConversationPtr& conversation, const Frame& frame)
{
    if (frame.kind == FrameKind::Update) {
        return OnUpdate(conversation, frame);
    }
    if (frame.kind == FrameKind::Reply) {
        return OnReply(conversation, frame);
    }
    Close(conversation, true);
    return true;
}

bool Hub::OnUpdate(const ConversationPtr& conversation, const Frame& frame)
{
    const auto at = conversation->clientLinks.find(frame.id);
    if (at == conversation->clientLinks.end()) {
        // Of a link that was just ended.
        return true;
    }
    if (!MayCall(*conversation)) {
        return false;
    }
    CountCall(*conversation);
    Instance& instance = *conversation->owner;
    const UINT format =
        frame.format == 0 && frame.first.empty() ? at->second.format : FormatFromWire(frame.format, frame.first);
    const HDDEDATA data = (frame.flags & kFrameNoData) != 0 ? nullptr : NewData(instance.id, frame.data, format, 0);
    // The callback may end the link, and with it the handle of the item.
    const std::uint32_t item = at->second.item;
    strings.Keep(item, 0);
    const HDDEDATA result =
        Call(instance, XTYP_ADVDATA, format, conversation->handle, conversation->topic, item, data, 0, 0);
    strings.Release(item, 0);
    FreeData(data);
    if (reinterpret_cast<std::uintptr_t>(result) == static_cast<std::uintptr_t>(-1) &&
        conversation->state == ConversationState::Open) {
        conversation->callbacks = Callbacks::Disabled;
        return false;
    }
    if ((frame.flags & kFrameAck) != 0) {
        Frame ack;
        ack.kind = FrameKind::Ack;
        ack.id = frame.id;
        ack.extra = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(result) & 0xFFFFU);
        Send(conversation, ack);
    }
    return true;
}

bool Hub::OnReply(const ConversationPtr& conversation, const Frame& frame)
{
    const auto at = conversation->transactions.find(frame.id);
    if (at == conversation->transactions.end() || at->second.done) {
        // Too late, or abandoned.
        return true;
    }
    Transaction& transaction = at->second;
    if (transaction.isAsync && !MayCall(*conversation)) {
        return false;
    }
    transaction.done = true;
    transaction.status = frame.extra & 0xFFFFU;
    const bool processed = (transaction.status & DDE_FACK) != 0;
    if (!processed) {
        transaction.error = (transaction.status & DDE_FBUSY) != 0 ? DMLERR_BUSY : DMLERR_NOTPROCESSED;
    } else if (transaction.type == XTYP_REQUEST) {
        transaction.status = 0;
        transaction.data =
            NewData(conversation->owner->id, frame.data, FormatFromWire(frame.format, frame.first), HDATA_APPOWNED);
    }
    FinishLink(*conversation, transaction);
    return !transaction.isAsync || CompleteAsync(conversation, frame.id, transaction);
}

// A link stands from the server's yes to a start, to its yes to a stop.
void Hub::FinishLink(Conversation& conversation, const Transaction& transaction)
{
    const bool ends =
        (transaction.type == XTYP_ADVSTART && transaction.error != DMLERR_NO_ERROR && transaction.newLink) ||
        (transaction.type == XTYP_ADVSTOP && transaction.error == DMLERR_NO_ERROR);
    const auto at = conversation.clientLinks.find(transaction.link);
    if (!ends || at == conversation.clientLinks.end()) {
        return;
    }
    strings.Release(at->second.item, 0);
    conversation.clientLinks.erase(at);
}

bool Hub::CompleteAsync(const ConversationPtr& conversation, std::uint32_t id, Transaction& transaction)
{
    CountCall(*conversation);
    const Transaction done = transaction;
    conversation->transactions.erase(id);
    const HDDEDATA success = done.type == XTYP_REQUEST ? done.data : ToHandle<HDDEDATA>(1);
    Call(*conversation->owner, XTYP_XACT_COMPLETE, done.format, conversation->handle, conversation->topic, done.item,
         done.error == DMLERR_NO_ERROR ? success : nullptr, id, done.status);
    FreeData(done.data);
    strings.Release(done.item, 0);
    return true;
}

void Hub::EndClientState(Conversation& conversation)
{
    for (const auto& [number, link] : conversation.clientLinks) {
        strings.Release(link.item, 0);
    }
    conversation.clientLinks.clear();
    // Those that someone waits for stay: the waiting call reads them and lets them go.
    std::erase_if(conversation.transactions, [this](const auto& entry) {
        if (entry.second.isAsync) {
            strings.Release(entry.second.item, 0);
        }
        return entry.second.isAsync;
    });
}

}  // namespace zr::ddeml
