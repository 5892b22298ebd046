// The items that the publication watches, side by side in memory.
#pragma once

#include "dde/ZRDDEValues.h"

#include <cstdint>
#include <vector>

namespace zr::dde {

// Updates the items whose value was written since the last look, and those that post without a change. The others cost
// a few words of memory each and no more: their Update would find its value unchanged. DDE thread only.
class WatchList {
public:
    void Clear() { m_entries.clear(); }
    // Not owned; must outlive its place in the list.
    void Add(ZRDDEValues::ZRTopicItem& item);
    // In the order of adding. May call back for the data of links; items must neither come nor go meanwhile.
    void Update();

private:
    struct Entry {
        const LiveValue* live;
        ZRDDEValues::ZRTopicItem* item;
        std::uint32_t writes;
        bool isDueAnyhow;
    };

    void CollectDue();

    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_due;  // positions in m_entries, of this update
};

}  // namespace zr::dde
