#include "devices/modbus/ReadPlan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>

namespace zr::modbus {
namespace {

constexpr auto kHolding = Function::ReadHoldingRegisters;
constexpr auto kInput = Function::ReadInputRegisters;
constexpr auto kCoils = Function::ReadCoils;

ReadLimits Limits(std::uint16_t gap, std::uint16_t most)
{
    return {gap, gap, most, most};
}

// "F:first+count" of each request, in order.
std::string Told(const std::vector<PlannedRead>& reads)
{
    std::string told;
    for (const PlannedRead& read : reads) {
        if (!told.empty())
            told += ' ';
        told += std::to_string(static_cast<int>(read.function)) + ":" + std::to_string(read.first) + "+" +
                std::to_string(read.count);
    }
    return told;
}

TEST(ReadPlanTest, NeighboursBecomeOneRequestAsFarAsTheLimitsAllow)
{
    const struct {
        const char* what;
        std::vector<ReadItem> items;
        ReadLimits limits;
        const char* plan;
    } rows[] = {
        {"nothing to read", {}, Limits(0, 10), ""},
        {"one variable", {{kHolding, 5, 2}}, Limits(0, 10), "3:5+2"},
        {"adjacent", {{kHolding, 5, 2}, {kHolding, 7, 2}}, Limits(0, 10), "3:5+4"},
        {"in any order", {{kHolding, 7, 2}, {kHolding, 5, 2}}, Limits(0, 10), "3:5+4"},
        {"a gap that is allowed", {{kHolding, 0, 1}, {kHolding, 4, 1}}, Limits(3, 10), "3:0+5"},
        {"a gap one too long", {{kHolding, 0, 1}, {kHolding, 5, 1}}, Limits(3, 10), "3:0+1 3:5+1"},
        {"exactly the size limit", {{kHolding, 0, 5}, {kHolding, 5, 5}}, Limits(0, 10), "3:0+10"},
        {"one above the size limit", {{kHolding, 0, 5}, {kHolding, 5, 6}}, Limits(0, 10), "3:0+5 3:5+6"},
        {"never a part of a variable", {{kHolding, 0, 9}, {kHolding, 9, 2}}, Limits(0, 10), "3:0+9 3:9+2"},
        {"never two functions", {{kHolding, 0, 1}, {kInput, 1, 1}}, Limits(5, 10), "3:0+1 4:1+1"},
        {"two bits of one register", {{kHolding, 3, 1}, {kHolding, 3, 1}}, Limits(0, 10), "3:3+1"},
        {"one inside another", {{kHolding, 3, 4}, {kHolding, 4, 1}}, Limits(0, 10), "3:3+4"},
        {"bits by their own limits", {{kCoils, 0, 1}, {kCoils, 12, 1}}, {0, 11, 1, 13}, "1:0+13"},
        {"the last address", {{kHolding, 65534, 2}, {kHolding, 65533, 1}}, Limits(0, 10), "3:65533+3"},
        {"the protocol's own limit", {{kInput, 0, 125}, {kInput, 125, 1}}, {}, "4:0+125 4:125+1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Told(PlanReads(row.items, row.limits)), row.plan) << row.what;
}

TEST(ReadPlanTest, ARegisterThatAnotherRequestReadsIsNoGap)
{
    // 0+2 and 4+2 fit one request of six, 2+6 doesn't; what lies between the two is yet in use.
    const std::vector<ReadItem> items = {{kHolding, 0, 2}, {kHolding, 2, 6}, {kHolding, 4, 2}};
    EXPECT_EQ(Told(PlanReads(items, Limits(0, 6))), "3:0+6 3:2+6");
}

// Whether one request may read the items of the group.
bool CanMerge(const std::vector<ReadItem>& items, const std::vector<std::size_t>& group, const ReadLimits& limits)
{
    std::uint32_t first = 0xFFFFFFFF;
    std::uint32_t end = 0;
    for (const std::size_t at : group) {
        if (items[at].function != items[group[0]].function)
            return false;
        first = std::min<std::uint32_t>(first, items[at].first);
        end = std::max<std::uint32_t>(end, std::uint32_t{items[at].first} + items[at].count);
    }
    if (end - first > limits.maxRegisters)
        return false;
    std::uint32_t unused = 0;
    for (std::uint32_t address = first; address < end; ++address) {
        const bool used = std::any_of(items.begin(), items.end(), [&](const ReadItem& item) {
            return item.function == items[group[0]].function && address >= item.first &&
                   address < std::uint32_t{item.first} + item.count;
        });
        unused = used ? 0 : unused + 1;
        if (unused > limits.gapRegisters)
            return false;
    }
    return true;
}

// The fewest requests, by trying every partition of the items.
std::size_t FewestByTrial(const std::vector<ReadItem>& items, const ReadLimits& limits, std::size_t next,
                          std::vector<std::vector<std::size_t>>& groups)
{
    if (next == items.size()) {
        const bool fits = std::all_of(groups.begin(), groups.end(),
                                      [&](const auto& group) { return CanMerge(items, group, limits); });
        return fits ? groups.size() : items.size() + 1;
    }
    std::size_t best = items.size() + 1;
    for (std::size_t at = 0; at < groups.size(); ++at) {
        groups[at].push_back(next);
        best = std::min(best, FewestByTrial(items, limits, next + 1, groups));
        groups[at].pop_back();
    }
    groups.push_back({next});
    best = std::min(best, FewestByTrial(items, limits, next + 1, groups));
    groups.pop_back();
    return best;
}

void ExpectSound(const std::vector<ReadItem>& items, const ReadLimits& limits, const std::vector<PlannedRead>& reads)
{
    std::multiset<std::size_t> seen;
    for (const PlannedRead& read : reads) {
        EXPECT_TRUE(CanMerge(items, read.items, limits));
        for (const std::size_t at : read.items) {
            seen.insert(at);
            EXPECT_GE(items[at].first, read.first);
            EXPECT_LE(items[at].first + items[at].count, read.first + read.count);
        }
    }
    for (std::size_t at = 0; at < items.size(); ++at)
        EXPECT_EQ(seen.count(at), 1u);
}

TEST(ReadPlanTest, NoPartitionNeedsFewerRequests)
{
    std::mt19937 random(20240229);
    const auto pick = [&](unsigned below) { return static_cast<std::uint16_t>(random() % below); };
    for (int round = 0; round < 1500; ++round) {
        const auto most = static_cast<std::uint16_t>(4 + pick(8));
        const ReadLimits limits = Limits(pick(4), most);
        std::vector<ReadItem> items(1 + pick(7));
        for (ReadItem& item : items) {
            item.function = pick(5) == 0 ? kInput : kHolding;
            item.first = pick(24);
            item.count = static_cast<std::uint16_t>(1 + pick(std::min<unsigned>(most, 6)));
        }
        const auto reads = PlanReads(items, limits);
        ExpectSound(items, limits, reads);
        std::vector<std::vector<std::size_t>> groups;
        EXPECT_EQ(reads.size(), FewestByTrial(items, limits, 0, groups)) << "round " << round;
    }
}

}  // namespace
}  // namespace zr::modbus
