#include "diagnostics/ZRDebugInfo.h"

#include "CountedNew.h"
#include "siblings/tools/LanguageFile.h"
#include "siblings/tools/ZRLoadString.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using zr::test::largestBlock;

// Every number that a type leads to, each with the text "<number> of %s".
class ZRDebugInfoTest : public ::testing::Test {
protected:
    ZRDebugInfoTest()
    {
        std::string text;
        for (const int id : {32732, 32733, 32877, 32881}) {
            text += std::to_string(id) + "\t" + std::to_string(id) + " of %s\n";
        }
        for (int id = 32647; id <= 32676; ++id) {
            text += std::to_string(id) + "\t" + std::to_string(id) + " of %s\n";
        }
        Speak(text);
    }
    ~ZRDebugInfoTest() override { zr::SetLanguage(nullptr); }

    void Speak(const std::string& text)
    {
        zr::SetLanguage(nullptr);
        EXPECT_TRUE(m_language.LoadText(text, "test")) << m_language.Error().Message();
        zr::SetLanguage(&m_language);
    }
    // The message of one record.
    static ZRBasicString Message(int type, const ZRBasicString& name, const ZRBasicString& detail = {})
    {
        ZRDebugInfo list;
        list.AddWarning(type, name, u"info", detail);
        return list.WarningStr(0);
    }

private:
    zr::LanguageFile m_language;
};

TEST_F(ZRDebugInfoTest, IsEmptyAtFirst)
{
    const ZRDebugInfo list;
    EXPECT_EQ(list.Size(), 0);
}

TEST_F(ZRDebugInfoTest, KeepsRecordsInTheOrderOfArrivalDoublesIncluded)
{
    ZRDebugInfo list;
    list.AddWarning(1, u"M1", u"first", u"a");
    list.AddWarning(257, u"M2", u"second", u"");
    list.AddWarning(1, u"M1", u"first", u"a");
    ASSERT_EQ(list.Size(), 3);
    EXPECT_EQ(list.Type(0), 1);
    EXPECT_EQ(list.Name(0), u"M1");
    EXPECT_EQ(list.Info(0), u"first");
    EXPECT_EQ(list.Type(1), 257);
    EXPECT_EQ(list.Name(1), u"M2");
    EXPECT_EQ(list.Info(1), u"second");
    EXPECT_EQ(list.Type(2), 1);
}

TEST_F(ZRDebugInfoTest, KeepsCopiesOfTheTexts)
{
    ZRDebugInfo list;
    ZRBasicString name = u"M1";
    list.AddWarning(1, name, name, name);
    name = u"changed";
    EXPECT_EQ(list.Name(0), u"M1");
    EXPECT_EQ(list.Info(0), u"M1");
    EXPECT_EQ(list.WarningStr(0), u"32647 of M1 M1");
}

TEST_F(ZRDebugInfoTest, GivesTheMessageAloneForARecordWithoutDetail)
{
    EXPECT_EQ(Message(1, u"M1"), u"32647 of M1");
}

TEST_F(ZRDebugInfoTest, GivesMessageBlankDetailForARecordWithDetail)
{
    EXPECT_EQ(Message(1, u"M1", u"twice"), u"32647 of M1 twice");
}

TEST_F(ZRDebugInfoTest, TakesTheTextOfEachTypeFromTheTable)
{
    std::vector<std::pair<int, int>> table{{1, 32647},   {2, 32649},   {3, 32651},   {4, 32648},
                                           {5, 32650},   {6, 32652},   {257, 32733}, {258, 32732},
                                           {260, 32877}, {264, 32881}, {272, 32881}};
    for (int type = 7; type <= 30; ++type) {
        table.emplace_back(type, 32646 + type);
    }
    for (const auto& [type, id] : table) {
        const std::string number = std::to_string(id);
        const ZRBasicString expected = ZRBasicString(std::u16string(number.begin(), number.end())) + u" of M1";
        EXPECT_EQ(Message(type, u"M1"), expected) << type;
    }
}

TEST_F(ZRDebugInfoTest, GivesAnEmptyFirstPartForATypeOutsideTheTable)
{
    for (const int type : {0, -1, 31, 100, 256, 259, 261, 263, 273, 512, 1 << 30}) {
        EXPECT_EQ(Message(type, u"M1"), u"") << type;
        EXPECT_EQ(Message(type, u"M1", u"detail"), u" detail") << type;
    }
}

TEST_F(ZRDebugInfoTest, TellsEventsFromWarningsByBitEight)
{
    ZRDebugInfo list;
    for (const int type : {257, 258, 260, 264, 272}) {
        list.AddWarning(type, u"M1", u"", u"");
        EXPECT_TRUE(list.IsEvent(list.Size() - 1)) << type;
    }
    for (int type = 1; type <= 30; ++type) {
        list.AddWarning(type, u"M1", u"", u"");
        EXPECT_FALSE(list.IsEvent(list.Size() - 1)) << type;
    }
}

TEST_F(ZRDebugInfoTest, InvalidateEmptiesTheList)
{
    ZRDebugInfo list;
    list.AddWarning(1, u"M1", u"", u"");
    list.AddWarning(2, u"M2", u"", u"");
    list.Invalidate();
    EXPECT_EQ(list.Size(), 0);
    list.AddWarning(3, u"M3", u"", u"");
    ASSERT_EQ(list.Size(), 1);
    EXPECT_EQ(list.Name(0), u"M3");
}

TEST_F(ZRDebugInfoTest, InvalidateKeepsTheStorageOfTheArray)
{
    constexpr int kRecords = 1000;
    ZRDebugInfo list;
    const auto fill = [&list] {
        largestBlock = 0;
        for (int i = 0; i < kRecords; ++i) {
            list.AddWarning(1, u"", u"", u"");
        }
        return largestBlock;
    };
    EXPECT_GE(fill(), kRecords * sizeof(void*));
    list.Invalidate();
    EXPECT_LT(fill(), kRecords * sizeof(void*)) << "the array was made anew";
}

TEST_F(ZRDebugInfoTest, TheTextOfAnEarlierCallShowsTheLatestMessage)
{
    ZRDebugInfo list;
    list.AddWarning(1, u"M1", u"", u"");
    list.AddWarning(2, u"M2", u"", u"");
    const ZRBasicString& first = list.WarningStr(0);
    EXPECT_EQ(first, u"32647 of M1");
    const ZRBasicString& second = list.WarningStr(1);
    EXPECT_EQ(&first, &second);
    EXPECT_EQ(first, u"32649 of M2");
}

TEST_F(ZRDebugInfoTest, CutsTheMessageAtTheWorkBufferAndNotTheDetail)
{
    const ZRBasicString name(std::u16string(3000, u'x'));
    const ZRBasicString detail(std::u16string(2000, u'd'));
    const ZRBasicString message = Message(1, name, detail);
    EXPECT_EQ(message, ZRBasicString(u"32647 of " + std::u16string(1023 - 9, u'x') + u" " + detail.CStr()));
}

TEST_F(ZRDebugInfoTest, KeepsAMessageThatJustFitsTheWorkBuffer)
{
    const ZRBasicString name(std::u16string(1023 - 9, u'x'));
    EXPECT_EQ(Message(1, name).Length(), 1023u);
    EXPECT_EQ(Message(1, name + u"y").Length(), 1023u);
}

TEST_F(ZRDebugInfoTest, DoesNotCutASurrogatePairInTwo)
{
    const ZRBasicString name(std::u16string(1022 - 9, u'x') + u"\U0001F50C");
    EXPECT_EQ(Message(1, name), ZRBasicString(u"32647 of " + std::u16string(1022 - 9, u'x')));
}

TEST_F(ZRDebugInfoTest, TakesNoPlaceholderFromANameAndNoneThatTheTextDoesNotHave)
{
    EXPECT_EQ(Message(1, u"%s%n%d"), u"32647 of %s%n%d");
    Speak("32647\t%s and %s %d\n32649\tnone\n");
    EXPECT_EQ(Message(1, u"M1"), u"M1 and %s %d");
    EXPECT_EQ(Message(2, u"M1"), u"none");
}

TEST_F(ZRDebugInfoTest, GetGivesTheListConstructedLast)
{
    ZRDebugInfo first;
    EXPECT_EQ(&ZRDebugInfo::Get(), &first);
    std::optional<ZRDebugInfo> second(std::in_place);
    EXPECT_EQ(&ZRDebugInfo::Get(), &*second);
    second.reset();
    const ZRDebugInfo third;
    EXPECT_EQ(&ZRDebugInfo::Get(), &third);
}

TEST_F(ZRDebugInfoTest, CopiesShareTheRecordsAndLeaveTheInstance)
{
    ZRDebugInfo list;
    list.AddWarning(1, u"M1", u"", u"");
    const ZRDebugInfo empty;
    ZRDebugInfo last;

    ZRDebugInfo copy(list);
    ZRDebugInfo assigned(empty);
    assigned = list;
    EXPECT_EQ(&ZRDebugInfo::Get(), &last);
    for (ZRDebugInfo* const each : {&copy, &assigned}) {
        ASSERT_EQ(each->Size(), 1);
        EXPECT_EQ(&each->Name(0), &list.Name(0));
        // All but one let go of the records before they are destroyed.
        *each = empty;
        EXPECT_EQ(each->Size(), 0);
    }
    EXPECT_EQ(list.Name(0), u"M1");
}

}  // namespace
