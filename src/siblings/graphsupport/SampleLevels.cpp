#include "siblings/graphsupport/SampleLevels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <span>
#include <thread>

namespace zr::graph {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
// Below it a second thread costs more than it saves.
constexpr std::size_t kSamplesForThreads = 500000;

std::size_t DividedUp(std::size_t value, std::size_t divisor)
{
    return (value + divisor - 1) / divisor;
}

// Right only where count comes out as rows, and sum and range are finite. Two rows at a time: one alone would wait for
// the addition before.
template <bool isFolded>
RowScan ScanValid(const LoggedValue* value, std::size_t rows, std::size_t apart, double factor)
{
    RowScan even;
    RowScan odd;
    const auto add = [factor](RowScan& scan, const LoggedValue& added) {
        const double shown = added.value * factor;
        const double drawn = isFolded ? Fold(shown) : shown;
        scan.range.Add(drawn);
        scan.sum += drawn;
        scan.count += added.valid != 0 ? 1U : 0U;
    };
    std::size_t r = 0;
    for (; r + 1 < rows; r += 2, value += 2 * apart) {
        add(even, value[0]);
        add(odd, value[apart]);
    }
    if (r < rows) {
        add(even, *value);
    }
    even.range.Add(odd.range);
    even.sum = (even.sum + odd.sum) * SampleLevels::kSumScale;
    even.count += odd.count;
    return even;
}

template <bool isFolded>
ValueRange RangeOfValid(const LoggedValue* value, std::size_t rows, std::size_t apart, double factor)
{
    ValueRange range;
    for (std::size_t r = 0; r < rows; ++r, value += apart) {
        const double shown = value->valid != 0 ? value->value * factor : kNone;
        // Comparisons with what is no number are false.
        range.Add(isFolded ? Fold(shown) : shown);
    }
    return range;
}

bool IsFinite(const ValueRange& range)
{
    return range.low > -kInfinity && range.high < kInfinity;
}

RowScan ScanAny(const LoggedValue* value, std::size_t rows, std::size_t apart, const CurveColumn& curve)
{
    RowScan scan;
    for (std::size_t r = 0; r < rows; ++r, value += apart) {
        const double drawn = ShownValue(*value, curve);
        if (drawn == drawn) {
            scan.range.Add(drawn);
            scan.sum += drawn * SampleLevels::kSumScale;
            ++scan.count;
        }
    }
    return scan;
}

// A block that may lie in several pieces.
RowScan ScanRecords(TimeReader& reader, std::size_t begin, std::size_t end, std::size_t apart, const CurveColumn& curve)
{
    RowScan all;
    while (begin < end) {
        const RecordPiece& piece = reader.PieceOf(begin);
        const std::size_t skipped = begin - piece.first;
        const std::size_t rows = std::min(end - begin, piece.size - skipped);
        const RowScan scan =
            ScanRows(piece.values + skipped * apart + static_cast<std::size_t>(curve.column), rows, apart, curve);
        all.range.Add(scan.range);
        all.sum += scan.sum;
        all.count += scan.count;
        begin += rows;
    }
    return all;
}

template <typename Plain>
Plain* Begin(std::byte*& memory, std::size_t count)
{
    Plain* const first = new (memory) Plain[count];
    memory += count * sizeof(Plain);
    return first;
}

}  // namespace

double ShownValue(const LoggedValue& value, const CurveColumn& curve)
{
    if (value.valid == 0) {
        return kNone;
    }
    const double shown = value.value * curve.factor;
    if (!std::isfinite(shown)) {
        return kNone;
    }
    return curve.isFolded ? Fold(shown) : shown;
}

RowScan ScanRows(const LoggedValue* value, std::size_t rows, std::size_t apart, const CurveColumn& curve)
{
    const RowScan scan = curve.isFolded ? ScanValid<true>(value, rows, apart, curve.factor)
                                        : ScanValid<false>(value, rows, apart, curve.factor);
    const bool isRight = scan.count == rows && std::isfinite(scan.sum) && IsFinite(scan.range);
    return isRight ? scan : ScanAny(value, rows, apart, curve);
}

ValueRange RangeOfRows(const LoggedValue* value, std::size_t rows, std::size_t apart, const CurveColumn& curve)
{
    const ValueRange range = curve.isFolded ? RangeOfValid<true>(value, rows, apart, curve.factor)
                                            : RangeOfValid<false>(value, rows, apart, curve.factor);
    return IsFinite(range) ? range : ScanAny(value, rows, apart, curve).range;
}

std::size_t SampleLevels::Place(std::size_t records, std::size_t curves, std::vector<std::size_t>& starts,
                                std::vector<std::size_t>& sizes)
{
    std::size_t total = 0;
    for (std::size_t size = DividedUp(records, kBlock); size > 0; size = size > 1 ? DividedUp(size, kFanOut) : 0) {
        starts.push_back(total);
        sizes.push_back(size);
        total += size;
    }
    return curves == 0 ? 0 : total;
}

SampleLevels::SampleLevels(const SelectedRecords& records, const std::vector<CurveColumn>& curves, bool& timesGoBack)
    : m_curves(curves.size()),
      m_extentsOfCurve(Place(records.Size(), m_curves, m_starts, m_sizes)),
      m_talliesOfCurve(DividedUp(records.Size(), kTally)),
      m_memory(m_curves * (m_extentsOfCurve * sizeof(Extent) + m_talliesOfCurve * sizeof(Tally)))
{
    std::byte* memory = m_memory.Data();
    m_extents = Begin<Extent>(memory, m_curves * m_extentsOfCurve);
    m_tallies = Begin<Tally>(memory, m_curves * m_talliesOfCurve);

    const std::size_t runs = m_talliesOfCurve;
    bool goBack[2] = {false, false};
    const auto read = [&](std::size_t part, std::size_t begin, std::size_t end) {
        goBack[part] = records.GoBack(begin * kTally, std::min(end * kTally, records.Size()));
        ReadRuns(records, curves, begin, end);
    };
    if (records.Size() * m_curves < kSamplesForThreads || std::thread::hardware_concurrency() < 2) {
        read(0, 0, runs);
    } else {
        std::thread other(read, 1, runs / 2, runs);
        read(0, 0, runs / 2);
        other.join();
    }
    timesGoBack = goBack[0] || goBack[1];
    for (std::size_t curve = 0; curve < m_curves; ++curve) {
        for (std::size_t level = 3; level < Levels(); ++level) {
            FillLevel(curve, level, 0, Blocks(level));
        }
    }
}

void SampleLevels::ReadRuns(const SelectedRecords& records, const std::vector<CurveColumn>& curves, std::size_t begin,
                            std::size_t end)
{
    constexpr std::size_t kBlocksOfRun = kTally / kBlock;
    TimeReader reader(records);
    const std::size_t apart = records.ValuesOfRecord();
    std::vector<RowScan> sums(curves.size());
    for (std::size_t run = begin; run < end; ++run) {
        std::fill(sums.begin(), sums.end(), RowScan{});
        const std::size_t lastBlock = std::min((run + 1) * kBlocksOfRun, Blocks(0));
        for (std::size_t block = run * kBlocksOfRun; block < lastBlock; ++block) {
            const std::size_t first = block * kBlock;
            const std::size_t last = std::min(first + kBlock, records.Size());
            const RecordPiece& piece = reader.PieceOf(first);
            const bool isWhole = last <= piece.first + piece.size;
            const LoggedValue* const row = piece.values + (first - piece.first) * apart;
            for (std::size_t curve = 0; curve < curves.size(); ++curve) {
                const CurveColumn& column = curves[curve];
                RowScan scan;
                if (column.column < 0 || static_cast<std::size_t>(column.column) >= apart) {
                    // No samples.
                } else if (isWhole) {
                    scan = ScanRows(row + column.column, last - first, apart, column);
                } else {
                    scan = ScanRecords(reader, first, last, apart, column);
                }
                m_extents[curve * m_extentsOfCurve + block] = {scan.range.low, scan.range.high};
                sums[curve].sum += scan.sum;
                sums[curve].count += scan.count;
            }
        }
        for (std::size_t curve = 0; curve < curves.size(); ++curve) {
            m_tallies[curve * m_talliesOfCurve + run] = {sums[curve].sum, sums[curve].count};
            // While the blocks are in the cache: 4 of level 1, and 1 of level 2, lie within a run.
            for (std::size_t level = 1, blocks = kBlocksOfRun / kFanOut; level < Levels() && blocks > 0;
                 ++level, blocks /= kFanOut) {
                FillLevel(curve, level, run * blocks, std::min((run + 1) * blocks, Blocks(level)));
            }
        }
    }
}

void SampleLevels::FillLevel(std::size_t curve, std::size_t level, std::size_t begin, std::size_t end)
{
    Extent* const of = m_extents + curve * m_extentsOfCurve;
    for (std::size_t block = begin; block < end; ++block) {
        ValueRange range;
        const std::size_t last = std::min((block + 1) * kFanOut, Blocks(level - 1));
        for (std::size_t below = block * kFanOut; below < last; ++below) {
            const Extent& extent = of[m_starts[level - 1] + below];
            range.Add(ValueRange{extent.low, extent.high});
        }
        of[m_starts[level] + block] = {range.low, range.high};
    }
}

std::size_t SampleLevels::Bytes() const
{
    return m_memory.Size() + (m_starts.capacity() + m_sizes.capacity()) * sizeof(std::size_t);
}

}  // namespace zr::graph
