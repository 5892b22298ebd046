#include "siblings/tools/XmlDocument.h"

#include "siblings/tools/Utf.h"
#include "support/TempFolder.h"
#include "support/XmlTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <filesystem>
#include <string>

namespace {

using zr::test::DescribeTree;

class XmlDocumentTest : public testing::Test {
protected:
    XmlDocument Parsed(const std::string& text)
    {
        XmlDocument document;
        EXPECT_TRUE(document.LoadText(text)) << document.Error().Message();
        return document;
    }

    // The value after it was written and read again.
    ZRBasicString RoundTrip(const ZRBasicString& value)
    {
        XmlDocument document;
        document.Create(u"main");
        document.root->SetValue(u"V", value);
        XmlDocument again = Parsed(document.SaveText());
        return again.root != nullptr ? again.root->Value(u"V", u"(missing)") : u"(refused)";
    }

    zr::test::TempFolder m_folder;
};

TEST_F(XmlDocumentTest, BeginsEmpty)
{
    const XmlDocument document;
    EXPECT_EQ(document.root, nullptr);
    EXPECT_EQ(document.FileName(), u"");
    EXPECT_EQ(document.SaveText(), "");
}

TEST_F(XmlDocumentTest, CreateMakesANewTreeWithThatRoot)
{
    XmlDocument document = Parsed("<old x='1'/>");
    document.Create(u"main");
    ASSERT_NE(document.root, nullptr);
    EXPECT_EQ(document.root->tag, u"main");
    EXPECT_FALSE(document.root->HasValue(u"x"));
}

TEST_F(XmlDocumentTest, ResetEmptiesTheTreeAndKeepsTheFileName)
{
    XmlDocument document = Parsed("<a/>");
    document.SetFileName(u"plant.xml");
    document.Reset();
    EXPECT_EQ(document.root, nullptr);
    EXPECT_EQ(document.FileName(), u"plant.xml");
}

TEST_F(XmlDocumentTest, LoadReadsTagsValuesAndLines)
{
    const auto path = m_folder.Write("plant.xml",
                                     "<?xml version='1.0'?>\n<Cfg>\n  <CommSystem>\n"
                                     "    <Connection Name='Hall 2 &amp; 3' Type=\"UDP\" Socket=''/>\n"
                                     "  </CommSystem>\n</Cfg>\n");
    XmlDocument document;
    ASSERT_TRUE(document.Load(path)) << document.Error().Message();
    EXPECT_EQ(document.root->tag, u"Cfg");
    const XmlNode* const connection = document.root->Node(u"CommSystem/Connection");
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(connection->Value(u"Name", u""), u"Hall 2 & 3");
    EXPECT_EQ(connection->Value(u"Type", u""), u"UDP");
    EXPECT_EQ(connection->Value(u"Socket", u"10001"), u"");
    EXPECT_EQ(connection->Line(), 4U);
    EXPECT_EQ(document.root->Line(), 2U);
    EXPECT_EQ(document.FileName(), Utf8ToUtf16(path.string()));
}

TEST_F(XmlDocumentTest, LoadTakesAWidePath)
{
    const auto path = m_folder.Write("\xC3\xA9t\xC3\xA9.xml", "<a/>");
    XmlDocument document;
    EXPECT_TRUE(document.Load(path.u16string().c_str())) << document.Error().Message();
    EXPECT_EQ(document.FileName(), ZRBasicString(path.u16string()));
}

TEST_F(XmlDocumentTest, LoadOfAMissingFileLeavesAnEmptyTreeAndTellsWhy)
{
    XmlDocument document = Parsed("<a/>");
    EXPECT_FALSE(document.Load(m_folder / "absent.xml"));
    EXPECT_EQ(document.root, nullptr);
    EXPECT_EQ(document.Error().file, (m_folder / "absent.xml").string());
    EXPECT_EQ(document.Error().line, 0U);
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("can't be opened"));
    EXPECT_EQ(document.FileName(), Utf8ToUtf16((m_folder / "absent.xml").string()));
}

TEST_F(XmlDocumentTest, LoadOfAFolderAndOfNothingFails)
{
    XmlDocument document;
    EXPECT_FALSE(document.Load(m_folder.Path()));
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("is a folder"));
    EXPECT_FALSE(document.Load(u""));
    const wchar* const none = nullptr;
    EXPECT_FALSE(document.Load(none));
}

TEST_F(XmlDocumentTest, LoadOfARefusedFileNamesFileLineAndReason)
{
    const auto path = m_folder.Write("broken.xml", "<a>\n<b x=1/>\n</a>");
    XmlDocument document = Parsed("<old/>");
    EXPECT_FALSE(document.Load(path));
    EXPECT_EQ(document.root, nullptr);
    EXPECT_EQ(document.Error().Message(), path.string() + ":2: the value of the attribute \"x\" is not quoted");
}

TEST_F(XmlDocumentTest, LoadRefusesAFileOverTheLimitUnread)
{
    const auto path = m_folder.Write("large.xml", "<a/>");
    std::filesystem::resize_file(path, XmlDocument::kMaxBytes + 1);
    XmlDocument document;
    EXPECT_FALSE(document.Load(path));
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("larger than 67108864 bytes"));
}

TEST_F(XmlDocumentTest, AGoodLoadAfterABadOneClearsTheError)
{
    XmlDocument document;
    EXPECT_FALSE(document.LoadText("<a>", "x.xml"));
    EXPECT_TRUE(document.LoadText("<a/>"));
    EXPECT_EQ(document.Error().Message(), "");
}

TEST_F(XmlDocumentTest, ErrorMessageLeavesOutWhatIsMissing)
{
    EXPECT_EQ((XmlError{"f.xml", 3, "bad"}).Message(), "f.xml:3: bad");
    EXPECT_EQ((XmlError{"f.xml", 0, "bad"}).Message(), "f.xml: bad");
    EXPECT_EQ((XmlError{"", 3, "bad"}).Message(), "3: bad");
    EXPECT_EQ((XmlError{"", 0, "bad"}).Message(), "bad");
}

TEST_F(XmlDocumentTest, ReadsUtf16WithAByteOrderMark)
{
    const std::u16string text = u"\uFEFF<?xml version='1.0' encoding='utf-16'?><a b='\u20AC\U0001F50C'/>";
    std::string bytes;
    for (const wchar unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    EXPECT_EQ(Parsed(bytes).root->Value(u"b", u""), u"\u20AC\U0001F50C");
}

TEST_F(XmlDocumentTest, LiteralWhiteSpaceInAValueReadsAsBlanks)
{
    EXPECT_EQ(Parsed("<a b='1\n2\t3\r\n4\r5'/>").root->Value(u"b", u""), u"1 2 3 4 5");
    EXPECT_EQ(Parsed("<a b='&#10;&#9;&#13; '/>").root->Value(u"b", u""), u"\n\t\r ");
}

TEST_F(XmlDocumentTest, SaveTextIsIndentedByTwoBlanksALevel)
{
    XmlDocument document;
    document.Create(u"main");
    XmlNode* const vars = document.root->NewChild(u"Vars");
    vars->SetValue(u"Count", u"1");
    vars->NewChild(u"Var")->SetValue(u"Name", u"a\"<&>'b");
    document.root->NewChild(u"Table");
    EXPECT_EQ(document.SaveText(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<main>\n"
              "  <Vars Count=\"1\">\n"
              "    <Var Name=\"a&quot;&lt;&amp;&gt;'b\"/>\n"
              "  </Vars>\n"
              "  <Table/>\n"
              "</main>\n");
}

TEST_F(XmlDocumentTest, EveryCharacterThatXmlCarriesSurvivesSaveAndLoad)
{
    ZRBasicString text = u"\t\n\r\r\n leading and trailing  \u20AC\U0001F50C\uFFFD]]>--<!--?>&amp;&#10;%s'\"";
    for (wchar unit = 0x20; unit < 0x300; ++unit) {
        text += unit;
    }
    EXPECT_EQ(RoundTrip(text), text);
    EXPECT_EQ(RoundTrip(u""), u"");
    EXPECT_EQ(RoundTrip(u" "), u" ");
}

TEST_F(XmlDocumentTest, WhatXmlCannotCarryIsSavedAsTheReplacementCharacter)
{
    const wchar broken[] = {u'a', 0, 1, 0x1F, 0xFFFE, 0xFFFF, 0xD800, u'b', 0xDC00};
    EXPECT_EQ(RoundTrip(ZRBasicString(broken, std::size(broken))), u"a\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDb\uFFFD");
}

TEST_F(XmlDocumentTest, SaveWritesWhatLoadReads)
{
    XmlDocument document = Parsed("<a x='1'><b y='&#10;'/><c><d/></c></a>");
    document.SetFileName((m_folder / "plant.xml").u16string().c_str());
    ASSERT_TRUE(document.Save()) << document.Error().Message();
    XmlDocument again;
    ASSERT_TRUE(again.Load(m_folder / "plant.xml")) << again.Error().Message();
    EXPECT_EQ(DescribeTree(again), DescribeTree(document));
}

TEST_F(XmlDocumentTest, SaveLeavesOnlyTheFileAndOnlyForItsOwner)
{
    m_folder.Write("plant.xml", "<old/>");
    XmlDocument document = Parsed("<new/>");
    document.SetFileName((m_folder / "plant.xml").u16string().c_str());
    ASSERT_TRUE(document.Save()) << document.Error().Message();
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre("plant.xml"));
#ifndef _WIN32  // There it is the folder's access list that keeps others out.
    EXPECT_EQ(std::filesystem::status(m_folder / "plant.xml").permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
#endif
    EXPECT_THAT(m_folder.Read("plant.xml"), testing::HasSubstr("<new/>"));
}

TEST_F(XmlDocumentTest, SaveThatFailsLeavesTheOldFileAndTellsWhy)
{
    m_folder.Write("plant.xml", "<old/>");
    XmlDocument document;
    document.SetFileName((m_folder / "plant.xml").u16string().c_str());
    EXPECT_FALSE(document.Save());
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("document is empty"));

    document.Create(u"not a name");
    EXPECT_FALSE(document.Save());
    EXPECT_THAT(document.Error().Message(), testing::HasSubstr("plant.xml: \"not a name\" can't be the tag"));

    document.Create(u"main");
    document.root->SetValue(u"1\n", u"x");
    EXPECT_FALSE(document.Save());
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("\"1?\" can't be the name of a value"));
    EXPECT_EQ(document.SaveText(), "");

    document.Create(u"main");
    XmlNode* node = document.root;
    for (std::size_t i = 0; i < XmlDocument::kMaxDepth; ++i) {
        node = node->NewChild(u"a");
    }
    EXPECT_FALSE(document.Save());
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("nested deeper"));

    EXPECT_EQ(m_folder.Read("plant.xml"), "<old/>");
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre("plant.xml"));
}

TEST_F(XmlDocumentTest, SaveWithoutANameOrAFolderFails)
{
    XmlDocument document = Parsed("<a/>");
    EXPECT_FALSE(document.Save());
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("no file name"));
    document.SetFileName((m_folder / "absent" / "plant.xml").u16string().c_str());
    EXPECT_FALSE(document.Save());
    EXPECT_THAT(document.Error().Message(), testing::HasSubstr("plant.xml: "));
    EXPECT_NE(document.root, nullptr);
}

TEST_F(XmlDocumentTest, CopyIsDeep)
{
    XmlDocument document = Parsed("<a x='1'>\n<b y='2'/><c/></a>");
    document.SetFileName(u"plant.xml");
    XmlDocument copy = document;
    EXPECT_EQ(DescribeTree(copy), DescribeTree(document));
    EXPECT_EQ(copy.FileName(), u"plant.xml");
    EXPECT_EQ(copy.root->Node(u"b")->Line(), 2U);

    copy.root->SetValue(u"x", u"9");
    copy.root->RemoveChild(copy.root->Node(u"b"));
    EXPECT_EQ(document.root->Value(u"x", u""), u"1");
    EXPECT_NE(document.root->Node(u"b"), nullptr);
    document.Reset();
    EXPECT_EQ(copy.root->Value(u"x", u""), u"9");
}

TEST_F(XmlDocumentTest, AssignmentReplacesTheTreeAndTakesItself)
{
    XmlDocument document = Parsed("<a x='1'/>");
    XmlDocument other = Parsed("<old/>");
    other = document;
    EXPECT_EQ(DescribeTree(other), DescribeTree(document));
    XmlDocument& self = other;
    other = self;
    EXPECT_EQ(DescribeTree(other), DescribeTree(document));
    other = XmlDocument();
    EXPECT_EQ(other.root, nullptr);
}

TEST_F(XmlDocumentTest, ADerivedDocumentIsDestroyedThroughItsBase)
{
    struct Derived : XmlDocument {
        explicit Derived(bool& destroyed) : m_destroyed(destroyed) {}
        ~Derived() override { m_destroyed = true; }
        bool& m_destroyed;
    };
    bool isDestroyed = false;
    std::unique_ptr<XmlDocument> document = std::make_unique<Derived>(isDestroyed);
    document->Create(u"main");
    document.reset();
    EXPECT_TRUE(isDestroyed);
}

TEST_F(XmlDocumentTest, ReadsManyElementsOfManyKinds)
{
    std::string text = "<all>";
    for (int i = 0; i < 5000; ++i) {
        const std::string n = std::to_string(i);
        text += "<T" + std::to_string(i % 7) + " A" + std::to_string(i % 13) + "='" + n + "' B='" +
                std::string(static_cast<std::size_t>(i % 300), 'x') + "\xE2\x82\xAC'/>";
    }
    XmlDocument document = Parsed(text + "</all>");
    ASSERT_EQ(document.root->children.size(), 5000U);
    for (int i = 0; i < 5000; ++i) {
        const XmlNode& node = *document.root->children[static_cast<std::size_t>(i)];
        const ZRBasicString name = Utf8ToUtf16("A" + std::to_string(i % 13));
        ASSERT_EQ(Utf16ToUtf8(node.tag), "T" + std::to_string(i % 7));
        ASSERT_EQ(Utf16ToUtf8(node.Value(name.CStr(), u"")), std::to_string(i));
        ASSERT_EQ(node.Value(u"B", u"").Length(), static_cast<std::size_t>(i % 300 + 1));
    }
}

}  // namespace
