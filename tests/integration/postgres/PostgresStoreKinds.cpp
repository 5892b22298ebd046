// The stores that need servers, held against what every store does.
#include "integration/postgres/PostgresServers.h"
#include "siblings/driversupport/store/LoggerNodes.h"
#include "siblings/driversupport/store/PostgresLoggerStore.h"
#include "unit/loggerdata/StoreKinds.h"

namespace zr::test {

namespace {

std::unique_ptr<LoggerStore> MakeNodes()
{
    std::vector<std::unique_ptr<LoggerStore>> nodes;
    for (const int server : {1, 2}) {
        nodes.push_back(std::make_unique<PostgresLoggerStore>(FreshDatabase(server)));
    }
    return std::make_unique<LoggerNodes>(std::move(nodes));
}

}  // namespace

std::vector<StoreKind> StoreKinds()
{
    return {
        {"postgres", [] { return std::make_unique<PostgresLoggerStore>(FreshDatabase(1)); }},
        {"nodes", [] { return MakeNodes(); }},
    };
}

}  // namespace zr::test
