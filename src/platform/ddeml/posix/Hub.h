// All that DDEML keeps for one thread: its instances, their conversations, and the wait for events.
#pragma once

#include "platform/Ddeml.h"
#include "platform/ddeml/posix/Conversation.h"
#include "platform/ddeml/posix/RuntimeFolder.h"
#include "platform/ddeml/posix/SlotTable.h"
#include "platform/ddeml/posix/StringTable.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace zr::ddeml {

using ConversationPtr = std::shared_ptr<Conversation>;

struct LinkRef {
    std::uint32_t conversation;
    std::uint32_t link;
    DWORD left = 0;  // while posting: how many follow in the same topic, item and format
};

struct Instance {
    DWORD id = 0;
    PFNCALLBACK callback = nullptr;
    DWORD flags = 0;
    UINT error = DMLERR_NO_ERROR;
    std::uint64_t self = 0;  // random; tells a conversation with itself
    int callbackDepth = 0;
    bool inTransaction = false;
    Callbacks callbacks = Callbacks::Enabled;

    std::string token;
    Descriptor listener;
    std::vector<std::uint32_t> names;                               // string handles of the registered services
    std::deque<std::uint32_t> strangers;                            // connections that have not said what they want
    std::unordered_map<std::uint64_t, std::vector<LinkRef>> links;  // by topic and item, in order of their start
    Statistics statistics;
    std::size_t pending = 0;
};

// Data behind a handle. The bytes keep their storage when the handle ends.
struct DataBlock {
    DWORD instance = 0;
    UINT format = 0;
    bool appOwned = false;
    std::vector<std::uint8_t> bytes;
};

// Thread: the one it was made on, only.
class Hub {
public:
    // That of the calling thread; null before its first instance.
    static Hub* Current();
    // The same, made at need; null when the system gives no descriptors or no safe folder.
    static Hub* Make();
    // Gives back the thread's descriptors when it has no instance left and none of its operations is under way.
    static void ReleaseIfIdle();

    Hub() = default;
    ~Hub();
    Hub(const Hub&) = delete;
    Hub& operator=(const Hub&) = delete;

    // Instances.
    Instance* Begin(PFNCALLBACK callback, DWORD flags);
    void End(Instance& instance);
    Instance* Find(DWORD instance);
    bool Serve(Instance& instance);
    void Unserve(Instance& instance);

    // Conversations. Null for a handle that is unknown or closed.
    ConversationPtr FindConversation(HCONV handle);
    HCONV Connect(Instance& instance, HSZ service, HSZ topic);
    // Tells the partner by closing; calls back only on notify.
    void Close(const ConversationPtr& conversation, bool notify);

    // Client.
    // Sent by the next Dispatch().
    void Send(const ConversationPtr& conversation, const Frame& frame);
    void SendNow(const ConversationPtr& conversation, const Frame& frame);
    // Waits until the transaction is done, the conversation has ended or time is over.
    void Await(const ConversationPtr& conversation, std::uint32_t transaction, std::chrono::milliseconds timeout);

    // Server.
    void Post(Instance& instance, std::uint32_t topic, std::uint32_t item);

    // Loop.
    bool Dispatch(std::chrono::milliseconds timeout);
    [[nodiscard]] int PollDescriptor() const { return m_epoll.Get(); }
    // Lets the callbacks that were held back run at the next Dispatch().
    void RunHeldLater(Conversation& conversation);

    // Data.
    HDDEDATA NewData(DWORD instance, std::span<const std::uint8_t> bytes, UINT format, UINT flags);
    DataBlock* FindData(HDDEDATA data);
    bool FreeData(HDDEDATA data);
    std::size_t DataCount() const { return m_data.Count(); }

    StringTable strings;
    RuntimeFolder folder;

    template <typename Visit>
    void ForEachConversation(Instance& instance, Visit&& visit)
    {
        std::vector<ConversationPtr> own;
        m_conversations.ForEach([&](std::uint32_t, ConversationPtr& c) {
            if (c->owner == &instance) {
                own.push_back(c);
            }
        });
        for (const ConversationPtr& c : own) {
            visit(c);
        }
    }

private:
    enum class Source : std::uint32_t { Conversation, Listener, Wake, Folder };

    bool Open();
    bool Watch(int fd, std::uint32_t events, Source source, std::uint32_t id);
    void Update(Conversation& conversation);
    void Handle(std::uint64_t tag, std::uint32_t events);
    void AcceptAll(Instance& instance);
    ConversationPtr Add(Instance& instance, Descriptor socket, bool client);
    void OnReadable(const ConversationPtr& conversation);
    bool TakeFrames(const ConversationPtr& conversation);
    bool TakeFrame(const ConversationPtr& conversation, const Frame& frame);
    bool IsClogged(const ConversationPtr& conversation);
    void Hold(Conversation& conversation, const Frame& frame);
    void OnWritable(const ConversationPtr& conversation);
    bool RunHeld();
    void FlushDirty();
    void Flush(const ConversationPtr& conversation);
    void MarkDirty(Conversation& conversation);
    void OnFolderChanged();
    void Announce(UINT type, std::u16string_view name, const std::string& file);

    HDDEDATA Call(Instance& instance, UINT type, UINT format, std::uint32_t conversation, std::uint32_t hsz1,
                  std::uint32_t hsz2, HDDEDATA data, ULONG_PTR data1, ULONG_PTR data2);
    // As Call(), of a kind that may wait. False when it has to be held back.
    bool MayCall(const Conversation& conversation) const;
    void CountCall(Conversation& conversation);

    // A frame of an open conversation. False when it has to wait for its callback.
    bool HandleFrame(const ConversationPtr& conversation, const Frame& frame);
    bool HandleServerFrame(const ConversationPtr& conversation, const Frame& frame);
    bool HandleClientFrame(const ConversationPtr& conversation, const Frame& frame);
    bool OnConnectFrame(const ConversationPtr& conversation, const Frame& frame);
    void OnAcceptFrame(const ConversationPtr& conversation, const Frame& frame);
    bool OnAdviseStart(const ConversationPtr& conversation, const Frame& frame);
    bool OnAdviseStop(const ConversationPtr& conversation, const Frame& frame);
    bool OnRequest(const ConversationPtr& conversation, const Frame& frame);
    bool OnPokeOrExecute(const ConversationPtr& conversation, const Frame& frame);
    void OnAck(const ConversationPtr& conversation, const Frame& frame);
    bool OnUpdate(const ConversationPtr& conversation, const Frame& frame);
    bool OnReply(const ConversationPtr& conversation, const Frame& frame);
    void FinishLink(Conversation& conversation, const Transaction& transaction);
    bool CompleteAsync(const ConversationPtr& conversation, std::uint32_t id, Transaction& transaction);
    void Reply(const ConversationPtr& conversation, std::uint32_t transaction, DWORD status, HDDEDATA data);

    void CountWhatFollows(std::size_t begin);
    void PostLink(Instance& instance, const LinkRef& ref);
    void RequestAndSend(const ConversationPtr& conversation, std::uint32_t number, ULONG_PTR left);
    void SendUpdate(Conversation& conversation, std::uint32_t number, ServerLink& link, UINT format,
                    std::span<const std::uint8_t> bytes);
    void AppendUpdate(Conversation& conversation, std::uint32_t number, ServerLink& link, UINT format,
                      std::span<const std::uint8_t> bytes);
    void SendPending(Conversation& conversation);
    void EndLink(Conversation& conversation, std::uint32_t number);
    void EndServerLinks(Conversation& conversation);
    void EndClientState(Conversation& conversation);

    Descriptor m_epoll;
    Descriptor m_wake;
    Descriptor m_notify;
    Descriptor m_spare;  // given up for a moment to refuse a connection when there are no descriptors left
    int m_depth = 0;
    DWORD m_lastInstance = 0;
    std::map<DWORD, std::unique_ptr<Instance>> m_instances;
    SlotTable<ConversationPtr> m_conversations;
    SlotTable<DataBlock> m_data;
    std::vector<std::uint32_t> m_dirty;
    std::vector<std::uint32_t> m_withHeld;
    std::vector<LinkRef> m_posting;
    std::map<std::string, std::u16string> m_names;
};

// Handles are numbers in the clothes of the system's pointers.
template <typename H>
H ToHandle(std::uint32_t number)
{
    return reinterpret_cast<H>(static_cast<std::uintptr_t>(number));
}
// 0 for what is no number of 32 bits.
template <typename H>
std::uint32_t ToNumber(H handle)
{
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    return value <= 0xFFFFFFFFU ? static_cast<std::uint32_t>(value) : 0;
}

// The format of a frame in this process's numbers, and its name for the other's; registered formats go by name.
inline constexpr UINT kFirstRegisteredFormat = 0xC000;
std::u16string FormatNameForWire(UINT format);
UINT FormatFromWire(std::uint16_t format, const std::u16string& name);

}  // namespace zr::ddeml
