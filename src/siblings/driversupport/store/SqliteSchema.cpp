#include "siblings/driversupport/store/SqliteSchema.h"

#include "siblings/driversupport/store/SqliteBlockTable.h"

#include <array>
#include <random>

namespace zr {

namespace {

struct Table {
    const char* name;
    const char* sql;
};

// One list a version. Older programs have written the text as it stands: it is never changed.
constexpr std::array kTables1 = {
    Table{"store",
          "CREATE TABLE store (one INTEGER PRIMARY KEY CHECK (one = 1), identity INTEGER NOT NULL, "
          "generation INTEGER NOT NULL)"},
    Table{"series",
          "CREATE TABLE series (series INTEGER PRIMARY KEY, variable TEXT NOT NULL UNIQUE, "
          "class INTEGER NOT NULL)"},
    Table{"sample",
          "CREATE TABLE sample (entry INTEGER PRIMARY KEY, series INTEGER NOT NULL, time INTEGER NOT NULL, "
          "value NOT NULL)"},
    Table{"block",
          "CREATE TABLE block (series INTEGER NOT NULL, hour INTEGER NOT NULL, count INTEGER NOT NULL, "
          "codec INTEGER NOT NULL, decimals INTEGER, minimum, maximum, sum, first, last, "
          "checksum INTEGER NOT NULL, payload BLOB NOT NULL, PRIMARY KEY (series, hour)) WITHOUT ROWID"},
};
constexpr std::array kTables2 = {
    Table{"digest",
          "CREATE TABLE digest (series INTEGER NOT NULL, day INTEGER NOT NULL, summaries BLOB NOT NULL, "
          "PRIMARY KEY (series, day)) WITHOUT ROWID"},
    Table{"data_set",
          "CREATE TABLE data_set (data_set INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, "
          "period INTEGER NOT NULL, retention INTEGER NOT NULL)"},
    Table{"data_set_variable",
          "CREATE TABLE data_set_variable (data_set INTEGER NOT NULL, position INTEGER NOT NULL, "
          "series INTEGER NOT NULL, PRIMARY KEY (data_set, position)) WITHOUT ROWID"},
    Table{"reference", "CREATE TABLE reference (one INTEGER PRIMARY KEY CHECK (one = 1), time INTEGER NOT NULL)"},
};

template <std::size_t Count>
bool MakeTables(SqliteConnection& connection, const std::array<Table, Count>& tables)
{
    for (const Table& table : tables) {
        if (!connection.Run(table.sql)) {
            return false;
        }
    }
    return true;
}

// To version 1, from nothing.
bool MakeStore(SqliteConnection& connection)
{
    std::random_device random;
    const auto identity = (std::uint64_t{random()} << 31) ^ random();
    if (!MakeTables(connection, kTables1) ||
        !connection.Run(("PRAGMA application_id = " + std::to_string(kSqliteApplication)).c_str())) {
        return false;
    }
    SqliteStatement insert = connection.Prepare("INSERT INTO store VALUES (1, ?, 0)");
    insert.Bind(1, static_cast<std::int64_t>(identity >> 1));
    return insert.Run();
}

// To version 2: days of summaries, data sets, and the date that retention goes by.
bool AddDigests(SqliteConnection& connection)
{
    return MakeTables(connection, kTables2) && SqliteBlockTable(connection).MakeDigests();
}

// A step leads from the version of its place to the next.
using Step = bool (*)(SqliteConnection&);
constexpr std::array<Step, kSqliteStoreVersion> kSteps = {&MakeStore, &AddDigests};

// False as well for a database of another program.
bool ReadVersion(SqliteConnection& connection, std::int64_t& version, std::string& why)
{
    std::int64_t application = 0;
    std::int64_t objects = 0;
    if (!connection.ReadInteger("PRAGMA application_id", application) ||
        !connection.ReadInteger("PRAGMA user_version", version) ||
        !connection.ReadInteger("SELECT count(*) FROM sqlite_schema", objects)) {
        return false;
    }
    if (application != kSqliteApplication && (application != 0 || version != 0 || objects != 0)) {
        why = "is a database of another program";
        return false;
    }
    if (version < 0 || version > kSqliteStoreVersion || (version == 0 && objects != 0)) {
        why = "is a store of version " + std::to_string(version) + "; this program knows versions up to " +
              std::to_string(kSqliteStoreVersion);
        return false;
    }
    return true;
}

template <std::size_t Count>
bool HasTables(SqliteConnection& connection, const std::array<Table, Count>& tables, std::string& why)
{
    SqliteStatement read = connection.Prepare("SELECT sql FROM sqlite_schema WHERE type = 'table' AND name = ?");
    for (const Table& table : tables) {
        read.Bind(1, std::string_view(table.name));
        const SqliteStep step = read.Step();
        if (step == SqliteStep::Failed) {
            return false;
        }
        if (step == SqliteStep::Done || read.Text(0) != table.sql) {
            why = std::string("its table ") + table.name + " is missing or not laid out as it should be";
            return false;
        }
        read.Reset();
    }
    return true;
}

bool Migrate(SqliteConnection& connection, std::string& why)
{
    SqliteTransaction transaction(connection, SqliteTransaction::Kind::Write);
    std::int64_t version = 0;
    // Another program may have been faster.
    if (!transaction.IsOpen() || !ReadVersion(connection, version, why)) {
        return false;
    }
    for (; version < kSqliteStoreVersion; ++version) {
        if (!kSteps[static_cast<std::size_t>(version)](connection) ||
            !connection.Run(("PRAGMA user_version = " + std::to_string(version + 1)).c_str())) {
            return false;
        }
    }
    return transaction.Commit();
}

}  // namespace

bool PrepareSqliteSchema(SqliteConnection& connection, std::string& why)
{
    std::int64_t version = 0;
    why.clear();
    {
        // All from one moment: another program may make the tables meanwhile.
        const SqliteTransaction transaction(connection, SqliteTransaction::Kind::Read);
        if (!transaction.IsOpen() || !ReadVersion(connection, version, why)) {
            return false;
        }
    }
    if (version < kSqliteStoreVersion && !Migrate(connection, why)) {
        return false;
    }
    return HasTables(connection, kTables1, why) && HasTables(connection, kTables2, why);
}

}  // namespace zr
