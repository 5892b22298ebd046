#include "siblings/graphsupport/CurveReader.h"

#include <algorithm>

namespace zr::graph {

namespace {

constexpr std::size_t kBlock = SampleLevels::kBlock;
constexpr std::size_t kFanOut = SampleLevels::kFanOut;
constexpr std::size_t kTally = SampleLevels::kTally;

std::size_t AlignedUp(std::size_t value, std::size_t step)
{
    return (value + step - 1) / step * step;
}

}  // namespace

CurveReader::CurveReader(const SelectedRecords& records, const SampleLevels& levels, std::size_t curve,
                         const CurveColumn& column)
    : m_records(records),
      m_levels(levels),
      m_curve(curve),
      m_column(column),
      m_hasSamples(column.column >= 0 && static_cast<std::size_t>(column.column) < records.ValuesOfRecord() &&
                   records.Size() > 0),
      m_times(records)
{
}

double CurveReader::ValueOf(std::size_t record)
{
    const RecordPiece& piece = m_times.PieceOf(record);
    const std::size_t row = (record - piece.first) * m_records.ValuesOfRecord();
    return ShownValue(piece.values[row + static_cast<std::size_t>(m_column.column)], m_column);
}

template <typename Visit>
void CurveReader::ForRows(std::size_t begin, std::size_t end, const Visit& visit)
{
    const std::size_t apart = m_records.ValuesOfRecord();
    while (begin < end && m_hasSamples) {
        const RecordPiece& piece = m_times.PieceOf(begin);
        const std::size_t skipped = begin - piece.first;
        const std::size_t rows = std::min(end - begin, piece.size - skipped);
        visit(piece.values + skipped * apart + static_cast<std::size_t>(m_column.column), rows, apart);
        begin += rows;
    }
}

ValueRange CurveReader::RangeOf(std::size_t begin, std::size_t end)
{
    const std::size_t firstBlock = AlignedUp(begin, kBlock) / kBlock;
    const std::size_t lastBlock = end / kBlock;
    ValueRange range;
    const auto add = [&](std::size_t from, std::size_t to) {
        ForRows(from, to, [&](const LoggedValue* rows, std::size_t count, std::size_t apart) {
            range.Add(RangeOfRows(rows, count, apart, m_column));
        });
    };
    if (firstBlock >= lastBlock) {
        add(begin, end);
        return range;
    }
    range = Blocks(firstBlock, lastBlock);
    // Of the blocks that the ends cut only those are read that reach beyond the others: few do.
    const SampleLevels::Extent* const blocks = m_levels.Level(m_curve, 0);
    const auto isWithin = [&](std::size_t block) {
        return blocks[block].low >= range.low && blocks[block].high <= range.high;
    };
    if (begin < firstBlock * kBlock && !isWithin(firstBlock - 1)) {
        add(begin, firstBlock * kBlock);
    }
    if (lastBlock * kBlock < end && !isWithin(lastBlock)) {
        add(lastBlock * kBlock, end);
    }
    return range;
}

// Of blocks of level 0, taken from the highest level that holds them whole.
ValueRange CurveReader::Blocks(std::size_t begin, std::size_t end) const
{
    ValueRange range;
    const auto add = [&](const SampleLevels::Extent* level, std::size_t first, std::size_t last) {
        for (std::size_t block = first; block < last; ++block) {
            range.Add(ValueRange{level[block].low, level[block].high});
        }
    };
    for (std::size_t level = 0; begin < end; ++level) {
        const SampleLevels::Extent* const blocks = m_levels.Level(m_curve, level);
        const std::size_t first = AlignedUp(begin, kFanOut);
        const std::size_t last = end / kFanOut * kFanOut;
        if (first >= last) {
            add(blocks, begin, end);
            return range;
        }
        add(blocks, begin, first);
        add(blocks, last, end);
        begin = first / kFanOut;
        end = last / kFanOut;
    }
    return range;
}

bool CurveReader::IsEmpty(std::size_t level, std::size_t block) const
{
    const SampleLevels::Extent& extent = m_levels.Level(m_curve, level)[block];
    return !(extent.low <= extent.high);
}

std::size_t CurveReader::Before(std::size_t record)
{
    if (!m_hasSamples) {
        return kNone;
    }
    while (record % kBlock != 0) {
        --record;
        const double value = ValueOf(record);
        if (value == value) {
            return record;
        }
    }
    std::size_t level = 0;
    std::size_t end = record / kBlock;
    while (end > 0 && IsEmpty(level, end - 1)) {
        --end;
        while (end % kFanOut == 0 && level + 1 < m_levels.Levels()) {
            end /= kFanOut;
            ++level;
        }
    }
    if (end == 0) {
        return kNone;
    }
    std::size_t block = end - 1;
    while (level > 0) {
        --level;
        block = std::min(block * kFanOut + kFanOut, m_levels.Blocks(level)) - 1;
        while (IsEmpty(level, block)) {
            --block;
        }
    }
    record = std::min((block + 1) * kBlock, m_records.Size()) - 1;
    for (double value = ValueOf(record); value != value; value = ValueOf(record)) {
        --record;
    }
    return record;
}

std::size_t CurveReader::From(std::size_t record)
{
    if (!m_hasSamples) {
        return kNone;
    }
    for (; record % kBlock != 0 && record < m_records.Size(); ++record) {
        const double value = ValueOf(record);
        if (value == value) {
            return record;
        }
    }
    std::size_t level = 0;
    std::size_t block = AlignedUp(record, kBlock) / kBlock;
    while (block < m_levels.Blocks(level) && IsEmpty(level, block)) {
        ++block;
        while (block % kFanOut == 0 && level + 1 < m_levels.Levels()) {
            block /= kFanOut;
            ++level;
        }
    }
    if (block >= m_levels.Blocks(level)) {
        return kNone;
    }
    while (level > 0) {
        --level;
        block *= kFanOut;
        while (IsEmpty(level, block)) {
            ++block;
        }
    }
    record = block * kBlock;
    for (double value = ValueOf(record); value != value; value = ValueOf(record)) {
        ++record;
    }
    return record;
}

std::size_t CurveReader::FirstBeyond(std::size_t begin, std::size_t end, const ValueRange& limits)
{
    const auto isBeyond = [&](double low, double high) { return low <= limits.low || high >= limits.high; };
    std::size_t record = begin;
    while (record < end) {
        if (record % kBlock == 0) {
            // Past blocks that hold none, by the largest that begins here.
            std::size_t level = 0;
            std::size_t block = record / kBlock;
            std::size_t size = kBlock;
            const auto holdsNone = [&](std::size_t tested, std::size_t at) {
                const SampleLevels::Extent& extent = m_levels.Level(m_curve, tested)[at];
                return !isBeyond(extent.low, extent.high);
            };
            if (holdsNone(level, block)) {
                while (block % kFanOut == 0 && level + 1 < m_levels.Levels() && holdsNone(level + 1, block / kFanOut)) {
                    block /= kFanOut;
                    ++level;
                    size *= kFanOut;
                }
                record += size;
                continue;
            }
        }
        const double value = ValueOf(record);
        if (isBeyond(value, value)) {
            return record;
        }
        ++record;
    }
    return end;
}

SampleLevels::Tally CurveReader::TallyOf(std::size_t begin, std::size_t end)
{
    SampleLevels::Tally tally{0.0, 0};
    const auto scan = [&](std::size_t first, std::size_t last) {
        ForRows(first, last, [&](const LoggedValue* rows, std::size_t count, std::size_t apart) {
            const RowScan part = ScanRows(rows, count, apart, m_column);
            tally.sum += part.sum;
            tally.count += part.count;
        });
    };
    const std::size_t first = AlignedUp(begin, kTally);
    const std::size_t last = end / kTally * kTally;
    if (first >= last) {
        scan(begin, end);
        return tally;
    }
    scan(begin, first);
    for (std::size_t run = first / kTally; run < last / kTally; ++run) {
        tally.sum += m_levels.Tallies(m_curve)[run].sum;
        tally.count += m_levels.Tallies(m_curve)[run].count;
    }
    scan(last, end);
    return tally;
}

}  // namespace zr::graph
