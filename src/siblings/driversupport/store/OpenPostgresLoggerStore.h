// Stores in PostgreSQL, where the library was built with them.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <memory>
#include <string>

namespace zr {

// A store by the connection text of its server, which isn't asked yet. Null, with an error, when the library was built
// without PostgreSQL.
std::unique_ptr<LoggerStore> OpenPostgresLoggerStore(const std::string& connection, std::string& error);

// "host:port/database" of a connection text, for people; nothing else of it.
std::string PostgresServerName(const std::string& connection);

}  // namespace zr
