#include "support/Process.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <QImage>
#include <set>
#include <string>
#include <vector>

namespace zr {
namespace {

using test::Process;

class DesktopProcessTest : public testing::Test {
protected:
    // Of this test alone: nothing of the user's is read or written.
    std::vector<std::string> Environment(const std::string& platform = "offscreen") const
    {
        const std::string folder = m_folder.Path().string();
        return {"XDG_RUNTIME_DIR=" + folder + "/run",
                "XDG_DATA_HOME=" + folder + "/data",
                "XDG_CONFIG_HOME=" + folder + "/config",
                "KESTRIX_RESOURCES=" ZR_RESOURCES,
                "QT_QPA_PLATFORM=" + platform,
                "DISPLAY=",
                "WAYLAND_DISPLAY="};
    }

    std::string Document(const std::string& port) const
    {
        return m_folder
            .Write("one.xml",
                   "<Kestrix><CommSystem><Connections><Connection Name=\"NORTH\" Type=\"UDP\" "
                   "Address=\"127.0.0.1\" Socket=\"" +
                       port +
                       "\"/></Connections><Devices><Device Name=\"METER-1\" Driver=\"EM3\" "
                       "Connection=\"NORTH\" Unit=\"1\" Period=\"0.2\"/></Devices></CommSystem></Kestrix>\n")
            .string();
    }

    std::string Plant(const std::string& port) const
    {
        return m_folder
            .Write("plant.xml",
                   "<Plant Series=\"" ZR_RESOURCES "/demo/household/household_1min.csv\" Profiles=\"" ZR_RESOURCES
                   "/devices\"><Converter Name=\"NORTH\" Address=\"127.0.0.1\" Port=\"" +
                       port +
                       "\"><Device Name=\"METER-1\" Profile=\"EM3\" Unit=\"1\" Scale=\"1\"/></Converter></Plant>\n")
            .string();
    }

    // Everything below the folder, and at least one file, is the user's alone.
    static void ExpectPrivate(const std::filesystem::path& folder)
    {
        using std::filesystem::perms;
        int found = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            EXPECT_EQ(entry.symlink_status().permissions() & (perms::group_all | perms::others_all), perms::none)
                << entry.path();
            ++found;
        }
        EXPECT_GT(found, 0) << folder;
    }

    static std::size_t ColoursIn(const QImage& image)
    {
        std::set<QRgb> colours;
        for (int y = 0; y < image.height(); y += 2) {
            for (int x = 0; x < image.width(); x += 2) {
                colours.insert(image.pixel(x, y));
            }
        }
        return colours.size();
    }

    test::TempFolder m_folder;
};

TEST_F(DesktopProcessTest, TakesPicturesOfALivePlant)
{
    Process plant({ZR_PLANT, Plant("47321"), "--until-eof"});
    ASSERT_TRUE(plant.Started());
    ASSERT_TRUE(plant.ReadLineWith("NORTH").has_value());
    const std::string out = (m_folder / "out").string();
    Process desktop({ZR_KESTRIX, Document("47321"), "--snapshot", out, "--after", "3", "--no-publication"},
                    Environment());
    EXPECT_EQ(desktop.WaitForExit(), 0) << desktop.Errors();
    const QImage light(QString::fromStdString(out + "/device-EM3-light.png"));
    const QImage dark(QString::fromStdString(out + "/device-EM3-dark.png"));
    EXPECT_EQ(light.size(), QSize(1024, 700));
    EXPECT_EQ(dark.size(), QSize(1024, 700));
    EXPECT_GT(ColoursIn(light), 100u);  // the shaded bars alone have more
    EXPECT_GT(light.pixelColor(700, 300).lightness(), dark.pixelColor(700, 300).lightness());
    EXPECT_NE(desktop.Output().find("device-EM3-light.png"), std::string::npos);
    // The meter was on line: no warning says otherwise.
    EXPECT_EQ(desktop.Errors().find("does not answer"), std::string::npos) << desktop.Errors();
}

TEST_F(DesktopProcessTest, PicturesAreTwiceAsLargeAtScaleTwo)
{
    auto environment = Environment();
    environment.push_back("QT_SCALE_FACTOR=2");
    const std::string out = (m_folder / "out").string();
    Process desktop({ZR_KESTRIX, Document("47322"), "--snapshot", out, "--after", "0", "--no-publication"},
                    environment);
    EXPECT_EQ(desktop.WaitForExit(), 0) << desktop.Errors();
    const QImage picture(QString::fromStdString(out + "/device-EM3-light.png"));
    EXPECT_EQ(picture.size(), QSize(2048, 1400));
}

TEST_F(DesktopProcessTest, AFileThatIsNotThereIsOneLineAndStatus2)
{
    Process desktop({ZR_KESTRIX, (m_folder / "none.xml").string()}, Environment());
    EXPECT_EQ(desktop.WaitForExit(), 2);
    EXPECT_NE(desktop.Errors().find("none.xml"), std::string::npos);
    EXPECT_EQ(desktop.Errors().find('\n'), desktop.Errors().size() - 1) << desktop.Errors();
}

TEST_F(DesktopProcessTest, ABrokenDocumentIsToldWithItsLine)
{
    const auto file = m_folder.Write("bad.xml", "<Kestrix>\n<Broken\n</Kestrix>\n");
    Process desktop({ZR_KESTRIX, file.string()}, Environment());
    EXPECT_EQ(desktop.WaitForExit(), 2);
    EXPECT_NE(desktop.Errors().find("bad.xml:"), std::string::npos) << desktop.Errors();
    EXPECT_EQ(desktop.Errors().find('\n'), desktop.Errors().size() - 1) << desktop.Errors();
}

TEST_F(DesktopProcessTest, NoDisplayIsOneLineAndStatus2)
{
    Process desktop({ZR_KESTRIX, Document("47323")}, Environment(""));
    EXPECT_EQ(desktop.WaitForExit(), 2);
    EXPECT_NE(desktop.Errors().find("no display"), std::string::npos) << desktop.Errors();
    EXPECT_EQ(desktop.Errors().find('\n'), desktop.Errors().size() - 1) << desktop.Errors();
}

TEST_F(DesktopProcessTest, ADisplayThatCannotBeReachedIsOneLineAndStatus2)
{
    auto environment = Environment("");
    environment[5] = "DISPLAY=:4711";
    Process desktop({ZR_KESTRIX, Document("47323")}, environment);
    EXPECT_EQ(desktop.WaitForExit(), 2);
    EXPECT_NE(desktop.Errors().find(":4711"), std::string::npos) << desktop.Errors();
    EXPECT_EQ(desktop.Errors().find('\n'), desktop.Errors().size() - 1) << desktop.Errors();
}

TEST_F(DesktopProcessTest, NoFontIsOneLineAndStatus2)
{
    auto environment = Environment();
    m_folder.Write("fonts.conf", "<?xml version=\"1.0\"?><fontconfig></fontconfig>");
    environment.push_back("FONTCONFIG_FILE=" + (m_folder / "fonts.conf").string());
    environment.push_back("QT_QPA_FONTDIR=" + m_folder.Path().string());
    Process desktop({ZR_KESTRIX, Document("47323")}, environment);
    EXPECT_EQ(desktop.WaitForExit(), 2);
    EXPECT_NE(desktop.Errors().find("no font"), std::string::npos) << desktop.Errors();
    EXPECT_EQ(desktop.Errors().find('\n'), desktop.Errors().size() - 1) << desktop.Errors();
}

TEST_F(DesktopProcessTest, ADocumentOfAnotherProgramIsShownWithoutPolling)
{
    const std::string document = Document("47324");
    Process service({ZR_KESTRIXD, document}, Environment());
    ASSERT_TRUE(
        service.ReadErrorLine([](const std::string& line) { return line.find("publishing") != std::string::npos; }));
    const std::string out = (m_folder / "out").string();
    Process desktop({ZR_KESTRIX, document, "--snapshot", out, "--after", "1"}, Environment());
    EXPECT_EQ(desktop.WaitForExit(), 0) << desktop.Errors();
    EXPECT_NE(desktop.Errors().find("supervised by process " + std::to_string(service.Pid()) + " (kestrixd)"),
              std::string::npos)
        << desktop.Errors();
    EXPECT_EQ(desktop.Errors().find("publishing"), std::string::npos);
    // The banner's ground below the toolbar.
    const QImage picture(QString::fromStdString(out + "/device-EM3-light.png"));
    bool hasBanner = false;
    for (int y = 30; y < 160; ++y) {
        hasBanner = hasBanner || picture.pixelColor(900, y) == QColor(0xff, 0xf2, 0xcc);
    }
    EXPECT_TRUE(hasBanner);
    service.Send(SIGTERM);
    EXPECT_EQ(service.WaitForExit(), 0);
}

TEST_F(DesktopProcessTest, PublishesWhatItShowsAndTellsItsClientsWhenItEnds)
{
    Process plant({ZR_PLANT, Plant("47326"), "--until-eof"});
    ASSERT_TRUE(plant.ReadLineWith("NORTH").has_value()) << plant.Errors();
    Process desktop({ZR_KESTRIX, Document("47326"), "--service", "HALL"}, Environment());
    ASSERT_TRUE(desktop.ReadErrorLine([](const std::string& line) {
        return line.find("as service HALL") != std::string::npos;
    })) << desktop.Errors();
    Process client({ZR_CLIENT, "advise", "HALL", "METER-1", "U1", "--timeout", "60"}, Environment());
    const auto line = client.ReadLineWith("U1");
    ASSERT_TRUE(line) << client.Errors();
    const double voltage = std::stod(line->substr(line->rfind('\t') + 1));
    EXPECT_GT(voltage, 200.0) << *line;
    EXPECT_LT(voltage, 260.0) << *line;
    desktop.Send(SIGTERM);
    EXPECT_EQ(desktop.WaitForExit(), 0) << desktop.Errors();
    EXPECT_EQ(client.WaitForExit(), 3) << client.Errors();
}

TEST_F(DesktopProcessTest, AHangUpReadsTheDocumentAgain)
{
    Process desktop({ZR_KESTRIX, Document("47327"), "--no-publication"}, Environment());
    ASSERT_TRUE(
        desktop.ReadErrorLine([](const std::string& line) { return line.find("window") != std::string::npos; }));
    m_folder.Write("one.xml", "<Kestrix><Broken</Kestrix>");
    desktop.Send(SIGHUP);
    ASSERT_TRUE(desktop.ReadErrorLine([](const std::string& line) {
        return line.find("goes on with the old one") != std::string::npos;
    })) << desktop.Errors();
    const std::string document = Document("47327");
    desktop.Send(SIGHUP);
    ASSERT_TRUE(desktop.ReadErrorLine([&](const std::string& line) {
        return line.find("event: ") != std::string::npos && line.find(document) != std::string::npos;
    })) << desktop.Errors();
    desktop.Send(SIGTERM);
    EXPECT_EQ(desktop.WaitForExit(), 0) << desktop.Errors();
}

TEST_F(DesktopProcessTest, EndsOnASignalAndRemembersItsWindow)
{
    Process desktop({ZR_KESTRIX, Document("47325"), "--no-publication"}, Environment());
    ASSERT_TRUE(
        desktop.ReadErrorLine([](const std::string& line) { return line.find("window") != std::string::npos; }));
    desktop.Send(SIGTERM);
    EXPECT_EQ(desktop.WaitForExit(), 0) << desktop.Errors();
    std::string registry;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder / "config")) {
        if (entry.path().filename() == "registry-current-user.txt") {
            std::ifstream file(entry.path());
            registry.assign(std::istreambuf_iterator<char>(file), {});
        }
    }
    EXPECT_NE(registry.find("WindowWidth"), std::string::npos);
    EXPECT_NE(registry.find("METER-1"), std::string::npos);
    ExpectPrivate(m_folder / "config");
    ExpectPrivate(m_folder / "data");
    ExpectPrivate(m_folder / "run");
}

}  // namespace
}  // namespace zr
