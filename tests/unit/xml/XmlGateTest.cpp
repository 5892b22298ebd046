#include "siblings/tools/XmlGate.h"

#include "siblings/tools/XmlDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace {

struct Row {
    std::string text;
    std::size_t line;
    const char* reason;  // a part of it
};

void ExpectRefused(const Row& row)
{
    XmlDocument document;
    EXPECT_FALSE(document.LoadText(row.text)) << row.text;
    EXPECT_EQ(document.root, nullptr) << row.text;
    EXPECT_THAT(document.Error().reason, testing::HasSubstr(row.reason)) << row.text;
    EXPECT_EQ(document.Error().line, row.line) << row.text;
    EXPECT_EQ(document.Error().reason.find('\n'), std::string::npos) << row.text;
}

void ExpectAccepted(const std::string& text)
{
    XmlDocument document;
    EXPECT_TRUE(document.LoadText(text)) << text << "\n" << document.Error().Message();
    EXPECT_NE(document.root, nullptr) << text;
}

std::string Bytes(const char* text, std::size_t length)
{
    return std::string(text, length);
}

std::string Utf16(const std::string& ascii, bool bigEndian)
{
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char character : ascii) {
        bytes += bigEndian ? '\0' : character;
        bytes += bigEndian ? character : '\0';
    }
    return bytes;
}

std::string Nested(std::size_t depth)
{
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) {
        text += "<a>";
    }
    for (std::size_t i = 0; i < depth; ++i) {
        text += "</a>";
    }
    return text;
}

std::string WithAttributes(std::size_t count)
{
    std::string text = "<a";
    for (std::size_t i = 0; i < count; ++i) {
        text += " n" + std::to_string(i) + "=\"\"";
    }
    return text + "/>";
}

TEST(XmlGate, AcceptsWhatIsWellFormed)
{
    for (const char* text :
         {"<a/>", "<a></a>", " \r\n\t<a />\n", "<a b='1' c=\"2\"/>", "<a b = '1'\n\tc=\"2\" ></a >",
          "<?xml version=\"1.0\"?><a/>", "<?xml version='1.0' encoding='utf-8' standalone='yes' ?>\n<a/>",
          "<?xml version = \"1.0\" encoding = \"UTF-8\"?><a/>", "<!-- c --><a><!----><b/><!-- - - --></a><!-- -->",
          "<?pi?><a><?pi data ? > ?></a><?xml-stylesheet href='x'?>", "<a b=\"'\" c='\"' d='>' e=']]>' f='--'/>",
          "<a b='&amp;&lt;&gt;&quot;&apos;&#65;&#x41;&#x10FFFF;&#xD7FF;&#xFFFD;&#0009;&#x7f;'/>",
          "<_a:b.c-d1 :e='' \xC3\xA9t\xC3\xA9=''/>", "<\xE6\xB8\xAC\xE5\xAE\x9A/>", "<a b='\xF0\x9F\x94\x8C \t\n'/>",
          "<\xF0\x90\x80\x80/>", "<a\xC2\xB7/>"}) {
        ExpectAccepted(text);
    }
}

TEST(XmlGate, RefusesTextThatIsNotUtf8)
{
    ExpectRefused({"<a\nb='\xFF'/>", 2, "not UTF-8: byte 0xFF"});
    ExpectRefused({"<a b='\xC0\xAF'/>", 1, "not UTF-8"});
    ExpectRefused({"<a b='\xED\xA0\x80'/>", 1, "not UTF-8"});
    ExpectRefused({"<a b='\xF4\x90\x80\x80'/>", 1, "not UTF-8"});
    ExpectRefused({"<a b='caf\xE9'/>", 1, "not UTF-8"});
    ExpectRefused({"<caf\xE9/>", 1, "not UTF-8"});
    ExpectRefused({"<a/><!-- \x80 -->", 1, "not UTF-8"});
    ExpectRefused({"<a/><?p \x80?>", 1, "not UTF-8"});
    ExpectRefused({"<a>\n\n\xFE</a>", 3, "not UTF-8"});
    ExpectRefused({"<a b='\xE2\x82", 1, "not UTF-8"});
}

TEST(XmlGate, ConvertsUtf16WithAByteOrderMark)
{
    for (const bool bigEndian : {false, true}) {
        ExpectAccepted(Utf16("<a b='1'/>", bigEndian));
        ExpectAccepted(Utf16("<?xml version='1.0' encoding='UTF-16'?><a/>", bigEndian));
        ExpectRefused({Utf16("<?xml version='1.0' encoding='UTF-8'?><a/>", bigEndian), 1, "declared encoding"});
        ExpectRefused({Utf16("<a/>\n", bigEndian) + "x", 1, "odd number of bytes"});
        ExpectRefused({Utf16("<a>\n<b>", bigEndian), 2, "never closed"});
    }
    ExpectRefused({Utf16("<a b='\n", false) + "\x3D\xD8" + "x" + Bytes("\0", 1), 2, "half of a surrogate pair"});
    ExpectRefused({Bytes("<\0a\0/\0>\0", 8), 1, "U+0000"});
}

TEST(XmlGate, AcceptsAByteOrderMarkOfUtf8Once)
{
    ExpectAccepted("\xEF\xBB\xBF<a/>");
    ExpectAccepted("\xEF\xBB\xBF<?xml version='1.0'?><a/>");
    ExpectRefused({"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", 1, "text outside the root"});
    ExpectRefused({"<a/>\xEF\xBB\xBF", 1, "text outside the root"});
}

TEST(XmlGate, RefusesNulAndControlCharactersEverywhere)
{
    const std::string nul = Bytes("\0", 1);
    for (const std::string& character : {nul, std::string("\x01"), std::string("\x0B"), std::string("\x1F")}) {
        for (const char* frame : {"@<a/>", "<a/>@", "<a b='@'/>", "<a b=\"@\"/>", "<a><!--@--></a>", "<a><?p @?></a>",
                                  "<a>@</a>", "<a@/>"}) {
            std::string text = frame;
            text.replace(text.find('@'), 1, character);
            ExpectRefused({text, 1, "is not allowed"});
        }
    }
    ExpectRefused({"<a b='\x7F'/>", 1, "U+007F"});
    ExpectRefused({"<a b='\xC2\x85'/>", 1, "U+0085"});
    ExpectRefused({"<a b='\xEF\xBF\xBE'/>", 1, "U+FFFE"});
    ExpectRefused({"<a b='\xEF\xBF\xBF'/>", 1, "U+FFFF"});
}

TEST(XmlGate, RefusesAnyDocumentType)
{
    ExpectRefused({"<!DOCTYPE a><a/>", 1, "document type"});
    ExpectRefused({"\n<!DOCTYPE a [<!ENTITY x 'y'>]>\n<a/>", 2, "document type"});
    ExpectRefused({"<a><!DOCTYPE a></a>", 1, "document type"});
    ExpectRefused({"<a/><!DOCTYPE a>", 1, "document type"});
    ExpectRefused({"<!doctype a><a/>", 1, "\"<!\""});
    ExpectRefused({"<a><!ENTITY x 'y'></a>", 1, "\"<!\""});
    ExpectRefused({"<!", 1, "\"<!\""});
}

TEST(XmlGate, RefusesNoRootAndTwo)
{
    ExpectRefused({"", 1, "no root element"});
    ExpectRefused({" \n ", 2, "no root element"});
    ExpectRefused({"<?xml version='1.0'?>\n<!-- only -->\n", 3, "no root element"});
    ExpectRefused({"<a/>\n<b/>", 2, "second root element \"b\""});
    ExpectRefused({"<a></a><a></a>", 1, "second root element"});
}

TEST(XmlGate, RefusesTextAroundTheRoot)
{
    ExpectRefused({"x<a/>", 1, "text outside the root"});
    ExpectRefused({"<a/>\nx", 2, "text outside the root"});
    ExpectRefused({"<a/>&#32;", 1, "text outside the root"});
    ExpectRefused({"<a/></a>", 1, "closes nothing"});
    ExpectRefused({"<a/><![CDATA[]]>", 1, "CDATA"});
}

TEST(XmlGate, RefusesTextAndCdataBetweenTags)
{
    ExpectRefused({"<a>\n text </a>", 2, "text between tags"});
    ExpectRefused({"<a>&amp;</a>", 1, "text between tags"});
    ExpectRefused({"<a>&#32;</a>", 1, "text between tags"});
    ExpectRefused({"<a>]]></a>", 1, "text between tags"});
    ExpectRefused({"<a><b/>\xC2\xA0</a>", 1, "text between tags"});
    ExpectRefused({"<a>\n<![CDATA[x]]></a>", 2, "CDATA"});
}

TEST(XmlGate, RefusesDoubledAttributes)
{
    ExpectRefused({"<a b='1'\n b='2'/>", 2, "\"b\" stands twice"});
    ExpectRefused({"<a b='1' c='' d='' b=''></a>", 1, "\"b\" stands twice"});
    ExpectAccepted("<a b='1' B='2' bb='3'/>");
    std::string many = WithAttributes(100);
    ExpectAccepted(many);
    many.insert(many.size() - 2, " n42=''");
    ExpectRefused({many, 1, "\"n42\" stands twice"});
}

TEST(XmlGate, RefusesUndefinedEntities)
{
    ExpectRefused({"<a b='\n&nbsp;'/>", 2, "the entity \"nbsp\" is undefined"});
    ExpectRefused({"<a b='&AMP;'/>", 1, "the entity \"AMP\" is undefined"});
    ExpectRefused({"<a b='&'/>", 1, "begins no entity"});
    ExpectRefused({"<a b='a & b;'/>", 1, "begins no entity"});
    ExpectRefused({"<a b='&;'/>", 1, "begins no entity"});
    ExpectRefused({"<a b='&amp'/>", 1, "begins no entity"});
    ExpectRefused({"<a b='& amp;'/>", 1, "begins no entity"});
    ExpectRefused({"<a b='&", 1, "begins no entity"});
}

TEST(XmlGate, RefusesCharacterReferencesOutOfRange)
{
    for (const char* reference :
         {"&#0;", "&#x0;", "&#1;", "&#8;", "&#x1F;", "&#xD800;", "&#xDFFF;", "&#xFFFE;", "&#xFFFF;", "&#x110000;",
          "&#1114112;", "&#4294967361;", "&#x100000041;", "&#99999999999999999999;"}) {
        ExpectRefused({std::string("<a b='") + reference + "'/>", 1, "out of range"});
    }
    for (const char* reference : {"&#;", "&#x;", "&#xg;", "&#6a;", "&#X41;", "&#-65;", "&#+65;", "&# 65;", "&#65 ;"}) {
        ExpectRefused({std::string("<a b='") + reference + "'/>", 1, "is not a number"});
    }
}

TEST(XmlGate, RefusesMismatchedAndUnclosedTags)
{
    ExpectRefused({"<a>\n<b></a></b>", 2, "\"a\" stands where \"b\" of line 2 is to be closed"});
    ExpectRefused({"<a></A>", 1, "stands where"});
    ExpectRefused({"<a></ab>", 1, "stands where"});
    ExpectRefused({"<ab></a>", 1, "stands where"});
    ExpectRefused({"<a>\n<b/>\n", 3, "\"a\" of line 1 is never closed"});
    ExpectRefused({"<a></a b=''>", 1, "malformed"});
    ExpectRefused({"<a></a", 1, "malformed"});
    ExpectRefused({"<a></ a>", 1, "name is missing"});
    ExpectRefused({"<a></>", 1, "name is missing"});
    ExpectRefused({"</a>", 1, "closes nothing"});
}

TEST(XmlGate, RefusesMalformedTags)
{
    ExpectRefused({"<", 1, "name is missing"});
    ExpectRefused({"< a/>", 1, "name is missing"});
    ExpectRefused({"<>", 1, "name is missing"});
    ExpectRefused({"<1a/>", 1, "name is missing"});
    ExpectRefused({"<-a/>", 1, "name is missing"});
    ExpectRefused({"<\xC2\xB7/>", 1, "name is missing"});
    ExpectRefused({"<\xC3\x97/>", 1, "name is missing"});
    ExpectRefused({"<a", 1, "ends within a tag"});
    ExpectRefused({"<a\n ", 2, "ends within a tag"});
    ExpectRefused({"<a/", 1, "\"/\" within a tag"});
    ExpectRefused({"<a / >", 1, "\"/\" within a tag"});
    ExpectRefused({"<a/b='1'>", 1, "\"/\" within a tag"});
    ExpectRefused({"<a<b/>", 1, "white space is missing"});
    ExpectRefused({"<a <b/>", 1, "name is missing at the start of an attribute"});
    ExpectRefused({"<a,b/>", 1, "white space is missing"});
}

TEST(XmlGate, RefusesMalformedAttributes)
{
    ExpectRefused({"<a b=1/>", 1, "not quoted"});
    ExpectRefused({"<a b=>", 1, "not quoted"});
    ExpectRefused({"<a b=", 1, "not quoted"});
    ExpectRefused({"<a b>", 1, "has no value"});
    ExpectRefused({"<a b/>", 1, "has no value"});
    ExpectRefused({"<a b c='1'/>", 1, "has no value"});
    ExpectRefused({"<a b='1'c='2'/>", 1, "white space is missing"});
    ExpectRefused({"<a b='1'\"/>", 1, "white space is missing"});
    ExpectRefused({"<a b='1' ='2'/>", 1, "name is missing"});
    ExpectRefused({"<a 1b='1'/>", 1, "name is missing"});
    ExpectRefused({"<a b='x<y'/>", 1, "\"<\" within the value"});
    ExpectRefused({"<a b='1\"/>\n", 1, "never closed"});
    ExpectRefused({"<a b=\"1", 1, "never closed"});
}

TEST(XmlGate, RefusesMalformedComments)
{
    ExpectRefused({"<a><!-- a -- b --></a>", 1, "\"--\" within a comment"});
    ExpectRefused({"<a><!-- a ---></a>", 1, "\"--\" within a comment"});
    ExpectRefused({"<a>\n<!-- \n\n</a>", 2, "comment is never closed"});
    ExpectRefused({"<a/><!-->", 1, "comment is never closed"});
    ExpectRefused({"<a/><!- x -->", 1, "\"<!\""});
}

TEST(XmlGate, RefusesMalformedInstructions)
{
    ExpectRefused({"<a/><?", 1, "name is missing"});
    ExpectRefused({"<a/><? p?>", 1, "name is missing"});
    ExpectRefused({"<a/><?p", 1, "malformed processing instruction"});
    ExpectRefused({"<a/><?p ", 1, "never closed"});
    ExpectRefused({"<a/><?p\"x\"?>", 1, "malformed processing instruction"});
    ExpectRefused({"<a/>\n<?xml version='1.0'?>", 2, "only at the very beginning"});
    ExpectRefused({" <?xml version='1.0'?><a/>", 1, "only at the very beginning"});
    ExpectRefused({"<?XML version='1.0'?><a/>", 1, "only at the very beginning"});
    ExpectRefused({"<?xml?><a/>", 1, "only at the very beginning"});
}

TEST(XmlGate, RefusesMalformedDeclarations)
{
    ExpectRefused({"<?xml ?><a/>", 1, "version is not 1.0"});
    ExpectRefused({"<?xml version='1.1'?><a/>", 1, "version is not 1.0"});
    ExpectRefused({"<?xml encoding='UTF-8'?><a/>", 1, "version is not 1.0"});
    ExpectRefused({"<?xml version='1.0' standalone='maybe'?><a/>", 1, "standalone"});
    for (const char* text :
         {"<?xml version=1.0?><a/>", "<?xml version='1.0\"?><a/>", "<?xml version='1.0'", "<?xml version='1.0'><a/>",
          "<?xml version='1.0'encoding='UTF-8'?><a/>", "<?xml version=''?><a/>",
          "<?xml version='1.0' standalone='yes' encoding='UTF-8'?><a/>", "<?xml version='1.0' other='x'?><a/>",
          "<?xml version?><a/>", "<?xml version='1.0' ? ><a/>"}) {
        ExpectRefused({text, 1, "declaration is malformed"});
    }
}

TEST(XmlGate, RefusesAnEncodingThatIsNotTheOneOfTheText)
{
    for (const char* encoding : {"ISO-8859-1", "UTF-16", "windows-1252", "US-ASCII", "UTF-7", "utf8"}) {
        ExpectRefused({std::string("<?xml version='1.0' encoding='") + encoding + "'?><a/>", 1, encoding});
    }
}

TEST(XmlGate, HoldsTheLimitOfDepth)
{
    ExpectAccepted(Nested(XmlDocument::kMaxDepth));
    ExpectRefused({Nested(XmlDocument::kMaxDepth + 1), 1, "nested deeper than 256"});
    std::string closed = Nested(XmlDocument::kMaxDepth);
    closed.insert(3 * XmlDocument::kMaxDepth, "<b/>");
    ExpectRefused({closed, 1, "nested deeper than 256"});
}

TEST(XmlGate, HoldsTheLimitOfAttributes)
{
    ExpectAccepted(WithAttributes(XmlDocument::kMaxAttributes));
    ExpectRefused({WithAttributes(XmlDocument::kMaxAttributes + 1), 1, "more than 1000 attributes"});
}

TEST(XmlGate, HoldsTheLimitOfSize)
{
    std::string text = "<a/>";
    text.resize(XmlDocument::kMaxBytes, ' ');
    ExpectAccepted(text);
    text += ' ';
    ExpectRefused({text, 1, "larger than 67108864 bytes"});
}

TEST(XmlGate, HoldsTheLimitOfElements)
{
    std::string text = "<a>";
    for (std::size_t i = 0; i < xml::XmlGate::kMaxElements; ++i) {
        text += "<b/>";
    }
    xml::XmlGate gate(text, xml::Encoding::Utf8);
    EXPECT_FALSE(gate.Check());
    EXPECT_THAT(gate.Reason(), testing::HasSubstr("more than 4000000 elements"));
}

TEST(XmlGate, CountsLinesChildrenAndAttributesOfEachElement)
{
    const std::string text = "<!--\n-->\n<a\n x='1'>\n  <b y='\n' z=''/><c/>\n</a>";
    xml::XmlGate gate(text, xml::Encoding::Utf8);
    ASSERT_TRUE(gate.Check());
    ASSERT_EQ(gate.Elements().size(), 3U);
    EXPECT_EQ(gate.Elements()[0].line, 3U);
    EXPECT_EQ(gate.Elements()[0].children, 2U);
    EXPECT_EQ(gate.Elements()[0].attributes, 1U);
    EXPECT_EQ(gate.Elements()[1].line, 5U);
    EXPECT_EQ(gate.Elements()[1].attributes, 2U);
    EXPECT_EQ(gate.Elements()[2].line, 6U);
}

TEST(XmlGate, CutsLongNamesInItsReasons)
{
    std::string name = "n";
    for (int i = 0; i < 1000; ++i) {
        name += "\xC3\xA9";
    }
    XmlDocument document;
    EXPECT_FALSE(document.LoadText("<a/><" + name + "/>"));
    EXPECT_LT(document.Error().reason.size(), 120U);
    EXPECT_THAT(document.Error().reason, testing::HasSubstr("...\""));
}

}  // namespace
