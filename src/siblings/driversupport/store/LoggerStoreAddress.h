// Where logged data are kept, and the stores behind it.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zr {

// Either a file on this machine or servers.
struct LoggerStoreAddress {
    std::filesystem::path file;      // of the SQLite store; counts when there are no nodes
    std::vector<std::string> nodes;  // connection texts of PostgreSQL servers, at least one, or empty

    friend bool operator==(const LoggerStoreAddress&, const LoggerStoreAddress&) = default;
};

// One store for a file, one a node otherwise. A file that can't be read or a server that is away shows at the first
// call to its store. Empty, with an error, for an address that names neither.
std::vector<std::unique_ptr<LoggerStore>> OpenLoggerNodes(const LoggerStoreAddress& address, std::string& error);

// What people know the stores by, in the same order: the path of the file, "host:port/database" of each server.
std::vector<std::string> LoggerNodeNames(const LoggerStoreAddress& address);

}  // namespace zr
