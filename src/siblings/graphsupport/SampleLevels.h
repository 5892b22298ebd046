// The least and the largest sample of runs of records, of many curves, in levels.
#pragma once

#include "platform/LargeMemory.h"
#include "siblings/graphsupport/CurveColumn.h"
#include "siblings/graphsupport/SelectedRecords.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zr::graph {

// A block of level 0 is a run of 16 records, one of each further level four of the level below, up to one block of all.
// Beside them stand sum and count of runs of 256 records, for means. That makes 1.4 bytes a record and curve; a record
// takes 48 bytes and 16 a value.
//
// A value counts as a sample when it is valid and, as shown, finite. Immutable once it is built.
class SampleLevels {
public:
    static constexpr std::size_t kBlock = 16;
    static constexpr std::size_t kFanOut = 4;
    static constexpr std::size_t kTally = 256;
    // Sums are kept of values scaled by this, so that they stay finite.
    static constexpr double kSumScale = 0x1p-40;

    // Reads every record once, the values of a record for all curves, on two threads where there are many. Tells on
    // the way whether times go back.
    SampleLevels(const SelectedRecords& records, const std::vector<CurveColumn>& curves, bool& timesGoBack);

    struct Extent {
        double low;
        double high;
    };
    struct Tally {
        double sum;  // of unfolded shown values, scaled
        std::uint64_t count;
    };

    [[nodiscard]] std::size_t Levels() const { return m_sizes.size(); }
    [[nodiscard]] std::size_t Blocks(std::size_t level) const { return m_sizes[level]; }
    // The blocks of a level of a curve.
    [[nodiscard]] const Extent* Level(std::size_t curve, std::size_t level) const
    {
        return m_extents + curve * m_extentsOfCurve + m_starts[level];
    }
    [[nodiscard]] const Tally* Tallies(std::size_t curve) const { return m_tallies + curve * m_talliesOfCurve; }

    [[nodiscard]] std::size_t Bytes() const;

private:
    static std::size_t Place(std::size_t records, std::size_t curves, std::vector<std::size_t>& starts,
                             std::vector<std::size_t>& sizes);

    // The levels within runs of kTally records, and the tallies, of runs [begin, end).
    void ReadRuns(const SelectedRecords& records, const std::vector<CurveColumn>& curves, std::size_t begin,
                  std::size_t end);
    void FillLevel(std::size_t curve, std::size_t level, std::size_t begin, std::size_t end);

    std::vector<std::size_t> m_starts;  // by level, among the blocks of a curve
    std::vector<std::size_t> m_sizes;   // by level
    std::size_t m_curves;
    std::size_t m_extentsOfCurve;
    std::size_t m_talliesOfCurve;
    LargeMemory m_memory;
    Extent* m_extents;
    Tally* m_tallies;
};

// What a run of rows holds of one column.
struct RowScan {
    ValueRange range;
    double sum = 0.0;  // of unfolded shown values, scaled
    std::size_t count = 0;
};
// Values stand so many apart.
RowScan ScanRows(const LoggedValue* value, std::size_t rows, std::size_t apart, const CurveColumn& curve);
// The range alone, quicker.
ValueRange RangeOfRows(const LoggedValue* value, std::size_t rows, std::size_t apart, const CurveColumn& curve);

// As drawn; not a number where it isn't a sample.
double ShownValue(const LoggedValue& value, const CurveColumn& curve);
// Where a folded scale has a value.
inline double Fold(double value)
{
    return value < 0.0 ? value + 2.0 : value;
}
// What a place on a folded scale stands for.
inline double Unfold(double value)
{
    return value > 1.0 ? value - 2.0 : value;
}

}  // namespace zr::graph
