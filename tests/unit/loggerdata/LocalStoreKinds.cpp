// The stores that need nothing but this machine.
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/driversupport/store/SqliteLoggerStore.h"
#include "support/TempFolder.h"
#include "unit/loggerdata/StoreKinds.h"

namespace zr::test {

namespace {

// A folder of its own, gone with the store.
class SqliteInFolder final : public LoggerStore {
public:
    int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) override
    {
        return m_store.OpenSeries(variable, infoCode);
    }
    bool Append(std::span<const LoggerAppend> batch) override { return m_store.Append(batch); }
    bool SetDataSet(const LoggerDataSet& set) override { return m_store.SetDataSet(set); }
    Upkeep Maintain(std::int64_t now) override { return m_store.Maintain(now); }
    std::vector<std::string> TakeFindings() override { return m_store.TakeFindings(); }
    std::unique_ptr<LoggerReader> OpenReader() override { return m_store.OpenReader(); }
    [[nodiscard]] std::string Error() const override { return m_store.Error(); }

private:
    TempFolder m_folder;
    SqliteLoggerStore m_store{m_folder / "data.zrlog"};
};

}  // namespace

std::vector<StoreKind> StoreKinds()
{
    return {
        {"memory", [] { return std::make_unique<MemoryLoggerStore>(); }},
        {"sqlite", [] { return std::make_unique<SqliteInFolder>(); }},
    };
}

}  // namespace zr::test
