// A curve as points of a line, no more than a picture can show.
#pragma once

#include "siblings/graphsupport/ColumnEdges.h"
#include "siblings/graphsupport/CurveCourse.h"
#include "siblings/graphsupport/CurveReader.h"

#include <array>
#include <cstddef>
#include <vector>

namespace zr::graph {

// Of a column of more samples than four the first, the least, the largest and the last are kept, so that the lines
// from column to column stay what they are (M4: Jugel et al., VLDB 2014). See GraphData::Points for what comes out.
class CurvePoints {
public:
    // Appends to out. All must outlive this.
    CurvePoints(CurveReader& reader, CurveCourse& course, std::vector<CurvePoint>& out)
        : m_reader(reader), m_course(course), m_out(out)
    {
    }

    void Collect(const ColumnEdges& edges);

private:
    // Numbers of records; kNone beyond the count.
    struct Samples {
        std::array<std::size_t, 4> records{};
        std::size_t count = 0;
        bool areAll = true;
    };
    Samples SamplesOf(std::size_t begin, std::size_t end, std::size_t most);

    void Begin(std::int64_t from);
    void End(std::int64_t to);
    void AddToLine(const Samples& samples);
    void AddToSteps(const Samples& samples);
    // Where the step or the bar before the course's place ends, unless it goes on to the sample after.
    void EndStep(std::int64_t last);
    // Up or down to a sample at its time.
    void Rise(std::size_t sample);
    void Add(std::int64_t time, double value);
    void Break();

    CurveReader& m_reader;
    CurveCourse& m_course;
    std::vector<CurvePoint>& m_out;
    bool m_isOpen = false;  // a piece has begun
};

}  // namespace zr::graph
