// The samples of a graph's curves, ready to be drawn at any width.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace zr::graph {

enum class CurveShape {
    Line,   // from sample to sample
    Steps,  // a sample holds until the next
    Bars,   // one a period, from 0: consumption
};

// Where a curve has its samples and what becomes of them. Everything below is in shown values: the stored one times
// the factor, folded where the curve is.
struct CurveColumn {
    int column = 0;  // position among the values of a record
    CurveShape shape = CurveShape::Line;
    double factor = 1.0;
    bool isFolded = false;  // a power factor: below 0 it continues from 1 to 2 as -1 to 0
};

struct ValueRange {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    [[nodiscard]] bool IsEmpty() const { return !(low <= high); }
};

// A time and the shown value there; times are UTC, microseconds since 1970. NaN: the line breaks here.
struct CurvePoint {
    std::int64_t time = 0;
    double value = 0.0;
};

// Of the samples in a stretch of time.
struct CurveFigures {
    std::size_t count = 0;  // 0: the others mean nothing
    double minimum = 0.0;
    double mean = 0.0;
    double maximum = 0.0;
};

// Reads the records of a group once, and keeps of every curve the least and the largest value of runs of records, in
// levels: any column of any width is then answered from a few of them. What is kept is at most a tenth of the records.
//
// A sample counts when it is valid and finite. Two neighbouring samples of a curve are joined unless they lie further
// apart than one and a half of the distance usual there: the group's period, or for records as they were recorded the
// median distance of the curve's samples. So a record that is invalid or missing leaves a gap, and a variable recorded
// less often than its neighbours none.
//
// Bind, then anything; the group must live and keep its selection until the next Bind or Clear. One thread at a time,
// except that const operations may run on several at once.
class GraphData {
public:
    GraphData();
    ~GraphData();
    GraphData(const GraphData&) = delete;
    GraphData& operator=(const GraphData&) = delete;

    void Bind(const ZRLoggerData::CRecordGroup& group, std::vector<CurveColumn> curves);
    void Clear();

    // Selected records; 0 after Clear.
    [[nodiscard]] std::size_t Records() const;
    [[nodiscard]] std::size_t Curves() const;
    // Of the records from a time on and before another.
    [[nodiscard]] std::size_t Records(std::int64_t from, std::int64_t to) const;

    // What a curve covers in each of columns.size() columns of equal width between two times, `to` exclusive. As a
    // continuous picture does: a column holds the samples within it, and the parts of the lines that cross it, with
    // their values at its edges. Two pieces of a curve within one column are one range there. Bars cover from 0.
    // Empty where nothing is.
    void Reduce(std::size_t curve, std::int64_t from, std::int64_t to, std::span<ValueRange> columns) const;

    // The same picture as a line for a printer or a vector file: in order of time, at most four points for each of so
    // many columns, the samples themselves where there are no more.
    void Points(std::size_t curve, std::int64_t from, std::int64_t to, std::size_t columns,
                std::vector<CurvePoint>& out) const;

    // Of what is drawn between two times; for an automatic scale.
    [[nodiscard]] ValueRange RangeOf(std::size_t curve, std::int64_t from, std::int64_t to) const;
    // Of the samples from a time on and before another. The mean is of the unfolded values of a folded curve.
    [[nodiscard]] CurveFigures FiguresOf(std::size_t curve, std::int64_t from, std::int64_t to) const;
    // What the curve shows at a time: the sample nearest to it of a line, where the line isn't broken there; the one
    // that holds then of steps and bars. None in a gap.
    [[nodiscard]] std::optional<CurvePoint> SampleAt(std::size_t curve, std::int64_t time) const;
    // The value drawn at a time: between two joined samples of a line on it. None in a gap. For hit tests.
    [[nodiscard]] std::optional<double> ValueAt(std::size_t curve, std::int64_t time) const;

    // Bytes kept beside the records.
    [[nodiscard]] std::size_t Bytes() const;

private:
    class Levels;
    std::unique_ptr<Levels> m_levels;
};

}  // namespace zr::graph
