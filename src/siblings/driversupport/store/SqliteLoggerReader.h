// Reads a store file over a connection of its own.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/SqliteStoreFile.h"
#include "siblings/driversupport/store/UnpackedSamples.h"

#include <filesystem>
#include <memory>
#include <string>

namespace zr {

class SqliteLoggerReader final : public LoggerReader {
public:
    // The file is looked for at the first call, and again at each one while it can't be read.
    SqliteLoggerReader(std::filesystem::path path, SqliteStoreOptions options);
    ~SqliteLoggerReader() override;

    bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                    LoggerBlockVisitor& visitor) override;
    bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override;
    bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override;
    std::int32_t InfoCode(const ZRBasicString& variable) override;
    bool DataSets(std::vector<LoggerDataSet>& sets) override;
    bool Check(LoggerCheck& check, Progress* progress) override;
    [[nodiscard]] std::string Error() const override { return m_error; }

private:
    struct Session;
    enum class Side { Before, From };

    bool Ready();
    bool Fail();
    // 0 for an unknown variable.
    bool FindSeries(const ZRBasicString& variable, std::int64_t& series, std::int64_t& infoCode);
    bool FindNext(const ZRBasicString& variable, std::int64_t time, Side side, LoggerSample& sample);

    const std::filesystem::path m_path;
    const SqliteStoreOptions m_options;
    std::unique_ptr<Session> m_session;  // null while the file isn't open
    bool m_isBroken = false;             // it is to be opened anew
    std::string m_error;
};

}  // namespace zr
