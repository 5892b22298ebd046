// The records of one group of logged data, in one piece.
#pragma once

#include "platform/LargeMemory.h"
#include "siblings/tools/ZRDateTime.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
#include <vector>

namespace zr {

struct LoggedValue {
    std::uint8_t valid;  // 0: the record holds no value for this variable
    double value;        // in the scale of the variable's valueExponent
};

struct LoggedRecord {
    ZRDateTime time;                // local to the plant
    LoggedValue* values = nullptr;  // one a variable, in order of the list
};

// A doubly linked list of records: the end is a node without a record, and the list a ring.
struct RecordNode {
    RecordNode* next;
    RecordNode* previous;
    LoggedRecord* record;
};

// Walks the list in both directions.
class RecordIterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = LoggedRecord*;
    using difference_type = std::ptrdiff_t;
    using pointer = LoggedRecord* const*;
    using reference = LoggedRecord*;

    RecordIterator() = default;
    explicit RecordIterator(RecordNode* node) : m_node(node) {}

    LoggedRecord* operator*() const { return m_node->record; }
    RecordIterator& operator++()
    {
        m_node = m_node->next;
        return *this;
    }
    RecordIterator operator++(int)
    {
        const RecordIterator old = *this;
        m_node = m_node->next;
        return old;
    }
    RecordIterator& operator--()
    {
        m_node = m_node->previous;
        return *this;
    }
    RecordIterator operator--(int)
    {
        const RecordIterator old = *this;
        m_node = m_node->previous;
        return old;
    }
    friend bool operator==(const RecordIterator&, const RecordIterator&) = default;

    [[nodiscard]] const RecordNode* Node() const { return m_node; }

private:
    RecordNode* m_node = nullptr;
};

// Records that were made room for together, in a row.
struct RecordChunk {
    std::size_t first = 0;            // the index of the first of them
    std::size_t size = 0;             //
    RecordNode* nodes = nullptr;      // linked
    LoggedRecord* records = nullptr;  // each with its place for values; time is the caller's to write, as are
    LoggedValue* values = nullptr;    // those of the first record, of the second, and so on, and
    std::int64_t* times = nullptr;    // UTC, microseconds since 1970: in order, where local times are not
};

// Room for records of so many values, got and given back in a few pieces whatever their number: a load of millions of
// values costs hardly more allocations than one of ten. Linked from the start; what the records hold is the caller's to
// write.
class RecordArena {
public:
    RecordArena() : RecordArena(0) {}
    explicit RecordArena(std::size_t valuesOfRecord);
    // With one chunk of so many records.
    RecordArena(std::size_t records, std::size_t valuesOfRecord);

    // Room for so many more, behind those there are. Iterators stay valid.
    RecordChunk Append(std::size_t records);

    [[nodiscard]] std::size_t Size() const { return m_size; }
    [[nodiscard]] std::size_t ValuesOfRecord() const { return m_valuesOfRecord; }
    // In order.
    [[nodiscard]] std::span<const RecordChunk> Chunks() const { return m_chunks; }
    // Zero-based; Size() is the end.
    [[nodiscard]] RecordIterator At(std::size_t index) const;
    [[nodiscard]] LoggedRecord& Record(std::size_t index) const { return **At(index); }
    // The first record at a time (as in RecordChunk::times) or after it; Size() when there is none.
    [[nodiscard]] std::size_t LowerBound(std::int64_t time) const;

private:
    // So many bytes of the last piece, or of a new one.
    std::byte* Take(std::size_t bytes);

    std::size_t m_size = 0;
    std::size_t m_valuesOfRecord;
    std::vector<LargeMemory> m_pieces;
    std::size_t m_taken = 0;  // bytes of the last piece
    std::size_t m_held = 0;   // bytes of all pieces
    std::vector<RecordChunk> m_chunks;
    std::unique_ptr<RecordNode> m_end;
};

}  // namespace zr
