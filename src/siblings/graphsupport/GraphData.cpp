#include "siblings/graphsupport/GraphData.h"

#include "siblings/graphsupport/ColumnEdges.h"
#include "siblings/graphsupport/CurveCourse.h"
#include "siblings/graphsupport/CurvePoints.h"
#include "siblings/graphsupport/CurveReader.h"
#include "siblings/graphsupport/SampleLevels.h"
#include "siblings/graphsupport/SelectedRecords.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace zr::graph {

struct GraphData::Bound {
    Bound(const ZRLoggerData::CRecordGroup& boundGroup, std::vector<CurveColumn> boundCurves)
        : group(boundGroup), curves(std::move(boundCurves)), records(group), levels(records, curves, doTimesGoBack)
    {
        if (doTimesGoBack) {
            records.HoldTimes();
        }
    }

    const ZRLoggerData::CRecordGroup& group;
    std::vector<CurveColumn> curves;
    SelectedRecords records;
    bool doTimesGoBack = false;
    SampleLevels levels;
};

namespace {

constexpr std::size_t kNone = CurveReader::kNone;

// Reader and course of one curve of bound data, for one operation.
template <typename Bound>
struct Curve {
    Curve(const Bound& bound, std::size_t curve)
        : reader(bound.records, bound.levels, curve, bound.curves[curve]), course(reader, bound.group)
    {
    }

    // Behind the last record at a time.
    void StandBehind(std::int64_t time)
    {
        const bool isLast = time == std::numeric_limits<std::int64_t>::max();
        course.StandBefore(isLast ? reader.Records() : reader.LowerBound(time + 1));
    }

    CurveReader reader;
    CurveCourse course;
};

}  // namespace

GraphData::GraphData() = default;

GraphData::~GraphData() = default;

void GraphData::Bind(const ZRLoggerData::CRecordGroup& group, std::vector<CurveColumn> curves)
{
    // What there was goes first, so that there are never two of them in memory.
    m_bound.reset();
    m_bound = std::make_unique<Bound>(group, std::move(curves));
}

void GraphData::Clear()
{
    m_bound.reset();
}

std::size_t GraphData::Records() const
{
    return m_bound != nullptr ? m_bound->records.Size() : 0;
}

std::size_t GraphData::Curves() const
{
    return m_bound != nullptr ? m_bound->curves.size() : 0;
}

std::size_t GraphData::Records(std::int64_t from, std::int64_t to) const
{
    if (Records() == 0 || from >= to) {
        return 0;
    }
    TimeReader times(m_bound->records);
    return times.LowerBound(to) - times.LowerBound(from);
}

void GraphData::Reduce(std::size_t curve, std::int64_t from, std::int64_t to, std::span<ValueRange> columns) const
{
    std::fill(columns.begin(), columns.end(), ValueRange());
    if (curve >= Curves() || from >= to || columns.empty()) {
        return;
    }
    Curve of(*m_bound, curve);
    const CurveShape shape = of.reader.Column().shape;
    const ColumnEdges edges(from, to, columns.size());
    std::size_t record = of.reader.LowerBound(from);
    std::size_t inColumn = 0;
    of.course.StandBefore(record);
    std::optional<double> atEdge = of.course.ValueAt(from);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::int64_t end = edges.At(i + 1);
        const std::size_t next = of.reader.LowerBound(end, record, record + inColumn);
        ValueRange range = of.reader.RangeOf(record, next);
        if (!range.IsEmpty()) {
            of.course.StandBefore(next);
        }
        if (atEdge.has_value()) {
            range.Add(*atEdge);
        }
        atEdge = of.course.ValueAt(end);
        // A line goes on to the edge; a step or a bar may hold to just before it, and has been counted.
        if (shape == CurveShape::Line && atEdge.has_value()) {
            range.Add(*atEdge);
        }
        if (shape == CurveShape::Bars && !range.IsEmpty()) {
            range.Add(0.0);
        }
        columns[i] = range;
        inColumn = next - record;
        record = next;
    }
}

void GraphData::Points(std::size_t curve, std::int64_t from, std::int64_t to, std::size_t columns,
                       std::vector<CurvePoint>& out) const
{
    out.clear();
    if (curve >= Curves() || from >= to || columns == 0) {
        return;
    }
    Curve of(*m_bound, curve);
    CurvePoints(of.reader, of.course, out).Collect(ColumnEdges(from, to, columns));
}

ValueRange GraphData::RangeOf(std::size_t curve, std::int64_t from, std::int64_t to) const
{
    ValueRange range;
    Reduce(curve, from, to, {&range, 1});
    return range;
}

CurveFigures GraphData::FiguresOf(std::size_t curve, std::int64_t from, std::int64_t to) const
{
    CurveFigures figures;
    if (curve >= Curves() || from >= to) {
        return figures;
    }
    Curve of(*m_bound, curve);
    const std::size_t begin = of.reader.LowerBound(from);
    const std::size_t end = of.reader.LowerBound(to);
    const SampleLevels::Tally tally = of.reader.TallyOf(begin, end);
    if (tally.count == 0) {
        return figures;
    }
    const ValueRange range = of.reader.RangeOf(begin, end);
    figures.count = static_cast<std::size_t>(tally.count);
    figures.minimum = range.low;
    figures.mean = tally.sum / static_cast<double>(tally.count) / SampleLevels::kSumScale;
    figures.maximum = range.high;
    return figures;
}

std::optional<CurvePoint> GraphData::SampleAt(std::size_t curve, std::int64_t time) const
{
    if (curve >= Curves()) {
        return {};
    }
    Curve of(*m_bound, curve);
    of.StandBehind(time);
    const std::size_t before = of.course.Before();
    const std::size_t after = of.course.After();
    const auto pointOf = [&](std::size_t sample) {
        return CurvePoint{of.reader.TimeOf(sample), of.reader.ValueOf(sample)};
    };
    if (of.reader.Column().shape != CurveShape::Line) {
        const bool holds = before != kNone && (of.reader.TimeOf(before) == time || of.course.ValueAt(time).has_value());
        return holds ? std::optional(pointOf(before)) : std::nullopt;
    }
    const auto distanceTo = [&](std::size_t sample) {
        const auto one = static_cast<std::uint64_t>(sample == kNone ? 0 : of.reader.TimeOf(sample));
        const auto other = static_cast<std::uint64_t>(time);
        const bool isAfter = sample != kNone && of.reader.TimeOf(sample) > time;
        return sample == kNone ? std::numeric_limits<std::uint64_t>::max() : isAfter ? one - other : other - one;
    };
    const std::size_t nearest = distanceTo(before) <= distanceTo(after) ? before : after;
    if (nearest == kNone) {
        return {};
    }
    const bool isNear = distanceTo(nearest) <= static_cast<std::uint64_t>(of.course.Usual()) / 2;
    return of.course.IsJoined() || isNear ? std::optional(pointOf(nearest)) : std::nullopt;
}

std::optional<double> GraphData::ValueAt(std::size_t curve, std::int64_t time) const
{
    if (curve >= Curves()) {
        return {};
    }
    Curve of(*m_bound, curve);
    of.StandBehind(time);
    const std::size_t before = of.course.Before();
    if (before != kNone && of.reader.TimeOf(before) == time) {
        return of.reader.ValueOf(before);
    }
    return of.course.ValueAt(time);
}

std::size_t GraphData::Bytes() const
{
    return m_bound == nullptr ? 0
                              : sizeof(Bound) + m_bound->records.Bytes() + m_bound->levels.Bytes() +
                                    m_bound->curves.capacity() * sizeof(CurveColumn);
}

}  // namespace zr::graph
