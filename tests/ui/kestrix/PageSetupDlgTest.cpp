#include "hosts/kestrix/ui/PageSetupDlg.h"

#include "DesktopFixture.h"
#include "platform/ui/CDialog.h"

#include <fstream>
#include <QComboBox>
#include <QEvent>
#include <QImage>

namespace zr::desktop {
namespace {

// How light the ground of a window was each time it was painted.
class GroundsPainted : public QObject {
public:
    explicit GroundsPainted(QWidget& window) : m_window(window) { window.installEventFilter(this); }

    std::vector<int> lightness;

private:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            lightness.push_back(m_window.palette().color(QPalette::Window).lightness());
        }
        return QObject::eventFilter(watched, event);
    }

    QWidget& m_window;
};

class PageSetupDlgTest : public DesktopFixture {};

TEST_F(PageSetupDlgTest, TheSetupIsKeptAndAPageIsPrinted)
{
    Start();
    ui::SetModalHook([](QDialog& dialog) {
        dialog.findChild<QComboBox*>(QString::number(kOrientationBox))->setCurrentIndex(1);
        dialog.accept();
    });
    Command(kCmdPageSetup);
    ui::SetModalHook(nullptr);
    EXPECT_TRUE(m_settings.isLandscape);
    const auto file = m_folder / "page.pdf";
    ASSERT_TRUE(PrintPageToFile(*m_frame->Page(), m_settings, QString::fromStdString(file.string())));
    std::ifstream stream(file);
    std::string head(5, '\0');
    stream.read(head.data(), 5);
    EXPECT_EQ(head, "%PDF-");
}

TEST_F(PageSetupDlgTest, ADarkPageIsPrintedLightAndIsDarkAgainAfterwards)
{
    Start();
    Command(kCmdColoursDark);
    Settle();
    GroundsPainted grounds(*m_frame->Page());
    ASSERT_TRUE(
        PrintPageToFile(*m_frame->Page(), m_settings, QString::fromStdString((m_folder / "page.pdf").string())));
    ASSERT_FALSE(grounds.lightness.empty());
    for (const int lightness : grounds.lightness) {
        EXPECT_GT(lightness, 180);
    }
    EXPECT_LT(m_frame->Page()->grab().toImage().pixelColor(4, 4).lightness(), 80);
}

TEST_F(PageSetupDlgTest, APaperThatIsUnknownIsShownAsA4)
{
    DesktopSettings settings;
    settings.paper = "Foolscap";
    PageSetupDlg dialog(nullptr, settings);
    EXPECT_EQ(dialog.findChild<QComboBox*>(QString::number(kPaperBox))->currentText(), "A4");
}

}  // namespace
}  // namespace zr::desktop
