#include "siblings/tools/LanguageFile.h"

#include "siblings/tools/FormatText.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using zr::LanguageFile;

constexpr const char* kEnglish = ZR_RESOURCES "/language/en.txt";

std::string BytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The error of a text that must be refused.
std::string Refused(std::string_view bytes)
{
    LanguageFile file;
    EXPECT_FALSE(file.LoadText(bytes, "xx.txt"));
    EXPECT_THAT(file.Texts(), IsEmpty());
    return file.Error().Message();
}

ZRBasicString Text(const LanguageFile& file, unsigned id)
{
    const ZRBasicString* text = file.Find(id);
    return text != nullptr ? *text : ZRBasicString(u"(none)");
}

TEST(LanguageFile, ReadsANumberATabAndAText)
{
    LanguageFile file;
    ASSERT_TRUE(
        file.LoadText("# a comment\n\n311\tOK\n0\tGr\xC3\xBC\xC3\x9F"
                      "e # no comment\n65535\t %s \n",
                      ""));
    EXPECT_EQ(file.Texts().size(), 3u);
    EXPECT_EQ(Text(file, 311), u"OK");
    EXPECT_EQ(Text(file, 0), u"Gr\u00FC\u00DFe # no comment");
    EXPECT_EQ(Text(file, 65535), u" %s ");
    EXPECT_EQ(file.Find(1), nullptr);
}

TEST(LanguageFile, ReadsEscapes)
{
    LanguageFile file;
    ASSERT_TRUE(file.LoadText("1\tone\\ntwo\\tthree\\\\n\n", ""));
    EXPECT_EQ(Text(file, 1), u"one\ntwo\tthree\\n");
}

TEST(LanguageFile, TakesTheByteOrderMarkAndLineEndsOfOtherEditors)
{
    LanguageFile file;
    ASSERT_TRUE(
        file.LoadText("\xEF\xBB\xBF"
                      "1\tone\r\n2\ttwo\r\n",
                      ""));
    EXPECT_EQ(Text(file, 1), u"one");
    EXPECT_EQ(Text(file, 2), u"two");
}

// The worked example of docs/formats/language-file.md.
TEST(LanguageFile, ReadsTheWorkedExample)
{
    const std::string example =
        "# Texts of the explorer\n"
        "432\tYear\n"
        "757\t%d minutes\n"
        "32331\tWeek %d: %s to %s\n"
        "513\tThis sample period is too long for the group.\\nChoose a shorter period, or a longer group.\n";
    LanguageFile file;
    ASSERT_TRUE(file.LoadText(example, "en.txt"));
    EXPECT_EQ(zr::FormatText(Text(file, 757), {15}), u"15 minutes");
    EXPECT_EQ(zr::FormatText(Text(file, 32331), {1, u"30 December 2002", u"5 January 2003"}),
              u"Week 1: 30 December 2002 to 5 January 2003");
    EXPECT_NE(Text(file, 513).Text().find(u'\n'), std::u16string_view::npos);
    EXPECT_FALSE(file.LoadText(example + "757\t%d min\n", "en.txt"));
    EXPECT_EQ(file.Error().Message(), "en.txt:6: number 757 stands in line 3 already");
}

TEST(LanguageFile, RefusesAMissingFileByName)
{
    const zr::test::TempFolder folder;
    LanguageFile file;
    EXPECT_FALSE(file.Load(folder.Path() / "none.txt"));
    EXPECT_THAT(file.Error().Message(), HasSubstr("none.txt: "));
    EXPECT_EQ(file.Error().line, 0u);
}

TEST(LanguageFile, RefusesAFolderInPlaceOfAFile)
{
    const zr::test::TempFolder folder;
    LanguageFile file;
    EXPECT_FALSE(file.Load(folder.Path()));
    EXPECT_FALSE(file.Error().reason.empty());
}

TEST(LanguageFile, RefusesAFileWithoutText)
{
    EXPECT_EQ(Refused(""), "xx.txt: the file holds no text");
    EXPECT_EQ(Refused("# nothing\n\n"), "xx.txt: the file holds no text");
}

TEST(LanguageFile, RefusesAFileThatIsCutOff)
{
    EXPECT_THAT(Refused("1\tone\n2\ttw"), HasSubstr("xx.txt:2: the last line has no line end"));
}

TEST(LanguageFile, NamesTheLineOfAFault)
{
    EXPECT_THAT(Refused("1\tone\n\nthree\n"), HasSubstr("xx.txt:3: expected a number, a tab and a text"));
    EXPECT_THAT(Refused("1\tone\n2 two\n"), HasSubstr("xx.txt:2: expected a number"));
    EXPECT_THAT(Refused("x1\tone\n"), HasSubstr("xx.txt:1: the line must start with a number"));
    EXPECT_THAT(Refused("65536\tone\n"), HasSubstr("from 0 to 65535"));
    EXPECT_THAT(Refused("99999999999999999999\tone\n"), HasSubstr("from 0 to 65535"));
    EXPECT_THAT(Refused("-1\tone\n"), HasSubstr("from 0 to 65535"));
    EXPECT_THAT(Refused("01\tone\n"), HasSubstr("from 0 to 65535"));
    EXPECT_THAT(Refused("\tone\n"), HasSubstr("from 0 to 65535"));
    EXPECT_THAT(Refused("1\t\n"), HasSubstr("xx.txt:1: the text is empty"));
    EXPECT_THAT(Refused("1\tone\n1\ttwo\n"), HasSubstr("xx.txt:2: number 1 stands in line 1 already"));
    EXPECT_THAT(Refused("1\tone\ttwo\n"), HasSubstr("control character"));
    EXPECT_THAT(Refused(std::string_view("1\to\0e\n", 6)), HasSubstr("control character"));
    EXPECT_THAT(Refused("1\tone\\x\n"), HasSubstr("backslash"));
    EXPECT_THAT(Refused("1\tone\\\n"), HasSubstr("backslash"));
    EXPECT_THAT(Refused("1\tone\n2\tt\xFFo\n"), HasSubstr("xx.txt:2: not UTF-8 at byte 4"));
    EXPECT_THAT(Refused("# \xED\xA0\x80\n"), HasSubstr("xx.txt:1: not UTF-8"));
    EXPECT_THAT(Refused("1\t" + std::string(LanguageFile::kMaxTextBytes + 1, 'x') + "\n"), HasSubstr("longer"));
}

TEST(LanguageFile, RefusesAHugeFile)
{
    EXPECT_THAT(Refused(std::string(LanguageFile::kMaxBytes + 1, '\n')), HasSubstr("4 MiB"));
}

TEST(LanguageFile, KeepsItsTextsWhenAnotherFileIsRefused)
{
    LanguageFile file;
    ASSERT_TRUE(file.LoadText("1\tone\n2\ttwo\n", ""));
    EXPECT_FALSE(file.LoadText("1\teins\nzwei\n", "de.txt"));
    EXPECT_EQ(Text(file, 1), u"one");
    EXPECT_EQ(Text(file, 2), u"two");
    ASSERT_TRUE(file.LoadText("1\teins\n", "de.txt"));
    EXPECT_EQ(file.Find(2), nullptr);
}

// Whole or not at all: what a mutated file gives is either its own texts or none, with a reason.
TEST(LanguageFile, TakesTenThousandMutatedFilesWithoutHarm)
{
    const std::string original = BytesOf(kEnglish);
    ASSERT_FALSE(original.empty());
    std::mt19937 random(20240101);
    int accepted = 0;
    int refused = 0;
    for (int round = 0; round < 10000; ++round) {
        std::string bytes = original;
        for (unsigned change = random() % 4; change <= 3 && !bytes.empty(); ++change) {
            const std::size_t at = random() % bytes.size();
            switch (random() % 5) {
                case 0:
                    bytes[at] = static_cast<char>(random() & 0xFF);
                    break;
                case 1:
                    bytes.erase(at, random() % 40 + 1);
                    break;
                case 2:
                    bytes.insert(at, random() % 40 + 1, static_cast<char>(random() & 0xFF));
                    break;
                case 3:
                    bytes.insert(at, original.substr(random() % original.size(), random() % 200));
                    break;
                default:
                    bytes.resize(at + 1);
                    break;
            }
        }
        LanguageFile file;
        const bool isLoaded = file.LoadText(bytes, "mutated.txt");
        (isLoaded ? accepted : refused) += 1;
        ASSERT_EQ(isLoaded, file.Error().reason.empty());
        ASSERT_EQ(isLoaded, !file.Texts().empty());
    }
    EXPECT_GT(accepted, 100);
    EXPECT_GT(refused, 1000);
}

TEST(ZRLoadString, GivesTheTextOfTheLanguageInForce)
{
    LanguageFile file;
    ASSERT_TRUE(file.LoadText("514\tNo variable\n", ""));
    zr::SetLanguage(&file);
    ZRBasicString text = u"old";
    EXPECT_EQ(&ZRLoadString(514, text), &text);
    EXPECT_EQ(text, u"No variable");
    EXPECT_EQ(ZRLoadString(515, text), u"#515");
    zr::SetLanguage(nullptr);
    EXPECT_EQ(ZRLoadString(514, text), u"#514");
}

// --- the language files of the repository ---

struct TextId {
    unsigned id;
    std::string placeholders;  // "%d %s", or "-" for none
};

std::vector<TextId> TextIds()
{
    std::ifstream file(ZR_TEST_DATA "/text_ids.tsv");
    std::vector<TextId> ids;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        std::istringstream fields(line);
        std::string id;
        std::string placeholders;
        std::getline(fields, id, '\t');
        std::getline(fields, placeholders, '\t');
        ids.push_back({static_cast<unsigned>(std::stoul(id)), placeholders});
    }
    return ids;
}

// As in text_ids.tsv. "%%" is none.
std::string PlaceholdersOf(const ZRBasicString& text)
{
    const std::string bytes = Utf16ToUtf8(text);
    std::string out;
    for (std::size_t at = bytes.find('%'); at != std::string::npos; at = bytes.find('%', at)) {
        const std::size_t end = std::min(bytes.find_first_not_of("-+0123456789.", at + 1), bytes.size() - 1);
        const std::string placeholder = bytes.substr(at, end - at + 1);
        if (placeholder != "%%") {
            out += (out.empty() ? "" : " ") + placeholder;
        }
        at = end + 1;
    }
    return out.empty() ? "-" : out;
}

TEST(LanguageFile, HoldsInEnglishEveryTextThatTheSystemAsksForAndNoOther)
{
    LanguageFile file;
    ASSERT_TRUE(file.Load(kEnglish)) << file.Error().Message();
    std::set<unsigned> asked;
    for (const TextId& text : TextIds()) {
        asked.insert(text.id);
        EXPECT_NE(file.Find(text.id), nullptr) << text.id << " is missing";
    }
    EXPECT_GT(asked.size(), 150u);
    for (const auto& [id, text] : file.Texts()) {
        EXPECT_TRUE(asked.contains(id)) << id << " is asked for by nobody";
    }
}

TEST(LanguageFile, HoldsInEnglishThePlaceholdersThatAreFilled)
{
    LanguageFile file;
    ASSERT_TRUE(file.Load(kEnglish)) << file.Error().Message();
    for (const TextId& text : TextIds()) {
        EXPECT_EQ(PlaceholdersOf(Text(file, text.id)), text.placeholders) << text.id;
    }
}

TEST(LanguageFile, TakesOneTextInEveryEnglishWarning)
{
    std::vector<unsigned> ids = {32732, 32733, 32877, 32881};
    for (unsigned id = 32647; id <= 32676; ++id) {
        ids.push_back(id);
    }
    LanguageFile file;
    ASSERT_TRUE(file.Load(kEnglish)) << file.Error().Message();
    for (const unsigned id : ids) {
        EXPECT_EQ(PlaceholdersOf(Text(file, id)), "%s") << id;
    }
}

class LanguageFileOf : public ::testing::TestWithParam<const char*> {};

TEST_P(LanguageFileOf, HoldsTheTextsOfTheEnglishWithTheirPlaceholders)
{
    LanguageFile english;
    ASSERT_TRUE(english.Load(kEnglish)) << english.Error().Message();
    LanguageFile file;
    ASSERT_TRUE(file.Load(std::string(ZR_RESOURCES "/language/") + GetParam())) << file.Error().Message();
    EXPECT_EQ(file.Texts().size(), english.Texts().size());
    for (const auto& [id, text] : english.Texts()) {
        ASSERT_NE(file.Find(id), nullptr) << id << " is missing";
        EXPECT_EQ(PlaceholdersOf(*file.Find(id)), PlaceholdersOf(text)) << id;
    }
}

INSTANTIATE_TEST_SUITE_P(LanguageFile, LanguageFileOf, ::testing::Values("de.txt", "es.txt"));

}  // namespace
