// Instances, conversations and data, and how they begin and end. How their events are handled is told in HubLoop.cpp,
// what the frames mean in HubServer.cpp and HubClient.cpp, who is told of services in HubNames.cpp.
#include "platform/ddeml/posix/Hub.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>
#include <cerrno>
#include <random>

namespace zr::ddeml {

namespace {

// Connections of a server that have not yet said what they want: the oldest goes when there are more.
constexpr std::size_t kMaxStrangers = 64;

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
