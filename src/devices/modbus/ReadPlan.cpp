#include "devices/modbus/ReadPlan.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace zr::modbus {
namespace {

using Order = std::vector<std::size_t>;

std::uint32_t End(const ReadItem& item)
{
    return std::uint32_t{item.first} + item.count;
}

// Positions of the items by function and address.
Order Sorted(std::span<const ReadItem> items)
{
    Order order(items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        const auto key = [&](std::size_t at) {
            return std::tuple(items[at].function, items[at].first, items[at].count, at);
        };
        return key(left) < key(right);
    });
    return order;
}

// The end, in order, of the items from `begin` on that no gap too long for a request cuts apart.
std::size_t IslandEnd(std::span<const ReadItem> items, const Order& order, std::size_t begin, std::uint32_t gap)
{
    std::uint32_t used = End(items[order[begin]]);
    std::size_t end = begin + 1;
    for (; end < order.size(); ++end) {
        const ReadItem& next = items[order[end]];
        if (next.function != items[order[begin]].function || next.first > used + gap)
            break;
        used = std::max(used, End(next));
    }
    return end;
}

// Covers the items of one island, from the lowest address on; a request takes all that it can hold.
void CoverIsland(std::span<const ReadItem> items, Order island, std::uint32_t limit, std::vector<PlannedRead>& reads)
{
    while (!island.empty()) {
        const ReadItem& lowest = items[island.front()];
        PlannedRead read{lowest.function, lowest.first, 0, {}};
        std::uint32_t end = 0;
        Order left;
        for (const std::size_t at : island) {
            if (End(items[at]) > std::uint32_t{lowest.first} + limit) {
                left.push_back(at);
                continue;
            }
            read.items.push_back(at);
            end = std::max(end, End(items[at]));
        }
        if (read.items.empty())
            return;  // an item longer than the limit, which the caller excludes
        read.count = static_cast<std::uint16_t>(end - lowest.first);
        reads.push_back(std::move(read));
        island = std::move(left);
    }
}

}  // namespace

std::vector<PlannedRead> PlanReads(std::span<const ReadItem> items, const ReadLimits& limits)
{
    const Order order = Sorted(items);
    std::vector<PlannedRead> reads;
    for (std::size_t begin = 0; begin < order.size();) {
        const bool bits = IsBitFunction(items[order[begin]].function);
        const std::size_t end = IslandEnd(items, order, begin, bits ? limits.gapBits : limits.gapRegisters);
        CoverIsland(
            items,
            Order(order.begin() + static_cast<std::ptrdiff_t>(begin), order.begin() + static_cast<std::ptrdiff_t>(end)),
            bits ? limits.maxBits : limits.maxRegisters, reads);
        begin = end;
    }
    return reads;
}

}  // namespace zr::modbus
