#include "hosts/kestrix/LoadTrouble.h"

#include "EnglishTexts.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/tools/Utf.h"
#include "support/LiveDevice.h"

#include <gtest/gtest.h>

namespace zr::desktop {
namespace {

class LoadTroubleTest : public testing::Test {
protected:
    ~LoadTroubleTest() override { SetLoggerStore(nullptr); }

    test::EnglishTexts m_texts;
};

TEST_F(LoadTroubleTest, SaysNothingWhereAllWentWell)
{
    EXPECT_EQ(Describe({}), LoadTroubleText());
}

TEST_F(LoadTroubleTest, TellsWhyTheStoreFailedBeforeAllElse)
{
    LoadTrouble trouble;
    trouble.failure = "/data/plant.sqlite: disk I/O error";
    trouble.problems = {"A.MVDF: cannot be read"};
    trouble.vanished = {u"M.U"};
    const LoadTroubleText text = Describe(trouble);
    EXPECT_EQ(text.line, u"The data cannot be read: /data/plant.sqlite: disk I/O error (+ 2 more)");
    EXPECT_EQ(text.whole,
              u"The data cannot be read: /data/plant.sqlite: disk I/O error\nNo values: A.MVDF: cannot be read\n"
              u"Not shown, since no device has it any more: M.U");
    EXPECT_TRUE(text.isWarning);
}

TEST_F(LoadTroubleTest, CountsWhatIsDamagedBehindTheFirst)
{
    LoadTrouble trouble;
    for (int i = 1; i <= 30; ++i) {
        trouble.damage.push_back("block " + std::to_string(i));
    }
    const LoadTroubleText text = Describe(trouble);
    EXPECT_EQ(text.line, u"Left out, since it is damaged: block 1 (+ 29 more)");
    const std::string whole = Utf16ToUtf8(text.whole);
    EXPECT_NE(whole.find("block 20\n(+ 10 more)"), std::string::npos) << whole;
    EXPECT_EQ(whole.find("block 21"), std::string::npos) << whole;
    EXPECT_TRUE(text.isWarning);
}

TEST_F(LoadTroubleTest, IsNoWarningWhereNothingThatWasAskedForIsMissing)
{
    LoadTrouble trouble;
    trouble.wasStopped = true;
    trouble.vanished = {u"M.OLD"};
    const LoadTroubleText text = Describe(trouble);
    EXPECT_EQ(text.line, u"Loading was stopped; F5 reads again (+ 1 more)");
    EXPECT_FALSE(text.isWarning);
}

TEST_F(LoadTroubleTest, StaysOneShortLineWhateverAStoreSays)
{
    LoadTrouble trouble;
    trouble.failure = "first\nsecond\t" + std::string(10000, 'x');
    const LoadTroubleText text = Describe(trouble);
    EXPECT_LT(text.line.Length(), 100U);
    EXPECT_EQ(text.line.Text().find(u'\n'), std::u16string_view::npos);
    EXPECT_EQ(text.line.Text().substr(0, 37), u"The data cannot be read: first second");
    EXPECT_EQ(text.line.Text().back(), u'\u2026');
    EXPECT_GT(text.whole.Length(), 10000U);
}

TEST_F(LoadTroubleTest, CutsNoCharacterInTwo)
{
    for (int length = 60; length < 70; ++length) {
        LoadTrouble trouble;
        trouble.failure = std::string(static_cast<std::size_t>(length), 'x');
        for (int i = 0; i < 10; ++i) {
            trouble.failure += "\xF0\x9F\x94\x8C";  // beyond the basic plane
        }
        const ZRBasicString line = Describe(trouble).line;
        EXPECT_EQ(Utf8ToUtf16(Utf16ToUtf8(line)), line) << length;
    }
}

TEST_F(LoadTroubleTest, IsTakenFromTheDataThatWereLoaded)
{
    const test::LiveDevice meter(u"M", {test::Variable(u"U")});
    ZRLoggerInfo info;
    info.AddVariable(u"M.U");
    info.AddVariable(u"M.OLD");
    MemoryLoggerStore store;
    SetLoggerStore(&store);
    ZRLoggerData data;
    data.Setup(info);
    ZRDateTime from;
    from.SetDateTime(2003, 1, 1, 0, 0, 0, 0, 0);
    ZRDateTime to;
    to.SetDateTime(2003, 1, 2, 0, 0, 0, 0, 0);
    ASSERT_TRUE(data.SelectData(from, to, nullptr));
    store.SetAvailable(false);
    data.RecordGroup({0, 0}, nullptr);
    const LoadTrouble trouble = LoadTrouble::Of(data, true);
    EXPECT_TRUE(trouble.wasStopped);
    EXPECT_NE(trouble.failure, "");
    EXPECT_EQ(trouble.vanished, std::vector<ZRBasicString>{u"M.OLD"});
}

}  // namespace
}  // namespace zr::desktop
