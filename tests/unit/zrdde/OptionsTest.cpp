#include "hosts/zrdde/Options.h"

#include <gtest/gtest.h>

namespace zr::ddeclient {

namespace {

ParsedOptions Parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "zrdde");
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return ParseOptions(static_cast<int>(words.size()), pointers.data());
}

// The options of a line that is right.
Options Good(const std::vector<std::string>& words)
{
    const ParsedOptions parsed = Parse(words);
    EXPECT_TRUE(parsed.options);
    return parsed.options.value_or(Options());
}

// What is said of a line that is wrong.
std::string Complaint(const std::vector<std::string>& words)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const ParsedOptions parsed = Parse(words);
    testing::internal::GetCapturedStdout();
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(parsed.options) << said;
    EXPECT_EQ(parsed.exitStatus, kBadCommand);
    return said;
}

}  // namespace

TEST(Options, AdviseTakesServiceTopicAndItems)
{
    const Options options = Good({"advise", "KESTRIX", "Meter 1", "U1", "F"});
    EXPECT_EQ(options.command, Command::Advise);
    EXPECT_EQ(options.service, u"KESTRIX");
    EXPECT_EQ(options.topic, u"Meter 1");
    EXPECT_EQ(options.items, (std::vector<std::u16string>{u"U1", u"F"}));
    EXPECT_EQ(options.format, Format::XlTable);
    EXPECT_FALSE(options.count);
    EXPECT_FALSE(options.timeout);
    EXPECT_FALSE(options.json);
}

TEST(Options, AdviseTakesItsSettingsWhereverTheyStand)
{
    const Options options =
        Good({"advise", "--json", "S", "T", "U1", "--format", "TEXT", "--count", "12", "--timeout", "2.5"});
    EXPECT_EQ(options.format, Format::Text);
    EXPECT_EQ(options.count, 12U);
    EXPECT_EQ(options.timeout, std::chrono::milliseconds(2500));
    EXPECT_TRUE(options.json);
}

TEST(Options, ANameMayBeginWithASlash)
{
    EXPECT_EQ(Good({"advise", "/S", "/T", "/U1"}).topic, u"/T");
}

TEST(Options, AnItemThatIsNamedTwiceIsOneItem)
{
    EXPECT_EQ(Good({"advise", "S", "T", "U1", "u1", "U2"}).items, (std::vector<std::u16string>{u"U1", u"U2"}));
}

TEST(Options, NamesOf255CharactersAreTakenAndLongerOrEmptyOnesAreNot)
{
    EXPECT_EQ(Good({"advise", "S", std::string(255, 't'), "U1"}).topic.size(), 255U);
    EXPECT_NE(Complaint({"advise", "S", std::string(256, 't'), "U1"}).find("topic is longer than 255"),
              std::string::npos);
    EXPECT_NE(Complaint({"advise", std::string(256, 's'), "T", "U1"}).find("service name"), std::string::npos);
    EXPECT_NE(Complaint({"advise", "S", "T", ""}).find("item is empty"), std::string::npos);
    EXPECT_NE(Complaint({"advise", "S", "T", "\xFF"}).find("item is not UTF-8"), std::string::npos);
}

TEST(Options, NumbersOutOfTheirRangeAreRefused)
{
    for (const char* count : {"0", "-1", "x", "1.5"}) {
        EXPECT_NE(Complaint({"advise", "S", "T", "U1", "--count", count}).find("--count"), std::string::npos) << count;
    }
    for (const char* seconds : {"0", "-1", "x", "1e99"}) {
        EXPECT_NE(Complaint({"advise", "S", "T", "U1", "--timeout", seconds}).find("--timeout"), std::string::npos)
            << seconds;
    }
    EXPECT_NE(Complaint({"advise", "S", "T", "U1", "--format", "csv"}).find("--format"), std::string::npos);
}

TEST(Options, WithoutACommandOrWithHalfOfOneTheLineIsWrong)
{
    EXPECT_FALSE(Complaint({}).empty());
    EXPECT_FALSE(Complaint({"advise", "S", "T"}).empty());
    EXPECT_FALSE(Complaint({"listen"}).empty());
}

TEST(Options, HelpEndsWell)
{
    testing::internal::CaptureStdout();
    const ParsedOptions parsed = Parse({"advise", "--help"});
    const std::string said = testing::internal::GetCapturedStdout();
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(parsed.exitStatus, kDone);
    EXPECT_NE(said.find("Exit status"), std::string::npos);
}

TEST(Options, ALinkSplitsAtTheFirstPoint)
{
    const Options options = Good({"link", "METER-1.U1"});
    EXPECT_EQ(options.command, Command::Link);
    EXPECT_EQ(options.service, u"KESTRIX");
    EXPECT_EQ(options.device, u"METER-1");
    EXPECT_EQ(options.variable, u"U1");
    EXPECT_EQ(Good({"link", "--service", "HALL 2", "M.U1"}).service, u"HALL 2");
}

TEST(Options, ALinkIsADeviceAndAVariableAndNothingElse)
{
    for (const char* reference : {"U1", ".U1", "METER."}) {
        EXPECT_NE(Complaint({"link", reference}).find("is not DEVICE.VARIABLE"), std::string::npos) << reference;
    }
    EXPECT_NE(Complaint({"link", "T.MVDF@PEAK#METER.U1"}).find("no filter"), std::string::npos);
    EXPECT_NE(Complaint({"link", std::string(128, 'D') + ".U1"}).find("127"), std::string::npos);
    EXPECT_EQ(Good({"link", std::string(127, 'D') + ".U1"}).device.size(), 127U);
}

}  // namespace zr::ddeclient
