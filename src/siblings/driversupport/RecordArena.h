// The records of one group of logged data, in one piece.
#pragma once

#include "siblings/tools/ZRDateTime.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>

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

private:
    RecordNode* m_node = nullptr;
};

// Room for so many records of so many values, got and given back in four pieces whatever their number: a load of
// millions of values costs no more allocations than one of ten. Linked from the start; what the records hold is the
// caller's to write.
class RecordArena {
public:
    RecordArena() : RecordArena(0, 0) {}
    RecordArena(std::size_t records, std::size_t valuesOfRecord);

    [[nodiscard]] std::size_t Size() const { return m_size; }
    // Zero-based; Size() is the end.
    [[nodiscard]] RecordIterator At(std::size_t index) { return RecordIterator(&m_nodes[index]); }
    [[nodiscard]] LoggedRecord& Record(std::size_t index) { return m_records[index]; }
    // UTC, microseconds since 1970: in order, where local times of a record list are not.
    [[nodiscard]] std::int64_t* Times() { return m_times.get(); }
    [[nodiscard]] const std::int64_t* Times() const { return m_times.get(); }

private:
    std::size_t m_size;
    std::unique_ptr<RecordNode[]> m_nodes;  // one more for the end
    std::unique_ptr<LoggedRecord[]> m_records;
    std::unique_ptr<LoggedValue[]> m_values;
    std::unique_ptr<std::int64_t[]> m_times;
};

}  // namespace zr
