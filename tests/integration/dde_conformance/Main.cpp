// Drives DDEML through every transaction, server and clients on one thread, and prints one line a check.
#include "Checks.h"

#include <cstdio>

int main()
{
    using namespace conformance;
    if (!Server::Start()) {
        std::fprintf(stderr, "dde_conformance: the service cannot be registered\n");
        return 1;
    }
    {
        Client client(0);
        Client other(1);
        CheckStrings(client);
        CheckFormats();
        CheckData(client);
        CheckConversations(client, other);
    }
    Server::Stop();
    return 0;
}
