#include "siblings/tools/Utf.h"
#include "siblings/tools/XmlDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

// A document made in memory, with the root "main".
class XmlNodeTest : public testing::Test {
protected:
    XmlNodeTest() { m_document.Create(u"main"); }

    XmlNode& Root() { return *m_document.root; }

    XmlNode* Add(XmlNode& parent, const wchar* tag, const wchar* name = nullptr)
    {
        XmlNode* const node = parent.NewChild(tag);
        if (name != nullptr) {
            node->SetValue(u"Name", name);
        }
        return node;
    }

    XmlDocument m_document;
};

TEST_F(XmlNodeTest, ValueOfAMissingNameIsTheFallback)
{
    EXPECT_EQ(Root().Value(u"Port", u"10001"), u"10001");
    EXPECT_EQ(Root().Value(u"Port", u""), u"");
    EXPECT_EQ(Root().Value(u"Port", nullptr), u"");
    EXPECT_FALSE(Root().HasValue(u"Port"));
}

TEST_F(XmlNodeTest, ValueSetToEmptyTextIsEmptyAndNotTheFallback)
{
    Root().SetValue(u"Port", u"");
    EXPECT_EQ(Root().Value(u"Port", u"10001"), u"");
    EXPECT_TRUE(Root().HasValue(u"Port"));
}

TEST_F(XmlNodeTest, ValueIsACopyThatAChangedTreeLeavesAlone)
{
    Root().SetValue(u"Name", u"before");
    const ZRBasicString taken = Root().Value(u"Name", u"");
    Root().SetValue(u"Name", u"after!");
    EXPECT_EQ(taken, u"before");
}

TEST_F(XmlNodeTest, SetValueReplacesAndKeepsTheOrder)
{
    Root().SetValue(u"A", u"1");
    Root().SetValue(u"B", u"2");
    Root().SetValue(u"A", u"a much longer text than before");
    EXPECT_EQ(Root().Value(u"A", u""), u"a much longer text than before");
    Root().SetValue(u"A", u"short");
    EXPECT_EQ(Root().Value(u"A", u""), u"short");
    EXPECT_EQ(Root().Value(u"B", u""), u"2");
    EXPECT_THAT(Root().ValueNames(), testing::ElementsAre(ZRBasicString(u"A"), ZRBasicString(u"B")));
}

TEST_F(XmlNodeTest, SetValueTakesTheNodesOwnValue)
{
    Root().SetValue(u"A", u"text");
    Root().SetValue(u"B", Root().Value(u"A", u""));
    Root().SetValue(u"A", Root().Value(u"A", u""));
    EXPECT_EQ(Root().Value(u"A", u""), u"text");
    EXPECT_EQ(Root().Value(u"B", u""), u"text");
}

TEST_F(XmlNodeTest, ManyValuesOfAllSizesDoNotDisturbEachOther)
{
    for (int i = 0; i < 2000; ++i) {
        const ZRBasicString name = Utf8ToUtf16("N" + std::to_string(i));
        Root().SetValue(name.CStr(), Utf8ToUtf16(std::string(static_cast<std::size_t>(i), 'x') + std::to_string(i)));
    }
    for (int i = 0; i < 2000; ++i) {
        const ZRBasicString name = Utf8ToUtf16("N" + std::to_string(i));
        ASSERT_EQ(Root().Value(name.CStr(), u""),
                  Utf8ToUtf16(std::string(static_cast<std::size_t>(i), 'x') + std::to_string(i)));
    }
}

TEST_F(XmlNodeTest, NamesOfValuesAreComparedExactly)
{
    Root().SetValue(u"Name", u"x");
    EXPECT_EQ(Root().Value(u"name", u"none"), u"none");
    EXPECT_EQ(Root().Value(u"Nam", u"none"), u"none");
    EXPECT_EQ(Root().Value(u"Name2", u"none"), u"none");
}

TEST_F(XmlNodeTest, EraseTagRemovesTheValue)
{
    Root().SetValue(u"A", u"1");
    Root().SetValue(u"B", u"2");
    EXPECT_TRUE(Root().EraseTag(u"A"));
    EXPECT_EQ(Root().Value(u"A", u"gone"), u"gone");
    EXPECT_EQ(Root().Value(u"B", u"gone"), u"2");
}

TEST_F(XmlNodeTest, EraseTagOfAnAbsentNameLeavesTheNodeAsItWas)
{
    Root().SetValue(u"A", u"1");
    Add(Root(), u"Child");
    EXPECT_FALSE(Root().EraseTag(u"B"));
    EXPECT_FALSE(Root().EraseTag(nullptr));
    EXPECT_EQ(Root().Value(u"A", u""), u"1");
    EXPECT_EQ(Root().children.size(), 1U);
}

TEST_F(XmlNodeTest, NodeFindsTheFirstChildOfThatTag)
{
    Add(Root(), u"Other");
    XmlNode* const first = Add(Root(), u"Var");
    Add(Root(), u"Var");
    EXPECT_EQ(Root().Node(u"Var"), first);
    EXPECT_EQ(static_cast<const XmlNode&>(Root()).Node(u"Var"), first);
    EXPECT_EQ(Root().Node(u"var"), nullptr);
    EXPECT_EQ(Root().Node(u"main"), nullptr);
}

TEST_F(XmlNodeTest, NodeDescendsOneLevelAStep)
{
    XmlNode* const devices = Add(*Add(Root(), u"CommSystem"), u"Devices");
    XmlNode* const device = Add(*devices, u"Device", u"meter");
    EXPECT_EQ(Root().Node(u"CommSystem/Devices"), devices);
    EXPECT_EQ(Root().Node(u"CommSystem/Devices/Device?Name=meter?"), device);
    EXPECT_EQ(Root().Node(u"Devices"), nullptr);
}

TEST_F(XmlNodeTest, NodeIsNullWhenTheSecondStepIsMissing)
{
    Add(Root(), u"A");
    EXPECT_EQ(Root().Node(u"A/B"), nullptr);
}

TEST_F(XmlNodeTest, NodeDoesNotTurnBackToASecondMatchOfAnEarlierStep)
{
    Add(Root(), u"A");
    Add(*Add(Root(), u"A"), u"B");
    EXPECT_EQ(Root().Node(u"A/B"), nullptr);
}

TEST_F(XmlNodeTest, NodeWithAConditionFindsTheFirstOfTwoMatches)
{
    Add(Root(), u"Var", u"y");
    XmlNode* const first = Add(Root(), u"Var", u"x");
    Add(Root(), u"Var", u"x");
    EXPECT_EQ(Root().Node(u"Var?Name=x?"), first);
    EXPECT_EQ(Root().Node(u"Var?Name=X?"), nullptr);
    EXPECT_EQ(Root().Node(u"Var?Other=x?"), nullptr);
    EXPECT_EQ(Root().Node(u"Else?Name=x?"), nullptr);
}

TEST_F(XmlNodeTest, AConditionInTheMiddleOfAPathChoosesTheWay)
{
    Add(*Add(Root(), u"Group", u"one"), u"Device", u"a");
    XmlNode* const wanted = Add(*Add(Root(), u"Group", u"two"), u"Device", u"b");
    EXPECT_EQ(Root().Node(u"Group?Name=two?/Device"), wanted);
    EXPECT_EQ(Root().Node(u"Group?Name=one?/Device?Name=b?"), nullptr);
}

TEST_F(XmlNodeTest, AConditionsValueRunsToTheClosingQuestionMark)
{
    XmlNode* const node = Add(Root(), u"Var", u"tariff.MVDF@peak hour#plant/hall=2.kWh%s");
    EXPECT_EQ(Root().Node(u"Var?Name=tariff.MVDF@peak hour#plant/hall=2.kWh%s?"), node);
}

TEST_F(XmlNodeTest, AConditionOnEmptyTextNeedsTheValueToBeThere)
{
    Add(Root(), u"Var");
    EXPECT_EQ(Root().Node(u"Var?Name=?"), nullptr);
    XmlNode* const empty = Add(Root(), u"Var", u"");
    EXPECT_EQ(Root().Node(u"Var?Name=?"), empty);
}

TEST_F(XmlNodeTest, MalformedPathsReachNothing)
{
    Add(*Add(Root(), u"A", u"x"), u"B");
    for (const wchar* path : {u"", u"/", u"/A", u"A/", u"A//B", u"A?", u"A?Name", u"A?Name=x", u"A?Name?", u"?Name=x?",
                              u"A?Name=x?B", u"A?Name=x?/", u"A?Name=x??"}) {
        EXPECT_EQ(Root().Node(path), nullptr) << Utf16ToUtf8(path);
    }
    EXPECT_EQ(Root().Node(nullptr), nullptr);
    EXPECT_EQ(Root().NodeV(nullptr), nullptr);
}

TEST_F(XmlNodeTest, NodeVFillsTheFormat)
{
    Add(Root(), u"Var", u"other");
    XmlNode* const node = Add(Root(), u"Var", u"meter.kWh");
    EXPECT_EQ(Root().NodeV(u"Var?Name=%s?", ZRBasicString(u"meter.kWh")), node);
    EXPECT_EQ(Root().NodeV(u"%s?%s=%s?", u"Var", u"Name", u"meter.kWh"), node);
    EXPECT_EQ(Root().NodeV(u"Var?Name=meter.%s?", u"kWh"), node);
    EXPECT_EQ(Root().NodeV(u"Var?Name=%s?", u"absent"), nullptr);
}

TEST_F(XmlNodeTest, NodeVNeverTakesAnArgumentForPathSyntax)
{
    for (const wchar* name :
         {u"file.MVDF@hour#driver.variable", u"a/b", u"100%", u"%s", u"%d%n", u"a=b", u"a?b", u"?/x"}) {
        XmlNode* const node = Add(Root(), u"Var", name);
        EXPECT_EQ(Root().NodeV(u"Var?Name=%s?", name), node) << Utf16ToUtf8(name);
    }
    Add(*Add(Root(), u"A"), u"B");
    EXPECT_EQ(Root().NodeV(u"%s", u"A/B"), nullptr);
}

TEST_F(XmlNodeTest, NodeVFillsEveryStepInOrder)
{
    XmlNode* const node = Add(*Add(Root(), u"Group", u"a"), u"Device", u"b");
    EXPECT_EQ(Root().NodeV(u"Group?Name=%s?/Device?Name=%s?", u"a", u"b"), node);
    EXPECT_EQ(Root().NodeV(u"Group?Name=%s?/Device?Name=%s?", u"b", u"a"), nullptr);
}

TEST_F(XmlNodeTest, NodeVShowsAWrongPlaceholderAsText)
{
    XmlNode* const node = Add(Root(), u"Var", u"%s");
    EXPECT_EQ(Root().NodeV(u"Var?Name=%s?"), node);
    XmlNode* const number = Add(Root(), u"Var", u"%d");
    EXPECT_EQ(Root().NodeV(u"Var?Name=%d?", u"7"), number);
    XmlNode* const percent = Add(Root(), u"Var", u"%");
    EXPECT_EQ(Root().NodeV(u"Var?Name=%%?"), percent);
    EXPECT_EQ(Root().NodeV(u"Var?Name=%?"), percent);
}

TEST_F(XmlNodeTest, NewChildAppendsAnEmptyElement)
{
    XmlNode* const first = Root().NewChild(u"A");
    XmlNode* const second = Root().NewChild(u"B");
    EXPECT_THAT(Root().children, testing::ElementsAre(first, second));
    EXPECT_EQ(second->tag, u"B");
    EXPECT_TRUE(second->children.empty());
    EXPECT_TRUE(second->ValueNames().empty());
    EXPECT_EQ(second->Line(), 0U);
}

TEST_F(XmlNodeTest, RemoveChildTakesOutThatOneOnly)
{
    XmlNode* const first = Add(Root(), u"A");
    XmlNode* const second = Add(Root(), u"A");
    XmlNode* const third = Add(Root(), u"A");
    Add(*second, u"B");
    Root().RemoveChild(second);
    EXPECT_THAT(Root().children, testing::ElementsAre(first, third));
}

TEST_F(XmlNodeTest, RemoveChildLeavesAloneWhatIsNoChild)
{
    XmlNode* const child = Add(Root(), u"A");
    XmlNode* const grandchild = Add(*child, u"B");
    Root().RemoveChild(nullptr);
    Root().RemoveChild(grandchild);
    Root().RemoveChild(&Root());
    EXPECT_THAT(Root().children, testing::ElementsAre(child));
    EXPECT_THAT(child->children, testing::ElementsAre(grandchild));
}

TEST_F(XmlNodeTest, RemovingWhatNodeFindsEndsWhenNoSuchTagIsLeft)
{
    for (int i = 0; i < 5; ++i) {
        Add(Root(), u"Var");
        Add(Root(), u"Other");
    }
    int removed = 0;
    while (XmlNode* const node = Root().Node(u"Var")) {
        Root().RemoveChild(node);
        ++removed;
    }
    EXPECT_EQ(removed, 5);
    EXPECT_EQ(Root().children.size(), 5U);
    EXPECT_NE(Root().Node(u"Other"), nullptr);
}

TEST_F(XmlNodeTest, ATreeOfAnyDepthIsDestroyed)
{
    XmlNode* node = &Root();
    for (int i = 0; i < 200000; ++i) {
        node = node->NewChild(u"A");
    }
    m_document.Reset();
    EXPECT_EQ(m_document.root, nullptr);
}

}  // namespace
