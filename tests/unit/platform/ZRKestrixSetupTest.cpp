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
#ifdef _WIN32
    const zr::test::Environment data("LOCALAPPDATA", "C:\\data");
    const char16_t* const folder = u"C:\\data\\Kestrix\\filters\\";
#else
    const zr::test::Environment data("XDG_DATA_HOME", "/data/of/user");
    const char16_t* const folder = u"/data/of/user/kestrix/filters/";
#endif
    const ZRKestrixSetup setup;
    EXPECT_EQ(setup.registryKey, u"Software\\Kestrix");
    EXPECT_EQ(setup.iconId, 128);
    EXPECT_EQ(setup.dataFolder, folder);
}

TEST(ZRKestrixSetup, TheDataFolderEndsInASeparator)
{
#ifdef _WIN32
    const ZRBasicString separator = u"\\";
#else
    const ZRBasicString separator = u"/";
#endif
    ZRKestrixSetup setup;
    setup.SetDataFolder(u"/plant");
    EXPECT_EQ(setup.dataFolder, u"/plant" + separator);
    setup.SetDataFolder(u"/plant/");
    EXPECT_EQ(setup.dataFolder, u"/plant/");
    setup.SetDataFolder(u"");
    EXPECT_EQ(setup.dataFolder, u"." + separator);
}

}  // namespace
