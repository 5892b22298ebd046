// The bytes of a file of the spool, docs/formats/spool.md: samples of which every whole record can be read, whatever
// became of the rest.
#pragma once

#include "siblings/driversupport/recorder/RecordBatch.h"
#include "siblings/driversupport/recorder/RecordNames.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zr {

inline constexpr std::string_view kSpoolHead = "ZRSPOOL1";
// The most samples in a record; a batch that has more takes several.
inline constexpr std::size_t kMaxSpoolSamples = 65536;
inline constexpr std::size_t kSpoolSampleBytes = 12;
// The most bytes of a record's content. Whatever claims to have more is damaged.
inline constexpr std::size_t kMaxSpoolContent = 1u << 20;

// Writes the bytes of one file, in portions. One thread at a time.
class SpoolWriter {
public:
    // names: Not owned; must outlive this.
    explicit SpoolWriter(const RecordNames& names) : m_names(names) {}

    // The next portion: a head before the first record, names before their first use, then the samples. sequence: how
    // many samples were spooled before. False, with nothing in out, when a name is longer than the format allows. What
    // was encoded is written, or the writer isn't used any more: it doesn't repeat names.
    bool Encode(std::span<const RecordBatch> batches, std::uint64_t sequence, std::string& out);

private:
    void EncodeNames(std::span<const RecordBatch> batches, std::string& out);
    void AddName(const ZRBasicString& name, std::string& content);
    static void EncodeSamples(const RecordBatch& batch, std::span<const RecordedValue> values, std::uint64_t sequence,
                              std::string& out);

    const RecordNames& m_names;
    bool m_hasHead = false;
    bool m_isTooLong = false;
    std::vector<bool> m_hasVariable;  // by number: its name is in the file
    std::vector<bool> m_hasDataSet;
};

// Finds the records in the bytes of one file; what is no whole record is passed over. One thread at a time.
class SpoolReader {
public:
    // bytes, names: Not owned; must outlive this.
    SpoolReader(std::string_view bytes, RecordNames& names);

    // The samples of the next record, with their names entered in `names`; false at the end.
    bool Next(RecordBatch& batch, std::uint64_t& sequence);

    // False for the bytes of a format that a later program made: nothing is read of them.
    [[nodiscard]] bool IsOfThisFormat() const { return m_isOfThisFormat; }
    // The number after that of the last sample seen so far, records included whose names are lost; 0: none seen.
    [[nodiscard]] std::uint64_t End() const { return m_end; }
    // Bytes passed over before the last whole record.
    [[nodiscard]] std::size_t Skipped() const { return m_skipped; }

private:
    // The content of the record at the position; empty when there is none whole.
    std::string_view ContentAt(std::size_t position);
    bool ReadNames(std::string_view content);
    bool ReadSamples(std::string_view content, RecordBatch& batch, std::uint64_t& sequence);

    std::string_view m_bytes;
    RecordNames& m_names;
    bool m_isOfThisFormat = true;
    std::size_t m_position = 0;
    std::size_t m_goodEnd = 0;
    std::size_t m_skipped = 0;
    std::uint64_t m_end = 0;
    std::size_t m_patience = 0;                          // bytes that may still be looked at in vain
    std::unordered_map<std::uint32_t, int> m_variables;  // number in the file -> of m_names
    std::unordered_map<std::uint32_t, int> m_dataSets;
};

}  // namespace zr
