#include "siblings/graphsupport/GraphLayout.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace zr::graph {
namespace {

constexpr int kLine = 15;

GraphTarget Target(int width, int height)
{
    GraphTarget target;
    target.width = width;
    target.height = height;
    return target;
}

GraphLayout Lay(int width, int height, int zones, const std::vector<AxisWidth>& axes, int tableRows = 0)
{
    RowsInput rows;
    rows.zones = zones;
    rows.lineHeight = kLine;
    rows.legendRows.assign(static_cast<std::size_t>(zones), 1);
    rows.tableRows = tableRows;
    GraphLayout layout = LayRows(Target(width, height), rows);
    LayColumns(layout, Target(width, height), axes);
    return layout;
}

TEST(GraphLayout, ZonesAreEquallyHighAndWide)
{
    const GraphLayout layout = Lay(800, 637, 3, {{0, 40}, {1, 60}, {2, 50}});
    ASSERT_EQ(layout.zones.size(), 3u);
    for (const ZonePlace& zone : layout.zones) {
        EXPECT_EQ(zone.panel.left, layout.zones[0].panel.left);
        EXPECT_EQ(zone.panel.right, layout.zones[0].panel.right);
        EXPECT_FALSE(zone.panel.IsEmpty());
        EXPECT_FALSE(zone.legend.IsEmpty());
        EXPECT_NEAR(zone.panel.Height(), layout.zones[0].panel.Height(), kLine);
    }
    EXPECT_LT(layout.zones[0].panel.bottom, layout.zones[1].legend.top + 1);
    EXPECT_EQ(layout.timeAxis.left, layout.zones[0].panel.left);
    EXPECT_EQ(layout.timeAxis.right, layout.zones[0].panel.right);
    EXPECT_EQ(layout.timeAxis.top, layout.zones[2].panel.bottom);
}

TEST(GraphLayout, AxesStandLeftAndRightInTurnAndOutwards)
{
    const GraphLayout layout = Lay(800, 400, 1, {{0, 40}, {0, 50}, {0, 30}, {0, 20}});
    const Rect panel = layout.zones[0].panel;
    EXPECT_TRUE(layout.axes[0].isLeft);
    EXPECT_EQ(layout.axes[0].rect.right, panel.left);
    EXPECT_FALSE(layout.axes[1].isLeft);
    EXPECT_EQ(layout.axes[1].rect.left, panel.right);
    EXPECT_EQ(layout.axes[2].rect.right, layout.axes[0].rect.left);
    EXPECT_EQ(layout.axes[3].rect.left, layout.axes[1].rect.right);
    EXPECT_GE(layout.axes[2].rect.left, 0);
    EXPECT_LE(layout.axes[3].rect.right, 800);
}

TEST(GraphLayout, AxesThatTakeTooMuchAreLeftOut)
{
    const GraphLayout layout = Lay(200, 400, 1, {{0, 40}, {0, 50}, {0, 30}, {0, 20}});
    EXPECT_FALSE(layout.axes[0].rect.IsEmpty());
    EXPECT_FALSE(layout.axes[1].rect.IsEmpty());
    EXPECT_TRUE(layout.axes[2].rect.IsEmpty());
    EXPECT_TRUE(layout.axes[3].rect.IsEmpty());
    EXPECT_GE(layout.zones[0].panel.Width(), 80);
}

TEST(GraphLayout, TheTableHasItsRowsAtTheBottom)
{
    const GraphLayout layout = Lay(800, 400, 2, {{0, 40}, {1, 40}}, 4);
    EXPECT_EQ(layout.table.bottom, 400);
    EXPECT_GE(layout.table.Height(), 4 * kLine);
    EXPECT_EQ(layout.timeAxis.bottom, layout.table.top);
    EXPECT_LE(Lay(800, 400, 1, {{0, 40}}, 200).table.Height(), 160);
}

TEST(GraphLayout, OnePixelIsOneOfAPanel)
{
    const GraphLayout layout = Lay(1, 1, 1, {{0, 40}});
    EXPECT_EQ(layout.zones[0].panel, (Rect{0, 0, 1, 1}));
    EXPECT_TRUE(layout.timeAxis.IsEmpty());
    EXPECT_TRUE(layout.axes[0].rect.IsEmpty());
    EXPECT_TRUE(layout.zones[0].legend.IsEmpty());
}

TEST(GraphLayout, EverythingLiesInThePictureAtAnySize)
{
    std::mt19937 random(3);
    for (int i = 0; i < 3000; ++i) {
        const int width = static_cast<int>(random() % 300);
        const int height = static_cast<int>(random() % 300);
        const int zones = 1 + static_cast<int>(random() % 6);
        std::vector<AxisWidth> axes;
        for (auto k = random() % 10; k > 0; --k) {
            axes.push_back({static_cast<int>(random() % 6) % zones, static_cast<int>(random() % 80)});
        }
        const GraphLayout layout = Lay(width, height, zones, axes, static_cast<int>(random() % 5));
        std::vector<Rect> rects = {layout.timeAxis, layout.table};
        for (const ZonePlace& zone : layout.zones) {
            rects.insert(rects.end(), {zone.panel, zone.legend, zone.units});
            EXPECT_GE(zone.panel.Width(), 0);
            EXPECT_GE(zone.panel.Height(), 0);
        }
        for (const AxisPlace& axis : layout.axes) {
            rects.push_back(axis.rect);
        }
        for (const Rect& rect : rects) {
            ASSERT_TRUE(rect.left >= 0 && rect.top >= 0 && rect.right <= width && rect.bottom <= height)
                << width << "x" << height << ": " << rect.left << " " << rect.top << " " << rect.right << " "
                << rect.bottom;
        }
    }
}

TEST(GraphLayout, LengthsGrowWithTheScaleAndNeverVanish)
{
    EXPECT_EQ(Scaled(5.0, 2.0), 10);
    EXPECT_EQ(Scaled(1.0, 0.25), 1);
    EXPECT_EQ(Scaled(0.0, 2.0), 0);
}

}  // namespace
}  // namespace zr::graph
