#include "siblings/driversupport/RecordArena.h"

#include <algorithm>
#include <new>

namespace zr {

namespace {

constexpr std::size_t kLargestPiece = std::size_t{64} * 1024 * 1024;

// Objects that begin to live without a value.
template <typename Plain>
Plain* Place(std::byte*& memory, std::size_t count)
{
    Plain* const first = new (memory) Plain[count];
    memory += count * sizeof(Plain);
    return first;
}

}  // namespace

RecordArena::RecordArena(std::size_t valuesOfRecord)
    : m_valuesOfRecord(valuesOfRecord), m_end(std::make_unique<RecordNode>())
{
    *m_end = {m_end.get(), m_end.get(), nullptr};
}

RecordArena::RecordArena(std::size_t records, std::size_t valuesOfRecord) : RecordArena(valuesOfRecord)
{
    Append(records);
}

RecordChunk RecordArena::Append(std::size_t records)
{
    RecordChunk chunk;
    chunk.first = m_size;
    chunk.size = records;
    if (records == 0) {
        return chunk;
    }
    constexpr std::size_t kOfRecord = sizeof(RecordNode) + sizeof(LoggedRecord) + sizeof(std::int64_t);
    std::byte* memory = Take(records * (kOfRecord + m_valuesOfRecord * sizeof(LoggedValue)));
    chunk.nodes = Place<RecordNode>(memory, records);
    chunk.times = Place<std::int64_t>(memory, records);
    chunk.values = Place<LoggedValue>(memory, records * m_valuesOfRecord);
    chunk.records = Place<LoggedRecord>(memory, records);
    RecordNode* previous = m_end->previous;
    for (std::size_t i = 0; i < records; ++i) {
        chunk.records[i].values = chunk.values + i * m_valuesOfRecord;
        RecordNode& node = chunk.nodes[i];
        node = {nullptr, previous, chunk.records + i};
        previous->next = &node;
        previous = &node;
    }
    previous->next = m_end.get();
    m_end->previous = previous;
    m_size += records;
    m_chunks.push_back(chunk);
    return chunk;
}

RecordIterator RecordArena::At(std::size_t index) const
{
    if (index >= m_size) {
        return RecordIterator(m_end.get());
    }
    const auto after = std::partition_point(m_chunks.begin(), m_chunks.end(),
                                            [index](const RecordChunk& chunk) { return chunk.first <= index; });
    const RecordChunk& chunk = *std::prev(after);
    return RecordIterator(chunk.nodes + (index - chunk.first));
}

std::size_t RecordArena::LowerBound(std::int64_t time) const
{
    const auto chunk = std::partition_point(m_chunks.begin(), m_chunks.end(), [time](const RecordChunk& tested) {
        return tested.times[tested.size - 1] < time;
    });
    if (chunk == m_chunks.end()) {
        return m_size;
    }
    const std::int64_t* const place = std::lower_bound(chunk->times, chunk->times + chunk->size, time);
    return chunk->first + static_cast<std::size_t>(place - chunk->times);
}

std::byte* RecordArena::Take(std::size_t bytes)
{
    if (m_pieces.empty() || bytes > m_pieces.back().Size() - m_taken) {
        // As much as there is already, so that the pieces stay few.
        m_pieces.emplace_back(std::max(bytes, std::min(m_held, kLargestPiece)));
        m_held += m_pieces.back().Size();
        m_taken = 0;
    }
    std::byte* const taken = m_pieces.back().Data() + m_taken;
    m_taken += bytes;
    return taken;
}

}  // namespace zr
