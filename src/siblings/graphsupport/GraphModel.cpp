#include "siblings/graphsupport/GraphModel.h"

#include "siblings/graphsupport/GraphParts.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/Numbers.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zr::graph {

namespace {

constexpr unsigned kTextRecords = 40242;
constexpr unsigned kTextOneRecord = 40243;
constexpr unsigned kTextReduced = 40244;

constexpr std::int64_t kEpochOfDates = 946684800;  // 1 January 2000 in seconds since 1970
constexpr std::int64_t kLeastView = 1000;          // microseconds
constexpr int kSamplesInView = 2;
constexpr double kWheelFactor = 1.25;
constexpr double kMostWheelSteps = 100.0;

std::int64_t ToUtcMicros(const ZRDateTime& local, const TimeZone& zone)
{
    return zone.ToUtc(local.seconds + kEpochOfDates) * kMicrosOfSecond + local.microseconds;
}

Zoom WindowOf(const ZRDateTime& from, const ZRDateTime& to, const TimeZone& zone)
{
    return from.IsValid() && to.IsValid() ? Zoom{ToUtcMicros(from, zone), ToUtcMicros(to, zone)} : Zoom();
}

}  // namespace

GraphModel::GraphModel() : m_parts(std::make_unique<Parts>()) {}
GraphModel::~GraphModel() = default;

void GraphModel::SetTarget(const GraphTarget& target)
{
    m_parts->target = target;
    // Other fonts need other widths.
    m_parts->valueWidths.clear();
    m_parts->ChangeAll();
}

void GraphModel::SetDateText(DateText text)
{
    m_parts->state.dateText = text;
    m_parts->ChangeAll();
}

void GraphModel::TextsChanged()
{
    m_parts->valueWidths.clear();
    m_parts->ChangeAll();
}

void GraphModel::Update(std::span<const CurveInfo> curves, const ZRDateTime& from, const ZRDateTime& to,
                        const ZRLoggerInfo& info, const ZRLoggerData::CRecordGroup* group)
{
    GraphState& state = m_parts->state;
    m_parts->EndDrag();
    const ZRDateTimeSpan period = group != nullptr ? group->Period() : ZRDateTimeSpan();
    state.zone = PlantZone();
    state.curves = MakeGraphCurves(curves, info, period.seconds > 0);
    state.highlighted = -1;
    const Zoom whole = WindowOf(from, to, state.zone);
    const std::int64_t least = kSamplesInView * (period.seconds * kMicrosOfSecond + period.microseconds);
    if (state.view.SetWhole(whole, std::max(kLeastView, least))) {
        state.markers.Remove();
        state.cursor.reset();
        state.pointer.reset();
    }
    state.hasData = group != nullptr && !state.view.IsEmpty();
    if (state.hasData) {
        state.data.Bind(*group, state.curves.Columns());
    } else {
        state.data.Clear();
    }
    m_parts->valueWidths.clear();
    m_parts->ChangeShown();
}

void GraphModel::Clear()
{
    GraphState& state = m_parts->state;
    m_parts->EndDrag();
    state.curves = {};
    state.hasData = false;
    state.data.Clear();
    state.highlighted = -1;
    m_parts->valueWidths.clear();
    m_parts->ChangeShown();
}

GraphChanges GraphModel::TakeChanges()
{
    return std::exchange(m_parts->changes, {});
}

const GraphScene& GraphModel::Scene()
{
    return m_parts->Scene();
}

GraphScene GraphModel::SceneFor(const GraphTarget& target) const
{
    const GraphState& state = m_parts->state;
    std::vector<int> widths;
    if (target.texts != nullptr) {
        WidenValues(state, *target.texts, widths);
    }
    const GraphPlan plan = MakePlan(state, target, widths);
    GraphScene scene;
    scene.width = target.width;
    scene.height = target.height;
    AppendUnder(plan, state, scene.under);
    AppendPanels(plan, state, scene.panels);
    AppendOver(plan, state, scene.over);
    return scene;
}

void GraphModel::Spans(const CurvePanel& panel, std::span<RowSpan> out) const
{
    const GraphState& state = m_parts->state;
    std::fill(out.begin(), out.end(), RowSpan());
    const auto curve = static_cast<std::size_t>(panel.curve);
    if (!state.hasData || panel.curve < 0 || curve >= state.data.Curves() || out.empty()) {
        return;
    }
    std::vector<ValueRange> ranges(out.size());
    const Zoom view = state.view.InView();
    state.data.Reduce(curve, view.from, view.to, ranges);
    RowsOf(ranges, panel.map, panel.rect.Height(), panel.pen.lopnWidth, out);
}

void GraphModel::Path(const CurvePanel& panel, std::vector<PathPoint>& out) const
{
    const GraphState& state = m_parts->state;
    out.clear();
    const auto curve = static_cast<std::size_t>(panel.curve);
    if (!state.hasData || panel.curve < 0 || curve >= state.data.Curves() || panel.rect.IsEmpty()) {
        return;
    }
    std::vector<CurvePoint> points;
    const Zoom view = state.view.InView();
    state.data.Points(curve, view.from, view.to, static_cast<std::size_t>(panel.rect.Width()), points);
    PathOf(points, view.from, view.to, panel, out);
}

GraphStatus GraphModel::Status() const
{
    const GraphState& state = m_parts->state;
    GraphStatus status;
    if (!state.hasData || state.curves.curves.empty()) {
        return status;
    }
    const Zoom view = state.view.InView();
    const int width = m_parts->Plan().Columns().Width();
    status.records = state.data.Records(view.from, view.to);
    status.recordsPerColumn = width > 0 ? static_cast<double>(status.records) / width : 0.0;
    status.isReduced = status.recordsPerColumn > 1.0;
    ZRBasicString format;
    ZRLoadString(status.isReduced ? kTextReduced : status.records == 1 ? kTextOneRecord : kTextRecords, format);
    ZRBasicString records;
    ZRBasicString perColumn;
    FormatNumber(records, static_cast<double>(status.records), 0, true);
    FormatNumber(perColumn, status.recordsPerColumn, status.recordsPerColumn < 10.0 ? 1 : 0, true);
    status.text = FormatText(format.Text(), {records, perColumn});
    return status;
}

std::size_t GraphModel::Curves() const
{
    return m_parts->state.curves.curves.size();
}

unsigned long GraphModel::Colour(int curve) const
{
    const auto& curves = m_parts->state.curves.curves;
    const auto at = static_cast<std::size_t>(curve);
    return curve >= 0 && at < curves.size() ? curves[at].info.pen.lopnColor : 0;
}

// --- the pointer ---

void GraphModel::Press(Point at, bool isShift)
{
    m_parts->Note(m_parts->pointer.Press(m_parts->state, m_parts->Plan(), at, isShift));
}

void GraphModel::Move(Point at)
{
    m_parts->Note(m_parts->pointer.Move(m_parts->state, m_parts->Plan(), at));
}

void GraphModel::Release(Point at)
{
    m_parts->Note(m_parts->pointer.Release(m_parts->state, m_parts->Plan(), at));
}

void GraphModel::DoubleClick(Point)
{
    m_parts->EndDrag();
    UndoZoom();
}

void GraphModel::Leave()
{
    if (!m_parts->pointer.IsDragging()) {
        m_parts->Note(m_parts->pointer.Leave(m_parts->state));
    }
}

void GraphModel::CancelDrag()
{
    m_parts->EndDrag();
}

bool GraphModel::IsDragging() const
{
    return m_parts->pointer.IsDragging();
}

PointerShape GraphModel::Shape() const
{
    return m_parts->pointer.Shape(m_parts->state, m_parts->Plan());
}

void GraphModel::Wheel(Point at, double steps)
{
    const Rect columns = m_parts->Plan().Columns();
    if (columns.IsEmpty() || !std::isfinite(steps)) {
        return;
    }
    m_parts->EndDrag();
    GraphState& state = m_parts->state;
    const Zoom view = state.view.InView();
    const std::int64_t about = TimeOf(at.x - columns.left, view, columns.Width());
    const double held = std::clamp(steps, -kMostWheelSteps, kMostWheelSteps);
    if (state.view.ZoomAbout(about, std::pow(kWheelFactor, -held))) {
        m_parts->ChangeShown();
    }
}

void GraphModel::WheelSideways(double steps)
{
    if (!std::isfinite(steps)) {
        return;
    }
    constexpr double kShare = 0.1;
    PanByPart(std::clamp(steps, -kMostWheelSteps, kMostWheelSteps) * kShare);
}

void GraphModel::SetMode(int mode)
{
    if (mode < kTooltipMode || mode > kPanMode) {
        return;
    }
    m_parts->EndDrag();
    if (m_parts->state.mode != mode) {
        m_parts->state.mode = mode;
        m_parts->ChangeOver();
        m_parts->changes.shown = true;
    }
}

int GraphModel::Mode() const
{
    return m_parts->state.mode;
}

// --- the stretch of time ---

void GraphModel::UndoZoom()
{
    m_parts->EndDrag();
    if (m_parts->state.view.UndoAll()) {
        m_parts->ChangeShown();
    }
}

void GraphModel::UndoLastZoom()
{
    m_parts->EndDrag();
    if (m_parts->state.view.UndoLast()) {
        m_parts->ChangeShown();
    }
}

const std::vector<Zoom>& GraphModel::History() const
{
    return m_parts->state.view.History();
}

Zoom GraphModel::InView() const
{
    return m_parts->state.view.InView();
}

Zoom GraphModel::Whole() const
{
    return m_parts->state.view.Whole();
}

void GraphModel::ZoomTo(Zoom zoom)
{
    m_parts->EndDrag();
    if (m_parts->state.view.ZoomTo(zoom)) {
        m_parts->ChangeShown();
    }
}

// --- cursor and markers ---

std::optional<std::int64_t> GraphModel::Cursor() const
{
    return m_parts->state.cursor;
}

std::optional<std::int64_t> GraphModel::Marker(int which) const
{
    return m_parts->state.markers.At(which);
}

void GraphModel::SetMarker(int which, std::int64_t time)
{
    m_parts->EndDrag();
    const GraphState& state = m_parts->state;
    if (!state.view.IsEmpty()) {
        m_parts->state.markers.Set(which, std::clamp(time, state.view.Whole().from, state.view.Whole().to));
        m_parts->ChangeMarkers();
    }
}

void GraphModel::RemoveMarkers()
{
    m_parts->EndDrag();
    if (m_parts->state.markers.Remove()) {
        m_parts->ChangeMarkers();
    }
}

int GraphModel::CurveAt(Point at) const
{
    return graph::CurveAt(m_parts->Plan(), m_parts->state, at);
}

ZRBasicString GraphModel::TimeText(std::int64_t time) const
{
    return m_parts->state.Texts().Moment(time, ColumnLength(m_parts->Plan(), m_parts->state));
}

std::vector<CurveReading> GraphModel::ReadingsAt(std::int64_t time) const
{
    return graph::ReadingsAt(m_parts->state, time, ColumnLength(m_parts->Plan(), m_parts->state));
}

std::vector<MarkerReading> GraphModel::MarkerReadings() const
{
    return MarkerReadingsOf(m_parts->state);
}

ZRBasicString GraphModel::MarkerSpan() const
{
    const Zoom between = m_parts->state.markers.Between();
    return m_parts->state.markers.AreBoth() ? TimeTexts::Length(between.to - between.from) : ZRBasicString();
}

}  // namespace zr::graph
