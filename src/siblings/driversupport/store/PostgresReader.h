// Reads the store in a PostgreSQL database.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/store/PostgresConnection.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zr {

struct PostgresBlock;

// Connects at the first call, and again at the next when the connection is lost. What one call reads is of one moment.
// Blocks up to the limits of PostgresConnection.
class PostgresReader final : public LoggerReader {
public:
    PostgresReader(const std::string& connection, const PostgresLimits& limits);

    bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                    LoggerBlockVisitor& visitor) override;
    bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override;
    bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) override;
    std::int32_t InfoCode(const ZRBasicString& variable) override;
    bool DataSets(std::vector<LoggerDataSet>& sets) override;
    bool Check(LoggerCheck& check, Progress* progress) override;
    [[nodiscard]] std::string Error() const override { return m_connection.Error(); }

private:
    enum class Side { Before, From };
    struct Series {
        std::int64_t id = 0;  // 0: there is none
        std::int32_t infoCode = 0;
    };

    // False when it can't be read; then, and when there is no store yet, `hasStore` is false.
    bool Connect(bool& hasStore);
    // Finds the series and begins a transaction that sees one moment, unless there is no such series.
    bool Begin(const ZRBasicString& variable, Series& series);
    bool End();
    // Reads the samples next to a time, of the two tables; false when there is none, or on failure.
    bool Next(const ZRBasicString& variable, std::int64_t time, Side side, LoggerSample& sample);
    // The nearest of a block; false when it is damaged.
    bool NextInBlock(const PostgresBlock& block, std::int64_t time, Side side, LoggerSample& sample);
    bool CheckAll(LoggerCheck& check, Progress* progress, bool& isCancelled);
    bool CheckBlocks(std::int64_t series, const std::string& variable, LoggerCheck& check);
    bool CountWaiting(LoggerCheck& check);

    PostgresConnection m_connection;
    bool m_hasStore = false;  // on this connection
    std::vector<std::int64_t> m_times;
    std::vector<double> m_values;
};

}  // namespace zr
