// How a curve runs between its samples.
#pragma once

#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/graphsupport/CurveReader.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zr::graph {

// Stands at a moment: between the sample before it and the one after, and answers for the stretch between these two.
// Remembers what it found there: one an operation. What it is given must outlive this.
class CurveCourse {
public:
    CurveCourse(CurveReader& reader, const ZRLoggerData::CRecordGroup& group);

    // Before a record, which is the first at the moment or after it.
    void StandBefore(std::size_t record) { Stand(m_reader.Before(record), m_reader.From(record)); }

    // The samples on both sides; CurveReader::kNone at the ends.
    [[nodiscard]] std::size_t Before() const { return m_before; }
    [[nodiscard]] std::size_t After() const { return m_after; }

    // Whether the two are joined. Never for bars.
    bool IsJoined();
    // The distance that is usual here: the period of the group, or what lies between the samples around where that is
    // more: the second largest of the up to three distances next to here on either side, the larger of both sides. So
    // one sample that is missing makes a gap, and a recording that goes on at another pace makes none. 0 when nothing
    // tells.
    std::int64_t Usual();
    // Where the sample before ceases to hold, of steps and bars; at most the time of the sample after. A bar ends where
    // its period does, a step after the usual distance if it isn't joined, at the period's end at the earliest.
    std::int64_t HoldsUntil();

    // The value drawn at a time after the sample before and not after the sample after, if any.
    std::optional<double> ValueAt(std::int64_t time);
    // Of a line, between two samples: before (1 - f) + after f, f the part of the way, held between both.
    static double Between(std::int64_t time, const CurvePoint& before, const CurvePoint& after);

private:
    void Stand(std::size_t before, std::size_t after);
    // Whether two distances on one side are so long that the samples are joined, whatever the third one is: then the
    // second largest of the three is no shorter. Most are, and it costs a third of Usual().
    bool AreNeighboursApart(std::int64_t distance);
    // The second largest of up to three distances from a sample on, forwards or back; of fewer the least, 0 without.
    std::int64_t UsualFrom(std::size_t sample, bool isForwards);
    std::int64_t FindHold();

    CurveReader& m_reader;
    const ZRLoggerData::CRecordGroup& m_group;
    std::int64_t m_period;  // microseconds
    std::size_t m_before = CurveReader::kNone;
    std::size_t m_after = CurveReader::kNone;
    CurvePoint m_beforePoint;
    CurvePoint m_afterPoint;
    std::optional<bool> m_isJoined;
    std::optional<std::int64_t> m_usual;
    std::optional<std::int64_t> m_holdsUntil;
};

}  // namespace zr::graph
