#include "hosts/kestrix/DesktopSettings.h"

#include "unit/platform/RegistryFixture.h"

namespace zr::desktop {
namespace {

class DesktopSettingsTest : public test::RegistryFixture {};

TEST_F(DesktopSettingsTest, ComeBackAsTheyWereStored)
{
    DesktopSettings settings;
    settings.window = {-20, 30, 1200, 800, true};
    settings.treeWidth = 233;
    settings.language = "de";
    settings.colours = Colours::Dark;
    settings.showsToolbar = false;
    settings.showsStatusBar = false;
    settings.showsWarnings = false;
    settings.page = u"North\nMETER-1";
    settings.document = u"/plant/\u00e4.xml";
    settings.paper = "Letter";
    settings.isLandscape = true;
    settings.margin = 20;
    ASSERT_TRUE(settings.Store(u"Software\\Kestrix"));
    const DesktopSettings loaded = DesktopSettings::Load(u"Software\\Kestrix");
    EXPECT_EQ(loaded.window.left, -20);
    EXPECT_EQ(loaded.window.top, 30);
    EXPECT_EQ(loaded.window.width, 1200);
    EXPECT_EQ(loaded.window.height, 800);
    EXPECT_TRUE(loaded.window.isMaximised);
    EXPECT_EQ(loaded.treeWidth, 233);
    EXPECT_EQ(loaded.language, "de");
    EXPECT_EQ(loaded.colours, Colours::Dark);
    EXPECT_FALSE(loaded.showsToolbar);
    EXPECT_FALSE(loaded.showsStatusBar);
    EXPECT_FALSE(loaded.showsWarnings);
    EXPECT_EQ(loaded.page, u"North\nMETER-1");
    EXPECT_EQ(loaded.document, u"/plant/\u00e4.xml");
    EXPECT_EQ(loaded.paper, "Letter");
    EXPECT_TRUE(loaded.isLandscape);
    EXPECT_EQ(loaded.margin, 20);
}

TEST_F(DesktopSettingsTest, HaveDefaultsWithoutARegistry)
{
    const DesktopSettings loaded = DesktopSettings::Load(u"Software\\Kestrix");
    EXPECT_EQ(loaded.window.width, 0);
    EXPECT_EQ(loaded.colours, Colours::System);
    EXPECT_TRUE(loaded.showsToolbar);
    EXPECT_TRUE(loaded.language.empty());
    EXPECT_EQ(loaded.paper, "A4");
}

TEST_F(DesktopSettingsTest, ValuesThatMakeNoSenseHaveTheirDefault)
{
    HKEY key = Create(u"Software\\Kestrix\\Desktop");
    SetDword(key, u"Colours", 7);
    SetDword(key, u"WindowWidth", 0xffffffffu);
    SetDword(key, u"WindowHeight", 500);
    SetText(key, u"Toolbar", u"no");
    SetDword(key, u"Language", 3);
    RegCloseKey(key);
    const DesktopSettings loaded = DesktopSettings::Load(u"Software\\Kestrix");
    EXPECT_EQ(loaded.colours, Colours::System);
    EXPECT_EQ(loaded.window.width, 0);
    EXPECT_EQ(loaded.window.height, 0);
    EXPECT_TRUE(loaded.showsToolbar);
    EXPECT_TRUE(loaded.language.empty());
}

TEST_F(DesktopSettingsTest, ALanguageWithoutTextsIsForgotten)
{
    for (const char* const language : {"fr", "../../en", "EN", " en"}) {
        DesktopSettings settings;
        settings.language = language;
        ASSERT_TRUE(settings.Store(u"Software\\Kestrix"));
        EXPECT_EQ(DesktopSettings::Load(u"Software\\Kestrix").language, "") << language;
    }
}

WindowPlace FitToScreen(const WindowPlace& place, const WindowPlace& screen)
{
    return FitToScreens(place, std::span(&screen, 1));
}

TEST(WindowPlaceTest, StaysOnTheScreenThatHoldsItsMiddle)
{
    const WindowPlace screens[] = {{0, 0, 1024, 700, false}, {-1920, -100, 1920, 1080, false}};
    EXPECT_EQ(FitToScreens({-1900, 20, 800, 600, false}, screens).left, -1900);
    EXPECT_EQ(FitToScreens({-2100, 20, 800, 600, false}, screens).left, -1920);
    EXPECT_EQ(FitToScreens({-100, 20, 800, 600, false}, screens).left, 0);
    EXPECT_EQ(FitToScreens({3000, 20, 800, 600, false}, screens).left, 224) << "a screen that is gone";
}

TEST(WindowPlaceTest, IsMovedAndShrunkToFitTheScreen)
{
    const WindowPlace screen{0, 0, 1024, 700, false};
    const WindowPlace far = FitToScreen({5000, -300, 800, 600, false}, screen);
    EXPECT_EQ(far.left, 224);
    EXPECT_EQ(far.top, 0);
    EXPECT_EQ(far.width, 800);
    const WindowPlace large = FitToScreen({10, 10, 3000, 2000, true}, screen);
    EXPECT_EQ(large.left, 0);
    EXPECT_EQ(large.width, 1024);
    EXPECT_EQ(large.height, 700);
    EXPECT_TRUE(large.isMaximised);
}

TEST(WindowPlaceTest, StandsInTheMiddleTheFirstTime)
{
    const WindowPlace place = FitToScreen({}, {0, 0, 1980, 1160, false});
    EXPECT_EQ(place.left, 400);
    EXPECT_EQ(place.top, 200);
    const WindowPlace tiny = FitToScreen({}, {0, 0, 320, 200, false});
    EXPECT_EQ(tiny.width, 320);
    EXPECT_EQ(tiny.height, 200);
}

}  // namespace
}  // namespace zr::desktop
