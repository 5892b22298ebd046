// The upkeep of a store file: packing, retention, checks, in slices.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/SqliteSession.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zr {

// Lives as long as the store, across the files that it opens.
class SqliteUpkeep {
public:
    LoggerStore::Upkeep Run(SqliteSession& session, std::int64_t now);
    // Another file is open: what was begun with the one before is dropped.
    void Restart();
    // Blocks or data sets were changed, so that there may be something to drop.
    void LookForOldBlocks() { m_isRetentionDue = true; }
    std::vector<std::string> TakeFindings() { return std::exchange(m_findings, {}); }

private:
    using TimePoint = std::chrono::steady_clock::time_point;

    // A pass over all samples that wait, in as many slices as it takes. It merges what the blocks may have already when
    // it is cut short: that changes nothing.
    struct Pass {
        std::int64_t generation = 0;
        std::int64_t lastEntry = 0;
        std::vector<std::int64_t> series;  // still to do, the next one last
    };
    struct Retention {
        std::int64_t series = 0;
        std::int64_t firstHour = 0;  // that is kept
    };

    [[nodiscard]] bool IsPackingDue(const UnpackedSamples& unpacked, std::int64_t now) const;
    bool Pack(SqliteSession& session, std::int64_t now);
    bool PackSlice(SqliteSession& session);
    bool PackSeries(SqliteSession& session, std::int64_t series);
    bool EndPass(SqliteSession& session);
    bool Retain(SqliteSession& session, std::int64_t now);
    bool ListRetentions(SqliteSession& session, std::int64_t now);
    bool RemoveOldBlocks(SqliteSession& session);
    bool MoveReference(SqliteSession& session, std::int64_t now, std::int64_t& reference);
    bool FirstReference(SqliteSession& session, std::int64_t now, std::int64_t& reference);
    bool GiveBackPages(SqliteSession& session);
    bool CheckSome(SqliteSession& session);
    [[nodiscard]] bool IsOver() const;

    TimePoint m_end;  // of this slice
    std::optional<Pass> m_pass;
    std::optional<std::int64_t> m_lastPass;  // when it began, in the time of the caller
    std::vector<Retention> m_retentions;     // still to do
    bool m_isRetentionDue = true;
    std::int64_t m_retainedHour = 0;
    std::optional<TimePoint> m_lastReference;
    std::int64_t m_checkedSeries = 0;
    std::int64_t m_checkedHour = 0;
    std::set<std::string> m_told;
    std::vector<std::string> m_findings;
};

}  // namespace zr
