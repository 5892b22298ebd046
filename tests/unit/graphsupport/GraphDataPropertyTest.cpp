// Random records, reduced, against a reference that looks at every sample and every line.
#include "CurveGroup.h"
#include "CurveReference.h"
#include "siblings/graphsupport/GraphData.h"
#include "siblings/graphsupport/SpanPainter.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace zr::graph {
namespace {

using namespace test;

constexpr std::size_t kColumns = 3;

// A group, and the same in plain vectors.
class RandomCurves {
public:
    explicit RandomCurves(unsigned seed) : m_random(seed)
    {
        m_period = Below(3) == 0 ? kMinute : 0;
        std::vector<Row> rows;
        std::int64_t time = kNewYear;
        const std::size_t count = Below(4) == 0 ? Below(4) : Below(800);
        const std::size_t kind = Below(4);
        for (std::size_t i = 0; i < count; ++i) {
            rows.push_back({time, {RandomValue(), RandomValue(), RandomValue()}});
            time += RandomDistance(kind, i);
        }
        m_group = std::make_unique<CurveGroup>(rows, kColumns, static_cast<std::int32_t>(m_period / kSecond));
        for (const Row& row : rows) {
            times.push_back(row.time);
            for (std::size_t c = 0; c < kColumns; ++c) {
                values[c].push_back(row.values[c]);
            }
        }
        AddNotFinite();
        SelectPart();
        if (Below(4) == 0) {
            BreakTimes();
        }
        for (std::size_t c = 0; c < kColumns; ++c) {
            const double factor = Below(2) == 0 ? 1.0 : 1e-3;
            curves.push_back({static_cast<int>(c), static_cast<CurveShape>(Below(3)), factor, Below(4) == 0});
        }
    }

    std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(m_random() % limit); }
    ZRLoggerData::CRecordGroup& Group() { return m_group->Group(); }
    [[nodiscard]] CurveReference Reference(std::size_t curve) const
    {
        return {times, values[curve], curves[curve], m_period};
    }

    // A window within the data, around them, beside them, or very short.
    void RandomWindow(std::int64_t& from, std::int64_t& to)
    {
        const std::int64_t first = times.empty() ? kNewYear : times.front();
        const std::int64_t last = times.empty() ? kNewYear : *std::max_element(times.begin(), times.end());
        const auto length = static_cast<std::size_t>(last - first + 10);
        from = first + static_cast<std::int64_t>(Below(length));
        to = from + 1 + static_cast<std::int64_t>(Below(length));
        switch (Below(8)) {
            case 0:
                from = first;
                to = last + 1;
                break;
            case 1:
                from = first - kDayLong;
                to = last + kDayLong;
                break;
            case 2:
                from = times.empty() ? first : times[Below(times.size())] - static_cast<std::int64_t>(Below(2));
                to = from + 1;
                break;
            case 3:
                from = last + 5 * kSecond;
                to = from + 100 * kDayLong;
                break;
            default:
                break;
        }
    }

    // As stored; only the selected ones.
    std::vector<std::int64_t> times;
    std::array<std::vector<double>, kColumns> values;
    std::vector<CurveColumn> curves;

private:
    double RandomValue()
    {
        switch (Below(12)) {
            case 0:
            case 1:
                return kInvalid;
            case 2:
                return Below(2) == 0 ? 1e300 : -1e300;
            case 3:
                return 0.0;
            default:
                return static_cast<double>(Below(2000)) / 1000.0 - 1.0;
        }
    }

    std::int64_t RandomDistance(std::size_t kind, std::size_t i)
    {
        const auto minutes = [this](std::size_t least, std::size_t most) {
            return static_cast<std::int64_t>(least + Below(most - least + 1)) * kMinute;
        };
        switch (kind) {
            case 0:
                return Below(20) == 0 ? minutes(2, 500) : kMinute;
            case 1:
                // Another pace after a while.
                return i % 200 < 100 ? kMinute : 15 * kMinute;
            case 2:
                return minutes(1, 40);
            default:
                return m_period > 0 ? minutes(1, 2) : 1 + static_cast<std::int64_t>(Below(3000000));
        }
    }

    void AddNotFinite()
    {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        for (std::size_t n = Below(3) == 0 ? times.size() / 10 : 0; n > 0; --n) {
            const std::size_t record = Below(times.size());
            const std::size_t column = Below(kColumns);
            const double value = std::array{kInfinity, -kInfinity, kInvalid, 1.7e308, -1.7e308}[Below(5)];
            m_group->ValueOf(record, column) = {1, value};
            values[column][record] = value;
        }
    }

    void SelectPart()
    {
        if (times.empty() || Below(2) == 0) {
            return;
        }
        std::size_t begin = Below(times.size());
        std::size_t end = begin + Below(times.size() - begin);
        constexpr std::int64_t kEpoch = 946684800;
        const auto local = [](std::int64_t time) {
            return ZRDateTime(static_cast<std::uint32_t>(time / kSecond - kEpoch),
                              static_cast<std::uint32_t>(time % kSecond));
        };
        Group().SelectData(local(times[begin]), local(times[end]), true);
        ASSERT_EQ(static_cast<std::size_t>(Group().count), end - begin);
        m_first = begin;
        const auto cut = [&](auto& vector) {
            vector = {vector.begin() + static_cast<std::ptrdiff_t>(begin),
                      vector.begin() + static_cast<std::ptrdiff_t>(end)};
        };
        cut(times);
        std::for_each(values.begin(), values.end(), cut);
    }

    void BreakTimes()
    {
        for (std::size_t n = times.size() / 20; n > 0; --n) {
            const std::size_t record = Below(times.size());
            // To any earlier time, or to that of the record before.
            const std::int64_t time =
                Below(3) == 0 && record > 0
                    ? times[record - 1]
                    : times[record] - static_cast<std::int64_t>(Below(static_cast<std::size_t>(kHourLong)));
            m_group->TimeOf(m_first + record) = time;
            times[record] = time;
        }
    }

    std::mt19937_64 m_random;
    std::int64_t m_period;
    std::size_t m_first = 0;
    std::unique_ptr<CurveGroup> m_group;
};

void ExpectSame(const std::vector<ValueRange>& found, const std::vector<ValueRange>& wanted, double tolerance = 0.0)
{
    ASSERT_EQ(found.size(), wanted.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i].IsEmpty(), wanted[i].IsEmpty()) << "column " << i;
        if (!found[i].IsEmpty()) {
            ASSERT_LE(std::abs(found[i].low - wanted[i].low), tolerance) << "column " << i;
            ASSERT_LE(std::abs(found[i].high - wanted[i].high), tolerance) << "column " << i;
        }
    }
}

TEST(GraphDataPropertyTest, ReducedColumnsAreThoseOfEverySampleAndEveryLine)
{
    for (unsigned seed = 0; seed < 250; ++seed) {
        RandomCurves curves(seed);
        GraphData data;
        data.Bind(curves.Group(), curves.curves);
        for (std::size_t c = 0; c < kColumns; ++c) {
            const CurveReference reference = curves.Reference(c);
            for (const std::size_t width : {std::size_t{1}, 1 + curves.Below(60), 1 + curves.Below(5000)}) {
                std::int64_t from = 0;
                std::int64_t to = 0;
                curves.RandomWindow(from, to);
                SCOPED_TRACE("seed " + std::to_string(seed) + " curve " + std::to_string(c) + " shape " +
                             std::to_string(static_cast<int>(curves.curves[c].shape)) + " width " +
                             std::to_string(width));
                std::vector<ValueRange> columns(width);
                data.Reduce(c, from, to, columns);
                ASSERT_NO_FATAL_FAILURE(ExpectSame(columns, reference.Reduce(from, to, width)));
            }
        }
    }
}

// The pixels of a curve whose columns are these ranges, with values from -2 to 3 in a picture.
std::vector<std::uint32_t> PixelsOf(const std::vector<ValueRange>& columns, CurveShape shape, const SpanPen& pen)
{
    constexpr int kHeight = 90;
    const auto rowOf = [](double value) { return static_cast<float>((3.0 - value) * kHeight / 5.0); };
    std::vector<std::uint32_t> pixels(columns.size() * kHeight, 0xFFFFFFFFU);
    std::vector<RowSpan> spans;
    for (const ValueRange& range : columns) {
        spans.push_back(range.IsEmpty() ? RowSpan() : RowSpan{rowOf(range.high), rowOf(range.low)});
    }
    const auto width = static_cast<int>(columns.size());
    const PixelArea area{pixels.data(), width, kHeight, width};
    if (shape == CurveShape::Bars) {
        PaintFill(area, spans, pen.colour);
    } else {
        PaintLine(area, spans, pen);
    }
    return pixels;
}

TEST(GraphDataPropertyTest, TheReducedPictureHasThePixelsOfTheFullOne)
{
    for (unsigned seed = 1000; seed < 1120; ++seed) {
        RandomCurves curves(seed);
        GraphData data;
        data.Bind(curves.Group(), curves.curves);
        for (std::size_t c = 0; c < kColumns; ++c) {
            std::int64_t from = 0;
            std::int64_t to = 0;
            curves.RandomWindow(from, to);
            const CurveShape shape = curves.curves[c].shape;
            const SpanPen pen{static_cast<unsigned>(curves.Below(5)), 1 + static_cast<int>(curves.Below(9)),
                              0xFF204060U, curves.Below(2) == 0};
            std::vector<ValueRange> columns(1 + curves.Below(150));
            data.Reduce(c, from, to, columns);
            const std::vector<ValueRange> full = curves.Reference(c).Reduce(from, to, columns.size());
            ASSERT_EQ(PixelsOf(columns, shape, pen), PixelsOf(full, shape, pen))
                << "seed " << seed << " curve " << c << " style " << pen.style << " width " << pen.width;
        }
    }
}

// Columns that a polyline covers: a break is a value that is no number.
std::vector<ValueRange> Covered(const std::vector<CurvePoint>& points, std::int64_t from, std::int64_t to,
                                std::size_t count)
{
    std::vector<ValueRange> columns(count);
    const auto place = [&](std::int64_t time) {
        return static_cast<double>(time - from) / static_cast<double>(to - from) * static_cast<double>(count);
    };
    for (std::size_t i = 0; i < points.size(); ++i) {
        const CurvePoint& point = points[i];
        if (std::isnan(point.value)) {
            continue;
        }
        const auto column = static_cast<std::size_t>(place(point.time));
        if (column < count) {
            columns[column].Add(point.value);
        }
        if (i + 1 == points.size() || std::isnan(points[i + 1].value)) {
            continue;
        }
        const CurvePoint& next = points[i + 1];
        const double width = place(next.time) - place(point.time);
        for (std::size_t edge = column + 1; edge <= count && static_cast<double>(edge) <= place(next.time); ++edge) {
            const double part = (static_cast<double>(edge) - place(point.time)) / width;
            const double value = point.value * (1.0 - part) + next.value * part;
            columns[edge - 1].Add(value);
            if (edge < count) {
                columns[edge].Add(value);
            }
        }
    }
    return columns;
}

TEST(GraphDataPropertyTest, PointsCoverTheColumnsThatAreReduced)
{
    for (unsigned seed = 0; seed < 250; ++seed) {
        RandomCurves curves(seed);
        // Values that can be told apart.
        for (std::vector<double>& values : curves.values) {
            for (double& value : values) {
                value = std::abs(value) < 10.0 ? value : kInvalid;
            }
        }
        std::size_t record = 0;
        for (auto at = curves.Group().first; at != curves.Group().last; ++at, ++record) {
            for (std::size_t c = 0; c < kColumns; ++c) {
                const double value = curves.values[c][record];
                (*at)->values[c] = {static_cast<std::uint8_t>(value == value ? 1 : 0), value};
            }
        }
        GraphData data;
        data.Bind(curves.Group(), curves.curves);
        for (std::size_t c = 0; c < kColumns; ++c) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " curve " + std::to_string(c) + " shape " +
                         std::to_string(static_cast<int>(curves.curves[c].shape)));
            // Columns of whole seconds, so that places are exact; no sample on an edge, where the end of a step is a
            // point of the column behind it.
            const std::size_t width = 1 + curves.Below(500);
            std::int64_t from = 0;
            std::int64_t to = 0;
            curves.RandomWindow(from, to);
            const std::int64_t length = (to - from) / (static_cast<std::int64_t>(width) * kSecond) + 1;
            from = from / kSecond * kSecond + 123457;
            to = from + length * static_cast<std::int64_t>(width) * kSecond;
            std::vector<ValueRange> reduced(width);
            data.Reduce(c, from, to, reduced);
            std::vector<CurvePoint> points;
            data.Points(c, from, to, width, points);
            std::int64_t time = from;
            for (const CurvePoint& point : points) {
                ASSERT_GE(point.time, time);
                ASSERT_LE(point.time, to);
                time = point.time;
            }
            std::vector<ValueRange> covered = Covered(points, from, to, width);
            if (curves.curves[c].shape == CurveShape::Bars) {
                for (ValueRange& column : covered) {
                    column.IsEmpty() ? void() : column.Add(0.0);
                }
            }
            ASSERT_NO_FATAL_FAILURE(ExpectSame(covered, reduced, 1e-6));
        }
    }
}

TEST(GraphDataPropertyTest, FiguresAreThoseOfEverySample)
{
    for (unsigned seed = 0; seed < 100; ++seed) {
        RandomCurves curves(seed);
        GraphData data;
        data.Bind(curves.Group(), curves.curves);
        for (std::size_t c = 0; c < kColumns; ++c) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " curve " + std::to_string(c));
            std::int64_t from = 0;
            std::int64_t to = 0;
            curves.RandomWindow(from, to);
            ValueRange range;
            long double sum = 0.0L;
            long double size = 0.0L;
            std::size_t count = 0;
            std::int64_t latest = std::numeric_limits<std::int64_t>::min();
            for (std::size_t r = 0; r < curves.times.size(); ++r) {
                latest = std::max(latest, curves.times[r]);
                const double shown = curves.values[c][r] * curves.curves[c].factor;
                const double value = curves.curves[c].isFolded && shown < 0.0 ? shown + 2.0 : shown;
                if (latest >= from && latest < to && std::isfinite(value)) {
                    range.Add(value);
                    sum += static_cast<long double>(value);
                    size += static_cast<long double>(std::abs(value));
                    ++count;
                }
            }
            const CurveFigures figures = data.FiguresOf(c, from, to);
            ASSERT_EQ(figures.count, count);
            if (count > 0) {
                ASSERT_EQ(figures.minimum, range.low);
                ASSERT_EQ(figures.maximum, range.high);
                const long double mean = sum / static_cast<long double>(count);
                const long double error = std::abs(static_cast<long double>(figures.mean) - mean);
                ASSERT_LE(error, size * 1e-14L);
            }
        }
    }
}

}  // namespace
}  // namespace zr::graph
