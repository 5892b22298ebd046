#include "siblings/graphsupport/GraphPlan.h"

#include "siblings/graphsupport/CurveRows.h"
#include "siblings/graphsupport/MarkerTable.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLocaleInformation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace zr::graph {

namespace {

constexpr double kAxisTick = 5.0;
constexpr double kBesideLabel = 3.0;
constexpr double kHitDistance = 5.0;
constexpr double kBarsBehind = 3.0;  // a line through bars is meant rather than they

ValueScale ScaleOf(const CurveRun& run, const GraphState& state, const GraphTarget& target, int height, int lineHeight)
{
    ValueScaleInput input;
    const Zoom view = state.view.InView();
    for (int i = 0; state.hasData && i < run.curves; ++i) {
        const auto curve = static_cast<std::size_t>(run.firstCurve + i);
        const ValueRange range = state.data.RangeOf(curve, view.from, view.to);
        if (!range.IsEmpty()) {
            input.values.Add(range);
        }
    }
    input.minimum = run.minimum;
    input.maximum = run.maximum;
    input.startsAtZero = run.hasBars;
    input.isFolded = run.isFolded;
    input.isWhole = run.isOfStates;
    input.height = height;
    input.labelHeight = lineHeight;
    input.scale = target.scale;
    return MakeValueScale(input);
}

int WidestLabel(const ValueScale& scale, const TextExtents& texts)
{
    int widest = 0;
    for (const ValueTick& tick : scale.ticks) {
        widest = std::max(widest, texts.Width(tick.label.Text(), TextFont::Normal));
    }
    return widest;
}

// The uppermost label, where the unit has no line of its own.
void PutUnitToLabel(ValueScale& scale, const ZRBasicString& unit)
{
    const auto last = std::find_if(scale.ticks.rbegin(), scale.ticks.rend(),
                                   [](const ValueTick& tick) { return !tick.label.IsEmpty(); });
    if (last != scale.ticks.rend() && !unit.IsEmpty()) {
        last->label += u" " + unit;
    }
}

void MakeScales(GraphPlan& plan, const GraphState& state)
{
    std::vector<AxisWidth> widths;
    for (const CurveRun& run : state.curves.runs) {
        const ZonePlace& place = plan.layout.zones[static_cast<std::size_t>(run.zone)];
        plan.scales.push_back(ScaleOf(run, state, plan.target, place.panel.Height(), plan.lineHeight));
        const ZRBasicString unit = UnitOf(run, plan.scales.back());
        if (place.units.Height() <= 0) {
            PutUnitToLabel(plan.scales.back(), unit);
        }
        int width = 0;
        if (plan.target.texts != nullptr) {
            const double scale = plan.target.scale;
            width = std::max(WidestLabel(plan.scales.back(), *plan.target.texts),
                             place.units.Height() > 0 ? plan.target.texts->Width(unit.Text(), TextFont::Normal) : 0) +
                    Scaled(kAxisTick, scale) + 2 * Scaled(kBesideLabel, scale);
        }
        widths.push_back({run.zone, width});
    }
    LayColumns(plan.layout, plan.target, widths);
}

void MakeTime(GraphPlan& plan, const GraphState& state)
{
    const Rect columns = plan.Columns();
    TimeScaleInput input;
    input.view = state.view.InView();
    input.width = columns.Width();
    input.roomLeft = columns.left;
    input.roomRight = plan.target.width - columns.right;
    input.scale = plan.target.scale;
    input.texts = plan.layout.timeAxis.IsEmpty() ? nullptr : plan.target.texts;
    input.firstDayOfWeek = LocaleInformationWide().firstDayOfWeek;
    plan.time = MakeTimeScale(input, state.zone, state.Texts());
}

LOGPEN PenFor(const GraphState& state, const GraphTarget& target, int curve)
{
    LOGPEN pen = state.curves.curves[static_cast<std::size_t>(curve)].info.pen;
    // A pen is as wide on a screen of any scale and on paper.
    pen.lopnWidth = Scaled(std::clamp(pen.lopnWidth, 1, 9), target.scale);
    if (target.isMonochrome) {
        pen.lopnColor = 0;
        pen.lopnStyle = MonochromeStyle(curve);
    }
    return pen;
}

// From a place to what a curve covers of the columns around it; infinity where it covers none.
double DistanceTo(const CurvePanel& panel, const GraphState& state, Point at, int reach)
{
    const Zoom view = state.view.InView();
    const int first = std::max(at.x - reach, panel.rect.left) - panel.rect.left;
    const int last = std::min(at.x + reach, panel.rect.right - 1) - panel.rect.left;
    if (last < first) {
        return std::numeric_limits<double>::infinity();
    }
    std::vector<ValueRange> ranges(static_cast<std::size_t>(last - first + 1));
    state.data.Reduce(static_cast<std::size_t>(panel.curve), TimeOf(first, view, panel.rect.Width()),
                      TimeOf(last + 1, view, panel.rect.Width()), ranges);
    std::vector<RowSpan> spans(ranges.size());
    RowsOf(ranges, panel.map, panel.rect.Height(), panel.pen.lopnWidth, spans);
    double nearest = std::numeric_limits<double>::infinity();
    const double row = at.y - panel.rect.top;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        if (spans[i].top > spans[i].bottom) {
            continue;
        }
        const double top = static_cast<double>(spans[i].top);
        const double bottom = static_cast<double>(spans[i].bottom);
        const double beside = panel.rect.left + first + static_cast<int>(i) - at.x;
        nearest = std::min(nearest, std::hypot(beside, std::max({top - row, row - bottom, 0.0})));
    }
    return nearest;
}

}  // namespace

Rect GraphPlan::Columns() const
{
    if (layout.zones.empty()) {
        return {};
    }
    return {layout.zones.front().panel.left, layout.zones.front().panel.top, layout.zones.back().panel.right,
            layout.zones.back().panel.bottom};
}

int GraphPlan::ZoneAt(Point at) const
{
    for (std::size_t i = 0; i < layout.zones.size(); ++i) {
        if (layout.zones[i].panel.Holds(at)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

GraphPlan MakePlan(const GraphState& state, const GraphTarget& target, std::span<const int> valueWidths)
{
    GraphPlan plan;
    plan.target = target;
    plan.target.scale = target.scale > 0.0 && std::isfinite(target.scale) ? target.scale : 1.0;
    plan.lineHeight = target.texts != nullptr ? target.texts->Height(TextFont::Normal) : 0;
    plan.legend = MakeLegend(state, plan.target, valueWidths);
    RowsInput rows;
    rows.zones = state.curves.zones;
    rows.lineHeight = plan.lineHeight;
    rows.legendRows = plan.legend.rows;
    plan.tableRows = MarkerTableRows(state);
    rows.tableRows = plan.tableRows;
    plan.layout = LayRows(plan.target, rows);
    MakeScales(plan, state);
    MakeTime(plan, state);
    return plan;
}

ZRBasicString UnitOf(const CurveRun& run, const ValueScale& scale)
{
    if (scale.exponent == 0) {
        return run.unit;
    }
    const ZRBasicString power = FormatText(u"x10^%d", {scale.exponent});
    return run.unit.IsEmpty() ? power : power + u" " + run.unit;
}

std::int64_t ColumnLength(const GraphPlan& plan, const GraphState& state)
{
    const Zoom view = state.view.InView();
    const int width = plan.Columns().Width();
    return width > 0 ? std::max<std::int64_t>((view.to - view.from) / width, 1) : 1;
}

void AppendPanels(const GraphPlan& plan, const GraphState& state, std::vector<CurvePanel>& out)
{
    const std::vector<GraphCurve>& curves = state.curves.curves;
    for (std::size_t i = 0; state.hasData && i < curves.size(); ++i) {
        CurvePanel panel;
        panel.rect = plan.layout.zones[static_cast<std::size_t>(curves[i].zone)].panel;
        if (panel.rect.IsEmpty() || state.view.IsEmpty()) {
            continue;
        }
        panel.curve = static_cast<int>(i);
        panel.shape = curves[i].column.shape;
        panel.map = plan.scales[static_cast<std::size_t>(curves[i].run)].map;
        panel.pen = PenFor(state, plan.target, panel.curve);
        panel.brush = curves[i].info.brush;
        panel.brush.lbColor = plan.target.isMonochrome ? 0 : panel.brush.lbColor;
        out.push_back(panel);
    }
    // Bars lie behind lines, so that none is hidden.
    std::stable_partition(out.begin(), out.end(),
                          [](const CurvePanel& panel) { return panel.shape == CurveShape::Bars; });
}

int CurveAt(const GraphPlan& plan, const GraphState& state, Point at)
{
    const int zone = plan.ZoneAt(at);
    if (zone < 0) {
        return -1;
    }
    std::vector<CurvePanel> panels;
    AppendPanels(plan, state, panels);
    const int reach = Scaled(kHitDistance, plan.target.scale);
    double nearest = reach + 0.5;
    int found = -1;
    for (const CurvePanel& panel : panels) {
        if (state.curves.curves[static_cast<std::size_t>(panel.curve)].zone != zone) {
            continue;
        }
        const double behind = panel.shape == CurveShape::Bars ? kBarsBehind * plan.target.scale : 0.0;
        const double distance = DistanceTo(panel, state, at, reach) + behind;
        if (distance < nearest) {
            nearest = distance;
            found = panel.curve;
        }
    }
    return found;
}

}  // namespace zr::graph
