// What GraphData must give, found by looking at every sample, every line and every column.
#pragma once

#include "siblings/graphsupport/CurveColumn.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace zr::test {

// Of one curve. Slow, and simple.
class CurveReference {
public:
    struct Sample {
        std::int64_t time;
        double value;
    };

    // Times as stored, values as stored, not a number where the record has none; the period in microseconds. Periods
    // end where whole ones since 1970 do.
    CurveReference(std::vector<std::int64_t> times, const std::vector<double>& values, const graph::CurveColumn& column,
                   std::int64_t period)
        : m_shape(column.shape), m_period(period)
    {
        for (std::size_t i = 1; i < times.size(); ++i) {
            times[i] = std::max(times[i], times[i - 1]);
        }
        for (std::size_t i = 0; i < times.size(); ++i) {
            double shown = values[i] * column.factor;
            if (std::isfinite(shown)) {
                shown += column.isFolded && shown < 0.0 ? 2.0 : 0.0;
                m_samples.push_back({times[i], shown});
            }
        }
    }

    [[nodiscard]] const std::vector<Sample>& Samples() const { return m_samples; }

    [[nodiscard]] std::int64_t Usual(std::size_t first) const
    {
        std::vector<std::int64_t> before;
        for (std::size_t i = first; i > 0 && before.size() < 3; --i) {
            before.push_back(m_samples[i].time - m_samples[i - 1].time);
        }
        std::vector<std::int64_t> after;
        for (std::size_t i = first + 1; i + 1 < m_samples.size() && after.size() < 3; ++i) {
            after.push_back(m_samples[i + 1].time - m_samples[i].time);
        }
        return std::max({m_period, SecondLargest(before), SecondLargest(after)});
    }

    // Whether sample i and the next are.
    [[nodiscard]] bool AreJoined(std::size_t i) const
    {
        if (i + 1 >= m_samples.size() || m_shape == graph::CurveShape::Bars) {
            return false;
        }
        const std::int64_t distance = m_samples[i + 1].time - m_samples[i].time;
        return Usual(i) == 0 || distance * 2 <= Usual(i) * 3;
    }

    [[nodiscard]] std::int64_t HoldsUntil(std::size_t i) const
    {
        const std::int64_t time = m_samples[i].time;
        const std::int64_t next =
            i + 1 < m_samples.size() ? m_samples[i + 1].time : std::numeric_limits<std::int64_t>::max();
        if (AreJoined(i)) {
            return next;
        }
        const bool isBar = m_shape == graph::CurveShape::Bars;
        const bool hasPeriod = m_period > 0 && (isBar || Usual(i) <= m_period);
        return std::min(next, hasPeriod ? (time / m_period + 1) * m_period : time + Usual(i));
    }

    [[nodiscard]] std::vector<graph::ValueRange> Reduce(std::int64_t from, std::int64_t to, std::size_t count) const
    {
        std::vector<graph::ValueRange> columns(count);
        for (const Sample& sample : m_samples) {
            if (sample.time >= from && sample.time < to) {
                const Wide column = (Wide{sample.time} - from) * static_cast<Wide>(count) / (Wide{to} - from);
                columns[static_cast<std::size_t>(column)].Add(sample.value);
            }
        }
        for (std::size_t i = 0; i < m_samples.size(); ++i) {
            for (std::size_t c = 0; c <= count; ++c) {
                AddAtEdge(i, Edge(from, to, count, c), c, columns);
            }
        }
        for (graph::ValueRange& column : columns) {
            if (m_shape == graph::CurveShape::Bars && !column.IsEmpty()) {
                column.Add(0.0);
            }
        }
        return columns;
    }

private:
    __extension__ using Wide = __int128;

    static std::int64_t SecondLargest(std::vector<std::int64_t> distances)
    {
        std::sort(distances.rbegin(), distances.rend());
        return distances.empty() ? 0 : distances[distances.size() > 1 ? 1 : 0];
    }

    static std::int64_t Edge(std::int64_t from, std::int64_t to, std::size_t count, std::size_t column)
    {
        const Wide columns = static_cast<Wide>(count);
        const Wide product = (Wide{to} - from) * static_cast<Wide>(column);
        return from + static_cast<std::int64_t>((product + columns - 1) / columns);
    }

    // What sample i and its way to the next add to the columns on both sides of an edge.
    void AddAtEdge(std::size_t i, std::int64_t edge, std::size_t column, std::vector<graph::ValueRange>& columns) const
    {
        const Sample& sample = m_samples[i];
        if (sample.time >= edge) {
            return;
        }
        const bool isPast = i + 1 < m_samples.size() && m_samples[i + 1].time < edge;
        if (isPast) {
            return;
        }
        if (m_shape != graph::CurveShape::Line) {
            if (column < columns.size() && (AreJoined(i) || HoldsUntil(i) > edge)) {
                columns[column].Add(sample.value);
            }
            return;
        }
        if (!AreJoined(i)) {
            return;
        }
        const Sample& next = m_samples[i + 1];
        const double part = static_cast<double>(edge - sample.time) / static_cast<double>(next.time - sample.time);
        const double between =
            std::min(std::max(sample.value * (1.0 - part) + next.value * part, std::min(sample.value, next.value)),
                     std::max(sample.value, next.value));
        if (column > 0) {
            columns[column - 1].Add(between);
        }
        if (column < columns.size()) {
            columns[column].Add(between);
        }
    }

    graph::CurveShape m_shape;
    std::int64_t m_period;
    std::vector<Sample> m_samples;
};

}  // namespace zr::test
