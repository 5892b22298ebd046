// Logged samples over several stores: who keeps what, and what one that is away costs. What every store does stands in
// LoggerStoreTest.cpp.
#include "siblings/driversupport/store/LoggerNodes.h"

#include "siblings/driversupport/store/MemoryLoggerStore.h"

#include <gtest/gtest.h>
#include <array>
#include <string>
#include <vector>

namespace zr {
namespace {

constexpr std::int64_t kStart = 1040000000 * std::int64_t{1000000};
constexpr std::int64_t kDay = 24 * 3600 * std::int64_t{1000000};

// "M.U" is kept by the first of two nodes, "M.B" by the second.
class LoggerNodesTest : public testing::Test {
protected:
    LoggerNodesTest()
    {
        std::vector<std::unique_ptr<LoggerStore>> stores;
        for (MemoryLoggerStore*& node : memory) {
            auto store = std::make_unique<MemoryLoggerStore>();
            node = store.get();
            stores.push_back(std::move(store));
        }
        nodes = std::make_unique<LoggerNodes>(std::move(stores));
    }

    bool Has(const wchar* variable, std::int64_t time = kStart)
    {
        LoggerSample sample;
        return nodes->OpenReader()->FirstFrom(variable, time, sample) && sample.time == time;
    }

    std::array<MemoryLoggerStore*, 2> memory{};
    std::unique_ptr<LoggerNodes> nodes;
};

TEST(NodeOfVariable, NeverChanges)
{
    struct Row {
        const wchar* variable;
        std::array<std::size_t, 5> nodeOf;  // of 1, 2, 3, 5 and 7 nodes
    };
    const Row rows[] = {
        {u"", {0, 1, 0, 0, 6}},           {u"a", {0, 0, 1, 4, 1}},           {u"foobar", {0, 1, 1, 2, 4}},
        {u"Meter 1.U1", {0, 1, 2, 1, 6}}, {u"Zähler 2.E+", {0, 1, 0, 3, 2}}, {u"電力.P", {0, 0, 0, 0, 0}},
    };
    for (const Row& row : rows) {
        const std::array<std::size_t, 5> found = {NodeOfVariable(row.variable, 1), NodeOfVariable(row.variable, 2),
                                                  NodeOfVariable(row.variable, 3), NodeOfVariable(row.variable, 5),
                                                  NodeOfVariable(row.variable, 7)};
        EXPECT_EQ(found, row.nodeOf);
    }
    EXPECT_EQ(NodeOfVariable(u"a", 0), 0u);
}

TEST(NodeOfVariable, SpreadsNumberedNames)
{
    std::array<int, 2> counts{};
    for (int i = 0; i < 100; ++i) {
        const std::string number = std::to_string(i);
        const std::u16string digits(number.begin(), number.end());
        ++counts[NodeOfVariable(u"Meter " + digits + u".E" + digits, 2)];
    }
    EXPECT_GT(counts[0], 30);
    EXPECT_GT(counts[1], 30);
}

TEST_F(LoggerNodesTest, EachVariableLivesOnItsNode)
{
    const int first = nodes->OpenSeries(u"M.U", 1);
    const int second = nodes->OpenSeries(u"M.B", 8);
    EXPECT_NE(first, second);
    const std::vector<LoggerAppend> batch = {{first, kStart, 1.0}, {second, kStart, 2.0}};
    ASSERT_TRUE(nodes->Append(batch));
    LoggerSample sample;
    EXPECT_TRUE(memory[0]->OpenReader()->FirstFrom(u"M.U", 0, sample));
    EXPECT_FALSE(memory[0]->OpenReader()->FirstFrom(u"M.B", 0, sample));
    EXPECT_FALSE(memory[1]->OpenReader()->FirstFrom(u"M.U", 0, sample));
    EXPECT_TRUE(memory[1]->OpenReader()->FirstFrom(u"M.B", 0, sample));
    EXPECT_EQ(&nodes->Node(1), memory[1]);
    EXPECT_EQ(nodes->Size(), 2u);
    EXPECT_EQ(nodes->OpenReader()->InfoCode(u"M.B"), 8);
}

TEST_F(LoggerNodesTest, ADeadNodeCostsItsOwnVariablesOnly)
{
    const int first = nodes->OpenSeries(u"M.U", 1);
    const int second = nodes->OpenSeries(u"M.B", 1);
    const auto reader = nodes->OpenReader();
    memory[1]->SetAvailable(false);
    const std::vector<LoggerAppend> batch = {{second, kStart, 2.0}, {first, kStart, 1.0}};
    EXPECT_FALSE(nodes->Append(batch));
    EXPECT_EQ(nodes->Error(), memory[1]->Error());
    EXPECT_TRUE(Has(u"M.U"));
    LoggerSample sample;
    EXPECT_FALSE(reader->FirstFrom(u"M.B", 0, sample));
    EXPECT_FALSE(reader->Error().empty());
    EXPECT_TRUE(reader->FirstFrom(u"M.U", 0, sample));
    EXPECT_EQ(nodes->OpenSeries(u"M.NEW2", 1) >= 0, NodeOfVariable(u"M.NEW2", 2) == 0);
    EXPECT_EQ(nodes->Maintain(kStart), LoggerStore::Upkeep::More);
    EXPECT_EQ(nodes->Maintain(kStart), LoggerStore::Upkeep::Failed);
    EXPECT_FALSE(nodes->Error().empty());

    memory[1]->SetAvailable(true);
    EXPECT_TRUE(nodes->Append(batch));
    EXPECT_TRUE(nodes->Error().empty());
    EXPECT_TRUE(Has(u"M.B"));
}

TEST_F(LoggerNodesTest, DataSetsAreSplitAndMerged)
{
    nodes->OpenSeries(u"M.U", 1);
    nodes->OpenSeries(u"M.B", 1);
    const LoggerDataSet set{u"mains", 10, 5, {u"M.B", u"M.U"}};
    ASSERT_TRUE(nodes->SetDataSet(set));
    std::vector<LoggerDataSet> sets;
    ASSERT_TRUE(memory[1]->OpenReader()->DataSets(sets));
    EXPECT_EQ(sets, (std::vector<LoggerDataSet>{{u"mains", 10, 5, {u"M.B"}}}));
    ASSERT_TRUE(nodes->OpenReader()->DataSets(sets));
    EXPECT_EQ(sets, std::vector<LoggerDataSet>{set});
    // A node that is away takes its share with it, and no more.
    memory[1]->SetAvailable(false);
    const auto reader = nodes->OpenReader();
    ASSERT_TRUE(reader->DataSets(sets));
    EXPECT_EQ(sets, (std::vector<LoggerDataSet>{{u"mains", 10, 5, {u"M.U"}}}));
    EXPECT_FALSE(reader->Error().empty());
    EXPECT_FALSE(nodes->SetDataSet(set));
    memory[0]->SetAvailable(false);
    EXPECT_FALSE(nodes->OpenReader()->DataSets(sets));
}

TEST_F(LoggerNodesTest, UpkeepReachesEveryNode)
{
    const int first = nodes->OpenSeries(u"M.U", 1);
    const int second = nodes->OpenSeries(u"M.B", 1);
    ASSERT_TRUE(nodes->SetDataSet({u"mains", 1, 1, {u"M.U", u"M.B"}}));
    const std::vector<LoggerAppend> batch = {{first, kStart, 1.0}, {second, kStart, 2.0}};
    ASSERT_TRUE(nodes->Append(batch));
    EXPECT_EQ(nodes->Maintain(kStart + 3 * kDay), LoggerStore::Upkeep::More);
    EXPECT_EQ(nodes->Maintain(kStart + 3 * kDay), LoggerStore::Upkeep::Done);
    EXPECT_FALSE(Has(u"M.U"));
    EXPECT_FALSE(Has(u"M.B"));
}

TEST_F(LoggerNodesTest, ACheckTellsOfANodeThatDoesNotAnswer)
{
    const int first = nodes->OpenSeries(u"M.U", 1);
    const int second = nodes->OpenSeries(u"M.B", 1);
    const std::vector<LoggerAppend> batch = {{first, kStart, 1.0}, {second, kStart, 2.0}};
    ASSERT_TRUE(nodes->Append(batch));
    LoggerCheck check;
    ASSERT_TRUE(nodes->OpenReader()->Check(check, nullptr));
    EXPECT_EQ(check.series, 2u);
    EXPECT_EQ(check.packed + check.unpacked, 2u);
    EXPECT_TRUE(check.findings.empty());
    memory[1]->SetAvailable(false);
    ASSERT_TRUE(nodes->OpenReader()->Check(check, nullptr));
    EXPECT_EQ(check.series, 1u);
    EXPECT_EQ(check.findings, std::vector<std::string>{"node 2 of the store can't be read"});
}

}  // namespace
}  // namespace zr
