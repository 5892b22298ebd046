// Instances, events and connections. What the frames mean is told in HubServer.cpp and HubClient.cpp.
#include "platform/ddeml/posix/Hub.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <random>

namespace zr::ddeml {

namespace {

// Connections of a server that have not yet said what they want: the oldest goes when there are more.
constexpr std::size_t kMaxStrangers = 64;
// Frames and bytes that are held back for a conversation before it is no longer read.
constexpr std::size_t kMaxHeldFrames = 1024;
constexpr std::size_t kMaxHeldBytes = 256U << 10U;
// Unsent bytes from which on a client is not heard before it has read some.
constexpr std::size_t kMaxBacklog = 256U << 10U;

thread_local std::unique_ptr<Hub> theHub;

}  // namespace

Hub* Hub::Current()
{
    return theHub.get();
}

Hub* Hub::Make()
{
    if (theHub == nullptr) {
        auto hub = std::make_unique<Hub>();
        if (!hub->Open()) {
            return nullptr;
        }
        theHub = std::move(hub);
    }
    return theHub.get();
}

void Hub::ReleaseIfIdle()
{
    if (theHub != nullptr && theHub->m_instances.empty() && theHub->m_depth == 0) {
        theHub.reset();
    }
}

Hub::~Hub()
{
    while (!m_instances.empty()) {
        End(*m_instances.begin()->second);
    }
}

bool Hub::Open()
{
    m_epoll = Descriptor(epoll_create1(EPOLL_CLOEXEC));
    m_wake = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    m_spare = Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!m_epoll || !m_wake || !folder.Open() || !Watch(m_wake.Get(), EPOLLIN, Source::Wake, 0)) {
        return false;
    }
    // Without it (the system grants few) nothing but the news of services is missing.
    m_notify = Descriptor(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (m_notify && inotify_add_watch(m_notify.Get(), folder.WatchPath().c_str(), IN_MOVED_TO | IN_DELETE) >= 0) {
        Watch(m_notify.Get(), EPOLLIN, Source::Folder, 0);
    }
    m_names = folder.Names();
    return true;
}

bool Hub::Watch(int fd, std::uint32_t events, Source source, std::uint32_t id)
{
    epoll_event event{};
    event.events = events;
    event.data.u64 = static_cast<std::uint64_t>(source) << 32U | id;
    return epoll_ctl(m_epoll.Get(), EPOLL_CTL_ADD, fd, &event) == 0;
}

// Asks for the events that the conversation waits for.
void Hub::Update(Conversation& conversation)
{
    const std::uint32_t wanted =
        (conversation.isPaused || conversation.isClogged ? 0U : static_cast<std::uint32_t>(EPOLLIN)) |
        (conversation.awaitsRoom ? static_cast<std::uint32_t>(EPOLLOUT) : 0U);
    if (wanted == conversation.watched || conversation.state == ConversationState::Closed) {
        return;
    }
    epoll_event event{};
    event.events = wanted;
    event.data.u64 = static_cast<std::uint64_t>(Source::Conversation) << 32U | conversation.handle;
    epoll_ctl(m_epoll.Get(), EPOLL_CTL_MOD, conversation.channel.Socket(), &event);
    conversation.watched = wanted;
}

Instance* Hub::Begin(PFNCALLBACK callback, DWORD flags)
{
    auto instance = std::make_unique<Instance>();
    std::random_device random;
    instance->id = ++m_lastInstance;
    instance->callback = callback;
    instance->flags = flags;
    instance->self = static_cast<std::uint64_t>(random()) << 32U | random();
    Instance* begun = instance.get();
    m_instances.emplace(begun->id, std::move(instance));
    return begun;
}

void Hub::End(Instance& instance)
{
    Unserve(instance);
    ForEachConversation(instance, [this](const ConversationPtr& c) { Close(c, false); });
    std::vector<std::uint32_t> own;
    m_data.ForEach([&](std::uint32_t handle, DataBlock& block) {
        if (block.instance == instance.id) {
            own.push_back(handle);
        }
    });
    for (const std::uint32_t handle : own) {
        FreeData(ToHandle<HDDEDATA>(handle));
    }
    strings.ReleaseAll(instance.id);
    m_instances.erase(instance.id);
}

Instance* Hub::Find(DWORD instance)
{
    const auto found = m_instances.find(instance);
    return found != m_instances.end() ? found->second.get() : nullptr;
}

bool Hub::Serve(Instance& instance)
{
    if (instance.listener) {
        return true;
    }
    instance.listener = folder.Listen(instance.token);
    return instance.listener && Watch(instance.listener.Get(), EPOLLIN, Source::Listener, instance.id);
}

void Hub::Unserve(Instance& instance)
{
    for (const std::uint32_t name : instance.names) {
        folder.RemoveName(instance.token, strings.Text(name));
        strings.Release(name, 0);
    }
    instance.names.clear();
    if (instance.listener) {
        instance.listener.Reset();
        folder.RemoveSocket(instance.token);
    }
}

ConversationPtr Hub::FindConversation(HCONV handle)
{
    ConversationPtr* found = m_conversations.Find(ToNumber(handle));
    return found != nullptr && (*found)->state == ConversationState::Open ? *found : nullptr;
}

ConversationPtr Hub::Add(Instance& instance, Descriptor socket, bool client)
{
    auto conversation = std::make_shared<Conversation>(instance, std::move(socket), client);
    conversation->handle = m_conversations.Add([&](ConversationPtr& slot) { slot = conversation; });
    conversation->watched = EPOLLIN;
    if (conversation->handle == 0) {
        return nullptr;
    }
    if (!Watch(conversation->channel.Socket(), EPOLLIN, Source::Conversation, conversation->handle)) {
        Close(conversation, false);
        return nullptr;
    }
    return conversation;
}

void Hub::AcceptAll(Instance& instance)
{
    // Not without end, so that conversations get their turn beside a crowd of callers.
    for (int i = 0; i < 64; ++i) {
        Descriptor socket(accept4(instance.listener.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!socket) {
            if (errno == EMFILE || errno == ENFILE) {
                m_spare.Reset();
                Descriptor(accept4(instance.listener.Get(), nullptr, nullptr, SOCK_CLOEXEC)).Reset();
                m_spare = Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
            }
            return;
        }
        if (!IsPeerOfThisUser(socket.Get())) {
            continue;
        }
        const ConversationPtr stranger = Add(instance, std::move(socket), false);
        if (stranger == nullptr) {
            continue;
        }
        instance.strangers.push_back(stranger->handle);
        if (instance.strangers.size() > kMaxStrangers) {
            if (ConversationPtr* oldest = m_conversations.Find(instance.strangers.front()); oldest != nullptr) {
                Close(ConversationPtr(*oldest), false);
            }
        }
    }
}

void Hub::Close(const ConversationPtr& conversation, bool notify)
{
    if (conversation->state == ConversationState::Closed || (notify && conversation->isEnding)) {
        return;
    }
    Instance& instance = *conversation->owner;
    conversation->isEnding = true;
    const bool wasOpen = conversation->state == ConversationState::Open;
    for (auto& [id, transaction] : conversation->transactions) {
        transaction.done = true;
        transaction.error = DMLERR_SERVER_DIED;
    }
    if (wasOpen && notify && (instance.flags & CBF_SKIP_DISCONNECTS) == 0) {
        const DWORD id = instance.id;
        Call(instance, XTYP_DISCONNECT, 0, conversation->handle, 0, 0, nullptr, 0, conversation->sameInstance ? 1 : 0);
        if (Find(id) == nullptr || conversation->state == ConversationState::Closed) {
            return;
        }
    }
    if (!wasOpen) {
        std::erase(instance.strangers, conversation->handle);
    } else {
        --instance.statistics.conversations;
    }
    EndServerLinks(*conversation);
    EndClientState(*conversation);
    strings.Release(conversation->service, 0);
    strings.Release(conversation->topic, 0);
    conversation->held.clear();
    conversation->state = ConversationState::Closed;
    // What was already said (a last update, a reply) still goes, as far as the socket takes it.
    conversation->channel.Flush();
    epoll_ctl(m_epoll.Get(), EPOLL_CTL_DEL, conversation->channel.Socket(), nullptr);
    shutdown(conversation->channel.Socket(), SHUT_RDWR);
    if (ConversationPtr* slot = m_conversations.Find(conversation->handle); slot != nullptr) {
        const ConversationPtr keep = std::move(*slot);
        slot->reset();
        m_conversations.Remove(conversation->handle);
    }
}

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

void Hub::OnFolderChanged()
{
    alignas(inotify_event) std::array<char, 8192> buffer{};
    ssize_t size = 0;
    while ((size = read(m_notify.Get(), buffer.data(), buffer.size())) > 0) {
        for (ssize_t at = 0; at < size;) {
            inotify_event event{};
            std::copy_n(buffer.data() + at, sizeof event, reinterpret_cast<char*>(&event));
            const char* name = buffer.data() + at + static_cast<ssize_t>(sizeof event);
            const std::string file(event.len > 0 ? name : "");
            at += static_cast<ssize_t>(sizeof event + event.len);
            const auto known = m_names.find(file);
            if ((event.mask & IN_MOVED_TO) != 0 && known == m_names.end() && file.ends_with(".name")) {
                if (const auto text = folder.ReadName(file)) {
                    m_names.emplace(file, *text);
                    Announce(XTYP_REGISTER, *text, file);
                }
            } else if ((event.mask & IN_DELETE) != 0 && known != m_names.end()) {
                const std::u16string text = known->second;
                m_names.erase(known);
                Announce(XTYP_UNREGISTER, text, file);
            }
        }
    }
}

void Hub::Announce(UINT type, std::u16string_view name, const std::string& file)
{
    // The name of this one server of the service: the name and its token.
    const std::size_t dot = file.find('.');
    const std::string token = file.substr(dot + 1, file.size() - dot - 1 - 5);
    std::u16string own(name.substr(0, kMaxStringLength - 3 - std::min<std::size_t>(token.size(), 64)));
    own += u":(";
    own.append(token.begin(), token.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(token.size(), 64)));
    own += u')';
    const DWORD skip = type == XTYP_REGISTER ? CBF_SKIP_REGISTRATIONS : CBF_SKIP_UNREGISTRATIONS;
    std::vector<DWORD> ids;
    for (const auto& [id, instance] : m_instances) {
        ids.push_back(id);
    }
    const std::uint32_t hsz1 = strings.Hold(name, 0);
    const std::uint32_t hsz2 = strings.Hold(own, 0);
    for (const DWORD id : ids) {
        Instance* instance = Find(id);
        if (instance != nullptr && (instance->flags & skip) == 0) {
            Call(*instance, type, 0, 0, hsz1, hsz2, nullptr, 0, 0);
        }
    }
    strings.Release(hsz1, 0);
    strings.Release(hsz2, 0);
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

HDDEDATA Hub::NewData(DWORD instance, std::span<const std::uint8_t> bytes, UINT format, UINT flags)
{
    const std::uint32_t handle = m_data.Add([&](DataBlock& block) {
        block.instance = instance;
        block.format = format;
        block.appOwned = (flags & HDATA_APPOWNED) != 0;
        block.bytes.assign(bytes.begin(), bytes.end());
    });
    return ToHandle<HDDEDATA>(handle);
}

DataBlock* Hub::FindData(HDDEDATA data)
{
    return m_data.Find(ToNumber(data));
}

bool Hub::FreeData(HDDEDATA data)
{
    DataBlock* block = FindData(data);
    if (block == nullptr) {
        return false;
    }
    if (block->bytes.capacity() > 4096) {
        block->bytes = {};
    }
    m_data.Remove(ToNumber(data));
    return true;
}

}  // namespace zr::ddeml
