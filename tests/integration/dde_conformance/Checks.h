// All checks, each printing what it saw.
#pragma once

#include "Peer.h"
#include "ServerProcess.h"

namespace conformance {

void CheckStrings(Client& client);
void CheckFormats();
void CheckData(Client& client);
// With the server running in this process or another.
void CheckConversations(ServerControl& server, Client& client, Client& other);

}  // namespace conformance
