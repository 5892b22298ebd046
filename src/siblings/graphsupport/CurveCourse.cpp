#include "siblings/graphsupport/CurveCourse.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zr::graph {

namespace {

constexpr std::size_t kNone = CurveReader::kNone;
constexpr std::int64_t kMicros = 1000000;
// No longer distance is told apart, so that three of them stay a number.
constexpr std::uint64_t kLongest = std::uint64_t{1} << 61U;

// Times are in order.
std::int64_t Distance(std::int64_t from, std::int64_t to)
{
    const std::uint64_t distance = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
    return static_cast<std::int64_t>(std::min(distance, kLongest));
}

std::int64_t Later(std::int64_t time, std::int64_t distance)
{
    const std::int64_t last = std::numeric_limits<std::int64_t>::max();
    return time > last - distance ? last : time + distance;
}

}  // namespace

CurveCourse::CurveCourse(CurveReader& reader, const ZRLoggerData::CRecordGroup& group)
    : m_reader(reader), m_group(group), m_period(std::max<std::int64_t>(group.Period().seconds, 0) * kMicros)
{
}

void CurveCourse::Stand(std::size_t before, std::size_t after)
{
    if (before == m_before && after == m_after) {
        return;
    }
    const auto pointOf = [this](std::size_t sample) {
        return sample == kNone ? CurvePoint() : CurvePoint{m_reader.TimeOf(sample), m_reader.ValueOf(sample)};
    };
    m_before = before;
    m_after = after;
    m_beforePoint = pointOf(before);
    m_afterPoint = pointOf(after);
    m_isJoined.reset();
    m_usual.reset();
    m_holdsUntil.reset();
}

bool CurveCourse::IsJoined()
{
    if (!m_isJoined.has_value()) {
        m_isJoined = false;
        if (m_before != kNone && m_after != kNone && m_reader.Column().shape != CurveShape::Bars) {
            const std::int64_t distance = Distance(m_beforePoint.time, m_afterPoint.time);
            // The period first: it costs nothing.
            m_isJoined = 2 * distance <= 3 * m_period || AreNeighboursApart(distance) || Usual() == 0 ||
                         2 * distance <= 3 * Usual();
        }
    }
    return *m_isJoined;
}

bool CurveCourse::AreNeighboursApart(std::int64_t distance)
{
    std::size_t sample = m_before;
    std::int64_t time = m_beforePoint.time;
    for (int n = 0; n < 2; ++n) {
        sample = m_reader.Before(sample);
        if (sample == kNone) {
            return false;
        }
        const std::int64_t earlier = m_reader.TimeOf(sample);
        if (2 * distance > 3 * Distance(earlier, time)) {
            return false;
        }
        time = earlier;
    }
    return true;
}

std::int64_t CurveCourse::Usual()
{
    if (!m_usual.has_value()) {
        m_usual = std::max({m_period, UsualFrom(m_before, false), UsualFrom(m_after, true)});
    }
    return *m_usual;
}

std::int64_t CurveCourse::UsualFrom(std::size_t sample, bool isForwards)
{
    std::array<std::int64_t, 3> distances{};
    distances.fill(std::numeric_limits<std::int64_t>::max());
    std::size_t count = 0;
    while (sample != kNone && count < distances.size()) {
        const std::size_t next = isForwards ? m_reader.From(sample + 1) : m_reader.Before(sample);
        if (next != kNone) {
            const std::int64_t here = m_reader.TimeOf(sample);
            const std::int64_t there = m_reader.TimeOf(next);
            distances[count++] = isForwards ? Distance(here, there) : Distance(there, here);
        }
        sample = next;
    }
    std::sort(distances.begin(), distances.end());
    return count == 0 ? 0 : distances[count == 3 ? 1 : 0];
}

std::int64_t CurveCourse::HoldsUntil()
{
    if (!m_holdsUntil.has_value()) {
        m_holdsUntil = FindHold();
    }
    return *m_holdsUntil;
}

std::int64_t CurveCourse::FindHold()
{
    const std::int64_t begin = m_beforePoint.time;
    const std::int64_t limit = m_after == kNone ? std::numeric_limits<std::int64_t>::max() : m_afterPoint.time;
    const bool isBar = m_reader.Column().shape == CurveShape::Bars && m_period > 0;
    if (IsJoined() || (isBar && m_after != kNone && Distance(begin, limit) == m_period)) {
        return limit;
    }
    if (isBar || (m_period > 0 && Usual() <= m_period)) {
        return std::min(limit, m_group.EndOfPeriod(begin));
    }
    return std::min(limit, Later(begin, Usual()));
}

std::optional<double> CurveCourse::ValueAt(std::int64_t time)
{
    if (m_before == kNone) {
        return {};
    }
    if (m_reader.Column().shape == CurveShape::Line) {
        return IsJoined() ? std::optional(Between(time, m_beforePoint, m_afterPoint)) : std::nullopt;
    }
    return IsJoined() || time < HoldsUntil() ? std::optional(m_beforePoint.value) : std::nullopt;
}

double CurveCourse::Between(std::int64_t time, const CurvePoint& before, const CurvePoint& after)
{
    const double way = static_cast<double>(Distance(before.time, after.time));
    const double part = way > 0.0 ? static_cast<double>(Distance(before.time, time)) / way : 1.0;
    // Not before + (after - before) part: the difference of two large values is no number.
    const double value = before.value * (1.0 - part) + after.value * part;
    return std::clamp(value, std::min(before.value, after.value), std::max(before.value, after.value));
}

}  // namespace zr::graph
