#include "comm/ZRMainCfg.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace {

TEST(ZRMainCfgTest, GetGivesTheDocumentConstructedLast)
{
    const ZRMainCfg first;
    EXPECT_EQ(&ZRMainCfg::Get(), &first);
    const ZRMainCfg second;
    EXPECT_EQ(&ZRMainCfg::Get(), &second);
}

TEST(ZRMainCfgTest, ClearsTheInstanceWhenDestroyed)
{
    std::optional<ZRMainCfg> document(std::in_place);
    ASSERT_EQ(&ZRMainCfg::Get(), &*document);
    document.reset();
    // A new one is found again: nothing of the old one is in the way.
    const ZRMainCfg next;
    EXPECT_EQ(&ZRMainCfg::Get(), &next);
}

TEST(ZRMainCfgTest, ResetEmptiesTheTreeAndSetsTheFileName)
{
    ZRMainCfg document;
    document.Create(u"Kestrix");
    document.root->NewChild(u"CommSystem");
    document.Reset(u"plant.xml");
    EXPECT_EQ(document.root, nullptr);
    EXPECT_EQ(document.FileName(), u"plant.xml");
}

TEST(ZRMainCfgTest, ResetWithAnEmptyNameForgetsTheFile)
{
    ZRMainCfg document;
    document.SetFileName(u"plant.xml");
    document.Reset(ZRBasicString());
    EXPECT_TRUE(document.FileName().IsEmpty());
}

TEST(ZRMainCfgTest, ACopyIsADocumentOfItsOwnAndNotTheOneToGet)
{
    ZRMainCfg document;
    document.Create(u"Kestrix");
    document.root->SetValue(u"Id", u"plant");
    document.SetFileName(u"plant.xml");

    ZRMainCfg copy(document);
    EXPECT_EQ(&ZRMainCfg::Get(), &document);
    ASSERT_NE(copy.root, nullptr);
    EXPECT_NE(copy.root, document.root);
    EXPECT_EQ(copy.root->Value(u"Id", u""), u"plant");
    EXPECT_EQ(copy.FileName(), u"plant.xml");

    copy.root->SetValue(u"Id", u"other");
    EXPECT_EQ(document.root->Value(u"Id", u""), u"plant");
}

TEST(ZRMainCfgTest, AssignmentTakesTheTreeAndLeavesTheInstance)
{
    ZRMainCfg source;
    source.Create(u"Source");
    ZRMainCfg target;
    target.Create(u"Target");
    target = source;
    ASSERT_NE(target.root, nullptr);
    EXPECT_EQ(target.root->tag, u"Source");
    EXPECT_EQ(&ZRMainCfg::Get(), &target);
}

}  // namespace
