#include "siblings/driversupport/store/PostgresSchema.h"

#include "siblings/driversupport/store/PostgresConnection.h"

#include <random>
#include <string>
#include <vector>

namespace zr {

namespace {

using Step = std::vector<const char*>;

// A step for each version, from the one before. Older programs have carried it out as it stands: it is never changed.
const Step& StepTo(std::int64_t version)
{
    static const Step kSteps[] = {
        {
            "create table series (id bigint not null primary key, variable text not null unique,"
            " info_code integer not null)",
            "create table sample (series bigint not null, time bigint not null, value double precision not null,"
            " primary key (series, time))",
            "create table block (series bigint not null references series (id), hour bigint not null,"
            " samples integer not null, first_time bigint not null, last_time bigint not null,"
            " minimum double precision not null, maximum double precision not null, total double precision not null,"
            " first_value double precision not null, last_value double precision not null, flags smallint not null,"
            " codec smallint not null, checksum integer not null, payload bytea not null, primary key (series, hour))",
        },
        {
            "create table data_set (name text not null primary key, period integer not null,"
            " retention integer not null)",
            "create table data_set_series (data_set text not null references data_set (name),"
            " position integer not null, series bigint not null references series (id),"
            " primary key (data_set, position))",
        },
    };
    return kSteps[version - 1];
}

constexpr const char* kHasMeta =
    "select count(*) from information_schema.tables where table_schema = current_schema() and table_name = 'meta'";

// What every version has. "store" is a number of its own for every store, so that it is noticed when a database was
// emptied or replaced; "series" the last number of a series; "pack" is only there to be locked.
bool CreateMeta(PostgresConnection& connection)
{
    std::random_device random;
    const std::int64_t store = static_cast<std::int64_t>(random()) << 31 ^ static_cast<std::int64_t>(random());
    PostgresValues values;
    values.Integer(store);
    const std::vector<PostgresStatement> statements = {
        {"begin", {}},
        {"create table meta (name text not null primary key, value bigint not null)", {}},
        {"insert into meta values ('version', 0), ('store', $1), ('series', 0), ('pack', 0)", values},
        {"commit", {}},
    };
    return connection.Run(statements);
}

bool ReadCount(PostgresConnection& connection, const char* sql, std::int64_t& value)
{
    PostgresConnection::Results results;
    const PostgresStatement statement{sql, {}};
    if (!connection.Run({&statement, 1}, results)) {
        return false;
    }
    value = results[0].Rows() == 1 ? results[0].Integer(0, 0) : -1;
    return true;
}

bool Migrate(PostgresConnection& connection)
{
    const std::vector<PostgresStatement> lock = {{"begin", {}},
                                                 {"select value from meta where name = 'version' for update", {}}};
    PostgresConnection::Results results;
    if (!connection.Run(lock, results)) {
        return false;
    }
    // Another program may have been first.
    const std::int64_t version = results[1].Rows() == 1 ? results[1].Integer(0, 0) : kPostgresSchema;
    std::vector<PostgresStatement> statements;
    for (std::int64_t next = version + 1; next <= kPostgresSchema; ++next) {
        for (const char* const sql : StepTo(next)) {
            statements.push_back({sql, {}});
        }
    }
    if (!statements.empty()) {
        PostgresValues values;
        values.Integer(kPostgresSchema);
        statements.push_back({"update meta set value = $1 where name = 'version'", values});
    }
    statements.push_back({"commit", {}});
    return connection.Run(statements);
}

}  // namespace

PostgresSchemaState PreparePostgresSchema(PostgresConnection& connection, bool create)
{
    std::int64_t tables = 0;
    if (!ReadCount(connection, kHasMeta, tables)) {
        return PostgresSchemaState::Failed;
    }
    if (tables == 0 && !create) {
        return PostgresSchemaState::Absent;
    }
    // Where two programs do so at once, one of them fails here and finds the tables at its next try.
    if (tables == 0 && !CreateMeta(connection)) {
        return PostgresSchemaState::Failed;
    }
    std::int64_t version = 0;
    if (!ReadCount(connection, "select value from meta where name = 'version'", version)) {
        return PostgresSchemaState::Failed;
    }
    if (version < 0) {
        connection.Fail("the table meta is there without a version: it isn't that of a store");
        return PostgresSchemaState::Failed;
    }
    if (version > kPostgresSchema) {
        connection.Fail("the store has version " + std::to_string(version) + ", which this program doesn't know yet (" +
                        std::to_string(kPostgresSchema) + ")");
        return PostgresSchemaState::Failed;
    }
    if (version == kPostgresSchema || (version == 0 && !create)) {
        return version == 0 ? PostgresSchemaState::Absent : PostgresSchemaState::Present;
    }
    return Migrate(connection) ? PostgresSchemaState::Present : PostgresSchemaState::Failed;
}

}  // namespace zr
