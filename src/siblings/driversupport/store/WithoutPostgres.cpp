// Where the library is built without PostgreSQL (ZR_POSTGRESQL).
#include "siblings/driversupport/store/OpenPostgresLoggerStore.h"

namespace zr {

std::unique_ptr<LoggerStore> OpenPostgresLoggerStore(const std::string&, std::string& error)
{
    error = "this program was built without PostgreSQL";
    return nullptr;
}

std::string PostgresServerName(const std::string&)
{
    return "PostgreSQL";
}

}  // namespace zr
