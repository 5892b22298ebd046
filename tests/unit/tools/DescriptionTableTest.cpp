#include "siblings/tools/DescriptionTable.h"

#include "siblings/tools/Utf.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace {

using zr::DescriptionTable;

DescriptionTable Table(std::string_view text)
{
    DescriptionTable table;
    EXPECT_TRUE(table.LoadText(text, "de.txt")) << table.Error().Message();
    return table;
}

TEST(DescriptionTable, TranslatesWhatItHolds)
{
    const DescriptionTable table = Table("# German\n\nFrequency\tFrequenz\r\nOn\tEin");
    EXPECT_EQ(table.Translate(u"Frequency"), u"Frequenz");
    EXPECT_EQ(table.Translate(u"On"), u"Ein");
}

TEST(DescriptionTable, LeavesInEnglishWhatItDoesNotHold)
{
    const DescriptionTable table = Table("Frequency\tFrequenz\n");
    EXPECT_EQ(table.Translate(u"frequency"), u"frequency");
    EXPECT_EQ(table.Translate(u"Frequency 2"), u"Frequency 2");
    EXPECT_EQ(table.Translate(u""), u"");
    EXPECT_EQ(DescriptionTable().Translate(u"Frequency"), u"Frequency");
}

TEST(DescriptionTable, PutsTheNumbersOfTheTextIn)
{
    const DescriptionTable table = Table("Harmonic %d of current L%d\t%d. Harmonische des Stroms L%d\n");
    EXPECT_EQ(table.Translate(u"Harmonic 11 of current L3"), u"11. Harmonische des Stroms L3");
    EXPECT_EQ(table.Translate(u"Harmonic 007 of current L3"), u"007. Harmonische des Stroms L3");
    EXPECT_EQ(table.Translate(u"Harmonic of current L3"), u"Harmonic of current L3");
}

TEST(DescriptionTable, TakesABarePlaceholderInADescriptionForText)
{
    const DescriptionTable table = Table("Input %d\tEingang %d\n");
    EXPECT_EQ(table.Translate(u"Input %d"), u"Input %d");
    EXPECT_EQ(table.Translate(u"Input %d%d%d"), u"Input %d%d%d");
}

TEST(DescriptionTable, RefusesALineWithItsReasonAndKeepsWhatItHad)
{
    const struct {
        const char* text;
        const char* message;
    } rows[] = {
        {"On\tEin\nOff\n", "de.txt:2: expected an English text, a tab and its translation"},
        {"On\t\n", "de.txt:1: expected an English text, a tab and its translation"},
        {"\tEin\n", "de.txt:1: expected an English text, a tab and its translation"},
        {"On\tEin\tAn\n", "de.txt:1: a control character stands in the text"},
        {"On\t\xFF\n", "de.txt:1: not UTF-8"},
        {"Input %d\tEingang\n", "de.txt:1: the translation must have as many %d as the English text"},
        {"Input\tEingang %d\n", "de.txt:1: the translation must have as many %d as the English text"},
        {"On\tEin\n\nOn\tAn\n", "de.txt:3: the English text stands in the file already"},
    };
    for (const auto& row : rows) {
        DescriptionTable table = Table("Frequency\tFrequenz\n");
        EXPECT_FALSE(table.LoadText(row.text, "de.txt"));
        EXPECT_EQ(table.Error().Message(), row.message);
        EXPECT_EQ(table.Translate(u"Frequency"), u"Frequenz");
    }
}

TEST(DescriptionTable, RefusesAFileThatIsNotThereOrTooLarge)
{
    DescriptionTable table;
    EXPECT_FALSE(table.Load("no/such/file.txt"));
    EXPECT_NE(table.Error().Message().find("file.txt"), std::string::npos);
    EXPECT_FALSE(table.LoadText(std::string(DescriptionTable::kMaxBytes + 1, '#'), "de.txt"));
    EXPECT_EQ(table.Error().Message(), "de.txt: larger than 1 MiB");
}

TEST(DescriptionTable, IsEnglishAgainOnceCleared)
{
    DescriptionTable table = Table("On\tEin\n");
    table.Clear();
    EXPECT_EQ(table.Translate(u"On"), u"On");
}

TEST(DescriptionTable, TranslatesInForceUntilItIsTakenBack)
{
    EXPECT_EQ(zr::TranslateDescription(u"On"), u"On");
    const DescriptionTable table = Table("On\tEin\n");
    zr::SetDescriptions(&table);
    EXPECT_EQ(zr::TranslateDescription(u"On"), u"Ein");
    zr::SetDescriptions(nullptr);
    EXPECT_EQ(zr::TranslateDescription(u"On"), u"On");
}

// --- the tables of the repository ---

// Every value of an attribute, given as description=" with its quote.
void Collect(const std::string& xml, const std::string& attribute, std::set<std::string>& found)
{
    for (std::size_t at = xml.find(attribute); at != std::string::npos; at = xml.find(attribute, at)) {
        at += attribute.size();
        found.insert(xml.substr(at, xml.find('"', at) - at));
    }
}

std::set<std::string> DescriptionsOfTheProfiles()
{
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(ZR_RESOURCES "/devices")) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string xml(std::istreambuf_iterator<char>(file), {});
        Collect(xml, " description=\"", found);
        Collect(xml, " text=\"", found);
    }
    return found;
}

class DescriptionTableOf : public ::testing::TestWithParam<const char*> {};

TEST_P(DescriptionTableOf, HoldsEveryDescriptionOfTheProfiles)
{
    // The same word in both languages.
    const std::set<std::string> same = {"Alarm 1", "Alarm 2", "Alarm 3", "Alarm 4"};
    DescriptionTable table;
    ASSERT_TRUE(table.Load(std::string(ZR_RESOURCES "/descriptions/") + GetParam())) << table.Error().Message();
    const std::set<std::string> descriptions = DescriptionsOfTheProfiles();
    EXPECT_GT(descriptions.size(), 150u);
    for (const std::string& description : descriptions) {
        const ZRBasicString english = Utf8ToUtf16(description);
        EXPECT_TRUE(table.Translate(english) != english || same.contains(description)) << description;
    }
}

INSTANTIATE_TEST_SUITE_P(DescriptionTable, DescriptionTableOf, ::testing::Values("de.txt", "es.txt"));

}  // namespace
