#include "siblings/graphsupport/CurvePoints.h"

#include <algorithm>
#include <limits>

namespace zr::graph {

namespace {

constexpr std::size_t kNone = CurveReader::kNone;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

void CurvePoints::Collect(const ColumnEdges& edges)
{
    const bool isLine = m_reader.Column().shape == CurveShape::Line;
    std::size_t record = m_reader.LowerBound(edges.At(0));
    m_course.StandBefore(record);
    Begin(edges.At(0));
    for (std::size_t column = 0; column < edges.Columns(); ++column) {
        const std::size_t next = m_reader.LowerBound(edges.At(column + 1), record, record);
        // A sample of steps takes two points.
        const Samples samples = SamplesOf(record, next, isLine ? 4 : 2);
        if (samples.count > 0 && isLine) {
            AddToLine(samples);
        } else if (samples.count > 0) {
            AddToSteps(samples);
        }
        record = next;
    }
    m_course.StandBefore(record);
    End(edges.At(edges.Columns()));
}

CurvePoints::Samples CurvePoints::SamplesOf(std::size_t begin, std::size_t end, std::size_t most)
{
    Samples samples;
    samples.records.fill(kNone);
    std::size_t sample = m_reader.From(begin);
    for (; sample < end && samples.count < most; sample = m_reader.From(sample + 1)) {
        samples.records[samples.count++] = sample;
    }
    if (sample >= end) {
        return samples;
    }
    const ValueRange range = m_reader.RangeOf(begin, end);
    samples.records = {samples.records[0], m_reader.FirstBeyond(begin, end, {range.low, kInfinity}),
                       m_reader.FirstBeyond(begin, end, {-kInfinity, range.high}), m_reader.Before(end)};
    samples.count = 4;
    samples.areAll = false;
    return samples;
}

void CurvePoints::Begin(std::int64_t from)
{
    const std::optional<double> value = m_course.ValueAt(from);
    if (value.has_value()) {
        Add(from, *value);
    }
}

void CurvePoints::End(std::int64_t to)
{
    if (m_reader.Column().shape != CurveShape::Line) {
        EndStep(to);
        return;
    }
    const std::optional<double> value = m_course.ValueAt(to);
    if (value.has_value()) {
        Add(to, *value);
    }
}

void CurvePoints::AddToLine(const Samples& samples)
{
    std::array<std::size_t, 4> records = samples.records;
    std::sort(records.begin(), records.end());
    for (std::size_t i = 0; i < samples.count; ++i) {
        if (i > 0 && records[i] == records[i - 1]) {
            continue;
        }
        if (i == 0 || samples.areAll) {
            m_course.StandBefore(records[i]);
            if (m_isOpen && !m_course.IsJoined()) {
                Break();
            }
        }
        Add(m_reader.TimeOf(records[i]), m_reader.ValueOf(records[i]));
    }
}

void CurvePoints::AddToSteps(const Samples& samples)
{
    Rise(samples.records[0]);
    if (samples.areAll) {
        for (std::size_t i = 1; i < samples.count; ++i) {
            Rise(samples.records[i]);
        }
        return;
    }
    const auto [first, least, largest, last] = samples.records;
    const std::int64_t time = m_reader.TimeOf(last);
    m_out.back().value = m_reader.ValueOf(std::min(least, largest));
    Add(time, m_reader.ValueOf(std::max(least, largest)));
    Add(time, m_reader.ValueOf(last));
}

void CurvePoints::Rise(std::size_t sample)
{
    const std::int64_t time = m_reader.TimeOf(sample);
    m_course.StandBefore(sample);
    if (m_isOpen) {
        EndStep(time);
    }
    if (!m_isOpen && m_reader.Column().shape == CurveShape::Bars) {
        Add(time, 0.0);
    }
    Add(time, m_reader.ValueOf(sample));
}

void CurvePoints::EndStep(std::int64_t last)
{
    if (!m_isOpen) {
        return;
    }
    const double value = m_reader.ValueOf(m_course.Before());
    if (m_course.IsJoined() || m_course.HoldsUntil() >= last) {
        Add(last, value);
        return;
    }
    Add(m_course.HoldsUntil(), value);
    if (m_reader.Column().shape == CurveShape::Bars) {
        Add(m_course.HoldsUntil(), 0.0);
    }
    Break();
}

void CurvePoints::Add(std::int64_t time, double value)
{
    m_out.push_back({time, value});
    m_isOpen = true;
}

void CurvePoints::Break()
{
    m_out.push_back({m_out.back().time, std::numeric_limits<double>::quiet_NaN()});
    m_isOpen = false;
}

}  // namespace zr::graph
