#include "logger/TableColumns.h"

#include "unit/logger/LoggedFixture.h"
#include "unit/logger/MemoryTableList.h"

#include <algorithm>
#include <limits>

namespace zr::logger {
namespace {

std::vector<int> IndicesOf(const ZRTableProfile& profile)
{
    std::vector<int> indices;
    for (auto record = profile.VarsBegin(); record != profile.VarsEnd(); ++record) {
        indices.push_back((*record)->Index);
    }
    return indices;
}

std::vector<ZRBasicString> NamesOf(const ZRTableProfile& profile)
{
    std::vector<ZRBasicString> names;
    for (auto record = profile.VarsBegin(); record != profile.VarsEnd(); ++record) {
        names.push_back((*record)->Name);
    }
    return names;
}

class TableColumnsTest : public LoggedFixture {
protected:
    void SetIndices(const std::vector<int>& indices)
    {
        profile.DeleteAll();
        for (std::size_t i = 0; i < indices.size(); ++i) {
            const ZRBasicString letter(std::u16string(1, static_cast<wchar>(u'A' + i)));
            profile.AddVariable(letter, u"Title " + letter, indices[i], 1, 0, 1, 50 + static_cast<int>(i), 0);
        }
    }

    std::vector<int> Compacted(const std::vector<int>& indices)
    {
        SetIndices(indices);
        CompactOrder(profile);
        return IndicesOf(profile);
    }

    void Show(const ZRLoggerInfo& info)
    {
        const ColumnPlan plan = PlanColumns(profile, info, u"Date and time", 112);
        list.SetColumns(plan.columns, plan.displayOrder);
    }

    ZRTableProfile profile;
    MemoryTableList list;
};

TEST_F(TableColumnsTest, CompactOrderClosesGapsAndKeepsTheOrder)
{
    EXPECT_EQ(Compacted({5, 2, 9}), (std::vector{1, 0, 2}));
    EXPECT_EQ(Compacted({2, 0, 1}), (std::vector{2, 0, 1}));
    EXPECT_EQ(Compacted({}), std::vector<int>());
}

TEST_F(TableColumnsTest, CompactOrderPutsTheFirstOfEqualNumbersFirst)
{
    EXPECT_EQ(Compacted({5, 5, 3}), (std::vector{1, 2, 0}));
    EXPECT_EQ(Compacted({0, 0, 0}), (std::vector{0, 1, 2}));
}

TEST_F(TableColumnsTest, CompactOrderPutsNegativeAndHugeNumbersRight)
{
    EXPECT_EQ(Compacted({std::numeric_limits<int>::max(), -1, std::numeric_limits<int>::min(), 0}),
              (std::vector{3, 1, 0, 2}));
}

TEST_F(TableColumnsTest, PlanHasTheTimeAndAColumnForEachVariable)
{
    SetIndices({0, 1});
    const ColumnPlan plan = PlanColumns(profile, Info({u"A", u"B"}), u"Date and time", 112);
    EXPECT_EQ(plan.columns,
              (std::vector<TableColumn>{{u"Date and time", 112}, {u"Title A (V)", 50}, {u"Title B (V)", 51}}));
    EXPECT_EQ(plan.displayOrder, (std::vector{0, 1, 2}));
}

TEST_F(TableColumnsTest, PlanOfNoVariablesIsTheTimeColumnAlone)
{
    const ColumnPlan plan = PlanColumns(profile, Info({}), u"Date and time", 112);
    EXPECT_EQ(plan.columns.size(), 1U);
    EXPECT_EQ(plan.displayOrder, std::vector{0});
}

TEST_F(TableColumnsTest, PlanOrdersTheColumnsByIndex)
{
    SetIndices({2, 0, 1});
    EXPECT_EQ(PlanColumns(profile, Info({u"A", u"B", u"C"}), u"T", 1).displayOrder, (std::vector{0, 2, 3, 1}));
}

TEST_F(TableColumnsTest, AHoleInTheOrderLeavesAColumnAtItsPlace)
{
    SetIndices({0, 5, 1});
    EXPECT_EQ(PlanColumns(profile, Info({u"A", u"B", u"C"}), u"T", 1).displayOrder, (std::vector{0, 1, 3, 2}));
}

TEST_F(TableColumnsTest, PlacesBeyondAllBoundsAreNone)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr int kLeast = std::numeric_limits<int>::min();
    SetIndices({kMost, 1, kLeast, -1});
    EXPECT_EQ(PlanColumns(profile, Info({u"A", u"B", u"C", u"D"}), u"T", kMost).displayOrder,
              (std::vector{0, 1, 2, 3, 4}));
}

TEST_F(TableColumnsTest, ARecordWithoutAVariableHasNoColumn)
{
    SetIndices({0, 1, 2});
    const ColumnPlan plan = PlanColumns(profile, Info({u"A", u"B"}), u"T", 1);
    EXPECT_EQ(plan.columns, (std::vector<TableColumn>{{u"T", 1}, {u"Title A (V)", 50}, {u"Title B (V)", 51}}));
}

TEST_F(TableColumnsTest, BehindARecordWithoutAVariableTitlesComeFromTheRecordBefore)
{
    SetIndices({0, 1, 2});
    profile[2].MeasureUnits = 2;
    const ColumnPlan plan = PlanColumns(profile, Info({u"B", u"C"}), u"T", 1);
    EXPECT_EQ(plan.columns, (std::vector<TableColumn>{{u"T", 1}, {u"Title A (V)", 51}, {u"Title B (A)", 52}}));
    EXPECT_EQ(plan.displayOrder, (std::vector{0, 1, 2}));
}

TEST_F(TableColumnsTest, ShownWidthsAreHeldWithinLimits)
{
    EXPECT_EQ(ShownWidth(-5), 0);
    EXPECT_EQ(ShownWidth(0), 0);
    EXPECT_EQ(ShownWidth(100), 100);
    EXPECT_EQ(ShownWidth(std::numeric_limits<int>::max()), kMaxColumnWidth);
}

TEST_F(TableColumnsTest, GetStrColByOrderFindsTheColumnAtAPlace)
{
    SetIndices({1, 0});
    Show(Info({u"A", u"B"}));
    int column = -7;
    ZRBasicString text = u"unchanged";
    EXPECT_FALSE(GetStrColByOrder(list, list.columns, 3, column, text));
    EXPECT_EQ(column, -7);
    EXPECT_EQ(Narrow(text), "unchanged");
    EXPECT_TRUE(GetStrColByOrder(list, list.columns, 1, column, text));
    EXPECT_EQ(column, 2);
    EXPECT_EQ(Narrow(text), "Title B (V)");
}

TEST_F(TableColumnsTest, ReorderVariablesTakesPlacesAndWidthsFromTheList)
{
    SetIndices({0, 1, 2});
    Show(Info({u"A", u"B", u"C"}));
    list.order = {0, 3, 1, 2};
    list.columns[3].width = 77;
    ReorderVariables(profile, list, list.columns, false);
    EXPECT_EQ(NamesOf(profile), (std::vector<ZRBasicString>{u"A", u"B", u"C"}));
    EXPECT_EQ(IndicesOf(profile), (std::vector{1, 2, 0}));
    EXPECT_EQ(profile[2].Width, 77);
    EXPECT_EQ(profile[0].Width, 50);
}

TEST_F(TableColumnsTest, ReorderVariablesWithSwapSortsTheRecordsAsOnTheScreen)
{
    SetIndices({0, 1, 2});
    Show(Info({u"A", u"B", u"C"}));
    list.order = {0, 3, 1, 2};
    ReorderVariables(profile, list, list.columns, true);
    EXPECT_EQ(NamesOf(profile), (std::vector<ZRBasicString>{u"C", u"A", u"B"}));
    EXPECT_EQ(IndicesOf(profile), (std::vector{0, 1, 2}));
}

TEST_F(TableColumnsTest, ReorderVariablesTakesNoCountOfWhereTheTimeColumnStands)
{
    SetIndices({0, 1, 2});
    Show(Info({u"A", u"B", u"C"}));
    list.order = {2, 0, 3, 1};
    ReorderVariables(profile, list, list.columns, false);
    EXPECT_EQ(IndicesOf(profile), (std::vector{2, 0, 1}));
}

TEST_F(TableColumnsTest, ReorderVariablesKeepsARecordWhoseTextTheListHoldsInPart)
{
    SetIndices({0, 1});
    profile[0].Title = ZRBasicString(std::u16string(10000, u'x'));
    Show(Info({u"A", u"B"}));
    list.columns[1].width = 77;
    list.order = {0, 2, 1};
    ReorderVariables(profile, list, list.columns, false);
    EXPECT_EQ(IndicesOf(profile), (std::vector{0, 0}));
    EXPECT_EQ(profile[0].Width, 50);
}

TEST_F(TableColumnsTest, ReorderVariablesTakesTheFirstOfRecordsWithTheSameText)
{
    SetIndices({0, 1, 2});
    profile[1].Title = profile[0].Title;
    Show(Info({u"A", u"B", u"C"}));
    list.columns[2].width = 77;
    ReorderVariables(profile, list, list.columns, false);
    // Both columns are taken for the first record's, so that the second one's tells last.
    EXPECT_EQ(IndicesOf(profile), (std::vector{1, 1, 2}));
    EXPECT_EQ(profile[0].Width, 77);
    EXPECT_EQ(profile[1].Width, 51);
    EXPECT_EQ(Compacted({1, 1, 2}), (std::vector{0, 1, 2}));
}

TEST_F(TableColumnsTest, ReorderVariablesWithSwapLosesNoneOfRecordsWithTheSameText)
{
    SetIndices({0, 1, 2});
    profile[1].Title = profile[0].Title;
    Show(Info({u"A", u"B", u"C"}));
    list.order = {0, 2, 3, 1};
    ReorderVariables(profile, list, list.columns, true);
    std::vector<ZRBasicString> names = NamesOf(profile);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<ZRBasicString>{u"A", u"B", u"C"}));
}

TEST_F(TableColumnsTest, ReorderVariablesKeepsARecordWithoutAColumn)
{
    SetIndices({0, 1, 2});
    Show(Info({u"A", u"B"}));
    list.order = {0, 2, 1};
    ReorderVariables(profile, list, list.columns, true);
    EXPECT_EQ(NamesOf(profile), (std::vector<ZRBasicString>{u"B", u"A", u"C"}));
}

}  // namespace
}  // namespace zr::logger
