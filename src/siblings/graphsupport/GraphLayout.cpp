#include "siblings/graphsupport/GraphLayout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zr::graph {

namespace {

constexpr double kMargin = 6.0;        // around the panels
constexpr double kRightMargin = 20.0;  // likewise, for half a label of the time axis
constexpr double kTick = 5.0;
constexpr int kMostLegendRows = 4;

int LinesHeight(int lines, int lineHeight, double scale)
{
    return lines > 0 ? lines * lineHeight + Scaled(4.0, scale) : 0;
}

// Rows of a zone, from the top: legend, units, panel, and room for half a label.
ZonePlace LayZone(int top, int bottom, int legendRows, int lineHeight, double scale)
{
    const int height = bottom - top;
    ZonePlace zone;
    zone.panel = {0, top, 0, bottom};
    if (lineHeight <= 0) {
        return zone;
    }
    if (height < 4 * lineHeight) {
        // The labels of neighbours would touch.
        zone.panel.bottom -= height >= 2 * lineHeight ? lineHeight * 3 / 4 : 0;
        return zone;
    }
    const int mostRows = std::max(1, height / 3 / lineHeight);
    const int rows = std::min({legendRows, mostRows, kMostLegendRows});
    zone.legend = {0, top, 0, top + LinesHeight(rows, lineHeight, scale)};
    zone.panel.top = zone.legend.bottom;
    zone.panel.bottom = bottom - lineHeight / 2;
    if (height >= 8 * lineHeight) {
        zone.units = {0, zone.legend.bottom, 0, zone.legend.bottom + lineHeight};
        zone.panel.top = zone.units.bottom + lineHeight / 4;
    }
    return zone;
}

// The axes of one zone, first to last, and what they take on each side.
struct ZoneAxes {
    std::vector<std::size_t> axes;
    std::size_t shown = 0;

    [[nodiscard]] int Width(std::span<const AxisWidth> widths, bool isLeft) const
    {
        int width = 0;
        for (std::size_t i = isLeft ? 0 : 1; i < shown; i += 2) {
            width += widths[axes[i]].width;
        }
        return width;
    }
};

void PlaceAxes(GraphLayout& layout, const ZoneAxes& zone, std::span<const AxisWidth> widths, const Rect& panel)
{
    int left = panel.left;
    int right = panel.right;
    for (std::size_t i = 0; i < zone.shown; ++i) {
        AxisPlace& place = layout.axes[zone.axes[i]];
        const int width = widths[zone.axes[i]].width;
        place.isLeft = i % 2 == 0;
        if (place.isLeft) {
            place.rect = {left - width, panel.top, left, panel.bottom};
            left -= width;
        } else {
            place.rect = {right, panel.top, right + width, panel.bottom};
            right += width;
        }
    }
}

struct Sides {
    int left = 0;
    int right = 0;
};

Sides WidestSides(std::span<const ZoneAxes> zones, std::span<const AxisWidth> widths)
{
    Sides sides;
    for (const ZoneAxes& zone : zones) {
        sides.left = std::max(sides.left, zone.Width(widths, true));
        sides.right = std::max(sides.right, zone.Width(widths, false));
    }
    return sides;
}

// Leaves out axes until the panels have half of the picture.
Sides FitAxes(std::vector<ZoneAxes>& zones, std::span<const AxisWidth> widths, int room)
{
    for (;;) {
        const Sides sides = WidestSides(zones, widths);
        if (sides.left + sides.right <= room) {
            return sides;
        }
        const auto most = std::max_element(zones.begin(), zones.end(), [&](const ZoneAxes& one, const ZoneAxes& other) {
            return one.Width(widths, true) + one.Width(widths, false) <
                   other.Width(widths, true) + other.Width(widths, false);
        });
        --most->shown;
    }
}

}  // namespace

int Scaled(double pixels, double scale)
{
    return pixels <= 0.0 ? 0 : std::max(1, static_cast<int>(std::lround(pixels * scale)));
}

GraphLayout LayRows(const GraphTarget& target, const RowsInput& input)
{
    GraphLayout layout;
    const int line = input.lineHeight;
    int bottom = std::max(target.height, 0);
    const int tableHeight =
        std::min(LinesHeight(input.tableRows, line, target.scale), line > 0 ? target.height * 2 / 5 : 0);
    if (line > 0 && tableHeight >= 2 * line) {
        layout.table = {0, bottom - tableHeight, std::max(target.width, 0), bottom};
        bottom -= tableHeight;
    }
    const int axisHeight = 2 * line + Scaled(kTick + 2.0, target.scale);
    if (line > 0 && axisHeight <= bottom / 2) {
        layout.timeAxis = {0, bottom - axisHeight, 0, bottom};
        bottom -= axisHeight;
    }
    const int zones = std::max(input.zones, 1);
    for (int i = 0; i < zones; ++i) {
        const auto position = static_cast<std::size_t>(i);
        const int rows = position < input.legendRows.size() ? input.legendRows[position] : 0;
        layout.zones.push_back(LayZone(bottom * i / zones, bottom * (i + 1) / zones, rows, line, target.scale));
    }
    // The last one's room for half a label is the time axis.
    if (layout.timeAxis.Height() > 0) {
        layout.zones.back().panel.bottom = layout.timeAxis.top;
    }
    return layout;
}

void LayColumns(GraphLayout& layout, const GraphTarget& target, std::span<const AxisWidth> axes)
{
    const int width = std::max(target.width, 0);
    std::vector<ZoneAxes> zones(layout.zones.size());
    for (std::size_t i = 0; i < axes.size(); ++i) {
        if (axes[i].width > 0 && axes[i].zone >= 0 && static_cast<std::size_t>(axes[i].zone) < zones.size()) {
            ZoneAxes& zone = zones[static_cast<std::size_t>(axes[i].zone)];
            zone.axes.push_back(i);
            zone.shown = zone.axes.size();
        }
    }
    const Sides sides = FitAxes(zones, axes, width / 2);
    const int margin = std::min(Scaled(kMargin, target.scale), width / 16);
    const int rightMargin = std::min(Scaled(kRightMargin, target.scale), width / 16);
    const int left = margin + sides.left;
    const int right = std::max(width - std::max(margin + sides.right, rightMargin), left);
    layout.axes.assign(axes.size(), {});
    for (std::size_t i = 0; i < zones.size(); ++i) {
        ZonePlace& place = layout.zones[i];
        place.panel.left = left;
        place.panel.right = right;
        place.legend.right = place.legend.Height() > 0 ? width : 0;
        place.units.right = place.units.Height() > 0 ? width : 0;
        PlaceAxes(layout, zones[i], axes, place.panel);
    }
    if (layout.timeAxis.Height() > 0) {
        layout.timeAxis.left = left;
        layout.timeAxis.right = right;
    }
}

}  // namespace zr::graph
