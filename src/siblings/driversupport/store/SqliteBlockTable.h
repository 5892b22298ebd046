// Writes blocks and the digests of their days, both in the transaction of the caller.
#pragma once

#include "siblings/driversupport/store/DayDigest.h"
#include "siblings/driversupport/store/SqliteConnection.h"

#include <map>
#include <string>
#include <utility>

namespace zr {

class SqliteBlockTable {
public:
    explicit SqliteBlockTable(SqliteConnection& connection);

    // Puts samples, in order of time, each time once, into the block of their hour; they take the place of those at the
    // same times. Samples beyond kMaxBlockSamples are dropped, the last ones first, and told in Findings.
    bool Merge(std::int64_t series, std::int64_t hour, std::span<const LoggerSample> samples);
    // Takes the blocks before an hour away, at most so many; `removed` tells how many went.
    bool RemoveBefore(std::int64_t series, std::int64_t hour, std::int64_t limit, std::int64_t& removed);
    // Of the oldest block.
    bool FirstHour(std::int64_t series, std::int64_t& hour, bool& hasBlock);
    // The number of samples of a block, 0 when there is none.
    bool CountOf(std::int64_t series, std::int64_t hour, std::int64_t& count);
    // Writes the digests of all days with blocks.
    bool MakeDigests();
    // Writes the digests of what was changed; belongs before every commit.
    bool FlushDigests();
    // After a rollback.
    void Forget();
    std::vector<std::string> TakeFindings() { return std::exchange(m_findings, {}); }

private:
    using Place = std::pair<std::int64_t, std::int64_t>;  // series, day

    // Null on failure.
    DayDigest* DigestOf(std::int64_t series, std::int64_t day);
    bool RebuildDigest(std::int64_t series, DayDigest& digest);
    bool ReadBlock(std::int64_t series, std::int64_t hour);
    void Tell(std::int64_t series, std::int64_t hour, const std::string& what);
    bool Write(std::int64_t series, std::int64_t hour, const PackedBlock& block);

    SqliteConnection& m_connection;
    SqliteStatement m_readBlock;
    SqliteStatement m_readCount;
    SqliteStatement m_writeBlock;
    SqliteStatement m_readDigest;
    SqliteStatement m_writeDigest;
    SqliteStatement m_removeDigest;
    SqliteStatement m_findFirst;
    SqliteStatement m_findBefore;
    SqliteStatement m_removeBefore;
    std::map<Place, DayDigest> m_digests;  // changed since the last flush
    std::vector<std::int64_t> m_times;     // of the block that was read
    std::vector<double> m_values;
    std::vector<std::string> m_findings;
};

}  // namespace zr
