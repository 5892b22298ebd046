// What the two sides of a conversation keep.
#pragma once

#include "platform/Ddeml.h"
#include "platform/ddeml/posix/Channel.h"

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

namespace zr::ddeml {

struct Instance;

// A link of a server: the client's number for it, and the one update that waits while the client does not read.
struct ServerLink {
    std::uint32_t item = 0;
    UINT format = 0;
    bool noData = false;
    bool wantsAck = false;
    bool awaitsAck = false;
    bool changed = false;  // posted while it awaited an acknowledgement
    bool pending = false;  // value holds an update that was not sent
    UINT valueFormat = 0;
    std::vector<std::uint8_t> value;
};

struct ClientLink {
    std::uint32_t item = 0;
    UINT format = 0;
};

// A transaction of a client that awaits its reply.
struct Transaction {
    UINT type = 0;
    UINT format = 0;
    std::uint32_t item = 0;
    std::uint32_t link = 0;
    bool newLink = false;
    bool isAsync = false;
    bool done = false;
    UINT error = DMLERR_NO_ERROR;
    DWORD status = 0;
    HDDEDATA data = nullptr;
};

// Which callbacks of a conversation may run.
enum class Callbacks { Enabled, NextOnly, Disabled };

enum class ConversationState { Connecting, Open, Closed };

struct Conversation {
    Conversation(Instance& instance, Descriptor socket, bool client)
        : owner(&instance), isClient(client), channel(std::move(socket))
    {
    }

    Instance* owner;  // Not owned; closes its conversations before it ends.
    bool isClient;
    std::uint32_t handle = 0;
    ConversationState state = ConversationState::Connecting;
    Channel channel;
    std::uint32_t service = 0;
    std::uint32_t topic = 0;
    bool sameInstance = false;

    bool isDirty = false;       // waits in the hub's list of conversations to send
    bool awaitsRoom = false;    // the socket is full
    bool isPaused = false;      // not read: too much is held back
    bool isClogged = false;     // not read: the client does not take its replies
    bool isEnding = false;      // XTYP_DISCONNECT was sent
    std::uint32_t watched = 0;  // the events that the hub asked for

    Callbacks callbacks = Callbacks::Enabled;
    std::deque<std::vector<std::uint8_t>> held;  // frames whose callbacks may not run yet
    std::size_t heldBytes = 0;

    // Server.
    std::unordered_map<std::uint32_t, ServerLink> links;
    std::deque<std::uint32_t> pendingLinks;

    // Client.
    std::unordered_map<std::uint32_t, ClientLink> clientLinks;
    std::unordered_map<std::uint32_t, Transaction> transactions;
    std::uint32_t lastTransaction = 0;
    std::uint32_t lastLink = 0;
};

}  // namespace zr::ddeml
