#include "hosts/kestrixd/ImportCommand.h"

#include "hosts/kestrixd/Commands.h"
#include "hosts/kestrixd/CommandText.h"
#include "hosts/kestrixd/DocumentDevices.h"
#include "hosts/kestrixd/StoreArguments.h"
#include "hosts/kestrixd/TerminalProgress.h"
#include "platform/Clock.h"
#include "platform/FileReplace.h"
#include "siblings/driversupport/store/CsvImport.h"
#include "siblings/driversupport/ZRDriverVariable.h"
#include "siblings/tools/CsvSource.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <algorithm>
#include <CLI/CLI.hpp>
#include <limits>

namespace zr::service {
namespace {

struct Words {
    std::string file;
    std::string dataSet;
    std::vector<std::string> maps;
    std::vector<std::string> missing;
    std::string timeColumn;
    std::string zone;
    std::string separator;
    std::string decimal;
    std::string period;
    std::string end;
    std::int32_t retention = -1;
    bool isOnce = false;
    bool isStrict = false;
};

void AddOptions(CLI::App& app, Words& words)
{
    app.add_option("FILE", words.file, "the CSV file; - is standard input")->required();
    app.add_option("--dataset", words.dataSet, "data set that the variables are entered in")
        ->type_name("NAME")
        ->required();
    app.add_option(
           "--map", words.maps,
           "what becomes of a column: COLUMN=VARIABLE, with factors (*1000/60), a class (:counter) and :sum for "
           "increments as in active_kW=METER-1.EAI*1000/60:counter:sum=0; #N is the N-th column, a variable "
           "alone is its own column")
        ->type_name("COLUMN=VARIABLE")
        ->required();
    app.add_option("--time", words.timeColumn, "column of the times (default: \"time\", else the first)")
        ->type_name("COLUMN");
    app.add_option("--zone", words.zone, "time zone of times without an offset (default: this system's)")
        ->type_name("ZONE");
    app.add_option("--separator", words.separator, "between cells: , ; or tab (default: found out)")->type_name("MARK");
    app.add_option("--decimal", words.decimal, "decimal mark: . or , (default: found out)")->type_name("MARK");
    app.add_option("--missing", words.missing, "a text that stands for no value, as the empty cell does")
        ->type_name("TEXT")
        ->allow_extra_args(false);
    app.add_option("--end", words.end,
                   "moves all rows by the same whole number of periods, so that the last lies at this time or just "
                   "before it; now is the present moment")
        ->type_name("TIME");
    app.add_option("--period", words.period, "of a data set that is new (default: the usual step between rows)")
        ->type_name("PERIOD");
    app.add_option("--retention", words.retention, "days that a data set that is new keeps samples; 0: for ever")
        ->type_name("DAYS")
        ->check(CLI::Range(0, RecordingFile::kLongestRetention));
    app.add_flag("--once", words.isOnce, "do nothing when one of the variables has samples already");
    app.add_flag("--strict", words.isStrict, "end at the first cell or row that can't be read");
    app.footer(
        "What can't be read is told with file, line and column, and left out. Of rows at the same time the last "
        "counts.\nExit status: 0 all imported, 1 something was left out, 2 failed, 130 cancelled (what was imported "
        "stays).");
}

void Complain(const std::string& text)
{
    fmt::print(stderr, "{}\n", text);
}

bool TakeMaps(const std::vector<std::string>& texts, std::vector<CsvMapping>& mappings, std::string& error)
{
    return std::all_of(texts.begin(), texts.end(), [&](const std::string& text) {
        std::string reason;
        const bool isGood = CsvMapping::Parse(text, mappings.emplace_back(), reason);
        error = isGood ? "" : "--map " + reason;
        return isGood;
    });
}

// What the recording file says of the data set, unless the command line does.
void TakeRecordedSet(const RecordingFile& recording, CsvImportOptions& options)
{
    const auto found = std::find_if(recording.dataSets.begin(), recording.dataSets.end(),
                                    [&](const auto& set) { return set.name == options.dataSet; });
    if (found != recording.dataSets.end()) {
        options.period = found->period;
        options.retention = found->retention;
    }
}

bool TakeOptions(const Words& words, const StoreArguments& store, CsvImportOptions& options, std::string& error)
{
    options.dataSet = Utf8ToUtf16(words.dataSet);
    if (!IsValidId(options.dataSet, true)) {
        error = "--dataset: '" + words.dataSet + "' is no name of letters, digits, blanks, - and _";
        return false;
    }
    TakeRecordedSet(store.Recording(), options);
    options.retention = words.retention >= 0 ? words.retention : options.retention;
    options.timeColumn = words.timeColumn;
    options.missing = words.missing;
    options.isStrict = words.isStrict;
    if (!TakeMaps(words.maps, options.mappings, error) || !ParseZone(words.zone, options.zone, error) ||
        !ParseCsvFormat(words.separator, words.decimal, options.format, error) ||
        (!words.period.empty() && !ParsePeriod(words.period, options.period, error))) {
        return false;
    }
    if (!words.end.empty() && !ParseTime("--end", words.end, options.zone, options.end.emplace(), error)) {
        return false;
    }
    return true;
}

// The class of a variable that isn't told is the device's.
void TakeClasses(std::vector<CsvMapping>& mappings)
{
    for (CsvMapping& mapping : mappings) {
        ZRDriverVariable variable;
        ZRDeviceDriver::tagSVariableInfo told;
        variable.Setup(mapping.variable);
        if (mapping.infoCode == 0 && variable.Lock() && variable.Info(told)) {
            mapping.infoCode = told.infoCode;
        }
    }
}

// A variable of the mappings that has samples; empty when none has.
std::string FindRecorded(LoggerStore& store, const std::vector<CsvMapping>& mappings)
{
    const std::unique_ptr<LoggerReader> reader = store.OpenReader();
    for (const CsvMapping& mapping : mappings) {
        LoggerSample sample;
        if (reader != nullptr &&
            reader->LastBefore(mapping.variable, std::numeric_limits<std::int64_t>::max() / 2, sample)) {
            return Utf16ToUtf8(mapping.variable);
        }
    }
    return {};
}

void TellLeftOut(const CsvImport& import)
{
    const CsvImportFigures& figures = import.Figures();
    for (const std::string& fault : import.Faults()) {
        Complain(fault);
    }
    const std::size_t faults = figures.badCells + figures.badRows;
    if (faults > import.Faults().size()) {
        Complain(fmt::format("... and {} more like these", CountText(faults - import.Faults().size())));
    }
}

void TellFigures(const std::string& file, const CsvImportFigures& figures, const CsvImportOptions& options,
                 double seconds)
{
    fmt::print("{}: {}, {} in {:.2f} s\n", file, CountText(figures.rows, "row", "rows"),
               CountText(figures.values, "value", "values"), seconds);
    if (figures.values != 0) {
        fmt::print("  from {} to {}, into data set {} (every {} s)\n", TimeText(figures.first, options.zone),
                   TimeText(figures.last, options.zone), Utf16ToUtf8(options.dataSet), figures.period);
    }
    const auto tell = [](std::size_t count, const char* one, const char* many) {
        if (count != 0) {
            fmt::print("  {}\n", CountText(count, one, many));
        }
    };
    tell(figures.missing, "cell without a value", "cells without a value");
    tell(figures.doubled, "row at the time of the one before: the later one counts",
         "rows at the time of the one before: the later ones count");
    tell(figures.unordered, "row earlier than the one before", "rows earlier than the one before");
    tell(figures.badRows, "row left out", "rows left out");
    tell(figures.badCells, "cell left out", "cells left out");
}

int Import(const std::string& file, const CsvImportOptions& options, LoggerStore& store)
{
    std::string error;
    CsvFileSource source;
    if (!source.Open(PathFromText(file), error)) {
        Complain(error);
        return kCommandFailed;
    }
    const std::chrono::steady_clock::time_point start = CurrentClock().Steady();
    CsvImport import(options, store);
    CsvImport::Result result = CsvImport::Result::Failed;
    {
        TerminalProgress progress;
        result = import.Run(source, &progress);
    }
    const std::chrono::duration<double> span = CurrentClock().Steady() - start;
    TellLeftOut(import);
    if (result == CsvImport::Result::Failed) {
        Complain(import.Error());
    }
    if (result != CsvImport::Result::Failed || import.Figures().values != 0) {
        TellFigures(source.Name(), import.Figures(), options, span.count());
    }
    if (result == CsvImport::Result::Cancelled) {
        Complain("cancelled: the rest of the file is not imported");
        return kCommandCancelled;
    }
    const bool isWhole = import.Figures().badCells == 0 && import.Figures().badRows == 0;
    return result == CsvImport::Result::Failed ? kCommandFailed : (isWhole ? kCommandDone : kCommandFound);
}

}  // namespace

int RunImport(int argc, char** argv)
{
    CLI::App app("Brings the values of a CSV file into the store of logged data, also while it is recorded into.",
                 "kestrixd import");
    Words words;
    AddOptions(app, words);
    StoreArguments arguments(app);
    if (const std::optional<int> status = arguments.Parse(argc, argv)) {
        return *status;
    }
    std::string error;
    CsvImportOptions options;
    DocumentDevices devices;
    std::unique_ptr<LoggerStore> store;
    if (arguments.Take(error) && TakeOptions(words, arguments, options, error) &&
        (arguments.Document().empty() || devices.Load(arguments.Document(), error))) {
        store = arguments.Open(false, error);
    }
    if (store == nullptr) {
        Complain(error);
        return kCommandFailed;
    }
    TakeClasses(options.mappings);
    if (words.isOnce) {
        if (const std::string recorded = FindRecorded(*store, options.mappings); !recorded.empty()) {
            fmt::print("{}: {} has samples already, so nothing is imported\n", arguments.Title(), recorded);
            return kCommandDone;
        }
    }
    return Import(words.file, options, *store);
}

}  // namespace zr::service
