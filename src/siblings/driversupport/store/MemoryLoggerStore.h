// Logged samples in memory: for tests and for programs that keep nothing.
#pragma once

#include "siblings/driversupport/store/LoggerStore.h"

#include <map>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace zr {

// Keeps what it is given until it is destroyed; "durable" means no more than that here. Any thread.
class MemoryLoggerStore final : public LoggerStore {
public:
    MemoryLoggerStore();
    ~MemoryLoggerStore() override;

    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override;
    bool Append(std::span<const LoggerAppend> batch) override;
    bool SetDataSet(const LoggerDataSet& set) override;
    // Drops by retention; there is nothing to pack.
    Upkeep Maintain(std::int64_t now) override;
    std::vector<std::string> TakeFindings() override { return {}; }
    std::unique_ptr<LoggerReader> OpenReader() override;
    [[nodiscard]] std::string Error() const override;

    // As if the store were away: false makes every call fail from now on, those of open readers included.
    void SetAvailable(bool available);

private:
    friend class MemoryLoggerReader;

    // Never changed once it is entered, so that readers need no lock.
    struct Block {
        std::vector<std::int64_t> times;
        std::vector<double> values;
        LoggerSummary summary;
    };
    using Blocks = std::map<std::int64_t, std::shared_ptr<const Block>>;  // by hour
    struct Series {
        std::int32_t infoCode = 0;
        Blocks blocks;
    };

    void AppendToBlock(Series& series, std::int64_t hour, std::span<const LoggerAppend> samples);
    // Null for an unknown one. Under the lock.
    [[nodiscard]] const Series* Find(const ZRBasicString& variable) const;
    // Days that samples of a variable are kept; 0: for ever. Under the lock.
    [[nodiscard]] std::int32_t RetentionOf(const ZRBasicString& variable) const;

    mutable std::mutex m_guard;
    bool m_isAvailable = true;  // guarded by m_guard, as is all below
    std::unordered_map<ZRBasicString, int> m_names;
    std::vector<Series> m_series;
    std::map<ZRBasicString, LoggerDataSet> m_sets;
    std::string m_error;
};

}  // namespace zr
