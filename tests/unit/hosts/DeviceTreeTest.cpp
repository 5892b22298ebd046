#include "hosts/kestrix/DeviceTree.h"

#include <gtest/gtest.h>

namespace zr::desktop {
namespace {

class DeviceTreeTest : public testing::Test {
protected:
    XmlNode* Groups(const char* xml)
    {
        EXPECT_TRUE(m_document.LoadText(xml)) << m_document.Error().Message();
        return m_document.root->Node(u"DeviceGroups");
    }

    static std::vector<ZRBasicString> Names(std::initializer_list<const wchar*> names)
    {
        return {names.begin(), names.end()};
    }

    XmlDocument m_document;
};

TEST_F(DeviceTreeTest, NestsGroupsAndKeepsTheirOrder)
{
    const DeviceTree tree(Groups(R"(<K><DeviceGroups><Groups>
        <G Id="North"><Groups><Sub Id="Cellar"><Devices><D Id="A"/></Devices></Sub></Groups>
                      <Devices><D Id="C"/><D Id="B"/></Devices></G>
        <H Id="South"/></Groups></DeviceGroups></K>)"),
                          Names({u"A", u"B", u"C"}));
    ASSERT_EQ(tree.Top().size(), 2u);
    const DeviceTree::Node& north = tree[tree.Top()[0]];
    EXPECT_EQ(north.text, u"North");
    ASSERT_EQ(north.children.size(), 3u);
    EXPECT_EQ(tree[north.children[0]].text, u"Cellar");
    EXPECT_EQ(tree[north.children[1]].text, u"C");
    EXPECT_EQ(tree[north.children[2]].text, u"B");
    EXPECT_EQ(tree.DevicesOf(tree.Top()[0]), Names({u"A", u"C", u"B"}));
    EXPECT_TRUE(tree.DevicesOf(tree.Top()[1]).empty());
}

TEST_F(DeviceTreeTest, PutsDevicesInNoGroupUnderOthers)
{
    const DeviceTree tree(
        Groups(R"(<K><DeviceGroups><Groups><G Id="N"><Devices><D Id="A"/></Devices></G></Groups></DeviceGroups></K>)"),
        Names({u"A", u"B", u"C"}));
    ASSERT_EQ(tree.Top().size(), 2u);
    EXPECT_EQ(tree[tree.Top()[1]].kind, DeviceTree::Kind::OtherDevices);
    EXPECT_EQ(tree.DevicesOf(tree.Top()[1]), Names({u"B", u"C"}));
}

TEST_F(DeviceTreeTest, HasOnlyOtherDevicesWithoutAnyGroup)
{
    const DeviceTree tree(nullptr, Names({u"A"}));
    ASSERT_EQ(tree.Top().size(), 1u);
    EXPECT_EQ(tree.DevicesOf(0), Names({u"A"}));
}

TEST_F(DeviceTreeTest, HasNoOtherDevicesWhenAllStandInGroups)
{
    const DeviceTree tree(
        Groups(R"(<K><DeviceGroups><Groups><G Id="N"><Devices><D Id="A"/></Devices></G></Groups></DeviceGroups></K>)"),
        Names({u"A"}));
    EXPECT_EQ(tree.Top().size(), 1u);
}

TEST_F(DeviceTreeTest, LeavesOutEntriesThatNameNoDevice)
{
    const DeviceTree tree(Groups(R"(<K><DeviceGroups><Devices><D Id="GONE"/><D Id="A"/><D Id="A"/></Devices>
        </DeviceGroups></K>)"),
                          Names({u"A"}));
    ASSERT_EQ(tree.Size(), 1u);
    EXPECT_EQ(tree[0].text, u"A");
    EXPECT_EQ(tree.Top(), std::vector<std::size_t>{0});
}

TEST_F(DeviceTreeTest, CountsADeviceOfSeveralGroupsOnceBelowTheirParent)
{
    const DeviceTree tree(Groups(R"(<K><DeviceGroups><Groups><G Id="All"><Groups>
        <A Id="1"><Devices><D Id="A"/></Devices></A><B Id="2"><Devices><D Id="A"/></Devices></B>
        </Groups></G></Groups></DeviceGroups></K>)"),
                          Names({u"A"}));
    EXPECT_EQ(tree.DevicesOf(tree.Top()[0]), Names({u"A"}));
}

TEST_F(DeviceTreeTest, HoldsTheLoggedDataAtItsEnd)
{
    DeviceTree tree(
        Groups(R"(<K><DeviceGroups><Groups><G Id="N"><Devices><D Id="A"/></Devices></G></Groups></DeviceGroups></K>)"),
        Names({u"A", u"B"}));
    tree.AddLoggedData();
    ASSERT_EQ(tree.Top().size(), 3u);
    const std::size_t logged = tree.Top()[2];
    EXPECT_EQ(tree[logged].kind, DeviceTree::Kind::LoggedData);
    EXPECT_TRUE(tree.DevicesOf(logged).empty());
    EXPECT_EQ(tree.FindPath(tree.PathOf(logged)), logged);
}

TEST_F(DeviceTreeTest, FindsAgainWhatAPathStandsFor)
{
    const DeviceTree tree(Groups(R"(<K><DeviceGroups><Groups>
        <G Id="N"><Devices><D Id="A"/></Devices></G><G Id="S"><Devices><D Id="A"/></Devices></G>
        </Groups></DeviceGroups></K>)"),
                          Names({u"A"}));
    for (std::size_t i = 0; i < tree.Size(); ++i) {
        EXPECT_EQ(tree.FindPath(tree.PathOf(i)), i);
    }
    EXPECT_FALSE(tree.FindPath(u"nothing").has_value());
    EXPECT_EQ(tree[*tree.FindDevice(u"A")].parent, tree.Top()[0]);
    EXPECT_FALSE(tree.FindDevice(u"N").has_value());
}

}  // namespace
}  // namespace zr::desktop
