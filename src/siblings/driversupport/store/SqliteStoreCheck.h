// Compares what a store file tells of its blocks with what they hold.
#pragma once

#include "siblings/driversupport/store/DayDigest.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/SqliteConnection.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace zr {

// Walks over blocks in order of series and hour.
class SqliteBlockChecker {
public:
    SqliteBlockChecker(SqliteConnection& connection, std::string file);

    // Checks up to `limit` blocks behind a place and moves it to the last one; `checked` tells how many there were.
    // False when the store fails.
    bool Check(std::int64_t& series, std::int64_t& hour, std::int64_t limit, LoggerCheck& check, std::int64_t& checked);

private:
    void CheckRow(LoggerCheck& check);
    // What is wrong with the block of the row; empty when nothing is.
    std::string FaultOf(std::int64_t series, std::int64_t hour);
    const StoredSummary* FindSummary(std::int64_t series, std::int64_t hour);

    SqliteConnection& m_connection;
    const std::string m_file;
    SqliteStatement m_readBlocks;
    SqliteStatement m_readDigest;
    DayDigest m_digest;
    std::int64_t m_digestSeries = -1;
    std::int64_t m_digestDay = 0;
    std::vector<std::int64_t> m_times;
    std::vector<double> m_values;
};

// All of a store, within the transaction of the caller. False when it was cancelled; a store that fails on the way is a
// finding.
bool CheckSqliteStore(SqliteConnection& connection, const std::string& file, LoggerCheck& check, Progress* progress);

// The variable of a series, or words for one that there is none of.
std::string NameOfSeries(SqliteConnection& connection, std::int64_t series);
// "2022-12-16 17:00 UTC"
std::string TextOfHour(std::int64_t hour);

}  // namespace zr
