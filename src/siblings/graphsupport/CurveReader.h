// Reads the samples of one curve by the number of their record.
#pragma once

#include "siblings/graphsupport/CurveColumn.h"
#include "siblings/graphsupport/SampleLevels.h"
#include "siblings/graphsupport/SelectedRecords.h"

#include <cstddef>
#include <cstdint>

namespace zr::graph {

// Remembers where it read last: one an operation. Records and levels must outlive this.
class CurveReader {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    CurveReader(const SelectedRecords& records, const SampleLevels& levels, std::size_t curve,
                const CurveColumn& column);

    [[nodiscard]] const CurveColumn& Column() const { return m_column; }
    [[nodiscard]] std::size_t Records() const { return m_hasSamples ? m_records.Size() : 0; }

    std::int64_t TimeOf(std::size_t record) { return m_times.TimeOf(record); }
    // As drawn; not a number where the record has no sample of the curve.
    double ValueOf(std::size_t record);
    // See TimeReader.
    std::size_t LowerBound(std::int64_t time) { return m_hasSamples ? m_times.LowerBound(time) : 0; }
    std::size_t LowerBound(std::int64_t time, std::size_t first, std::size_t guess)
    {
        return m_hasSamples ? m_times.LowerBound(time, first, guess) : 0;
    }

    // Of the samples of records [begin, end).
    ValueRange RangeOf(std::size_t begin, std::size_t end);
    // The last sample before a record; the first from a record on; kNone when there is none.
    std::size_t Before(std::size_t record);
    std::size_t From(std::size_t record);
    // The first record of [begin, end) whose sample is at most low or at least high. There must be one.
    std::size_t FirstBeyond(std::size_t begin, std::size_t end, const ValueRange& limits);
    // Sum of the unfolded values of records [begin, end), scaled by SampleLevels::kSumScale, and their count.
    SampleLevels::Tally TallyOf(std::size_t begin, std::size_t end);

private:
    // The values of the column in records [begin, end), piece by piece: the first, how many, and how far apart.
    template <typename Visit>
    void ForRows(std::size_t begin, std::size_t end, const Visit& visit);
    [[nodiscard]] ValueRange Blocks(std::size_t begin, std::size_t end) const;
    [[nodiscard]] bool IsEmpty(std::size_t level, std::size_t block) const;

    const SelectedRecords& m_records;
    const SampleLevels& m_levels;
    std::size_t m_curve;
    const CurveColumn& m_column;
    bool m_hasSamples;  // false: the records have no such column
    TimeReader m_times;
};

}  // namespace zr::graph
