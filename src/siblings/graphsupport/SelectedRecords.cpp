#include "siblings/graphsupport/SelectedRecords.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <span>

namespace zr::graph {

namespace {

// The number of a node among all records of the group; that of all records for the end.
std::size_t NumberOf(const RecordNode* node, std::span<const RecordChunk> chunks)
{
    const std::less<const RecordNode*> isBefore;
    for (const RecordChunk& chunk : chunks) {
        if (!isBefore(node, chunk.nodes) && isBefore(node, chunk.nodes + chunk.size)) {
            return chunk.first + static_cast<std::size_t>(node - chunk.nodes);
        }
    }
    return chunks.empty() ? 0 : chunks.back().first + chunks.back().size;
}

}  // namespace

SelectedRecords::SelectedRecords(const ZRLoggerData::CRecordGroup& group) : m_valuesOfRecord(group.ValuesOfRecord())
{
    if (group.count <= 0) {
        return;
    }
    const std::size_t begin = NumberOf(group.first.Node(), group.Chunks());
    const std::size_t end = begin + static_cast<std::size_t>(group.count);
    for (const RecordChunk& chunk : group.Chunks()) {
        const std::size_t from = std::max(begin, chunk.first);
        const std::size_t to = std::min(end, chunk.first + chunk.size);
        if (from < to) {
            const std::size_t skipped = from - chunk.first;
            m_pieces.push_back({m_size, to - from, chunk.times + skipped, chunk.values + skipped * m_valuesOfRecord});
            m_size += to - from;
        }
    }
}

std::size_t SelectedRecords::PieceOf(std::size_t record) const
{
    const auto after = std::partition_point(m_pieces.begin(), m_pieces.end(),
                                            [record](const RecordPiece& piece) { return piece.first <= record; });
    return static_cast<std::size_t>(after - m_pieces.begin()) - 1;
}

bool SelectedRecords::GoBack(std::size_t begin, std::size_t end) const
{
    TimeReader reader(*this);
    for (std::size_t record = begin; record < end;) {
        const RecordPiece& piece = reader.PieceOf(record);
        const std::span times(piece.times + (record - piece.first), std::min(end, piece.first + piece.size) - record);
        if (record > 0 && times.front() < TimeReader(*this).TimeOf(record - 1)) {
            return true;
        }
        // All of them, without an end in between: that is done several at a time.
        unsigned back = 0;
        for (std::size_t i = 1; i < times.size(); ++i) {
            back |= times[i] < times[i - 1] ? 1U : 0U;
        }
        if (back != 0) {
            return true;
        }
        record += times.size();
    }
    return false;
}

void SelectedRecords::HoldTimes()
{
    std::vector<std::int64_t> held;
    held.reserve(m_size);
    for (RecordPiece& piece : m_pieces) {
        for (std::size_t i = 0; i < piece.size; ++i) {
            held.push_back(held.empty() ? piece.times[i] : std::max(held.back(), piece.times[i]));
        }
        piece.times = held.data() + piece.first;
    }
    m_heldTimes = std::move(held);
}

std::size_t SelectedRecords::Bytes() const
{
    return m_pieces.capacity() * sizeof(RecordPiece) + m_heldTimes.capacity() * sizeof(std::int64_t);
}

std::size_t TimeReader::LowerBound(std::int64_t time, std::size_t first, std::size_t guess)
{
    // Steps of growing length away from the guess, then halves. Records before low are earlier, those from high on not.
    std::size_t low = first;
    std::size_t high = m_records->Size();
    if (low == high) {
        return low;
    }
    guess = std::clamp(guess, low, high - 1);
    if (TimeOf(guess) < time) {
        low = guess + 1;
        for (std::size_t step = 1; step < high - low; step *= 2) {
            if (TimeOf(low + step) >= time) {
                high = low + step;
                break;
            }
            low += step + 1;
        }
    } else {
        high = guess;
        for (std::size_t step = 1; step < high - low; step *= 2) {
            if (TimeOf(high - step) < time) {
                low = high - step + 1;
                break;
            }
            high -= step;
        }
    }
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const bool isEarlier = TimeOf(middle) < time;
        (isEarlier ? low : high) = isEarlier ? middle + 1 : middle;
    }
    return low;
}

}  // namespace zr::graph
