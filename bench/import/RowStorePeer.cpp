#include "import/RowStorePeer.h"

#include <sqlite3.h>
#include <array>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>

namespace zr::bench {
namespace {

constexpr std::size_t kColumns = 7;

struct CloseDatabase {
    void operator()(sqlite3* database) const { ::sqlite3_close(database); }
};
struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { ::sqlite3_finalize(statement); }
};

bool Run(sqlite3* database, const char* text)
{
    return ::sqlite3_exec(database, text, nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Of "YYYY-MM-DDThh:mm", as UTC.
std::int64_t SecondsOf(const char* text)
{
    std::tm parts{};
    parts.tm_year = std::atoi(text) - 1900;
    parts.tm_mon = std::atoi(text + 5) - 1;
    parts.tm_mday = std::atoi(text + 8);
    parts.tm_hour = std::atoi(text + 11);
    parts.tm_min = std::atoi(text + 14);
    return ::timegm(&parts);
}

}  // namespace

std::size_t ImportIntoRows(const std::filesystem::path& csv, const std::filesystem::path& file)
{
    sqlite3* opened = nullptr;
    const int status = ::sqlite3_open(file.c_str(), &opened);
    const std::unique_ptr<sqlite3, CloseDatabase> database(opened);
    if (status != SQLITE_OK || !Run(opened, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL") ||
        !Run(opened,
             "CREATE TABLE record (time INTEGER PRIMARY KEY, a REAL, b REAL, c REAL, d REAL, e REAL, f REAL,"
             " g REAL)") ||
        !Run(opened, "BEGIN")) {
        return 0;
    }
    sqlite3_stmt* prepared = nullptr;
    ::sqlite3_prepare_v2(opened, "INSERT OR REPLACE INTO record VALUES (?,?,?,?,?,?,?,?)", -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, FinalizeStatement> insert(prepared);
    std::ifstream input(csv);
    std::string line;
    std::getline(input, line);
    std::size_t numbers = 0;
    while (std::getline(input, line)) {
        const char* at = line.c_str() + line.find(',');
        ::sqlite3_bind_int64(prepared, 1, SecondsOf(line.c_str()));
        for (std::size_t i = 0; i < kColumns; ++i) {
            char* end = nullptr;
            const double number = std::strtod(at + 1, &end);
            if (end == at + 1) {
                ::sqlite3_bind_null(prepared, static_cast<int>(i) + 2);
            } else {
                ::sqlite3_bind_double(prepared, static_cast<int>(i) + 2, number);
                ++numbers;
            }
            at = end;
        }
        if (::sqlite3_step(prepared) != SQLITE_DONE) {
            return 0;
        }
        ::sqlite3_reset(prepared);
    }
    return Run(opened, "COMMIT") ? numbers : 0;
}

}  // namespace zr::bench
