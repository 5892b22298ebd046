// Drives DDEML through every transaction and prints one line a check; the server is in the same process or in another.
//   dde_conformance [two]
#include "Checks.h"

#include <cstdio>
#include <cstring>
#include <exception>

namespace {

using namespace conformance;

void RunChecks(ServerControl& server)
{
    Client client(0);
    Client other(1);
    CheckStrings(client);
    CheckFormats();
    CheckData(client);
    CheckConversations(server, client, other);
}

int RunInOneProcess()
{
    if (!Server::Start()) {
        std::fprintf(stderr, "dde_conformance: the service cannot be registered\n");
        return 1;
    }
    OwnServer server;
    RunChecks(server);
    Server::Stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        if (argc == 3 && std::strcmp(argv[1], "serve") == 0) {
            return ServeFor(argv[2]);
        }
        if (argc == 2 && std::strcmp(argv[1], "two") == 0) {
            ServerProcess server(argv[0]);
            RunChecks(server);
            return 0;
        }
        return RunInOneProcess();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dde_conformance: %s\n", error.what());
        return 1;
    }
}
