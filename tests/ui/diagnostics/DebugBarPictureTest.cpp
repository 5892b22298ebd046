// Pictures of the bar at every place, on a light and on a dark desktop; they are left in pictures/ of the build folder
// for people to look at.
#include "DebugBarFixture.h"
#include "ui/support/KeepPicture.h"

#include <QLabel>
#include <QPalette>
#include <set>
#include <string>

namespace {

using namespace zr;
using namespace zr::ui;
using namespace zr::test;

QPalette Dark()
{
    QPalette palette;
    const auto set = [&palette](QPalette::ColorRole role, const char* colour) {
        palette.setColor(role, QColor(QLatin1String(colour)));
    };
    set(QPalette::Window, "#2b2b2b");
    set(QPalette::WindowText, "#e6e6e6");
    set(QPalette::Base, "#1e1e1e");
    set(QPalette::AlternateBase, "#262626");
    set(QPalette::Text, "#e6e6e6");
    set(QPalette::Button, "#3a3a3a");
    set(QPalette::ButtonText, "#e6e6e6");
    set(QPalette::Highlight, "#2f6fb0");
    set(QPalette::HighlightedText, "#ffffff");
    return palette;
}

struct Place {
    const char* name;
    unsigned dockBar;  // 0: floating
};

class DebugBarPictureTest : public DebugBarFixture, public ::testing::WithParamInterface<std::tuple<Place, bool>> {
protected:
    ~DebugBarPictureTest() override { QApplication::setPalette(m_before); }

    void Prepare(bool isDark, unsigned dockBar)
    {
        QApplication::setPalette(isDark ? Dark() : m_before);
        warnings.AddWarning(1, u"Meter hall 3", u"", u"");
        warnings.AddWarning(4, u"Converter east", u"", u"");
        warnings.AddWarning(257, u"Meter hall 3", u"", u"after 40 s");
        warnings.AddWarning(17, u"hall.xml", u"", ZRBasicString(std::u16string(300, u'w')));
        Warn(20);
        frame.setCentralWidget(new QLabel(QStringLiteral("Values")));
        Show(dockBar != 0 ? dockBar : AFX_IDW_DOCKBAR_BOTTOM);
        if (dockBar == 0) {
            Float();
        }
        bar.Layout();
        bar.SelectFirstWarning();
        QApplication::processEvents();
    }
    static void Keep(const QImage& image, const std::string& name)
    {
        EXPECT_TRUE(KeepPicture(image, QString::fromStdString(name + ".png")));
    }
    // How many colours a part of the picture has.
    static std::size_t Colours(const QImage& image, const QRect& part)
    {
        std::set<QRgb> found;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                found.insert(image.pixel(x, y));
            }
        }
        return found.size();
    }

private:
    QPalette m_before = QApplication::palette();
};

TEST_P(DebugBarPictureTest, ShowsTitleLinesGripperAndCloseButton)
{
    const auto& [place, isDark] = GetParam();
    Prepare(isDark, place.dockBar);
    const QImage image = bar.grab().toImage();
    const std::string name = std::string("bar-") + place.name + (isDark ? "-dark" : "-light");
    Keep(place.dockBar != 0 ? frame.grab().toImage() : image, name);

    const QPoint list = List().mapTo(&bar, QPoint());
    const QRgb base = image.pixel(list + QPoint(List().width() / 2, List().height() - 30));
    EXPECT_EQ(qGray(base) < 128, isDark) << "lines lie on the desktop's own background";
    EXPECT_GT(Colours(image, QRect(list, QSize(100, 20))), 4u) << "a title with text";
    const QRect lines =
        List().visualRect(List().model()->index(1, 0)).translated(List().viewport()->mapTo(&bar, QPoint()));
    EXPECT_GT(Colours(image, lines.intersected(image.rect()).adjusted(0, 0, -20, 0)), 4u) << "a line with text";
    if (place.dockBar != 0) {
        EXPECT_GT(Colours(image, QRect(0, 0, list.x() / 3, image.height())), 1u) << "a gripper";
        const QPoint close = CloseButton().mapTo(&bar, QPoint());
        EXPECT_GT(Colours(image, QRect(close, CloseButton().size())), 4u) << "a button with its x";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Places, DebugBarPictureTest,
    ::testing::Combine(::testing::Values(Place{"top", AFX_IDW_DOCKBAR_TOP}, Place{"bottom", AFX_IDW_DOCKBAR_BOTTOM},
                                         Place{"left", AFX_IDW_DOCKBAR_LEFT}, Place{"right", AFX_IDW_DOCKBAR_RIGHT},
                                         Place{"floating", 0}),
                       ::testing::Bool()),
    [](const auto& each) {
        return std::string(std::get<0>(each.param).name) + (std::get<1>(each.param) ? "Dark" : "Light");
    });

TEST_P(DebugBarPictureTest, ShowsTheLineOfADragAndNothingOfItAfterwards)
{
    const auto& [place, isDark] = GetParam();
    if (place.dockBar != AFX_IDW_DOCKBAR_TOP && place.dockBar != AFX_IDW_DOCKBAR_BOTTOM) {
        // No edge to drag: a press where it would be shows no line either.
        Prepare(isDark, place.dockBar);
        const QImage before = frame.grab().toImage();
        Press(QPoint(3, 1));
        EXPECT_EQ(frame.grab().toImage(), before);
        Release(QPoint(3, 1));
        return;
    }
    Prepare(isDark, place.dockBar);
    const bool isTop = place.dockBar == AFX_IDW_DOCKBAR_TOP;
    const QPoint edge(200, isTop ? bar.height() - 2 : 1);
    const QPoint moved = edge + QPoint(0, isTop ? 60 : -60);
    const QImage before = frame.grab().toImage();
    Press(edge);
    Move(moved);
    const QImage dragged = frame.grab().toImage();
    Keep(dragged, std::string("drag-") + place.name + (isDark ? "-dark" : "-light"));
    const QPoint line = At(moved);
    EXPECT_GT(Colours(dragged, QRect(line.x(), line.y(), 20, 1)), 1u) << "dotted";
    EXPECT_EQ(dragged.copy(0, 0, 800, line.y() - 4), before.copy(0, 0, 800, line.y() - 4)) << "nothing else changes";
    Move(edge);
    Release(edge);
    EXPECT_EQ(frame.grab().toImage(), before);
}

}  // namespace
