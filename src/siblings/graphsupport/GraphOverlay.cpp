// What lies over the curves: legend, markers, cursor, band of a zoom, tooltip.
#include "siblings/graphsupport/CurveRows.h"
#include "siblings/graphsupport/GraphModes.h"
#include "siblings/graphsupport/GraphPlan.h"
#include "siblings/graphsupport/GraphReadings.h"
#include "siblings/graphsupport/MarkerTable.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace zr::graph {

namespace {

constexpr unsigned kTextMore = 40250;

constexpr double kDot = 5.0;
constexpr double kPad = 5.0;
constexpr double kFromPointer = 14.0;
constexpr double kBetween = 10.0;

// An upright line through all zones; out of view there is none.
bool PutUpright(const GraphPlan& plan, const GraphState& state, std::int64_t time, SceneRole role, bool isDashed,
                SceneLayer& out)
{
    const Rect columns = plan.Columns();
    const int column = ColumnOf(time, state.view.InView(), columns.Width());
    if (columns.IsEmpty() || column < 0 || column >= columns.Width()) {
        return false;
    }
    for (const ZonePlace& zone : plan.layout.zones) {
        if (!zone.panel.IsEmpty()) {
            const int at = columns.left + column;
            out.push_back(SceneLine{{at, zone.panel.top}, {at, zone.panel.bottom - 1}, role, -1, isDashed});
        }
    }
    return true;
}

void PutMarkers(const GraphPlan& plan, const GraphState& state, SceneLayer& out)
{
    const Rect columns = plan.Columns();
    for (int which = 0; which < GraphMarkers::kCount; ++which) {
        const std::optional<std::int64_t> time = state.markers.At(which);
        if (!time || !PutUpright(plan, state, *time, SceneRole::Marker, which == 1, out) ||
            plan.target.texts == nullptr) {
            continue;
        }
        const ZRBasicString number = FormatText(u"%d", {which + 1});
        const int width = plan.target.texts->Width(number.Text(), TextFont::Bold) + Scaled(kPad, plan.target.scale);
        const int column = columns.left + ColumnOf(*time, state.view.InView(), columns.Width());
        // The flag flies to the side where there is room.
        const int left = column + width < columns.right ? column + 1 : column - width;
        const Rect flag{left, columns.top, left + width, std::min(columns.top + plan.lineHeight, columns.bottom)};
        out.push_back(SceneRect{flag, SceneRole::Marker, -1});
        const int frame = Scaled(1.0, plan.target.scale);
        out.push_back(SceneRect{
            {flag.left + frame, flag.top + frame, flag.right - frame, flag.bottom - frame}, SceneRole::BoxGround, -1});
        SceneText text;
        text.rect = flag;
        text.text = number;
        text.align = TextAlign::Centre;
        text.role = SceneRole::Marker;
        text.font = TextFont::Bold;
        out.push_back(std::move(text));
    }
}

// A dot at the sample of each curve that the values shown are of.
void PutDots(const GraphPlan& plan, const GraphState& state, const std::vector<CurveReading>& readings, SceneLayer& out)
{
    const int half = Scaled(kDot / 2.0, plan.target.scale);
    for (const CurveReading& reading : readings) {
        const GraphCurve& curve = state.curves.curves[static_cast<std::size_t>(reading.curve)];
        const Rect& panel = plan.layout.zones[static_cast<std::size_t>(curve.zone)].panel;
        if (!reading.sample || panel.IsEmpty() || curve.column.shape == CurveShape::Bars) {
            continue;
        }
        const std::int64_t time = curve.column.shape == CurveShape::Steps ? *state.cursor : reading.sample->time;
        const int column = panel.left + ColumnOf(time, state.view.InView(), panel.Width());
        const ValueMap& map = plan.scales[static_cast<std::size_t>(curve.run)].map;
        const double row = panel.top + RowOf(reading.sample->value, map, panel.Height());
        if (column < panel.left || column >= panel.right || row < panel.top || row >= panel.bottom) {
            continue;
        }
        const int centre = static_cast<int>(row);
        out.push_back(SceneRect{
            {column - half, centre - half, column + half + 1, centre + half + 1}, SceneRole::Point, reading.curve});
    }
}

void PutBand(const GraphPlan& plan, const GraphState& state, SceneLayer& out)
{
    if (!state.band) {
        return;
    }
    const Zoom view = state.view.InView();
    for (const ZonePlace& zone : plan.layout.zones) {
        const int left = ColumnOf(state.band->from, view, zone.panel.Width());
        const int right = ColumnOf(state.band->to, view, zone.panel.Width());
        const Rect band{zone.panel.left + std::max(left, 0), zone.panel.top,
                        std::min(zone.panel.left + right + 1, zone.panel.right), zone.panel.bottom};
        if (!band.IsEmpty()) {
            out.push_back(SceneRect{band, SceneRole::Band, -1});
        }
    }
}

// --- the tooltip ---

struct TooltipRow {
    int curve = -1;
    ZRBasicString title;
    ZRBasicString value;
};

struct Tooltip {
    ZRBasicString heading;
    std::vector<TooltipRow> rows;
    int titleWidth = 0;
    int valueWidth = 0;
};

Tooltip MakeTooltip(const GraphPlan& plan, const GraphState& state, const std::vector<CurveReading>& readings)
{
    const TextExtents& texts = *plan.target.texts;
    Tooltip tip;
    const std::int64_t column = ColumnLength(plan, state);
    tip.heading = state.Texts().Moment(SampledTime(state, readings, *state.cursor), column);
    const auto room = static_cast<std::size_t>(std::max(plan.target.height / std::max(plan.lineHeight, 1) - 2, 1));
    const std::size_t shown = readings.size() <= room ? readings.size() : room - 1;
    for (std::size_t i = 0; i < shown; ++i) {
        const CurveReading& reading = readings[i];
        TooltipRow row{reading.curve, reading.title, reading.value};
        if (!reading.range.IsEmpty()) {
            row.value += u"  (" + reading.range + u")";
        }
        tip.rows.push_back(std::move(row));
    }
    if (shown < readings.size()) {
        ZRBasicString format;
        ZRLoadString(kTextMore, format);
        const ZRBasicString number = FormatText(u"%d", {readings.size() - shown});
        tip.rows.push_back({-1, FormatText(format.Text(), {number}), {}});
    }
    for (const TooltipRow& row : tip.rows) {
        tip.titleWidth = std::max(tip.titleWidth, texts.Width(row.title.Text(), TextFont::Bold));
        tip.valueWidth = std::max(tip.valueWidth, texts.Width(row.value.Text(), TextFont::Bold));
    }
    return tip;
}

// Beside the pointer, to the right and below where there is room, and always within the picture where it fits.
Rect PlaceTooltip(const GraphPlan& plan, Point pointer, int width, int height)
{
    const int away = Scaled(kFromPointer, plan.target.scale);
    int left = pointer.x + away;
    if (left + width > plan.target.width) {
        left = pointer.x - away - width;
    }
    int top = pointer.y + away;
    if (top + height > plan.target.height) {
        top = pointer.y - away - height;
    }
    left = std::max(std::min(left, plan.target.width - width), 0);
    top = std::max(std::min(top, plan.target.height - height), 0);
    return {left, top, left + width, top + height};
}

void PutTooltipRow(const GraphPlan& plan, const GraphState& state, const Tooltip& tip, const TooltipRow& row, Point at,
                   SceneLayer& out)
{
    const int line = plan.lineHeight;
    const int swatch = line * 2 / 3;
    const int pad = Scaled(kPad, plan.target.scale);
    if (row.curve >= 0) {
        const int top = at.y + (line - swatch) / 2;
        out.push_back(SceneRect{{at.x, top, at.x + swatch, top + swatch}, SceneRole::Swatch, row.curve});
    }
    SceneText title;
    title.rect = {at.x + swatch + pad, at.y, at.x + swatch + pad + tip.titleWidth, at.y + line};
    title.text = row.title;
    title.font = row.curve >= 0 && row.curve == state.highlighted ? TextFont::Bold : TextFont::Normal;
    SceneText value = title;
    value.rect.left = title.rect.right + Scaled(kBetween, plan.target.scale);
    value.rect.right = value.rect.left + tip.valueWidth;
    value.text = row.value;
    out.push_back(std::move(title));
    if (!value.text.IsEmpty()) {
        out.push_back(std::move(value));
    }
}

void PutTooltip(const GraphPlan& plan, const GraphState& state, const std::vector<CurveReading>& readings,
                SceneLayer& out)
{
    if (plan.target.texts == nullptr || plan.lineHeight <= 0 || !state.pointer || readings.empty()) {
        return;
    }
    const Tooltip tip = MakeTooltip(plan, state, readings);
    const int pad = Scaled(kPad, plan.target.scale);
    const int inner =
        std::max(plan.lineHeight * 2 / 3 + pad + tip.titleWidth + Scaled(kBetween, plan.target.scale) + tip.valueWidth,
                 plan.target.texts->Width(tip.heading.Text(), TextFont::Bold));
    const int height = (static_cast<int>(tip.rows.size()) + 1) * plan.lineHeight + 2 * pad;
    const Rect box = PlaceTooltip(plan, *state.pointer, inner + 2 * pad, height);
    out.push_back(SceneRect{box, SceneRole::BoxFrame, -1});
    const int frame = Scaled(1.0, plan.target.scale);
    out.push_back(SceneRect{
        {box.left + frame, box.top + frame, box.right - frame, box.bottom - frame}, SceneRole::BoxGround, -1});
    Point at{box.left + pad, box.top + pad};
    SceneText heading;
    heading.rect = {at.x, at.y, box.right - pad, at.y + plan.lineHeight};
    heading.text = tip.heading;
    heading.font = TextFont::Bold;
    out.push_back(std::move(heading));
    for (const TooltipRow& row : tip.rows) {
        at.y += plan.lineHeight;
        PutTooltipRow(plan, state, tip, row, at, out);
    }
}

void PutPointer(const GraphPlan& plan, const GraphState& state, SceneLayer& out)
{
    if (plan.target.isPaper || !state.cursor || !state.hasData || state.view.IsEmpty()) {
        return;
    }
    PutBand(plan, state, out);
    if (!PutUpright(plan, state, *state.cursor, SceneRole::Cursor, false, out)) {
        return;
    }
    const std::vector<CurveReading> readings = ReadingsAt(state, *state.cursor, ColumnLength(plan, state));
    PutDots(plan, state, readings, out);
    if (state.mode == kTooltipMode) {
        PutTooltip(plan, state, readings, out);
    }
}

}  // namespace

void AppendOver(const GraphPlan& plan, const GraphState& state, SceneLayer& out)
{
    std::vector<Rect> legends;
    for (const ZonePlace& zone : plan.layout.zones) {
        legends.push_back(zone.legend);
    }
    AppendLegend(plan.legend, state, plan.target, legends, out);
    AppendMarkerTable(state, plan.target, plan.layout.table, out);
    PutMarkers(plan, state, out);
    PutPointer(plan, state, out);
}

}  // namespace zr::graph
