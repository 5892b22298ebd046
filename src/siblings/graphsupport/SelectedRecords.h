// The selected records of a group, by their number.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zr::graph {

// Records in a row in memory: their times, and their values row by row.
struct RecordPiece {
    std::size_t first = 0;  // the number of the first of them
    std::size_t size = 0;
    const std::int64_t* times = nullptr;
    const LoggedValue* values = nullptr;
};

// Numbers count from 0 at the first selected record. A view: the group must live and keep its selection.
class SelectedRecords {
public:
    SelectedRecords() = default;
    explicit SelectedRecords(const ZRLoggerData::CRecordGroup& group);

    [[nodiscard]] std::size_t Size() const { return m_size; }
    [[nodiscard]] std::size_t ValuesOfRecord() const { return m_valuesOfRecord; }
    // In order; none is empty.
    [[nodiscard]] const std::vector<RecordPiece>& Pieces() const { return m_pieces; }
    // Of a record that there is.
    [[nodiscard]] std::size_t PieceOf(std::size_t record) const;

    // Whether times go back within records [begin, end), or from the one before: in a damaged store.
    [[nodiscard]] bool GoBack(std::size_t begin, std::size_t end) const;
    // From now on no time is before any of an earlier record: such a one has the latest of those. Copies the times.
    void HoldTimes();

    // Bytes kept beside the records.
    [[nodiscard]] std::size_t Bytes() const;

private:
    std::size_t m_size = 0;
    std::size_t m_valuesOfRecord = 0;
    std::vector<RecordPiece> m_pieces;
    std::vector<std::int64_t> m_heldTimes;
};

// Reads times of records, and remembers where it did: one an operation.
class TimeReader {
public:
    explicit TimeReader(const SelectedRecords& records) : m_records(&records) {}

    // The piece of a record that there is.
    const RecordPiece& PieceOf(std::size_t record)
    {
        const RecordPiece* piece = m_records->Pieces().data() + m_piece;
        if (record - piece->first >= piece->size) {
            m_piece = m_records->PieceOf(record);
            piece = m_records->Pieces().data() + m_piece;
        }
        return *piece;
    }
    std::int64_t TimeOf(std::size_t record)
    {
        const RecordPiece& piece = PieceOf(record);
        return piece.times[record - piece.first];
    }
    // The first record at a time or after it; the number of records when there is none.
    std::size_t LowerBound(std::int64_t time) { return LowerBound(time, 0, m_records->Size() / 2); }
    // The same, where all records before a certain one are known to be earlier; quick when the guess is near.
    std::size_t LowerBound(std::int64_t time, std::size_t first, std::size_t guess);

private:
    const SelectedRecords* m_records;
    std::size_t m_piece = 0;
};

}  // namespace zr::graph
