#include "siblings/driversupport/store/SqliteStoreCheck.h"

#include "platform/Unicode.h"
#include "siblings/tools/Progress.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

namespace zr {

namespace {

constexpr std::int64_t kBlocksAtATime = 1000;

bool AreSame(double left, double right)
{
    return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

// Sums of doubles may be added up in another order by another program.
bool AreNear(double left, double right)
{
    return AreSame(left, right) || std::fabs(left - right) <= 1e-9 * (std::fabs(left) + std::fabs(right));
}

bool AreSame(const StoredSummary& left, const StoredSummary& right)
{
    const LoggerSummary& l = left.summary;
    const LoggerSummary& r = right.summary;
    const bool haveSameTimes = l.firstTime == r.firstTime && l.lastTime == r.lastTime && l.count == r.count;
    if (!haveSameTimes || l.isFinite != r.isFinite || left.decimals != right.decimals) {
        return false;
    }
    return !l.isFinite || (l.isRising == r.isRising && AreSame(l.minimum, r.minimum) && AreSame(l.maximum, r.maximum) &&
                           AreSame(l.first, r.first) && AreSame(l.last, r.last) && AreNear(l.sum, r.sum));
}

double NumberOf(const SqliteStatement& row, int column, int decimals)
{
    return row.IsInteger(column) && decimals >= 0 ? ValueOf(row.Integer(column), decimals) : row.Real(column);
}

// What the columns of a row tell, in place of what its samples do.
bool TellsColumns(const SqliteStatement& row, const StoredSummary& stored)
{
    const LoggerSummary& summary = stored.summary;
    const int decimals = row.IsNull(4) ? -1 : static_cast<int>(std::clamp<std::int64_t>(row.Integer(4), 0, 15));
    if (row.Integer(2) != static_cast<std::int64_t>(summary.count) || decimals != stored.decimals) {
        return false;
    }
    if (!summary.isFinite) {
        return true;
    }
    return AreSame(NumberOf(row, 5, decimals), summary.minimum) &&
           AreSame(NumberOf(row, 6, decimals), summary.maximum) && AreNear(NumberOf(row, 7, decimals), summary.sum) &&
           AreSame(NumberOf(row, 8, decimals), summary.first) && AreSame(NumberOf(row, 9, decimals), summary.last);
}

bool Count(SqliteConnection& connection, const char* sql, std::size_t& count)
{
    std::int64_t number = 0;
    const bool isRead = connection.ReadInteger(sql, number);
    count = static_cast<std::size_t>(number);
    return isRead;
}

// What the database says of itself.
bool CheckPages(SqliteConnection& connection, const std::string& file, LoggerCheck& check)
{
    SqliteStatement read = connection.Prepare("PRAGMA integrity_check(20)");
    SqliteStep step = read.Step();
    for (; step == SqliteStep::Row; step = read.Step()) {
        if (read.Text(0) != "ok") {
            check.findings.push_back(file + ": " + std::string(read.Text(0)));
        }
    }
    return step == SqliteStep::Done;
}

bool TellRows(SqliteConnection& connection, const char* sql, const std::string& what, LoggerCheck& check)
{
    std::size_t rows = 0;
    if (!Count(connection, sql, rows)) {
        return false;
    }
    if (rows != 0) {
        check.findings.push_back(what + ": " + std::to_string(rows));
    }
    return true;
}

// Rows that have lost what they belong to.
bool CheckRelations(SqliteConnection& connection, const std::string& file, LoggerCheck& check)
{
    return TellRows(connection,
                    "SELECT count(*) FROM digest d WHERE NOT EXISTS (SELECT 1 FROM block b WHERE b.series = d.series "
                    "AND b.hour >= d.day * 24 AND b.hour < d.day * 24 + 24)",
                    file + ": days with summaries but without blocks", check) &&
           TellRows(connection, "SELECT count(*) FROM sample WHERE series NOT IN (SELECT series FROM series)",
                    file + ": unpacked samples of unknown series", check) &&
           TellRows(connection,
                    "SELECT count(*) FROM data_set_variable WHERE series NOT IN (SELECT series FROM series)",
                    file + ": unknown series in data sets", check);
}

bool CheckBlocks(SqliteConnection& connection, const std::string& file, LoggerCheck& check, Progress* progress)
{
    SqliteBlockChecker checker(connection, file);
    std::size_t blocks = 0;
    std::int64_t series = std::numeric_limits<std::int64_t>::min();
    std::int64_t hour = 0;
    std::int64_t checked = kBlocksAtATime;
    bool isRead = Count(connection, "SELECT count(*) FROM block", blocks);
    while (isRead && checked == kBlocksAtATime && !(progress != nullptr && progress->IsCancelled())) {
        isRead = checker.Check(series, hour, kBlocksAtATime, check, checked);
        if (progress != nullptr && blocks > 0) {
            progress->SetPos(static_cast<int>(std::min<std::size_t>(100, 100 * check.blocks / blocks)));
        }
    }
    return isRead;
}

}  // namespace

std::string NameOfSeries(SqliteConnection& connection, std::int64_t series)
{
    SqliteStatement read = connection.Prepare("SELECT variable FROM series WHERE series = ?");
    read.Bind(1, series);
    const bool isKnown = read.Step() == SqliteStep::Row;
    return isKnown ? std::string(read.Text(0)) : "unknown series " + std::to_string(series);
}

std::string TextOfHour(std::int64_t hour)
{
    using namespace std::chrono;
    const std::int64_t day = DayOf(hour);
    // Nobody means years of that many digits; they only have to give some text.
    const year_month_day date(sys_days(days(std::clamp<std::int64_t>(day, -10000000, 10000000))));
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:00 UTC", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>((hour % kHoursOfDay + kHoursOfDay) % kHoursOfDay));
    return text.data();
}

SqliteBlockChecker::SqliteBlockChecker(SqliteConnection& connection, std::string file)
    : m_connection(connection),
      m_file(std::move(file)),
      m_readBlocks(connection.Prepare(
          "SELECT series, hour, count, codec, decimals, minimum, maximum, sum, first, last, checksum, payload "
          "FROM block WHERE (series, hour) > (?, ?) ORDER BY series, hour LIMIT ?")),
      m_readDigest(connection.Prepare("SELECT summaries FROM digest WHERE series = ? AND day = ?"))
{
}

bool SqliteBlockChecker::Check(std::int64_t& series, std::int64_t& hour, std::int64_t limit, LoggerCheck& check,
                               std::int64_t& checked)
{
    checked = 0;
    m_digestSeries = -1;  // it may have changed since
    m_readBlocks.Bind(1, series);
    m_readBlocks.Bind(2, hour);
    m_readBlocks.Bind(3, limit);
    SqliteStep step = m_readBlocks.Step();
    for (; step == SqliteStep::Row; step = m_readBlocks.Step()) {
        series = m_readBlocks.Integer(0);
        hour = m_readBlocks.Integer(1);
        ++checked;
        CheckRow(check);
    }
    m_readBlocks.Reset();
    return step == SqliteStep::Done;
}

void SqliteBlockChecker::CheckRow(LoggerCheck& check)
{
    const std::int64_t series = m_readBlocks.Integer(0);
    const std::int64_t hour = m_readBlocks.Integer(1);
    const std::string fault = FaultOf(series, hour);
    ++check.blocks;
    check.packed += static_cast<std::size_t>(std::max<std::int64_t>(0, m_readBlocks.Integer(2)));
    if (!fault.empty()) {
        check.findings.push_back(m_file + ": " + NameOfSeries(m_connection, series) + ", block of " + TextOfHour(hour) +
                                 ": " + fault);
    }
}

std::string SqliteBlockChecker::FaultOf(std::int64_t series, std::int64_t hour)
{
    const SqliteStatement& row = m_readBlocks;
    if (!UnpackBlock(series, hour, row.Integer(3), row.Integer(10), row.Bytes(11), m_times, m_values)) {
        return "its samples are damaged";
    }
    const StoredSummary stored = SummariseBlock(m_times, m_values);
    if (!TellsColumns(row, stored)) {
        return "its numbers aren't those of its samples";
    }
    const StoredSummary* const told = FindSummary(series, hour);
    if (told == nullptr || !AreSame(*told, stored)) {
        return "the summaries of its day don't tell what it holds";
    }
    return {};
}

const StoredSummary* SqliteBlockChecker::FindSummary(std::int64_t series, std::int64_t hour)
{
    const std::int64_t day = DayOf(hour);
    if (series != m_digestSeries || day != m_digestDay) {
        m_digestSeries = series;
        m_digestDay = day;
        m_digest = DayDigest(series, day);
        m_readDigest.Bind(1, series);
        m_readDigest.Bind(2, day);
        if (m_readDigest.Step() == SqliteStep::Row) {
            m_digest.Decode(m_readDigest.Bytes(0));
        }
        m_readDigest.Reset();
    }
    return m_digest.Find(hour);
}

bool CheckSqliteStore(SqliteConnection& connection, const std::string& file, LoggerCheck& check, Progress* progress)
{
    check = {};
    const bool isRead = CheckPages(connection, file, check) &&
                        Count(connection, "SELECT count(*) FROM series", check.series) &&
                        Count(connection, "SELECT count(*) FROM sample", check.unpacked) &&
                        CheckRelations(connection, file, check) && CheckBlocks(connection, file, check, progress);
    if (progress != nullptr && progress->IsCancelled()) {
        return false;
    }
    if (!isRead) {
        check.findings.push_back(file + ": " + connection.Reason());
    }
    return true;
}

}  // namespace zr
