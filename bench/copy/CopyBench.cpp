// Both texts of a million copied rows, beside the shell of a database that writes the same rows.
#include "BenchLine.h"
#include "LoggedMillion.h"
#include "logger/LoggerTable.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

constexpr int kRounds = 5;

// A figure of this process in bytes; 0 when it can't be told.
double MemoryFigure(const std::string& name)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with(name)) {
            return std::stod(line.substr(name.size() + 1)) * 1024.0;  // given in KiB
        }
    }
    return 0.0;
}

void ForgetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

// What the copying needed at most, by what it gave.
double PeakRatio(const zr::logger::LoggerTable& table)
{
    ForgetPeak();
    const double before = MemoryFigure("VmRSS:");
    const zr::logger::TableCopy copy = table.ClipboardCopy();
    const double peak = MemoryFigure("VmHWM:") - before;
    return peak / static_cast<double>(copy.HtmlFormat().size() + 2 * copy.PlainText().size());
}

bool RunShell(const std::string& script)
{
    return std::system(("sqlite3 " + script).c_str()) == 0;
}

// The rows into a table of the peer's, which then writes them in a mode. Negative without the peer.
double PeerMs(const std::string& database, const std::string& mode)
{
    bool isDone = false;
    const double time =
        zr::bench::OnceMs([&] { isDone = RunShell(database + " '.mode " + mode + "' 'select * from t' > /dev/null"); });
    return isDone ? time : -1.0;
}

bool FillPeer(const zr::logger::TableCopy& copy, const std::string& folder, const std::string& database)
{
    const std::string text = copy.TextPlain();
    const std::size_t rows = text.find("\r\n") + 2;
    std::ofstream(folder + "/rows.txt", std::ios::binary)
        .write(text.data() + rows, static_cast<std::streamsize>(text.size() - rows));
    std::string columns = "time text";
    for (int v = 0; v < zr::bench::LoggedMillion::kVariables; ++v) {
        columns += ", v" + std::to_string(v) + " text";
    }
    return RunShell(database + " 'create table t (" + columns + ")' '.mode tabs' '.import " + folder + "/rows.txt t'");
}

}  // namespace

int main()
{
    const zr::bench::LoggedMillion million;
    zr::bench::NoScreen screen;
    zr::logger::LoggerTable table(screen);
    table.Setup(million.Info(), nullptr);
    table.Update(zr::logger::kGroupByYear, million.Group());
    const double peak = PeakRatio(table);
    const double ours = zr::bench::MedianMs(kRounds, [&] { static_cast<void>(table.ClipboardCopy()); });
    const zr::logger::TableCopy copy = table.ClipboardCopy();
    if (copy.PlainText().size() < std::size_t{60} * zr::bench::LoggedMillion::kRecords) {
        std::fprintf(stderr, "bench_copy: rows are missing\n");
        return 1;
    }
    zr::bench::PrintLine("copy.1m_ms", ours, "ms");
    zr::bench::PrintLine("copy.peak_ratio", peak, "x");
    std::size_t others = 0;
    zr::bench::PrintLine("copy.other_desktops_ms",
                         zr::bench::OnceMs([&] { others = copy.TextHtml().size() + copy.TextPlain().size(); }), "ms");
    const zr::test::TempFolder folder;
    const std::string database = folder.Path().string() + "/rows.db";
    if (!FillPeer(copy, folder.Path().string(), database)) {
        std::fprintf(stderr, "bench_copy: no peer (sqlite3)\n");
        return 1;
    }
    const double html = PeerMs(database, "html");
    const double tabs = PeerMs(database, "tabs");
    zr::bench::PrintLine("copy.sqlite3_html_ms", html, "ms");
    zr::bench::PrintLine("copy.sqlite3_tabs_ms", tabs, "ms");
    zr::bench::PrintLine("copy.sqlite3_ratio", (html + tabs) / ours, "x");
    return others > 0 ? 0 : 1;
}
