// The registry as a pair of files.
#include "RegistryFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace zr;

class RegistryFile : public test::RegistryFixture {};

TEST_F(RegistryFile, RefusesHandlesAndPathsThatAreNone)
{
    HKEY key = Create(u"K");
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_EQ(SetDword(key, u"V", 1), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExW(nullptr, u"K", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"K", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    for (const char16_t* path : {u"\\K", u"K\\\\L", u"K\nL", u"K\xD800"}) {
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr),
                  ERROR_BAD_PATHNAME);
    }
}

TEST_F(RegistryFile, TheFileIsForItsOwnerOnlyAndReadsAsDocumented)
{
    HKEY key = Create(u"Software\\Kestrix\\Tables");
    SetDword(key, u"Column1", 160);
    SetText(key, u"Note", u"\u00E9 \"x\"");
    RegCloseKey(key);
    EXPECT_EQ(m_folder.Read(kUserFile),
              "[Software\\Kestrix\\Tables]\n\"Column1\" = dword:000000a0\n\"Note\" = \"\xC3\xA9 \\\"x\\\"\"\n");
    EXPECT_EQ(std::filesystem::status(m_folder / kUserFile).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(std::filesystem::status(m_folder / "kestrix").permissions(), std::filesystem::perms(0700));
}

TEST_F(RegistryFile, AValueThatStandsThereAlreadyIsNotWrittenAgain)
{
    HKEY key = Create(u"K");
    SetDword(key, u"V", 1);
    SetText(key, u"T", u"x");
    std::filesystem::create_hard_link(m_folder / kUserFile, m_folder / "before");
    EXPECT_EQ(SetDword(key, u"V", 1), ERROR_SUCCESS);
    EXPECT_EQ(SetText(key, u"T", u"x"), ERROR_SUCCESS);
    EXPECT_TRUE(std::filesystem::equivalent(m_folder / kUserFile, m_folder / "before"));
    EXPECT_EQ(SetText(key, u"V", u"x"), ERROR_SUCCESS);  // of another type
    EXPECT_FALSE(std::filesystem::equivalent(m_folder / kUserFile, m_folder / "before"));
    EXPECT_EQ(Text(key, u"V"), u"x");
    RegCloseKey(key);
}

TEST_F(RegistryFile, BrokenLinesAreReportedAndKept)
{
    const std::string before =
        "\"early\" = \"x\"\n# a comment\n[K]\n\"V\" = dword:00000001\n\"V\" = dword:00000002\nnonsense\n\"W\" = 5\n"
        "\"X\" \"y\"\n\xFF\xFE\n\"Z\" = hex(3):1\n\n[L]\n\"V\" = dword:00000003";
    WriteUserFile(before);
    std::vector<std::size_t> lines;
    for (const RegistryFault& fault : RegistryFaults()) {
        EXPECT_EQ(fault.file, (m_folder / kUserFile).string());
        EXPECT_FALSE(fault.reason.empty());
        lines.push_back(fault.line);
    }
    EXPECT_THAT(lines, testing::ElementsAre(1U, 5U, 6U, 7U, 8U, 9U, 10U));

    HKEY key = Create(u"K");
    EXPECT_EQ(Dword(key, u"V"), 1U);
    EXPECT_EQ(SetDword(key, u"V", 9), ERROR_SUCCESS);
    RegCloseKey(key);
    std::string after = before + "\n";
    after.replace(after.find("dword:00000001"), 14, "dword:00000009");
    EXPECT_EQ(m_folder.Read(kUserFile), after);
}

TEST_F(RegistryFile, ANewValueStandsWithItsKey)
{
    WriteUserFile("[K]\n\"A\" = \"1\"\n\n[L]\n");
    HKEY key = Create(u"k");
    SetText(key, u"B", u"2");
    RegCloseKey(key);
    EXPECT_EQ(m_folder.Read(kUserFile), "[K]\n\"A\" = \"1\"\n\"B\" = \"2\"\n\n[L]\n");
}

TEST_F(RegistryFile, SeesWhatAnotherHandHasWritten)
{
    HKEY key = Create(u"K");
    SetDword(key, u"V", 1);
    EXPECT_EQ(Dword(key, u"V"), 1U);
    WriteUserFile("[K]\n\"V\" = dword:00000002\n\"New\" = dword:00000003\n");
    EXPECT_EQ(Dword(key, u"V"), 2U);
    SetDword(key, u"V", 4);
    EXPECT_EQ(Dword(key, u"New"), 3U);
    RegCloseKey(key);
}

TEST_F(RegistryFile, AFileThatCannotBeReadIsNotReplaced)
{
    std::filesystem::create_directories(m_folder / kUserFile);
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"K", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_ACCESS_DENIED);
    ASSERT_EQ(RegistryFaults().size(), 1U);
    EXPECT_EQ(RegistryFaults()[0].line, 0U);
    EXPECT_TRUE(std::filesystem::is_directory(m_folder / kUserFile));
}

}  // namespace
