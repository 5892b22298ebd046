// The tables of a store file and the way there from older versions. docs/formats/logger-store.md describes them.
#pragma once

#include "siblings/driversupport/store/SqliteConnection.h"

#include <string>

namespace zr {

// The version that this program writes.
inline constexpr std::int64_t kSqliteStoreVersion = 2;
// Tells a store of ours from other databases: "ZRLG".
inline constexpr std::int64_t kSqliteApplication = 0x5A524C47;

// Makes the tables of a new database, brings an older version up to this one, refuses what is neither. False on
// failure; why then says so, or is empty when the connection tells.
bool PrepareSqliteSchema(SqliteConnection& connection, std::string& why);

}  // namespace zr
