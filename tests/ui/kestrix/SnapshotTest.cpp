#include "hosts/kestrix/ui/Snapshot.h"

#include "DesktopFixture.h"
#include "siblings/driversupport/store/MemoryLoggerStore.h"
#include "siblings/tools/ZRDateTime.h"

#include <algorithm>
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

TEST_F(SnapshotTest, TakesTheWindowsOnLoggedDataOfWhatIsRecorded)
{
    Start();
    MemoryLoggerStore store;
    const int series = store.OpenSeries(u"METER-2.U1", 1);
    std::vector<LoggerAppend> batch;
    for (std::int64_t i = 0; i < 2000; ++i) {
        batch.push_back(
            {series, (946684800LL + ZRDateTime::LTC().seconds - 60 * i) * 1000000, 2300.0 + double(i % 90)});
    }
    std::reverse(batch.begin(), batch.end());
    ASSERT_TRUE(store.Append(batch));
    ASSERT_TRUE(store.SetDataSet({u"mains", 60, 0, {u"METER-2.U1"}}));
    SetLoggerStore(&store);
    std::string problem;
    EXPECT_TRUE(SaveSnapshots(*m_frame, m_folder / "out", problem)) << problem;
    SetLoggerStore(nullptr);
    for (const char* const name : {"table", "preview", "narrow", "chevron", "loading", "graph-EM3", "graph-EM3-wide"}) {
        for (const char* const colours : {"-light", "-dark"}) {
            const std::string file = std::string("logged-") + name + colours + ".png";
            const QImage image(QString::fromStdString((m_folder.Path() / "out" / file).string()));
            ASSERT_FALSE(image.isNull()) << file;
            EXPECT_GT(ColoursIn(image), 8u) << file;
        }
    }
    // No window and no dialog is left open.
    for (const QWidget* const top : QApplication::topLevelWidgets()) {
        EXPECT_TRUE(top == m_frame.get() || !top->isVisible()) << top->windowTitle().toStdString();
    }
    EXPECT_TRUE(m_asked.empty());
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
