#include "siblings/support/ZRKestrixSetup.h"

#include "support/Environment.h"

#include <gtest/gtest.h>

namespace {

TEST(ZRKestrixSetup, IsReachedWhileItLives)
{
    EXPECT_EQ(ZRKestrixSetup::instance, nullptr);
    {
        ZRKestrixSetup setup;
        EXPECT_EQ(ZRKestrixSetup::instance, &setup);
        EXPECT_EQ(&ZRKestrixSetup::Get(), &setup);
    }
    EXPECT_EQ(ZRKestrixSetup::instance, nullptr);
}

TEST(ZRKestrixSetup, HasDefaultsThatServeAsTheyStand)
{
    const zr::test::Environment data("XDG_DATA_HOME", "/data/of/user");
    const ZRKestrixSetup setup;
    EXPECT_EQ(setup.registryKey, u"Software\\Kestrix");
    EXPECT_EQ(setup.iconId, 128);
    EXPECT_EQ(setup.dataFolder, u"/data/of/user/kestrix/filters/");
}

TEST(ZRKestrixSetup, TheDataFolderEndsInASeparator)
{
    ZRKestrixSetup setup;
    setup.SetDataFolder(u"/plant");
    EXPECT_EQ(setup.dataFolder, u"/plant/");
    setup.SetDataFolder(u"/plant/");
    EXPECT_EQ(setup.dataFolder, u"/plant/");
    setup.SetDataFolder(u"");
    EXPECT_EQ(setup.dataFolder, u"./");
}

}  // namespace
