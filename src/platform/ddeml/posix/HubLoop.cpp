// The wait for events, what is held back until its callback may run, and what waits to be sent.
#include "platform/ddeml/posix/Hub.h"

#include <sys/epoll.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <utility>

namespace zr::ddeml {

namespace {

// Frames and bytes that are held back for a conversation before it is no longer read.
constexpr std::size_t kMaxHeldFrames = 1024;
constexpr std::size_t kMaxHeldBytes = 256U << 10U;
// Unsent bytes from which on a client is not heard before it has read some.
constexpr std::size_t kMaxBacklog = 256U << 10U;

}  // namespace

bool Hub::Dispatch(std::chrono::milliseconds timeout)
{
    ++m_depth;
    bool handled = RunHeld();
    FlushDirty();
    std::array<epoll_event, 64> events{};
    const auto wait = std::clamp<std::chrono::milliseconds::rep>(timeout.count(), 0, 1 << 30);
    const int count =
        epoll_wait(m_epoll.Get(), events.data(), static_cast<int>(events.size()), handled ? 0 : static_cast<int>(wait));
    for (int i = 0; i < count; ++i) {
        Handle(events[static_cast<std::size_t>(i)].data.u64, events[static_cast<std::size_t>(i)].events);
        handled = true;
    }
    FlushDirty();
    --m_depth;
    return handled;
}

void Hub::Handle(std::uint64_t tag, std::uint32_t events)
{
    const auto id = static_cast<std::uint32_t>(tag);
    switch (static_cast<Source>(tag >> 32U)) {
        case Source::Wake: {
            std::uint64_t count = 0;
            [[maybe_unused]] const ssize_t got = read(m_wake.Get(), &count, sizeof count);
            return;
        }
        case Source::Folder:
            OnFolderChanged();
            return;
        case Source::Listener:
            if (Instance* instance = Find(id); instance != nullptr && instance->listener) {
                AcceptAll(*instance);
            }
            return;
        case Source::Conversation:
            break;
    }
    ConversationPtr* found = m_conversations.Find(id);
    if (found == nullptr) {
        return;
    }
    const ConversationPtr conversation = *found;
    if ((events & EPOLLOUT) != 0) {
        OnWritable(conversation);
    }
    if (conversation->state != ConversationState::Closed && (events & (EPOLLIN | EPOLLHUP | EPOLLERR)) != 0) {
        OnReadable(conversation);
    }
}

void Hub::OnReadable(const ConversationPtr& conversation)
{
    const Channel::State state = conversation->channel.Read();
    const bool sane = TakeFrames(conversation);
    if (conversation->state != ConversationState::Closed && (!sane || state == Channel::State::Closed)) {
        Close(conversation, true);
    }
}

// Handles the frames that are complete. False when the peer does not keep to the format.
bool Hub::TakeFrames(const ConversationPtr& conversation)
{
    Frame frame;
    while (conversation->state != ConversationState::Closed && !IsClogged(conversation)) {
        const bool first = conversation->state == ConversationState::Connecting && !conversation->isClient;
        const DecodeState state = conversation->channel.Next(first ? kMaxFirstFrameSize : kMaxFrameSize, frame);
        if (state != DecodeState::Complete) {
            return state == DecodeState::Partial;
        }
        if (!TakeFrame(conversation, frame)) {
            return false;
        }
    }
    return true;
}

bool Hub::TakeFrame(const ConversationPtr& conversation, const Frame& frame)
{
    if (conversation->state == ConversationState::Connecting) {
        if (!conversation->isClient) {
            return frame.kind == FrameKind::Connect && OnConnectFrame(conversation, frame);
        }
        if (frame.kind == FrameKind::Accept) {
            OnAcceptFrame(conversation, frame);
        }
        return frame.kind == FrameKind::Accept;
    }
    // What came earlier and was held back goes first; replies and acknowledgements call nobody back.
    const bool callsBack = frame.kind != FrameKind::Reply && frame.kind != FrameKind::Ack;
    if ((callsBack && !conversation->held.empty()) || !HandleFrame(conversation, frame)) {
        Hold(*conversation, frame);
    }
    return true;
}

void Hub::Hold(Conversation& conversation, const Frame& frame)
{
    std::vector<std::uint8_t>& copy = conversation.held.emplace_back();
    EncodeFrame(frame, copy);
    conversation.heldBytes += copy.size();
    conversation.isPaused = conversation.held.size() >= kMaxHeldFrames || conversation.heldBytes >= kMaxHeldBytes;
    Update(conversation);
}

bool Hub::IsClogged(const ConversationPtr& conversation)
{
    if (!conversation->isClient && conversation->channel.Unsent() >= kMaxBacklog) {
        Flush(conversation);
        conversation->isClogged = conversation->channel.Unsent() >= kMaxBacklog;
        Update(*conversation);
    }
    return conversation->isClogged;
}

bool Hub::HandleFrame(const ConversationPtr& conversation, const Frame& frame)
{
    return conversation->isClient ? HandleClientFrame(conversation, frame) : HandleServerFrame(conversation, frame);
}

void Hub::RunHeldLater(Conversation& conversation)
{
    if (conversation.held.empty()) {
        return;
    }
    m_withHeld.push_back(conversation.handle);
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t put = write(m_wake.Get(), &one, sizeof one);
}

bool Hub::RunHeld()
{
    bool handled = false;
    for (const std::uint32_t handle : std::exchange(m_withHeld, {})) {
        ConversationPtr* found = m_conversations.Find(handle);
        if (found == nullptr) {
            continue;
        }
        const ConversationPtr conversation = *found;
        while (!conversation->held.empty() && conversation->state == ConversationState::Open) {
            const std::vector<std::uint8_t> bytes = std::move(conversation->held.front());
            conversation->held.pop_front();
            Frame frame;
            std::size_t used = 0;
            DecodeFrame(bytes, kMaxFrameSize, frame, used);
            if (!HandleFrame(conversation, frame)) {
                conversation->held.push_front(bytes);
                break;
            }
            conversation->heldBytes -= bytes.size();
            handled = true;
        }
        if (conversation->isPaused && conversation->held.empty()) {
            conversation->isPaused = false;
            Update(*conversation);
        }
    }
    return handled;
}

void Hub::MarkDirty(Conversation& conversation)
{
    if (conversation.isDirty || conversation.awaitsRoom) {
        return;
    }
    conversation.isDirty = true;
    // A loop of another library has to learn that there is something to send.
    if (m_depth == 0 && m_dirty.empty()) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t put = write(m_wake.Get(), &one, sizeof one);
    }
    m_dirty.push_back(conversation.handle);
}

void Hub::FlushDirty()
{
    for (const std::uint32_t handle : std::exchange(m_dirty, {})) {
        if (ConversationPtr* found = m_conversations.Find(handle); found != nullptr) {
            const ConversationPtr conversation = *found;
            conversation->isDirty = false;
            Flush(conversation);
        }
    }
}

void Hub::Flush(const ConversationPtr& conversation)
{
    // A peer that is gone is noticed when its end is read, after what it said before.
    const bool gone = conversation->channel.Flush() == Channel::State::Closed;
    conversation->awaitsRoom = !gone && conversation->channel.Unsent() > 0;
    Update(*conversation);
}

void Hub::OnWritable(const ConversationPtr& conversation)
{
    for (;;) {
        Flush(conversation);
        if (conversation->channel.Unsent() > 0 || conversation->pendingLinks.empty()) {
            break;
        }
        SendPending(*conversation);
    }
    if (conversation->isClogged && conversation->channel.Unsent() < kMaxBacklog) {
        conversation->isClogged = false;
        Update(*conversation);
        if (!TakeFrames(conversation)) {
            Close(conversation, true);
        }
    }
}

void Hub::Send(const ConversationPtr& conversation, const Frame& frame)
{
    if (conversation->state != ConversationState::Closed) {
        conversation->channel.Append(frame);
        MarkDirty(*conversation);
    }
}

void Hub::SendNow(const ConversationPtr& conversation, const Frame& frame)
{
    if (conversation->state != ConversationState::Closed) {
        conversation->channel.Append(frame);
        Flush(conversation);
    }
}

HDDEDATA Hub::Call(Instance& instance, UINT type, UINT format, std::uint32_t conversation, std::uint32_t hsz1,
                   std::uint32_t hsz2, HDDEDATA data, ULONG_PTR data1, ULONG_PTR data2)
{
    const DWORD id = instance.id;
    ++instance.callbackDepth;
    const HDDEDATA reply = instance.callback(type, format, ToHandle<HCONV>(conversation), ToHandle<HSZ>(hsz1),
                                             ToHandle<HSZ>(hsz2), data, data1, data2);
    if (Find(id) != nullptr) {
        --instance.callbackDepth;
    }
    return reply;
}

bool Hub::MayCall(const Conversation& conversation) const
{
    return conversation.callbacks != Callbacks::Disabled;
}

void Hub::CountCall(Conversation& conversation)
{
    if (conversation.callbacks == Callbacks::NextOnly) {
        conversation.callbacks = Callbacks::Disabled;
    }
}

}  // namespace zr::ddeml
