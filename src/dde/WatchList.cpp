#include "dde/WatchList.h"

namespace zr::dde {

namespace {

// How far ahead of the one in hand the memory of the next ones is asked for.
constexpr std::size_t kValuesAhead = 16;
constexpr std::size_t kItemsAhead = 6;

}  // namespace

void WatchList::Add(ZRDDEValues::ZRTopicItem& item)
{
    m_entries.push_back({item.variable.Live(), &item, 0, true});
}

void WatchList::Update()
{
    CollectDue();
    const std::size_t count = m_due.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i + kItemsAhead < count) {
            m_entries[m_due[i + kItemsAhead]].item->Prefetch();
        }
        Entry& entry = m_entries[m_due[i]];
        entry.item->Update();
        entry.isDueAnyhow = entry.live == nullptr || entry.item->PostsWithoutChange();
    }
}

// The number of writes is taken before the value is read: what is written in between is looked at once more next time.
void WatchList::CollectDue()
{
    m_due.clear();
    const std::size_t count = m_entries.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i + kValuesAhead < count) {
            __builtin_prefetch(m_entries[i + kValuesAhead].live);
        }
        Entry& entry = m_entries[i];
        const std::uint32_t writes = entry.live != nullptr ? entry.live->Writes() : 0;
        if (entry.isDueAnyhow || writes != entry.writes) {
            entry.writes = writes;
            m_due.push_back(static_cast<std::uint32_t>(i));
        }
    }
}

}  // namespace zr::dde
