// The rows of a list of logged records, by number.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"

namespace zr::logger {

// Keeps one place in the record list and walks from there, by the next and the previous links: a list control asks in
// runs of neighbouring rows, so that one step is the usual cost. A far row is walked to from the first or the last
// record where that is nearer; there is no other index of the rows, and so nothing that grows with them. The group must
// outlive its use. UI thread only.
class RecordCursor {
public:
    using Group = ZRLoggerData::CRecordGroup;

    // To the first selected record of a group; null for none.
    void Reset(const Group* group);

    [[nodiscard]] int Count() const { return m_count; }
    // Zero-based; of the record last asked for.
    [[nodiscard]] int Row() const { return m_row; }
    // Null for a row that isn't there; the place is then kept.
    const LoggedRecord* MoveTo(int row);

private:
    const Group* m_group = nullptr;
    int m_count = 0;
    RecordIterator m_at;
    int m_row = 0;
};

}  // namespace zr::logger
