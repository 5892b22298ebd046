// The tables of a store in PostgreSQL and their versions. docs/formats/logger-store-postgresql.md tells them.
#pragma once

#include <cstdint>

namespace zr {

class PostgresConnection;

// The version that this program writes.
inline constexpr std::int64_t kPostgresSchema = 2;

enum class PostgresSchemaState {
    Present,  // of this version
    Absent,   // the database holds no store yet
    Failed    // or of a newer version; the connection's Error() tells
};

// Brings a store of an older version up to date. Several programs may do so at once. Makes the tables where there are
// none if `create`.
PostgresSchemaState PreparePostgresSchema(PostgresConnection& connection, bool create);

}  // namespace zr
