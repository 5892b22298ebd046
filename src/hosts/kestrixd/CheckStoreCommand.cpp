#include "hosts/kestrixd/CheckStoreCommand.h"

#include "hosts/kestrixd/Commands.h"
#include "hosts/kestrixd/CommandText.h"
#include "hosts/kestrixd/StoreArguments.h"
#include "hosts/kestrixd/TerminalProgress.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <algorithm>
#include <CLI/CLI.hpp>
#include <limits>

namespace zr::service {
namespace {

struct Span {
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::int64_t last = std::numeric_limits<std::int64_t>::min();
};

Span SpanOf(LoggerReader& reader, const LoggerDataSet& set)
{
    constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max() / 2;
    Span span;
    for (const ZRBasicString& variable : set.variables) {
        LoggerSample sample;
        if (reader.FirstFrom(variable, -kFar, sample)) {
            span.first = std::min(span.first, sample.time);
        }
        if (reader.LastBefore(variable, kFar, sample)) {
            span.last = std::max(span.last, sample.time);
        }
    }
    return span;
}

void TellDataSets(LoggerReader& reader)
{
    std::vector<LoggerDataSet> sets;
    if (!reader.DataSets(sets)) {
        return;  // the check has told why
    }
    for (const LoggerDataSet& set : sets) {
        const Span span = SpanOf(reader, set);
        fmt::print("  data set {}: {}, every {} s, kept {}\n", Utf16ToUtf8(set.name),
                   CountText(set.variables.size(), "variable", "variables"), set.period,
                   set.retention == 0 ? "for ever" : CountText(static_cast<std::size_t>(set.retention), "day", "days"));
        if (span.first <= span.last) {
            fmt::print("    from {} to {}\n", TimeText(span.first, PlantZone()), TimeText(span.last, PlantZone()));
        } else {
            fmt::print("    no samples\n");
        }
    }
}

int Report(const std::string& title, LoggerReader& reader, const LoggerCheck& check)
{
    fmt::print("{}: {}, {} with {}, {} not packed yet\n", title, CountText(check.series, "variable", "variables"),
               CountText(check.blocks, "block", "blocks"), CountText(check.packed, "sample", "samples"),
               CountText(check.unpacked, "sample", "samples"));
    TellDataSets(reader);
    for (const std::string& finding : check.findings) {
        fmt::print("  {}\n", finding);
    }
    if (check.findings.empty()) {
        fmt::print("  nothing is wrong\n");
        return kCommandDone;
    }
    fmt::print("  {}\n", CountText(check.findings.size(), "finding", "findings"));
    return kCommandFound;
}

int Check(const std::string& title, LoggerStore& store)
{
    const std::unique_ptr<LoggerReader> reader = store.OpenReader();
    if (reader == nullptr) {
        fmt::print(stderr, "{}\n", store.Error().empty() ? title + ": can't be read" : store.Error());
        return kCommandFailed;
    }
    LoggerCheck check;
    bool isDone = false;
    bool isCancelled = false;
    {
        TerminalProgress progress;
        progress.SetText(u"Checking");
        isDone = reader->Check(check, &progress);
        isCancelled = progress.IsCancelled();
    }
    if (isDone && check.series == 0 && !check.findings.empty()) {
        // Nothing of it could be read.
        for (const std::string& finding : check.findings) {
            fmt::print(stderr, "{}\n", finding);
        }
        return kCommandFailed;
    }
    if (isDone) {
        return Report(title, *reader, check);
    }
    fmt::print(stderr, "{}\n", isCancelled ? "cancelled" : reader->Error());
    return isCancelled ? kCommandCancelled : kCommandFailed;
}

}  // namespace

int RunCheckStore(int argc, char** argv)
{
    CLI::App app("Verifies the store of logged data, block by block, and tells what is in it. Changes no sample.",
                 "kestrixd check-store");
    app.footer("Exit status: 0 nothing is wrong, 1 with findings, 2 the store can't be opened, 130 cancelled.");
    StoreArguments arguments(app);
    if (const std::optional<int> status = arguments.Parse(argc, argv)) {
        return *status;
    }
    std::string error;
    std::unique_ptr<LoggerStore> store;
    if (arguments.Take(error)) {
        store = arguments.Open(true, error);
    }
    if (store == nullptr) {
        fmt::print(stderr, "{}\n", error);
        return kCommandFailed;
    }
    return Check(arguments.Title(), *store);
}

}  // namespace zr::service
