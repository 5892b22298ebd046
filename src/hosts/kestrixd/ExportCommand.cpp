#include "hosts/kestrixd/ExportCommand.h"

#include "hosts/kestrixd/Commands.h"
#include "hosts/kestrixd/CommandText.h"
#include "hosts/kestrixd/DocumentDevices.h"
#include "hosts/kestrixd/StoreArguments.h"
#include "hosts/kestrixd/TerminalProgress.h"
#include "platform/FileReplace.h"
#include "siblings/driversupport/store/CsvExport.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <algorithm>
#include <cerrno>
#include <CLI/CLI.hpp>
#include <cstring>

namespace zr::service {
namespace {

struct Words {
    std::string dataSet;
    std::vector<std::string> variables;
    std::string from;
    std::string to;
    std::string period = "0";
    std::string zone;
    std::string format = "csv";
    std::string separator = ",";
    std::string decimal = ".";
    std::string output = "-";
};

void AddOptions(CLI::App& app, Words& words)
{
    CLI::Option* const dataSet =
        app.add_option("--dataset", words.dataSet, "all variables of a data set")->type_name("NAME");
    app.add_option("--variable", words.variables,
                   "a variable, as METER-1.P or THREE-TARIFF.MVDF@PEAK#METER-1.EAI; several may be given")
        ->type_name("REFERENCE")
        ->excludes(dataSet);
    app.add_option("--from", words.from, "first time, as 2026-11-01 or 2026-11-01T12:00 (default: the first sample)")
        ->type_name("TIME");
    app.add_option("--to", words.to, "end, exclusive, likewise; now is the present moment (default: the last sample)")
        ->type_name("TIME");
    app.add_option("--period", words.period, "0 as recorded, else a value a period: 60, 15m, 1h, 1d, 1M")
        ->type_name("PERIOD")
        ->capture_default_str();
    app.add_option("--zone", words.zone, "the plant's time zone, for times and for days (default: this system's)")
        ->type_name("ZONE");
    app.add_option("--format", words.format, "form of the file")->check(CLI::IsMember({"csv"}))->capture_default_str();
    app.add_option("--separator", words.separator, "between cells: , ; or tab")
        ->type_name("MARK")
        ->capture_default_str();
    app.add_option("--decimal", words.decimal, "decimal mark: . or ,")->type_name("MARK")->capture_default_str();
    app.add_option("--output", words.output, "file, replaced as a whole at the end; - is standard output")
        ->type_name("FILE")
        ->capture_default_str();
    app.footer(
        "Times are local with their offset from UTC. Units stand in the header row where --document tells them.\n"
        "Exit status: 0 exported, 1 exported but for what is told, 2 failed, 130 cancelled (no file is written).");
}

class OutputSink final : public CsvSink {
public:
    bool Write(std::string_view bytes) override
    {
        errno = 0;
        return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() || Fail();
    }
    [[nodiscard]] std::string Error() const override { return m_error; }
    bool Finish()
    {
        errno = 0;
        return std::fflush(stdout) == 0 || Fail();
    }

private:
    bool Fail()
    {
        m_error = fmt::format("standard output: {}", std::strerror(errno));
        return false;
    }

    std::string m_error;
};

class FileSink final : public CsvSink {
public:
    bool Open(const std::filesystem::path& path)
    {
        std::error_code ignored;
        m_name = TextOfPath(path);
        if (std::filesystem::exists(path, ignored) && !std::filesystem::is_regular_file(path, ignored)) {
            m_error = m_name + ": is not a regular file";
            return false;
        }
        return Note(m_file.Open(path, m_reason));
    }
    bool Write(std::string_view bytes) override { return Note(m_file.Write(bytes, m_reason)); }
    [[nodiscard]] std::string Error() const override { return m_error; }
    bool Finish() { return Note(m_file.Commit(m_reason)); }

private:
    bool Note(bool isGood)
    {
        m_error = isGood ? "" : m_name + ": " + m_reason;
        return isGood;
    }

    ReplacingFile m_file;
    std::string m_name;
    std::string m_reason;
    std::string m_error;
};

// Local to the plant.
bool TakeTime(const char* option, const std::string& text, ZRDateTime& time, std::string& error)
{
    constexpr std::int64_t kMicros = 1000000;
    constexpr std::int64_t kEpoch = 946684800;
    std::int64_t utc = 0;
    if (text.empty()) {
        return true;
    }
    if (!ParseTime(option, text, PlantZone(), utc, error)) {
        return false;
    }
    time = ZRDateTime(static_cast<std::uint32_t>(PlantZone().ToLocal(utc / kMicros) - kEpoch), 0);
    return true;
}

bool TakeOptions(const Words& words, CsvExportOptions& options, std::string& error)
{
    TimeZone zone;
    if (!ParseZone(words.zone, zone, error)) {
        return false;
    }
    SetPlantZone(zone);
    if (!TakeTime("--from", words.from, options.from, error) || !TakeTime("--to", words.to, options.to, error) ||
        !ParsePeriod(words.period, options.period, error) ||
        !ParseCsvFormat(words.separator, words.decimal, options.format, error)) {
        return false;
    }
    if (options.format.separator == options.format.decimal) {
        error = "--decimal: the decimal mark can't be the separator";
        return false;
    }
    if (options.from.IsValid() && options.to.IsValid() && options.from >= options.to) {
        error = "--to: lies before --from";
        return false;
    }
    return true;
}

std::string NamesOf(const std::vector<LoggerDataSet>& sets)
{
    std::string names;
    for (const LoggerDataSet& set : sets) {
        names += (names.empty() ? "" : ", ") + Utf16ToUtf8(set.name);
    }
    return names.empty() ? "there is none" : "there are " + names;
}

bool TakeDataSet(LoggerReader& reader, const std::string& name, std::vector<ZRBasicString>& variables,
                 std::string& error)
{
    std::vector<LoggerDataSet> sets;
    if (!reader.DataSets(sets)) {
        error = reader.Error();
        return false;
    }
    const ZRBasicString wanted = Utf8ToUtf16(name);
    const auto found = std::find_if(sets.begin(), sets.end(), [&](const auto& set) { return set.name == wanted; });
    if (found == sets.end()) {
        error = fmt::format("--dataset: no data set '{}'; {}", name, NamesOf(sets));
        return false;
    }
    variables = found->variables;
    return true;
}

bool TakeVariable(LoggerReader& reader, const std::string& text, std::vector<ZRBasicString>& variables,
                  std::string& error)
{
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    ZRBasicString name;
    ZRBasicString plain;
    SplitFilterDriverVariable(Utf8ToUtf16(text), filter, hour, driver, name);
    JoinFilterDriverVariable({}, {}, driver, name, plain);
    if (reader.InfoCode(plain) == 0) {
        error =
            reader.Error().empty() ? "--variable: nothing is recorded of '" + Utf16ToUtf8(plain) + "'" : reader.Error();
        return false;
    }
    variables.push_back(Utf8ToUtf16(text));
    return true;
}

bool TakeVariables(const Words& words, LoggerStore& store, std::vector<ZRBasicString>& variables, std::string& error)
{
    const std::unique_ptr<LoggerReader> reader = store.OpenReader();
    if (reader == nullptr) {
        error = store.Error().empty() ? "the store can't be read" : store.Error();
        return false;
    }
    if (words.dataSet.empty() && words.variables.empty()) {
        error = "what is to be exported? Name a --dataset, or variables by --variable";
        return false;
    }
    if (!words.dataSet.empty()) {
        return TakeDataSet(*reader, words.dataSet, variables, error);
    }
    return std::all_of(words.variables.begin(), words.variables.end(),
                       [&](const std::string& text) { return TakeVariable(*reader, text, variables, error); });
}

template <typename Sink>
int Export(const CsvExportOptions& options, Sink& sink)
{
    CsvExport work(options);
    TerminalProgress progress;
    const CsvExport::Result result = work.Run(sink, &progress);
    progress.Clear();
    if (result == CsvExport::Result::Cancelled) {
        fmt::print(stderr, "cancelled\n");
        return kCommandCancelled;
    }
    if (result == CsvExport::Result::Failed || !sink.Finish()) {
        fmt::print(stderr, "{}\n", result == CsvExport::Result::Failed ? work.Error() : sink.Error());
        return kCommandFailed;
    }
    for (const std::string& remark : work.Remarks()) {
        fmt::print(stderr, "{}\n", remark);
    }
    fmt::print(stderr, "{}, {}\n", CountText(work.Rows(), "row", "rows"), CountText(work.Values(), "value", "values"));
    return work.Remarks().empty() ? kCommandDone : kCommandFound;
}

int ExportTo(const std::string& output, const CsvExportOptions& options)
{
    if (output == "-") {
        OutputSink sink;
        return Export(options, sink);
    }
    FileSink sink;
    if (!sink.Open(PathFromText(output))) {
        fmt::print(stderr, "{}\n", sink.Error());
        return kCommandFailed;
    }
    return Export(options, sink);
}

}  // namespace

int RunExport(int argc, char** argv)
{
    CLI::App app("Writes logged data as a CSV file, grouped as tables show them.", "kestrixd export");
    Words words;
    AddOptions(app, words);
    StoreArguments arguments(app);
    if (const std::optional<int> status = arguments.Parse(argc, argv)) {
        return *status;
    }
    std::string error;
    CsvExportOptions options;
    DocumentDevices devices;
    std::unique_ptr<LoggerStore> store;
    devices.SetDataFolder(arguments.DataFolder());
    if (arguments.Take(error) && TakeOptions(words, options, error) &&
        (arguments.Document().empty() || devices.Load(arguments.Document(), error))) {
        store = arguments.Open(true, error);
    }
    if (store == nullptr || !TakeVariables(words, *store, options.variables, error)) {
        fmt::print(stderr, "{}\n", error);
        return kCommandFailed;
    }
    SetLoggerStore(store.get());
    const int status = ExportTo(words.output, options);
    SetLoggerStore(nullptr);
    return status;
}

}  // namespace zr::service
