#include "platform/FileReplace.h"

#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace {

class FileReplace : public testing::Test {
protected:
    zr::test::TempFolder m_folder;
    std::string m_bytes = "old";
    std::string m_reason;
};

TEST_F(FileReplace, ReadsAWholeFile)
{
    std::string content(200000, 'x');
    content[7] = '\0';
    EXPECT_TRUE(zr::ReadWholeFile(m_folder.Write("f", content), content.size(), m_bytes, m_reason)) << m_reason;
    EXPECT_EQ(m_bytes, content);
    EXPECT_TRUE(zr::ReadWholeFile(m_folder.Write("empty", ""), 0, m_bytes, m_reason)) << m_reason;
    EXPECT_EQ(m_bytes, "");
}

TEST_F(FileReplace, RefusesAFileOverTheLimit)
{
    EXPECT_FALSE(zr::ReadWholeFile(m_folder.Write("f", "12345"), 4, m_bytes, m_reason));
    EXPECT_EQ(m_bytes, "");
    EXPECT_EQ(m_reason, "larger than 4 bytes");
}

TEST_F(FileReplace, RefusesWhatIsNoRegularFile)
{
    EXPECT_FALSE(zr::ReadWholeFile(m_folder / "absent", 10, m_bytes, m_reason));
#ifdef _WIN32
    EXPECT_EQ(m_reason, "can't be opened: system error 2");
#else
    EXPECT_THAT(m_reason, testing::HasSubstr("No such file"));
#endif
    EXPECT_FALSE(zr::ReadWholeFile(m_folder.Path(), 10, m_bytes, m_reason));
    EXPECT_EQ(m_reason, "is a folder");
#ifndef _WIN32
    ASSERT_EQ(::mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(zr::ReadWholeFile(m_folder / "pipe", 10, m_bytes, m_reason));
    EXPECT_EQ(m_reason, "is not a regular file");
#endif
}

TEST_F(FileReplace, ReplacesAFileAndLeavesNothingElse)
{
    m_folder.Write("f", "old");
    EXPECT_TRUE(zr::WriteFileReplacing(m_folder / "f", "new", m_reason)) << m_reason;
    EXPECT_EQ(m_folder.Read("f"), "new");
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre("f"));
}

#ifndef _WIN32  // There it is the access list of the folder that keeps others out; links need a right.
TEST_F(FileReplace, WritesForItsOwnerOnly)
{
    EXPECT_TRUE(zr::WriteFileReplacing(m_folder / "f", "new", m_reason)) << m_reason;
    EXPECT_EQ(std::filesystem::status(m_folder / "f").permissions(), std::filesystem::perms(0600));
}

TEST_F(FileReplace, KeepsASymbolicLink)
{
    m_folder.Write("target", "old");
    std::filesystem::create_symlink("target", m_folder / "link");
    EXPECT_TRUE(zr::WriteFileReplacing(m_folder / "link", "new", m_reason)) << m_reason;
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder / "link"));
    EXPECT_EQ(m_folder.Read("target"), "new");
}
#endif

TEST_F(FileReplace, AFailureLeavesTheOldFileAndNoTemporaryOne)
{
    std::filesystem::create_directory(m_folder / "taken");
    m_folder.Write("taken/inner", "old");
    EXPECT_FALSE(zr::WriteFileReplacing(m_folder / "taken", "new", m_reason));
    EXPECT_THAT(m_reason, testing::HasSubstr("can't be replaced"));
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre("taken"));
    EXPECT_EQ(m_folder.Read("taken/inner"), "old");
    EXPECT_FALSE(zr::WriteFileReplacing(m_folder / "absent" / "f", "new", m_reason));
}

TEST_F(FileReplace, PutsAFileOfALibraryInPlace)
{
    m_folder.Write("f", "old");
    EXPECT_TRUE(zr::PutFileInPlace(m_folder.Write("f.part", "new"), m_folder / "f", m_reason)) << m_reason;
    EXPECT_EQ(m_folder.Read("f"), "new");
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre("f"));
#ifndef _WIN32
    EXPECT_EQ(std::filesystem::status(m_folder / "f").permissions(), std::filesystem::perms(0600));
#endif
}

TEST_F(FileReplace, KeepsBothFilesWhereTheOldOneCannotBeReplaced)
{
    std::filesystem::create_directory(m_folder / "taken");
    m_folder.Write("taken/inner", "old");
    EXPECT_FALSE(zr::PutFileInPlace(m_folder.Write("f", "new"), m_folder / "taken", m_reason));
    EXPECT_THAT(m_reason, testing::HasSubstr("can't be replaced"));
    EXPECT_EQ(m_folder.Read("f"), "new");
    EXPECT_EQ(m_folder.Read("taken/inner"), "old");
    EXPECT_FALSE(zr::PutFileInPlace(m_folder / "absent", m_folder / "f", m_reason));
    EXPECT_THAT(m_reason, testing::HasSubstr("can't be opened"));
    EXPECT_EQ(m_folder.Read("f"), "new");
}

TEST_F(FileReplace, MakesFoldersForTheirOwnerOnly)
{
    EXPECT_TRUE(zr::MakePrivateFolder(m_folder / "a" / "b", m_reason)) << m_reason;
    EXPECT_TRUE(std::filesystem::is_directory(m_folder / "a" / "b"));
#ifndef _WIN32
    EXPECT_EQ(std::filesystem::status(m_folder / "a").permissions(), std::filesystem::perms(0700));
    EXPECT_EQ(std::filesystem::status(m_folder / "a" / "b").permissions(), std::filesystem::perms(0700));
#endif
    EXPECT_TRUE(zr::MakePrivateFolder(m_folder / "a" / "b", m_reason));
    m_folder.Write("file", "");
    EXPECT_FALSE(zr::MakePrivateFolder(m_folder / "file" / "c", m_reason));
    EXPECT_THAT(m_reason, testing::HasSubstr("can't be made"));
    EXPECT_FALSE(zr::MakePrivateFolder({}, m_reason));
}

#ifndef _WIN32
TEST_F(FileReplace, TellsWhetherOthersCanReadAFile)
{
    using std::filesystem::perms;
    const auto file = m_folder.Write("f", "");
    for (const auto& [mode, expected] :
         {std::pair(perms(0600), false), std::pair(perms(0640), true), std::pair(perms(0604), true)}) {
        std::filesystem::permissions(file, mode);
        EXPECT_EQ(zr::CanOthersRead(file), expected);
    }
    EXPECT_FALSE(zr::CanOthersRead(m_folder / "absent"));
}
#endif

TEST_F(FileReplace, PathsAndTextsConvertBothWays)
{
    const std::filesystem::path path = zr::PathFromText(std::u16string_view(u"/\u00E9t\u00E9/\U0001F50C"));
    EXPECT_EQ(zr::TextOfPath(path), "/\xC3\xA9t\xC3\xA9/\xF0\x9F\x94\x8C");
    const char16_t broken[] = {u'a', 0xD800, 0};
    EXPECT_EQ(zr::TextOfPath(zr::PathFromText(std::u16string_view(broken))), "a\xEF\xBF\xBD");
}

TEST_F(FileReplace, PiecesReplaceAFileOnceTheyAreCommitted)
{
    m_folder.Write("f", "old");
    zr::ReplacingFile file;
    ASSERT_TRUE(file.Open(m_folder / "f", m_reason)) << m_reason;
    EXPECT_TRUE(file.Write("new ", m_reason));
    EXPECT_TRUE(file.Write("content", m_reason));
    EXPECT_EQ(m_folder.Read("f"), "old");
    EXPECT_TRUE(file.Commit(m_reason)) << m_reason;
    EXPECT_EQ(m_folder.Read("f"), "new content");
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre("f"));
}

TEST_F(FileReplace, PiecesThatAreNotCommittedLeaveNoTrace)
{
    m_folder.Write("f", "old");
    {
        zr::ReplacingFile file;
        ASSERT_TRUE(file.Open(m_folder / "f", m_reason)) << m_reason;
        EXPECT_TRUE(file.Write("new", m_reason));
    }
    EXPECT_EQ(m_folder.Read("f"), "old");
    EXPECT_THAT(m_folder.Names(), testing::ElementsAre("f"));
    zr::ReplacingFile file;
    EXPECT_FALSE(file.Open(m_folder / "nowhere" / "f", m_reason));
    EXPECT_NE(m_reason, "");
}

}  // namespace
