#include "siblings/driversupport/RecordArena.h"

namespace zr {

RecordArena::RecordArena(std::size_t records, std::size_t valuesOfRecord)
    : m_size(records),
      m_nodes(std::make_unique_for_overwrite<RecordNode[]>(records + 1)),
      m_records(std::make_unique_for_overwrite<LoggedRecord[]>(records)),
      m_values(std::make_unique_for_overwrite<LoggedValue[]>(records * valuesOfRecord)),
      m_times(std::make_unique_for_overwrite<std::int64_t[]>(records))
{
    for (std::size_t i = 0; i <= records; ++i) {
        m_nodes[i] = {&m_nodes[i < records ? i + 1 : 0], &m_nodes[i > 0 ? i - 1 : records],
                      i < records ? &m_records[i] : nullptr};
    }
    for (std::size_t i = 0; i < records; ++i) {
        m_records[i].values = &m_values[i * valuesOfRecord];
    }
}

}  // namespace zr
