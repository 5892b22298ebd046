// The samples of a graph's curves, ready to be drawn at any width.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/graphsupport/CurveColumn.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace zr::graph {

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
// A sample counts when it is valid and, as shown, finite. Two neighbouring samples of a curve are joined unless they
// lie further apart than one and a half of the distance usual there: the group's period, or what lies between the
// samples around where that is more (see CurveCourse::Usual). So a record that is invalid or missing leaves a gap; a
// variable recorded less often than its neighbours, or from some day on at another pace, none.
//
// Where times go back, in a damaged store, records count in the order in which they are stored, and one that is
// earlier than any before it at the latest time of those. That costs a copy of the times.
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
    //
    // A time t lies in column (t - from) * columns / (to - from), rounded down; an edge is the first time of a column.
    void Reduce(std::size_t curve, std::int64_t from, std::int64_t to, std::span<ValueRange> columns) const;

    // The same picture as a line for a printer or a vector file: in order of time, from the first edge to the last, at
    // most four points for each of so many columns, the samples themselves where there are no more. Steps and bars have
    // their corners, bars from 0 up and back to 0; a column of several has the way from the least to the largest.
    // Besides, there is a break behind each piece, and up to two points where a step or a bar ends.
    void Points(std::size_t curve, std::int64_t from, std::int64_t to, std::size_t columns,
                std::vector<CurvePoint>& out) const;

    // Of what is drawn between two times; for an automatic scale.
    [[nodiscard]] ValueRange RangeOf(std::size_t curve, std::int64_t from, std::int64_t to) const;
    // Of the samples from a time on and before another. The mean of a folded curve is that along its scale: the mean of
    // 0.98 and -0.98 is 1.
    [[nodiscard]] CurveFigures FiguresOf(std::size_t curve, std::int64_t from, std::int64_t to) const;
    // What the curve shows at a time: the sample nearest to it of a line; the one that holds then of steps and bars.
    // None in a gap; next to one the last or first sample of a line, up to half of the usual distance away, so that a
    // single sample can be pointed at.
    [[nodiscard]] std::optional<CurvePoint> SampleAt(std::size_t curve, std::int64_t time) const;
    // The value drawn at a time: between two joined samples of a line on it. None in a gap. For hit tests.
    [[nodiscard]] std::optional<double> ValueAt(std::size_t curve, std::int64_t time) const;

    // Bytes kept beside the records.
    [[nodiscard]] std::size_t Bytes() const;

private:
    struct Bound;
    std::unique_ptr<Bound> m_bound;  // null: no group
};

}  // namespace zr::graph
