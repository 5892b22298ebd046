#include "hosts/kestrix/LoggedDataSettings.h"

#include "siblings/tools/Utf.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zr::desktop {
namespace {

namespace fs = std::filesystem;

class LoggedDataSettingsTest : public testing::Test {
protected:
    // As a window leaves it: one column of that width.
    static void Arrange(LoggedDataSettings::View& view, const wchar* width, int viewer = 2)
    {
        view.viewer = viewer;
        view.tree.Create(u"main");
        view.tree.root->NewChild(u"Table")->NewChild(u"VarSetup")->SetValue(u"Width", width);
    }
    static ZRBasicString WidthIn(const LoggedDataSettings::View& view)
    {
        const XmlNode* const setup = view.tree.root != nullptr ? view.tree.root->Node(u"Table/VarSetup") : nullptr;
        return setup != nullptr ? setup->Value(u"Width", u"") : ZRBasicString(u"none");
    }
    std::string Bytes() const
    {
        std::ifstream stream(m_file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static std::string BytesOf(const std::string& windows)
    {
        return "<LoggedDataWindows Version=\"1\">" + windows + "</LoggedDataWindows>\n";
    }
    // What Load says of a file; empty for nothing.
    std::string ProblemOf(const std::string& bytes)
    {
        m_folder.Write("settings.xml", bytes);
        LoggedDataSettings settings;
        std::string problem;
        const bool isFit = settings.Load(m_file, problem);
        EXPECT_EQ(isFit, problem.empty()) << bytes;
        EXPECT_EQ(WidthIn(settings.Of(u"A")) == ZRBasicString(u"none"), !isFit) << bytes;
        return problem;
    }

    test::TempFolder m_folder;
    fs::path m_file = m_folder / "settings.xml";
    std::string m_problem;
};

constexpr const char* kGood =
    "<Window Name=\"A\" Viewer=\"2\"><main><Table><VarSetup Width=\"7\"/></Table></main></Window>";

TEST_F(LoggedDataSettingsTest, AreThereAgainAfterARestart)
{
    {
        LoggedDataSettings settings;
        ASSERT_TRUE(settings.Load(m_file, m_problem)) << m_problem;
        Arrange(settings.Of(u"North\nMETER-1"), u"187", 1);
        Arrange(settings.Of(u"<\"&'>"), u"33");
        ASSERT_TRUE(settings.Store(m_problem)) << m_problem;
    }
    LoggedDataSettings settings;
    ASSERT_TRUE(settings.Load(m_file, m_problem)) << m_problem;
    EXPECT_EQ(WidthIn(settings.Of(u"North\nMETER-1")), u"187");
    EXPECT_EQ(settings.Of(u"North\nMETER-1").viewer, 1);
    EXPECT_EQ(WidthIn(settings.Of(u"<\"&'>")), u"33");
    EXPECT_EQ(settings.Of(u"METER-1").viewer, 0);
    EXPECT_EQ(settings.Of(u"METER-1").tree.root, nullptr);
}

TEST_F(LoggedDataSettingsTest, AreTheUsersAlone)
{
    LoggedDataSettings settings;
    const fs::path file = m_folder / "new" / "settings.xml";
    ASSERT_TRUE(settings.Load(file, m_problem)) << m_problem;
    Arrange(settings.Of(u"A"), u"7");
    ASSERT_TRUE(settings.Store(m_problem)) << m_problem;
#ifndef _WIN32
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms::owner_all);
#endif
}

TEST_F(LoggedDataSettingsTest, AreNotWrittenWithoutAFile)
{
    LoggedDataSettings settings;
    Arrange(settings.Of(u"A"), u"7");
    EXPECT_TRUE(settings.Store(m_problem));
    EXPECT_TRUE(fs::is_empty(m_folder.Path()));
}

TEST_F(LoggedDataSettingsTest, LeavesOutWhatWasNeverArranged)
{
    LoggedDataSettings settings;
    ASSERT_TRUE(settings.Load(m_file, m_problem));
    settings.Of(u"A").viewer = 2;
    ASSERT_TRUE(settings.Store(m_problem));
    EXPECT_EQ(Bytes().find("Window "), std::string::npos) << Bytes();
}

TEST_F(LoggedDataSettingsTest, LeavesWhatAnotherProgramWroteMeanwhile)
{
    LoggedDataSettings first;
    LoggedDataSettings second;
    ASSERT_TRUE(first.Load(m_file, m_problem));
    ASSERT_TRUE(second.Load(m_file, m_problem));
    Arrange(first.Of(u"A"), u"1");
    Arrange(first.Of(u"B"), u"2");
    ASSERT_TRUE(first.Store(m_problem));
    Arrange(second.Of(u"B"), u"3");
    ASSERT_TRUE(second.Store(m_problem));
    LoggedDataSettings third;
    ASSERT_TRUE(third.Load(m_file, m_problem));
    EXPECT_EQ(WidthIn(third.Of(u"A")), u"1");
    EXPECT_EQ(WidthIn(third.Of(u"B")), u"3");
}

TEST_F(LoggedDataSettingsTest, PutsAFileAsideThatIsNotFit)
{
    EXPECT_EQ(ProblemOf(BytesOf(kGood)), "");
    const std::string element = "<x/>";
    std::string many;
    for (std::size_t i = 0; i < LoggedDataSettings::kMaxElements; ++i) {
        many += element;
    }
    const std::vector<std::string> bad = {
        "",
        "\x00\x01\xff",
        "<LoggedDataWindows Version=\"1\">",
        "<!DOCTYPE x [<!ENTITY a \"b\">]>" + BytesOf(kGood),
        "<Other Version=\"1\">" + std::string(kGood) + "</Other>",
        "<LoggedDataWindows>" + std::string(kGood) + "</LoggedDataWindows>",
        "<LoggedDataWindows Version=\"2\">" + std::string(kGood) + "</LoggedDataWindows>",
        BytesOf(std::string(kGood) + kGood),
        BytesOf(std::string(kGood) + "<Window Viewer=\"2\"><main/></Window>"),
        BytesOf(std::string(kGood) + "<Window Name=\"\" Viewer=\"2\"><main/></Window>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\"><main/></Window>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\" Viewer=\"-1\"><main/></Window>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\" Viewer=\"100\"><main/></Window>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\" Viewer=\"2x\"><main/></Window>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\" Viewer=\"2\"/>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\" Viewer=\"2\"><main/><main/></Window>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\" Viewer=\"2\"><Other/></Window>"),
        BytesOf(std::string(kGood) + "<Other/>"),
        BytesOf(std::string(kGood) + "<Window Name=\"B\" Viewer=\"2\"><main>" + many + "</main></Window>"),
        BytesOf(std::string(kGood) + "<!--" + std::string(LoggedDataSettings::kMaxBytes, 'x') + "-->"),
    };
    int number = 0;
    for (const std::string& bytes : bad) {
        const std::string problem = ProblemOf(bytes);
        const std::string aside = "settings.xml.damaged" + std::to_string(++number);
        EXPECT_EQ(problem.find(m_file.string() + ": "), 0U) << problem;
        EXPECT_NE(problem.find("kept as " + aside), std::string::npos) << problem;
        EXPECT_FALSE(fs::exists(m_file));
        EXPECT_EQ(fs::file_size(m_folder / aside), bytes.size());
    }
}

TEST_F(LoggedDataSettingsTest, TellsTheLineOfWhatIsWrong)
{
    const std::string problem = ProblemOf("<LoggedDataWindows Version=\"1\">\n" + std::string(kGood) +
                                          "\n<Window Name=\"B\" Viewer=\"two\"><main/></Window></LoggedDataWindows>");
    EXPECT_NE(problem.find(": 3: Viewer is no number"), std::string::npos) << problem;
}

TEST_F(LoggedDataSettingsTest, GoesOnWithANewFileOnceTheOldOneIsPutAside)
{
    m_folder.Write("settings.xml", "broken");
    LoggedDataSettings settings;
    EXPECT_FALSE(settings.Load(m_file, m_problem));
    Arrange(settings.Of(u"A"), u"9");
    ASSERT_TRUE(settings.Store(m_problem)) << m_problem;
    LoggedDataSettings next;
    ASSERT_TRUE(next.Load(m_file, m_problem)) << m_problem;
    EXPECT_EQ(WidthIn(next.Of(u"A")), u"9");
    EXPECT_TRUE(fs::exists(m_folder / "settings.xml.damaged1"));
}

TEST_F(LoggedDataSettingsTest, PutsAsideWhatWasDamagedSinceTheStart)
{
    LoggedDataSettings settings;
    ASSERT_TRUE(settings.Load(m_file, m_problem));
    Arrange(settings.Of(u"A"), u"9");
    m_folder.Write("settings.xml", "broken");
    ASSERT_TRUE(settings.Store(m_problem)) << m_problem;
    EXPECT_EQ(fs::file_size(m_folder / "settings.xml.damaged1"), 6U);
    EXPECT_NE(Bytes().find("Width=\"9\""), std::string::npos);
}

TEST_F(LoggedDataSettingsTest, WritesNothingOverAFileThatCannotBePutAside)
{
    fs::create_directory(m_file);
    for (int number = 1; number <= 100; ++number) {
        m_folder.Write("settings.xml.damaged" + std::to_string(number), "kept");
    }
    LoggedDataSettings settings;
    EXPECT_FALSE(settings.Load(m_file, m_problem));
    Arrange(settings.Of(u"A"), u"9");
    EXPECT_FALSE(settings.Store(m_problem));
    EXPECT_NE(m_problem.find("settings.xml"), std::string::npos) << m_problem;
    EXPECT_TRUE(fs::is_directory(m_file));
    // Once the way is free, they are kept after all.
    fs::remove(m_file);
    EXPECT_TRUE(settings.Store(m_problem)) << m_problem;
    EXPECT_NE(Bytes().find("Width=\"9\""), std::string::npos);
}

TEST_F(LoggedDataSettingsTest, TellsWhyTheyCannotBeKept)
{
    const fs::path file = m_folder.Write("file", "") / "settings.xml";
    LoggedDataSettings settings;
    settings.Load(file, m_problem);
    Arrange(settings.Of(u"A"), u"9");
    m_problem.clear();
    EXPECT_FALSE(settings.Store(m_problem));
    EXPECT_NE(m_problem, "");
}

TEST_F(LoggedDataSettingsTest, ForgetsTheOnesThatWereUsedLongestAgo)
{
    LoggedDataSettings settings;
    ASSERT_TRUE(settings.Load(m_file, m_problem));
    const auto name = [](std::size_t i) { return ZRBasicString(u"W") + static_cast<wchar>(u'!' + 256 + i); };
    for (std::size_t i = 0; i <= LoggedDataSettings::kMaxViews; ++i) {
        Arrange(settings.Of(name(i)), u"5");
    }
    settings.Of(name(0));
    ASSERT_TRUE(settings.Store(m_problem)) << m_problem;
    LoggedDataSettings next;
    ASSERT_TRUE(next.Load(m_file, m_problem)) << m_problem;
    EXPECT_EQ(WidthIn(next.Of(name(0))), u"5");
    EXPECT_EQ(WidthIn(next.Of(name(1))), u"none");
    EXPECT_EQ(WidthIn(next.Of(name(2))), u"5");
}

TEST_F(LoggedDataSettingsTest, NeverWritesAFileThatItWouldRefuse)
{
    LoggedDataSettings settings;
    ASSERT_TRUE(settings.Load(m_file, m_problem));
    // Two that are fit alone and too large together, and one that is too large by itself.
    for (const wchar* const name : {u"A", u"B"}) {
        Arrange(settings.Of(name), u"5");
        settings.Of(name).tree.root->SetValue(u"Large", Utf8ToUtf16(std::string(3 * 1024 * 1024, 'x')));
    }
    LoggedDataSettings::View& many = settings.Of(u"C");
    Arrange(many, u"6");
    for (std::size_t i = 0; i < LoggedDataSettings::kMaxElements; ++i) {
        many.tree.root->NewChild(u"x");
    }
    ASSERT_TRUE(settings.Store(m_problem)) << m_problem;
    LoggedDataSettings next;
    ASSERT_TRUE(next.Load(m_file, m_problem)) << m_problem;
    EXPECT_EQ(WidthIn(next.Of(u"A")), u"none");
    EXPECT_EQ(WidthIn(next.Of(u"B")), u"5");
    EXPECT_EQ(WidthIn(next.Of(u"C")), u"none");
}

}  // namespace
}  // namespace zr::desktop
