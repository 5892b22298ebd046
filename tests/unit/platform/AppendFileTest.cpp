#include "platform/AppendFile.h"

#include "support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/resource.h>
#include <sys/stat.h>
#include <csignal>
#endif

namespace {

class AppendFile : public testing::Test {
protected:
    zr::test::TempFolder m_folder;
    zr::AppendFile m_file;
    std::string m_reason;
};

TEST_F(AppendFile, GrowsByWhatIsAppended)
{
    ASSERT_TRUE(m_file.Create(m_folder / "f", m_reason)) << m_reason;
    EXPECT_TRUE(m_file.Append("first", m_reason)) << m_reason;
    EXPECT_TRUE(m_file.Append(std::string("\0second", 7), m_reason)) << m_reason;
    EXPECT_EQ(m_file.Size(), 12u);
    m_file.Close();
    EXPECT_EQ(m_file.Size(), 0u);
    EXPECT_EQ(m_folder.Read("f"), std::string("first\0second", 12));
}

TEST_F(AppendFile, IsReadableWhileItGrows)
{
    ASSERT_TRUE(m_file.Create(m_folder / "f", m_reason)) << m_reason;
    EXPECT_TRUE(m_file.Append("first", m_reason)) << m_reason;
    EXPECT_EQ(m_folder.Read("f"), "first");
}

TEST_F(AppendFile, LeavesAFileThatIsThereAlone)
{
    m_folder.Write("f", "old");
    EXPECT_FALSE(m_file.Create(m_folder / "f", m_reason));
    EXPECT_THAT(m_reason, testing::HasSubstr("can't be made"));
    EXPECT_FALSE(m_file.IsOpen());
    EXPECT_EQ(m_folder.Read("f"), "old");
}

TEST_F(AppendFile, CantBeMadeInAFolderThatIsNotThere)
{
    EXPECT_FALSE(m_file.Create(m_folder / "absent" / "f", m_reason));
    EXPECT_FALSE(m_reason.empty());
}

#ifndef _WIN32  // It has neither modes nor a limit of a file's size.
TEST_F(AppendFile, IsPrivate)
{
    ASSERT_TRUE(m_file.Create(m_folder / "f", m_reason)) << m_reason;
    struct stat status = {};
    ASSERT_EQ(::stat((m_folder / "f").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(AppendFile, IsCutBackAndClosedWhenTheDiskTakesAPartOnly)
{
    ASSERT_TRUE(m_file.Create(m_folder / "f", m_reason)) << m_reason;
    ASSERT_TRUE(m_file.Append("first", m_reason)) << m_reason;
    struct rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const struct rlimit small = {8, before.rlim_max};
    const auto old = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool isAppended = m_file.Append("second", m_reason);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, old);
    EXPECT_FALSE(isAppended);
    EXPECT_THAT(m_reason, testing::HasSubstr("can't be written"));
    EXPECT_FALSE(m_file.IsOpen());
    EXPECT_EQ(m_folder.Read("f"), "first");
}
#endif

}  // namespace
