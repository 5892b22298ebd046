// The cells of a table of a million records before they reach the toolkit.
#include "BenchLine.h"
#include "LoggedMillion.h"
#include "logger/LoggerTable.h"

#include <cstdio>

namespace {

constexpr int kRounds = 9;
constexpr int kRowsOfPage = 50;
constexpr int kColumns = zr::bench::LoggedMillion::kVariables + 1;

// Characters of the cells of so many rows, the time included.
std::size_t ReadRows(zr::logger::LoggerTable& table, int first, int rows)
{
    std::size_t characters = 0;
    for (int row = first; row < first + rows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            characters += table.CellText(row, column).Length();
        }
    }
    return characters;
}

// The slowest of all pages from one end to the other.
double SlowestPageMs(zr::logger::LoggerTable& table, bool backwards)
{
    double slowest = 0.0;
    const int pages = table.Count() / kRowsOfPage;
    for (int page = 0; page < pages; ++page) {
        const int first = (backwards ? pages - 1 - page : page) * kRowsOfPage;
        slowest = std::max(slowest, zr::bench::UndisturbedMs([&] { ReadRows(table, first, kRowsOfPage); }));
    }
    return slowest;
}

}  // namespace

int main()
{
    using zr::bench::MedianMs;
    const zr::bench::LoggedMillion million;
    zr::bench::NoScreen screen;
    zr::logger::LoggerTable table(screen);
    const double opening = MedianMs(kRounds, [&] {
        table.Setup(million.Info(), nullptr);
        table.Update(zr::logger::kGroupByYear, million.Group());
        ReadRows(table, 0, kRowsOfPage);
    });
    constexpr int kRead = 100000;
    std::size_t characters = 0;
    const double reading = MedianMs(kRounds, [&] { characters = ReadRows(table, 0, kRead); });
    if (table.Count() != zr::bench::LoggedMillion::kRecords || characters < std::size_t{kRead} * 60) {
        std::fprintf(stderr, "bench_table: texts are missing\n");
        return 1;
    }
    zr::bench::PrintLine("table.setup_1m_ms", opening, "ms");
    zr::bench::PrintLine("table.cell_ns", reading * 1e6 / kRead / kColumns, "ns");
    // A page key is pressed and its cells are asked for: the slowest page there is.
    zr::bench::PrintLine("table.page_down_slowest_ms", SlowestPageMs(table, false), "ms");
    zr::bench::PrintLine("table.page_up_slowest_ms", SlowestPageMs(table, true), "ms");
    // The farthest row there is, from either end.
    zr::bench::PrintLine("table.jump_ms",
                         MedianMs(kRounds,
                                  [&] {
                                      ReadRows(table, 0, 1);
                                      ReadRows(table, table.Count() / 2, 1);
                                  }),
                         "ms");
    return 0;
}
