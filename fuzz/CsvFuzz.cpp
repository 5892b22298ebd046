// Any file at all: an import ends, tells no more faults than it should, and enters only finite values at times that
// records can hold. The cells that the reader gives lie within the bytes that it read.
#include "siblings/driversupport/store/CsvImport.h"
#include "siblings/tools/CsvSource.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

void Expect(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

class BytesSource final : public zr::CsvSource {
public:
    BytesSource(const std::uint8_t* data, std::size_t size, std::size_t piece)
        : m_data(data), m_size(size), m_piece(piece)
    {
    }

    std::size_t Read(std::span<char> room) override
    {
        const std::size_t size = std::min({room.size(), m_piece, m_size - m_at});
        std::memcpy(room.data(), m_data + m_at, size);
        m_at += size;
        return size;
    }
    bool Rewind() override
    {
        m_at = 0;
        return true;
    }
    [[nodiscard]] std::uint64_t Size() const override { return m_size; }
    [[nodiscard]] std::string Name() const override { return "f"; }
    [[nodiscard]] std::string Error() const override { return {}; }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_piece;
    std::size_t m_at = 0;
};

class EmptyReader final : public zr::LoggerReader {
public:
    bool ReadBlocks(const ZRBasicString&, std::int64_t, std::int64_t, zr::LoggerNeed, zr::LoggerBlockVisitor&) override
    {
        return true;
    }
    bool LastBefore(const ZRBasicString&, std::int64_t, zr::LoggerSample&) override { return false; }
    bool FirstFrom(const ZRBasicString&, std::int64_t, zr::LoggerSample&) override { return false; }
    std::int32_t InfoCode(const ZRBasicString&) override { return 0; }
    bool DataSets(std::vector<zr::LoggerDataSet>&) override { return true; }
    bool Check(zr::LoggerCheck&, zr::Progress*) override { return true; }
    [[nodiscard]] std::string Error() const override { return {}; }
};

class CheckingStore final : public zr::LoggerStore {
public:
    int OpenSeries(const ZRBasicString&, std::int32_t) override { return m_series++; }
    bool Append(std::span<const zr::LoggerAppend> batch) override
    {
        constexpr std::int64_t kDay = std::int64_t{86400} * 1000000;
        for (const zr::LoggerAppend& sample : batch) {
            Expect(sample.series >= 0 && sample.series < m_series && std::isfinite(sample.value));
            // 2000 to 2135, local to any zone.
            Expect(sample.time > 10956 * kDay && sample.time < 60632 * kDay);
        }
        values += batch.size();
        return true;
    }
    bool SetDataSet(const zr::LoggerDataSet& set) override
    {
        Expect(set.period > 0);
        return true;
    }
    Upkeep Maintain(std::int64_t) override { return Upkeep::Done; }
    std::vector<std::string> TakeFindings() override { return {}; }
    std::unique_ptr<zr::LoggerReader> OpenReader() override { return std::make_unique<EmptyReader>(); }
    [[nodiscard]] std::string Error() const override { return {}; }

    std::size_t values = 0;

private:
    int m_series = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// The first byte chooses what is asked for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const std::uint8_t choice = data[0];
    BytesSource source(data + 1, size - 1, (choice & 1) != 0 ? 5 : 65536);
    zr::CsvImportOptions options;
    options.dataSet = u"s";
    options.zone = zr::TimeZone(3600, {{1017536400, 7200}, {1035680400, 3600}});
    options.isStrict = (choice & 2) != 0;
    options.mappings.resize(2);
    options.mappings[0].column = "#2";
    options.mappings[0].variable = u"A.B";
    options.mappings[1].column = "#3";
    options.mappings[1].variable = u"A.C";
    options.mappings[1].factor = 1e300;
    options.mappings[1].isSum = (choice & 4) != 0;
    if ((choice & 8) != 0) {
        options.end = std::int64_t{1041379200} * 1000000;
    }
    CheckingStore store;
    zr::CsvImport import(options, store);
    const zr::CsvImport::Result result = import.Run(source, nullptr);
    const zr::CsvImportFigures& figures = import.Figures();
    Expect(figures.values == store.values && import.Faults().size() <= zr::CsvImport::kFaultsTold);
    Expect((result == zr::CsvImport::Result::Failed) == !import.Error().empty());
    Expect(figures.values + figures.missing <= 2 * figures.rows);
    return 0;
}
