// Import of a CSV file of the demo's measured minutes into the store's file, beside a database of a row a record; and
// the export back.
#include "BenchLine.h"
#include "import/RowStorePeer.h"
#include "platform/FileReplace.h"
#include "platform/Paths.h"
#include "siblings/driversupport/store/CsvExport.h"
#include "siblings/driversupport/store/CsvImport.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "siblings/tools/CsvSource.h"

#include <sys/resource.h>
#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kPasses = 10;  // of the measured days
constexpr int kRounds = 3;
constexpr const char* kColumns[] = {"active_kW", "reactive_kvar", "voltage_V", "current_A",
                                    "sub1_Wh",   "sub2_Wh",       "sub3_Wh"};

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

[[noreturn]] void Stop(const std::string& why)
{
    std::fprintf(stderr, "bench_import: %s\n", why.c_str());
    std::exit(1);
}

// The measured minutes over and over, each pass with the times that follow.
void WriteFile(const std::filesystem::path& file)
{
    std::ifstream measured(zr::ResourceFolder() / "demo" / "household" / "household_1min.csv");
    std::string line;
    if (!std::getline(measured, line)) {
        Stop("the measured minutes are missing");
    }
    std::ofstream out(file);
    out << line << '\n';
    std::vector<std::string> rows;
    while (std::getline(measured, line)) {
        rows.push_back(line.substr(line.find(',')));
    }
    std::chrono::sys_time<std::chrono::minutes> time = std::chrono::sys_days(std::chrono::year(2006) / 12 / 16);
    for (int pass = 0; pass < kPasses; ++pass) {
        for (const std::string& row : rows) {
            const auto day = std::chrono::floor<std::chrono::days>(time);
            const std::chrono::year_month_day date(day);
            const auto minute = static_cast<int>((time - day).count());
            char text[32];
            std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d", static_cast<int>(date.year()),
                          static_cast<unsigned>(date.month()) % 100, static_cast<unsigned>(date.day()) % 100,
                          minute / 60 % 100, minute % 60);
            out << text << row << '\n';
            time += std::chrono::minutes(1);
        }
    }
}

zr::CsvImportOptions Options()
{
    zr::CsvImportOptions options;
    options.dataSet = u"mains";
    for (const char* column : kColumns) {
        std::string error;
        if (!zr::CsvMapping::Parse(std::string(column) + "=M." + column, options.mappings.emplace_back(), error)) {
            Stop(error);
        }
    }
    return options;
}

// Values a second, from opening the file to the last commit.
double Import(const std::filesystem::path& csv, const std::filesystem::path& file, std::size_t& values)
{
    const Clock::time_point start = Clock::now();
    zr::SqliteLoggerStore store(file);
    zr::CsvFileSource source;
    std::string error;
    if (!source.Open(csv, error)) {
        Stop(error);
    }
    zr::CsvImport import(Options(), store);
    if (import.Run(source, nullptr) != zr::CsvImport::Result::Done || !import.Faults().empty()) {
        Stop("the import failed: " + import.Error());
    }
    values = import.Figures().values;
    return static_cast<double>(values) / Seconds(start);
}

class CountingSink final : public zr::CsvSink {
public:
    bool Write(std::string_view text) override
    {
        bytes += text.size();
        return true;
    }
    [[nodiscard]] std::string Error() const override { return {}; }
    std::size_t bytes = 0;
};

double Export(const std::filesystem::path& file)
{
    zr::SqliteLoggerStore store(file);
    zr::SetLoggerStore(&store);
    zr::CsvExportOptions options;
    for (const zr::CsvMapping& mapping : Options().mappings) {
        options.variables.push_back(mapping.variable);
    }
    const Clock::time_point start = Clock::now();
    zr::CsvExport work(options);
    CountingSink sink;
    if (work.Run(sink, nullptr) != zr::CsvExport::Result::Done) {
        Stop("the export failed: " + work.Error());
    }
    zr::SetLoggerStore(nullptr);
    return static_cast<double>(work.Values()) / Seconds(start);
}

}  // namespace

int main()
{
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("bench-import-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const std::filesystem::path csv = folder / "measured.csv";
    WriteFile(csv);
    zr::SetPlantZone(zr::TimeZone());
    double best = 0.0;
    double bestPeer = 0.0;
    std::size_t values = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string number = std::to_string(round);
        best = std::max(best, Import(csv, folder / (number + ".zrlog"), values));
        const Clock::time_point start = Clock::now();
        const std::size_t numbers = zr::bench::ImportIntoRows(csv, folder / (number + ".db"));
        bestPeer = std::max(bestPeer, static_cast<double>(numbers) / Seconds(start));
        if (numbers != values) {
            Stop("both sides must enter the same values");
        }
    }
    struct rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    zr::bench::PrintLine("import.values_per_s", best, "1/s");
    zr::bench::PrintLine("import.sqlite_rows_values_per_s", bestPeer, "1/s");
    zr::bench::PrintLine("import.sqlite_rows_ratio", best / bestPeer, "x");
    zr::bench::PrintLine("import.memory", static_cast<double>(usage.ru_maxrss) / 1024.0, "MiB");
    zr::bench::PrintLine("export.values_per_s", Export(folder / "0.zrlog"), "1/s");
    std::filesystem::remove_all(folder);
    return 0;
}
