// The upkeep of a store in PostgreSQL: packs samples into blocks, drops what no data set keeps, checks blocks.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/PostgresConnection.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zr {

// Programs that look after one store at the same time wait for each other: a row of the table meta is locked for each
// transaction. The writing thread only.
class PostgresUpkeep {
public:
    // Not owned; must outlive this.
    explicit PostgresUpkeep(PostgresConnection& connection) : m_connection(connection) {}

    // Looks at everything again.
    void Restart();
    // Samples from that time on were entered: they are packed even if their hour was packed already.
    void OnAppended(std::int64_t firstTime);
    void OnDataSetChanged();
    // A slice, on an open connection.
    LoggerStore::Upkeep Slice(std::int64_t now);
    std::vector<std::string> TakeFindings() { return std::exchange(m_findings, {}); }

private:
    using Samples = std::vector<LoggerSample>;  // in any order
    // Samples of a series that wait to be packed.
    struct Waiting {
        std::int64_t series = 0;
        std::string variable;
        std::int64_t firstHour = 0;
    };
    // The blocks of a transaction, by series and hour.
    struct Pass {
        std::vector<Waiting> waiting;
        PostgresConnection::Results blocks;                                // of each
        std::set<std::pair<std::int64_t, std::int64_t>> damaged;           // left as they are
        std::map<std::pair<std::int64_t, std::int64_t>, Samples> samples;  // taken out of the table sample
    };

    [[nodiscard]] std::int64_t LastHour(const Waiting& waiting) const;
    bool FindWaiting();
    bool Pack();
    bool ReadBlocks(Pass& pass);
    bool TakeSamples(Pass& pass);
    bool WriteBlocks(Pass& pass);
    std::vector<PostgresStatement> Merge(Pass& pass);
    bool MoveReference();
    bool FindNewest(std::int64_t& hour);
    bool Retain();
    bool Drop(const PostgresResult& kept);
    bool Check();
    void Tell(std::int64_t series, std::int64_t hour, const std::string& finding);

    PostgresConnection& m_connection;
    std::optional<std::int64_t> m_hour;  // that is now
    bool m_isPacked = false;             // what was to be packed in this hour
    bool m_isRetained = false;
    std::vector<Waiting> m_waiting;
    std::int64_t m_lastFound = 0;  // series up to this one were looked at
    bool m_hasFoundAll = false;
    bool m_hasLate = false;                                     // since this look at all series began
    int m_hoursAtOnce = 4;                                      // grows and shrinks with the time that they take
    std::int64_t m_lastRetained = 0;                            // series up to this one were looked at
    std::int64_t m_reference = 0;                               // the hour that retention goes by
    std::optional<std::int64_t> m_referenceMoved;               // in this hour
    std::pair<std::int64_t, std::int64_t> m_lastChecked{0, 0};  // series and hour
    std::vector<std::int64_t> m_times;
    std::vector<double> m_values;
    std::set<std::pair<std::int64_t, std::int64_t>> m_told;  // series and hour of findings
    std::vector<std::string> m_findings;
};

}  // namespace zr
