// What lies under the curves: grounds, grid, axes with their texts.
#include "siblings/graphsupport/CurveRows.h"
#include "siblings/graphsupport/GraphPlan.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zr::graph {

namespace {

constexpr unsigned kTextNoCurve = 40240;
constexpr unsigned kTextNoRecord = 40241;

constexpr double kMajorTick = 5.0;
constexpr double kMinorTick = 3.0;
constexpr double kBesideLabel = 3.0;

// The colour of a run's axis: that of its curve when it has one only.
int ColourOf(const CurveRun& run)
{
    return run.curves == 1 ? run.firstCurve : -1;
}

void PutFrame(const Rect& rect, SceneRole role, SceneLayer& out)
{
    const int right = rect.right - 1;
    const int bottom = rect.bottom - 1;
    out.push_back(SceneLine{{rect.left, rect.top}, {right, rect.top}, role});
    out.push_back(SceneLine{{right, rect.top}, {right, bottom}, role});
    out.push_back(SceneLine{{rect.left, bottom}, {right, bottom}, role});
    out.push_back(SceneLine{{rect.left, rect.top}, {rect.left, bottom}, role});
}

int TickRow(const ValueTick& tick, const ValueScale& scale, const Rect& panel)
{
    const int row = static_cast<int>(std::floor(RowOf(tick.value, scale.map, panel.Height())));
    return panel.top + std::clamp(row, 0, std::max(panel.Height() - 1, 0));
}

// Upright lines of the time scale and level ones of the zone's first run.
void PutGrid(const GraphPlan& plan, const GraphState& state, int zone, SceneLayer& out)
{
    const Rect& panel = plan.layout.zones[static_cast<std::size_t>(zone)].panel;
    for (const bool isMajor : {false, true}) {
        const SceneRole role = isMajor ? SceneRole::Grid : SceneRole::MinorGrid;
        for (const TimeTick& tick : plan.time.ticks) {
            const int column = panel.left + tick.column;
            if (tick.isMajor == isMajor && column > panel.left && column < panel.right - 1) {
                out.push_back(SceneLine{{column, panel.top}, {column, panel.bottom - 1}, role});
            }
        }
    }
    const auto& runs = state.curves.runs;
    const auto first = std::find_if(runs.begin(), runs.end(), [&](const CurveRun& run) { return run.zone == zone; });
    if (first == runs.end()) {
        return;
    }
    const ValueScale& scale = plan.scales[static_cast<std::size_t>(first - runs.begin())];
    for (const ValueTick& tick : scale.ticks) {
        const int row = TickRow(tick, scale, panel);
        if (tick.isMajor && row > panel.top && row < panel.bottom - 1) {
            out.push_back(SceneLine{{panel.left, row}, {panel.right - 1, row}, SceneRole::Grid});
        }
    }
}

void PutAxisLabel(const GraphPlan& plan, const AxisPlace& axis, const ValueTick& tick, int row, int colour,
                  SceneLayer& out)
{
    const double scale = plan.target.scale;
    const int away = Scaled(kMajorTick, scale) + Scaled(kBesideLabel, scale);
    const int lowest = std::min(axis.rect.bottom + plan.lineHeight / 2, plan.target.height) - plan.lineHeight;
    const int highest = std::max(axis.rect.top - plan.lineHeight / 4, 0);
    const int top = std::clamp(row - plan.lineHeight / 2, std::min(highest, lowest), lowest);
    SceneText text;
    text.rect = axis.isLeft ? Rect{axis.rect.left, top, axis.rect.right - away, top + plan.lineHeight}
                            : Rect{axis.rect.left + away, top, axis.rect.right, top + plan.lineHeight};
    text.text = tick.label;
    text.align = axis.isLeft ? TextAlign::Right : TextAlign::Left;
    text.curve = colour;
    out.push_back(std::move(text));
}

void PutAxis(const GraphPlan& plan, const GraphState& state, std::size_t number, SceneLayer& out)
{
    const CurveRun& run = state.curves.runs[number];
    const AxisPlace& axis = plan.layout.axes[number];
    const ValueScale& scale = plan.scales[number];
    if (axis.rect.IsEmpty()) {
        return;
    }
    const int colour = ColourOf(run);
    const int column = axis.isLeft ? axis.rect.right - 1 : axis.rect.left;
    const int outwards = axis.isLeft ? -1 : 1;
    out.push_back(SceneLine{{column, axis.rect.top}, {column, axis.rect.bottom - 1}, SceneRole::Axis, colour});
    for (const ValueTick& tick : scale.ticks) {
        const int row = TickRow(tick, scale, axis.rect);
        const int length = Scaled(tick.isMajor ? kMajorTick : kMinorTick, plan.target.scale);
        out.push_back(SceneLine{{column, row}, {column + outwards * length, row}, SceneRole::Axis, colour});
        if (tick.isMajor) {
            PutAxisLabel(plan, axis, tick, row, colour, out);
        }
    }
    const Rect& units = plan.layout.zones[static_cast<std::size_t>(run.zone)].units;
    if (!units.IsEmpty()) {
        SceneText text;
        text.rect = {axis.rect.left, units.top, axis.rect.right, units.bottom};
        text.text = UnitOf(run, scale);
        text.align = axis.isLeft ? TextAlign::Right : TextAlign::Left;
        text.role = SceneRole::DimText;
        text.curve = colour;
        out.push_back(std::move(text));
    }
}

void PutTimeLabel(const GraphPlan& plan, const ZRBasicString& label, int column, int line, SceneLayer& out)
{
    if (label.IsEmpty()) {
        return;
    }
    const int width = plan.target.texts->Width(label.Text(), TextFont::Normal);
    const int left = column - width / 2;
    const int top = plan.layout.timeAxis.bottom - (2 - line) * plan.lineHeight;
    SceneText text;
    text.rect = {left, top, left + width, top + plan.lineHeight};
    text.text = label;
    text.align = TextAlign::Centre;
    text.role = line == 0 ? SceneRole::Text : SceneRole::DimText;
    out.push_back(std::move(text));
}

void PutTimeAxis(const GraphPlan& plan, SceneLayer& out)
{
    const Rect& axis = plan.layout.timeAxis;
    if (axis.IsEmpty()) {
        return;
    }
    for (const TimeTick& tick : plan.time.ticks) {
        const int column = std::min(axis.left + tick.column, axis.right - 1);
        const int length = Scaled(tick.isMajor ? kMajorTick : kMinorTick, plan.target.scale);
        out.push_back(SceneLine{{column, axis.top}, {column, axis.top + length - 1}, SceneRole::Axis});
        PutTimeLabel(plan, tick.label, column, 0, out);
        PutTimeLabel(plan, tick.context, column, 1, out);
    }
    if (!plan.time.leftContext.IsEmpty()) {
        const int width = plan.target.texts->Width(plan.time.leftContext.Text(), TextFont::Normal);
        PutTimeLabel(plan, plan.time.leftContext, axis.left + width / 2, 1, out);
    }
}

void PutEmptyText(const GraphPlan& plan, const GraphState& state, SceneLayer& out)
{
    const bool hasNoCurve = state.curves.curves.empty();
    if (plan.target.texts == nullptr || (!hasNoCurve && (!state.hasData || state.Records() > 0))) {
        return;
    }
    SceneText text;
    text.rect = plan.Columns();
    ZRLoadString(hasNoCurve ? kTextNoCurve : kTextNoRecord, text.text);
    text.align = TextAlign::Centre;
    text.role = SceneRole::DimText;
    if (!text.rect.IsEmpty()) {
        out.push_back(std::move(text));
    }
}

}  // namespace

void AppendUnder(const GraphPlan& plan, const GraphState& state, SceneLayer& out)
{
    out.push_back(SceneRect{{0, 0, plan.target.width, plan.target.height}, SceneRole::Ground, -1});
    for (std::size_t i = 0; i < plan.layout.zones.size(); ++i) {
        const Rect& panel = plan.layout.zones[i].panel;
        if (panel.IsEmpty()) {
            continue;
        }
        out.push_back(SceneRect{panel, SceneRole::Panel, -1});
        PutGrid(plan, state, static_cast<int>(i), out);
        PutFrame(panel, SceneRole::Frame, out);
    }
    for (std::size_t i = 0; i < state.curves.runs.size(); ++i) {
        PutAxis(plan, state, i, out);
    }
    PutTimeAxis(plan, out);
    PutEmptyText(plan, state, out);
}

}  // namespace zr::graph
