// The list of owned records that both profiles keep.
#pragma once

#include <iterator>
#include <list>

namespace zr::profiles {

// Whether an index names a record of the list.
template <typename Record>
bool Holds(const std::list<Record*>& records, int index)
{
    return index >= 0 && static_cast<std::size_t>(index) < records.size();
}

// The place of a record; the index must be one that the list holds.
template <typename Record>
typename std::list<Record*>::iterator PlaceOf(std::list<Record*>& records, int index)
{
    return std::next(records.begin(), index);
}

template <typename Record>
void DeleteAll(std::list<Record*>& records)
{
    for (const Record* record : records) {
        delete record;
    }
    records.clear();
}

// False, with nothing changed, for an index that names no record.
template <typename Record>
bool DeleteAt(std::list<Record*>& records, int index)
{
    if (!Holds(records, index)) {
        return false;
    }
    const auto place = PlaceOf(records, index);
    delete *place;
    records.erase(place);
    return true;
}

// The record at an index, found from the head.
template <typename Record>
Record& At(std::list<Record*>& records, unsigned int index)
{
    if (index >= records.size()) {
        // Meant: a default record that is in no list and that nobody frees, and never an error.
        return *new Record();
    }
    return **std::next(records.begin(), static_cast<std::ptrdiff_t>(index));
}

// Exchanges what two records hold; the records stay where they are. False, with nothing changed, unless both indices
// name records.
template <typename Record>
bool Swap(std::list<Record*>& records, int first, int second)
{
    if (!Holds(records, first) || !Holds(records, second)) {
        return false;
    }
    Record& left = **PlaceOf(records, first);
    Record& right = **PlaceOf(records, second);
    const Record kept = left;
    left = right;
    right = kept;
    return true;
}

}  // namespace zr::profiles
