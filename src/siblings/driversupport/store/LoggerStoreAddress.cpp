#include "siblings/driversupport/store/LoggerStoreAddress.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/store/OpenPostgresLoggerStore.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"

namespace zr {

std::vector<std::unique_ptr<LoggerStore>> OpenLoggerNodes(const LoggerStoreAddress& address, std::string& error)
{
    std::vector<std::unique_ptr<LoggerStore>> stores;
    error.clear();
    if (address.nodes.empty()) {
        if (address.file.empty()) {
            error = "neither a file nor a server is named to keep logged data";
        } else {
            stores.push_back(std::make_unique<SqliteLoggerStore>(address.file));
        }
        return stores;
    }
    for (const std::string& node : address.nodes) {
        std::unique_ptr<LoggerStore> store = OpenPostgresLoggerStore(node, error);
        if (store == nullptr) {
            return {};
        }
        stores.push_back(std::move(store));
    }
    return stores;
}

std::vector<std::string> LoggerNodeNames(const LoggerStoreAddress& address)
{
    if (address.nodes.empty()) {
        return {TextOfPath(address.file)};
    }
    std::vector<std::string> names;
    for (const std::string& node : address.nodes) {
        names.push_back(PostgresServerName(node));
    }
    return names;
}

}  // namespace zr
