// Logged samples in a PostgreSQL database, or in an engine that speaks its protocol.
// docs/formats/logger-store-postgresql.md tells the tables.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/PostgresConnection.h"
#include "siblings/driversupport/store/PostgresUpkeep.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace zr {

// Connects at the first call. When the connection is lost the next call connects again; while the server is away calls
// fail at once, but for a try after a pause that grows up to 5 s. A batch whose commit wasn't answered is in doubt and
// has to be sent again, which makes no doubles. Several programs may use one database. Blocks up to the limits.
class PostgresLoggerStore final : public LoggerStore {
public:
    // The connection text as libpq takes it; never shown or logged.
    explicit PostgresLoggerStore(std::string connection, const PostgresLimits& limits = {});
    ~PostgresLoggerStore() override;

    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override;
    bool Append(std::span<const LoggerAppend> batch) override;
    bool SetDataSet(const LoggerDataSet& set) override;
    Upkeep Maintain(std::int64_t now) override;
    std::vector<std::string> TakeFindings() override { return m_upkeep.TakeFindings(); }
    // Never null and at once: the reader connects at its first call. It may outlive the store.
    std::unique_ptr<LoggerReader> OpenReader() override;
    // Names the server and the database.
    [[nodiscard]] std::string Error() const override { return m_connection.Error(); }

private:
    enum class Outcome { Done, Again, Failed };
    struct Series {
        std::string variable;
        std::int32_t infoCode = 0;
        std::int64_t id = 0;  // in the database; 0 until it is asked
    };
    struct Row {
        std::int64_t series = 0;
        std::int64_t time = 0;
        double value = 0.0;
    };

    bool Connect();
    bool ReadIdentity(bool& isSame);
    bool Resolve(const std::vector<int>& numbers);
    bool Enter(const std::vector<int>& numbers);
    Outcome TryAppend(std::span<const LoggerAppend> batch);
    Outcome TrySetDataSet(const LoggerDataSet& set);
    Outcome BeginOnSameStore();
    [[nodiscard]] Outcome Failure() const { return m_connection.IsConflict() ? Outcome::Again : Outcome::Failed; }
    void SortRows(std::span<const LoggerAppend> batch);
    [[nodiscard]] std::vector<PostgresStatement> Inserts() const;
    template <typename Try>
    bool Repeat(Try attempt);
    void ForgetIds();

    std::string m_text;
    PostgresLimits m_limits;
    PostgresConnection m_connection;
    PostgresUpkeep m_upkeep;
    std::unordered_map<std::string, int> m_numbers;
    std::vector<Series> m_series;
    std::int64_t m_store = 0;        // the number of the store that the ids are of
    std::int64_t m_firstSeries = 0;  // the smallest id that it had; 0 while it had none
    std::vector<Row> m_rows;         // of a batch, kept for its memory
};

}  // namespace zr
