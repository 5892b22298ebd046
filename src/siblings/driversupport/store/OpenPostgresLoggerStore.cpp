#include "siblings/driversupport/store/OpenPostgresLoggerStore.h"

#include "siblings/driversupport/store/PostgresConnection.h"
#include "siblings/driversupport/store/PostgresLoggerStore.h"

namespace zr {

std::unique_ptr<LoggerStore> OpenPostgresLoggerStore(const std::string& connection, std::string& error)
{
    error.clear();
    return std::make_unique<PostgresLoggerStore>(connection);
}

std::string PostgresServerName(const std::string& connection)
{
    return PostgresConnection(connection, PostgresRole::Reader, {}).Name();
}

}  // namespace zr
