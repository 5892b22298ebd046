#include "logger/RecordCursor.h"

#include <cstdlib>

namespace zr::logger {

void RecordCursor::Reset(const Group* group)
{
    m_group = group;
    m_count = group != nullptr ? group->count : 0;
    m_at = group != nullptr ? group->first : RecordIterator();
    m_row = 0;
}

const LoggedRecord* RecordCursor::MoveTo(int row)
{
    if (row < 0 || row >= m_count) {
        return nullptr;
    }
    const int steps = std::abs(row - m_row);
    if (row < steps) {
        m_at = m_group->first;
        m_row = 0;
    } else if (m_count - row < steps) {
        m_at = m_group->last;
        m_row = m_count;
    }
    for (; m_row < row; ++m_row) {
        ++m_at;
    }
    for (; m_row > row; --m_row) {
        --m_at;
    }
    return *m_at;
}

}  // namespace zr::logger
