#include "hosts/kestrix/ui/Snapshot.h"

#include "DesktopFixture.h"

#include <fstream>
#include <QImage>
#include <set>

namespace zr::desktop {
namespace {

class SnapshotTest : public DesktopFixture {};

std::size_t ColoursIn(const QImage& image)
{
    std::set<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3) {
            colours.insert(image.pixel(x, y));
        }
    }
    return colours.size();
}

TEST_F(SnapshotTest, TakesEveryKindOfPageInLightAndDark)
{
    Start();
    Write(u"METER-1", u"U1", 230.0);
    std::string problem;
    ASSERT_TRUE(SaveSnapshots(*m_frame, m_folder / "out", problem)) << problem;
    for (const char* const name : {"device-EM3", "device-IO8", "group", "logged-data", "about", "keys", "pagesetup"}) {
        for (const char* const colours : {"-light", "-dark"}) {
            const QImage image(
                QString::fromStdString((m_folder.Path() / "out" / (std::string(name) + colours + ".png")).string()));
            ASSERT_FALSE(image.isNull()) << name << colours;
            EXPECT_GT(ColoursIn(image), 8u) << name << colours;
        }
    }
    const QImage page(QString::fromStdString((m_folder.Path() / "out" / "device-EM3-light.png").string()));
    EXPECT_EQ(page.size(), m_frame->size() * m_frame->devicePixelRatio());
    using std::filesystem::perms;
    for (const auto& [path, expected] :
         {std::pair(m_folder / "out", perms::owner_all),
          std::pair(m_folder / "out" / "group-dark.png", perms::owner_read | perms::owner_write)}) {
        EXPECT_EQ(std::filesystem::status(path).permissions(), expected) << path;
    }
}

TEST_F(SnapshotTest, TellsWhichFolderCannotBeMade)
{
    Start();
    m_folder.Write("file", "");
    std::string problem;
    EXPECT_FALSE(SaveSnapshots(*m_frame, m_folder.Path() / "file" / "out", problem));
    EXPECT_NE(problem.find("file"), std::string::npos);
}

}  // namespace
}  // namespace zr::desktop
