// Logged samples in one file on this machine. docs/formats/logger-store.md tells what is in it.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/SqliteStoreFile.h"

#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace zr {

class SqliteUpkeep;
struct SqliteSession;

// The file is looked for at the first call and whenever a call before failed or it was removed or replaced; it is made,
// with its folder, where it is missing.
class SqliteLoggerStore final : public LoggerStore {
public:
    using Options = SqliteStoreOptions;

    explicit SqliteLoggerStore(std::filesystem::path file, Options options = {});
    ~SqliteLoggerStore() override;

    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override;
    bool Append(std::span<const LoggerAppend> batch) override;
    bool SetDataSet(const LoggerDataSet& set) override;
    Upkeep Maintain(std::int64_t now) override;
    std::vector<std::string> TakeFindings() override;
    // Any thread.
    std::unique_ptr<LoggerReader> OpenReader() override;
    [[nodiscard]] std::string Error() const override { return m_error; }

private:
    struct Handle {
        ZRBasicString variable;
        std::int32_t infoCode = 0;
        std::int64_t series = 0;  // in the file that is open; 0: not looked up there
    };

    bool Ready();
    bool CheckIdentity();
    // Ends a call that failed; false.
    bool Fail();
    bool Fail(const std::string& why);
    bool LookUp(Handle& handle);
    bool AddSeries(Handle& handle);
    // Within a transaction.
    bool EnterSeries(Handle& handle);
    bool EnterSeriesOf(std::span<const LoggerAppend> batch);
    bool Enter(std::span<const LoggerAppend> batch);
    bool EnterGroups(std::span<const LoggerAppend> batch);
    bool EnterSeriesGroups(std::int64_t series, std::span<const LoggerSample> samples);
    bool EnterGroup(std::int64_t series, std::int64_t hour, std::span<const LoggerSample> samples);
    bool EnterSamples(std::int64_t series, std::span<const LoggerSample> samples);
    bool EnterSample(std::int64_t series, const LoggerSample& sample);
    bool WriteDataSet(const LoggerDataSet& set, const std::vector<std::int64_t>& series);

    const std::filesystem::path m_path;
    const Options m_options;
    std::vector<Handle> m_handles;
    std::unordered_map<ZRBasicString, int> m_names;
    std::unique_ptr<SqliteUpkeep> m_upkeep;
    std::unique_ptr<SqliteSession> m_session;  // null while the file isn't open
    std::vector<std::string> m_findings;       // of files that were closed since
    bool m_isBroken = false;                   // it is to be opened anew
    std::string m_error;
};

}  // namespace zr
