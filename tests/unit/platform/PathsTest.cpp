#include "platform/Paths.h"

#include "support/Environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#ifndef _WIN32
#include <unistd.h>
#endif

namespace {

using zr::test::Environment;

#ifdef _WIN32
TEST(Paths, FollowTheFoldersOfTheUser)
{
    const Environment roaming("APPDATA", "C:\\r");
    const Environment local("LOCALAPPDATA", "C:\\l");
    EXPECT_EQ(zr::ConfigFolder(), L"C:\\r\\Kestrix");
    EXPECT_EQ(zr::DataFolder(), L"C:\\l\\Kestrix");
    EXPECT_EQ(zr::RuntimeFolder(), L"C:\\l\\Kestrix\\run");
}
#else
TEST(Paths, FollowTheBaseDirectoriesOfTheUser)
{
    const Environment config("XDG_CONFIG_HOME", "/c");
    const Environment data("XDG_DATA_HOME", "/d");
    const Environment runtime("XDG_RUNTIME_DIR", "/r");
    EXPECT_EQ(zr::ConfigFolder(), "/c/kestrix");
    EXPECT_EQ(zr::DataFolder(), "/d/kestrix");
    EXPECT_EQ(zr::RuntimeFolder(), "/r/kestrix");
}

TEST(Paths, FallBackToTheHomeFolder)
{
    const Environment home("HOME", "/somewhere/user");
    const Environment config("XDG_CONFIG_HOME", nullptr);
    const Environment data("XDG_DATA_HOME", "relative/is/ignored");
    EXPECT_EQ(zr::ConfigFolder(), "/somewhere/user/.config/kestrix");
    EXPECT_EQ(zr::DataFolder(), "/somewhere/user/.local/share/kestrix");
}

TEST(Paths, TheRuntimeFolderIsTheUsersOwnWithoutTheVariable)
{
    const Environment runtime("XDG_RUNTIME_DIR", nullptr);
    EXPECT_THAT(zr::RuntimeFolder().string(), testing::HasSubstr(std::to_string(::getuid())));
}
#endif

TEST(Paths, ResourcesAreBesideTheProgramUnlessToldOtherwise)
{
    {
        const Environment resources("KESTRIX_RESOURCES", "/res");
        EXPECT_EQ(zr::ResourceFolder(), "/res");
    }
    const Environment resources("KESTRIX_RESOURCES", nullptr);
    EXPECT_EQ(zr::ResourceFolder(), zr::ProgramFile().parent_path().parent_path() / "share/kestrix");
    EXPECT_EQ(zr::ProgramFile().stem(), "test_platform");
}

}  // namespace
