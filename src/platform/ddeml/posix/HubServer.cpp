// What a server does with the frames of its clients, and how it posts.
#include "platform/ddeml/posix/Hub.h"

#include <algorithm>
#include <map>

namespace zr::ddeml {

namespace {

// Unsent bytes of a conversation from which on updates wait in their links.
constexpr std::size_t kMaxUnsent = 64U << 10U;
constexpr std::size_t kMaxLinks = 65536;
const auto kBlock = static_cast<std::uintptr_t>(-1);

std::uint64_t LinkKey(std::uint32_t topic, std::uint32_t item)
{
    return static_cast<std::uint64_t>(topic) << 32U | item;
}

bool IsBlock(HDDEDATA reply)
{
    return reinterpret_cast<std::uintptr_t>(reply) == kBlock;
}

DWORD FlagsOf(HDDEDATA reply)
{
    return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(reply) & 0xFFFFU);
}

}  // namespace

// False when the connection is to be closed, which is how it is refused.
bool Hub::OnConnectFrame(const ConversationPtr& conversation, const Frame& frame)
{
    Instance& instance = *conversation->owner;
    const DWORD id = instance.id;
    const bool known = std::any_of(instance.names.begin(), instance.names.end(), [&](std::uint32_t name) {
        return FoldCase(strings.Text(name)) == FoldCase(frame.first);
    });
    const std::uint64_t token = static_cast<std::uint64_t>(frame.extra) << 32U | frame.id;
    conversation->sameInstance = token == instance.self;
    const bool allowed = frame.format == kProtocol && known && !frame.second.empty() &&
                         (instance.flags & CBF_FAIL_CONNECTIONS) == 0 &&
                         (!conversation->sameInstance || (instance.flags & CBF_FAIL_SELFCONNECTIONS) == 0);
    if (!allowed) {
        return false;
    }
    conversation->service = strings.Hold(frame.first, 0);
    conversation->topic = strings.Hold(frame.second, 0);
    const ULONG_PTR same = conversation->sameInstance ? 1 : 0;
    const HDDEDATA accepts =
        Call(instance, XTYP_CONNECT, 0, 0, conversation->topic, conversation->service, nullptr, 0, same);
    if (Find(id) == nullptr || conversation->state == ConversationState::Closed || accepts == nullptr) {
        return false;
    }
    std::erase(instance.strangers, conversation->handle);
    conversation->state = ConversationState::Open;
    conversation->callbacks = instance.callbacks;
    ++instance.statistics.conversations;
    Frame accept;
    accept.kind = FrameKind::Accept;
    accept.format = kProtocol;
    accept.extra = static_cast<std::uint32_t>(same);
    accept.first = strings.Text(conversation->service);
    accept.second = strings.Text(conversation->topic);
    Send(conversation, accept);
    if ((instance.flags & CBF_SKIP_CONNECT_CONFIRMS) == 0) {
        Call(instance, XTYP_CONNECT_CONFIRM, 0, conversation->handle, conversation->topic, conversation->service,
             nullptr, 0, same);
    }
    return true;
}

bool Hub::HandleServerFrame(const ConversationPtr& conversation, const Frame& frame)
{
    switch (frame.kind) {
        case FrameKind::Ack:
            OnAck(conversation, frame);
            return true;
        case FrameKind::AdviseStart:
        case FrameKind::AdviseStop:
        case FrameKind::Request:
        case FrameKind::Poke:
        case FrameKind::Execute:
            break;
        case FrameKind::Connect:
        case FrameKind::Accept:
        case FrameKind::Reply:
        case FrameKind::Update:
            Close(conversation, true);
            return true;
    }
    if (!MayCall(*conversation)) {
        return false;
    }
    CountCall(*conversation);
    switch (frame.kind) {
        case FrameKind::AdviseStart:
            return OnAdviseStart(conversation, frame);
        case FrameKind::AdviseStop:
            return OnAdviseStop(conversation, frame);
        case FrameKind::Request:
            return OnRequest(conversation, frame);
        default:
            return OnPokeOrExecute(conversation, frame);
    }
}

bool Hub::OnAdviseStart(const ConversationPtr& conversation, const Frame& frame)
{
    Instance& instance = *conversation->owner;
    const UINT format = FormatFromWire(frame.format, frame.second);
    const std::uint32_t item = strings.Hold(frame.first, 0);
    if (item == 0 || (instance.flags & CBF_FAIL_ADVISES) != 0 || conversation->links.size() >= kMaxLinks) {
        strings.Release(item, 0);
        Reply(conversation, frame.id, DDE_FNOTPROCESSED, nullptr);
        return true;
    }
    const HDDEDATA accepts =
        Call(instance, XTYP_ADVSTART, format, conversation->handle, conversation->topic, item, nullptr, 0, 0);
    if (conversation->state == ConversationState::Closed || accepts == nullptr || IsBlock(accepts)) {
        strings.Release(item, 0);
        if (IsBlock(accepts)) {
            conversation->callbacks = Callbacks::Disabled;
            return false;
        }
        Reply(conversation, frame.id, DDE_FNOTPROCESSED, nullptr);
        return true;
    }
    const auto existing = conversation->links.find(frame.extra);
    if (existing != conversation->links.end() && (existing->second.item != item || existing->second.format != format)) {
        // Its number stands for another link: the peer does not keep to the rules.
        strings.Release(item, 0);
        Close(conversation, true);
        return true;
    }
    ServerLink& link = conversation->links[frame.extra];
    if (existing != conversation->links.end() || link.item != 0) {
        strings.Release(item, 0);
    } else {
        link.item = item;
        link.format = format;
        instance.links[LinkKey(conversation->topic, item)].push_back({conversation->handle, frame.extra});
        ++instance.statistics.links;
    }
    link.noData = (frame.flags & kFrameNoData) != 0;
    link.wantsAck = (frame.flags & kFrameAck) != 0;
    Reply(conversation, frame.id, DDE_FACK, nullptr);
    return true;
}

bool Hub::OnAdviseStop(const ConversationPtr& conversation, const Frame& frame)
{
    const auto found = conversation->links.find(frame.extra);
    const bool known = found != conversation->links.end();
    if (known) {
        const HDDEDATA reply = Call(*conversation->owner, XTYP_ADVSTOP, found->second.format, conversation->handle,
                                    conversation->topic, found->second.item, nullptr, 0, 0);
        if (IsBlock(reply) && conversation->state != ConversationState::Closed) {
            conversation->callbacks = Callbacks::Disabled;
            return false;
        }
        EndLink(*conversation, frame.extra);
    }
    if (frame.id != 0) {
        Reply(conversation, frame.id, known ? DDE_FACK : DDE_FNOTPROCESSED, nullptr);
    }
    return true;
}

bool Hub::OnRequest(const ConversationPtr& conversation, const Frame& frame)
{
    Instance& instance = *conversation->owner;
    HDDEDATA data = nullptr;
    if ((instance.flags & CBF_FAIL_REQUESTS) == 0 && !frame.first.empty()) {
        const std::uint32_t item = strings.Hold(frame.first, 0);
        data = Call(instance, XTYP_REQUEST, FormatFromWire(frame.format, frame.second), conversation->handle,
                    conversation->topic, item, nullptr, 0, 0);
        strings.Release(item, 0);
    }
    if (IsBlock(data)) {
        conversation->callbacks = Callbacks::Disabled;
        return false;
    }
    Reply(conversation, frame.id, FindData(data) != nullptr ? DDE_FACK : DDE_FNOTPROCESSED, data);
    return true;
}

bool Hub::OnPokeOrExecute(const ConversationPtr& conversation, const Frame& frame)
{
    Instance& instance = *conversation->owner;
    const bool isPoke = frame.kind == FrameKind::Poke;
    HDDEDATA result = nullptr;
    if ((instance.flags & (isPoke ? CBF_FAIL_POKES : CBF_FAIL_EXECUTES)) == 0 && (!isPoke || !frame.first.empty())) {
        const UINT format = isPoke ? FormatFromWire(frame.format, frame.second) : 0;
        const HDDEDATA data = NewData(instance.id, frame.data, format, 0);
        const std::uint32_t item = isPoke ? strings.Hold(frame.first, 0) : 0;
        result = Call(instance, isPoke ? XTYP_POKE : XTYP_EXECUTE, format, conversation->handle, conversation->topic,
                      item, data, 0, 0);
        strings.Release(item, 0);
        FreeData(data);
    }
    if (IsBlock(result)) {
        conversation->callbacks = Callbacks::Disabled;
        return false;
    }
    Reply(conversation, frame.id, FlagsOf(result), nullptr);
    return true;
}

// The data end with the reply, unless they are the application's.
void Hub::Reply(const ConversationPtr& conversation, std::uint32_t transaction, DWORD status, HDDEDATA data)
{
    DataBlock* block = FindData(data);
    Frame reply;
    reply.kind = FrameKind::Reply;
    reply.flags = block == nullptr ? kFrameNoData : 0;
    reply.id = transaction;
    reply.extra = status;
    if (block != nullptr) {
        reply.format = static_cast<std::uint16_t>(block->format);
        reply.first = FormatNameForWire(block->format);
        reply.data = block->bytes;
    }
    Send(conversation, reply);
    if (block != nullptr && !block->appOwned) {
        FreeData(data);
    }
}

void Hub::OnAck(const ConversationPtr& conversation, const Frame& frame)
{
    const auto found = conversation->links.find(frame.id);
    if (found == conversation->links.end()) {
        return;
    }
    found->second.awaitsAck = false;
    if (std::exchange(found->second.changed, false)) {
        RequestAndSend(conversation, frame.id, CADV_LATEACK);
    }
}

void Hub::Post(Instance& instance, std::uint32_t topic, std::uint32_t item)
{
    ++instance.statistics.posts;
    // The callbacks may end links and conversations, and post themselves: work on a copy, looked up anew one by one.
    const std::size_t begin = m_posting.size();
    if (topic != 0 && item != 0) {
        const auto found = instance.links.find(LinkKey(topic, item));
        if (found != instance.links.end()) {
            m_posting.insert(m_posting.end(), found->second.rbegin(), found->second.rend());
        }
    } else {
        for (const auto& [key, refs] : instance.links) {
            if ((topic == 0 || key >> 32U == topic) && (item == 0 || static_cast<std::uint32_t>(key) == item)) {
                m_posting.insert(m_posting.end(), refs.rbegin(), refs.rend());
            }
        }
    }
    CountWhatFollows(begin);
    const DWORD id = instance.id;
    const std::size_t end = m_posting.size();
    for (std::size_t i = begin; i < end && Find(id) != nullptr; ++i) {
        PostLink(instance, LinkRef(m_posting[i]));
    }
    m_posting.resize(begin);
}

// For each hot link how many follow it in the same topic, item and format.
void Hub::CountWhatFollows(std::size_t begin)
{
    if (m_posting.size() - begin < 2) {
        return;
    }
    std::map<std::pair<std::uint64_t, UINT>, DWORD> counts;
    for (std::size_t i = m_posting.size(); i > begin; --i) {
        LinkRef& ref = m_posting[i - 1];
        const Conversation& conversation = **m_conversations.Find(ref.conversation);
        const ServerLink& link = conversation.links.at(ref.link);
        if (!link.noData && !link.awaitsAck) {
            DWORD& count = counts[{LinkKey(conversation.topic, link.item), link.format}];
            ref.left = std::min(count++, CADV_LATEACK - 1);
        }
    }
}

void Hub::PostLink(Instance& instance, const LinkRef& ref)
{
    ConversationPtr* found = m_conversations.Find(ref.conversation);
    if (found == nullptr) {
        return;
    }
    const ConversationPtr conversation = *found;
    const auto at = conversation->links.find(ref.link);
    if (at == conversation->links.end()) {
        return;
    }
    if (at->second.awaitsAck) {
        instance.statistics.merged += at->second.changed ? 1U : 0U;
        at->second.changed = true;
        return;
    }
    RequestAndSend(conversation, ref.link, ref.left);
}

void Hub::RequestAndSend(const ConversationPtr& conversation, std::uint32_t number, ULONG_PTR left)
{
    Instance& instance = *conversation->owner;
    const auto at = conversation->links.find(number);
    ServerLink& link = at->second;
    if (link.noData) {
        SendUpdate(*conversation, number, link, 0, {});
        return;
    }
    const HDDEDATA data = Call(instance, XTYP_ADVREQ, link.format, conversation->handle, conversation->topic, link.item,
                               nullptr, left, 0);
    DataBlock* block = FindData(data);
    if (block == nullptr) {
        return;
    }
    // The callback may have ended the link.
    if (const auto again = conversation->links.find(number); again != conversation->links.end()) {
        SendUpdate(*conversation, number, again->second, block->format, block->bytes);
    }
    if (!block->appOwned) {
        FreeData(data);
    }
}

void Hub::SendUpdate(Conversation& conversation, std::uint32_t number, ServerLink& link, UINT format,
                     std::span<const std::uint8_t> bytes)
{
    Instance& instance = *conversation.owner;
    ++instance.statistics.updates;
    if (conversation.channel.Unsent() >= kMaxUnsent && !conversation.awaitsRoom) {
        conversation.awaitsRoom =
            conversation.channel.Flush() == Channel::State::Open && conversation.channel.Unsent() > 0;
        Update(conversation);
    }
    if (conversation.channel.Unsent() < kMaxUnsent && !link.pending) {
        AppendUpdate(conversation, number, link, format, bytes);
        return;
    }
    if (link.pending) {
        ++instance.statistics.merged;
    } else {
        link.pending = true;
        ++instance.pending;
        conversation.pendingLinks.push_back(number);
    }
    link.valueFormat = format;
    link.value.assign(bytes.begin(), bytes.end());
}

void Hub::AppendUpdate(Conversation& conversation, std::uint32_t number, ServerLink& link, UINT format,
                       std::span<const std::uint8_t> bytes)
{
    Frame update;
    update.kind = FrameKind::Update;
    update.flags = static_cast<std::uint8_t>((link.noData ? kFrameNoData : 0) | (link.wantsAck ? kFrameAck : 0));
    update.id = number;
    update.data = bytes;
    // Format 0 is that of the link.
    if (!link.noData && format != link.format) {
        update.format = static_cast<std::uint16_t>(format);
        update.first = FormatNameForWire(format);
        if (!update.first.empty()) {
            update.flags = static_cast<std::uint8_t>(update.flags | kFrameNamed);
        }
    }
    link.awaitsAck = link.wantsAck;
    conversation.channel.Append(update);
    MarkDirty(conversation);
}

void Hub::SendPending(Conversation& conversation)
{
    while (!conversation.pendingLinks.empty() && conversation.channel.Unsent() < kMaxUnsent) {
        const std::uint32_t number = conversation.pendingLinks.front();
        conversation.pendingLinks.pop_front();
        const auto at = conversation.links.find(number);
        if (at == conversation.links.end() || !at->second.pending) {
            continue;
        }
        at->second.pending = false;
        --conversation.owner->pending;
        AppendUpdate(conversation, number, at->second, at->second.valueFormat, at->second.value);
        at->second.value = {};
    }
}

void Hub::EndLink(Conversation& conversation, std::uint32_t number)
{
    const auto at = conversation.links.find(number);
    if (at == conversation.links.end()) {
        return;
    }
    Instance& instance = *conversation.owner;
    const auto refs = instance.links.find(LinkKey(conversation.topic, at->second.item));
    if (refs != instance.links.end()) {
        std::erase_if(refs->second, [&](const LinkRef& ref) {
            return ref.conversation == conversation.handle && ref.link == number;
        });
        if (refs->second.empty()) {
            instance.links.erase(refs);
        }
    }
    if (at->second.pending) {
        --instance.pending;
        std::erase(conversation.pendingLinks, number);
    }
    --instance.statistics.links;
    strings.Release(at->second.item, 0);
    conversation.links.erase(at);
}

void Hub::EndServerLinks(Conversation& conversation)
{
    conversation.pendingLinks.clear();
    while (!conversation.links.empty()) {
        EndLink(conversation, conversation.links.begin()->first);
    }
}

}  // namespace zr::ddeml
