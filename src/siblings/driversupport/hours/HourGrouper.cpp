#include "siblings/driversupport/hours/HourGrouper.h"

#include <algorithm>
#include <iterator>

namespace zr {

namespace {

std::vector<std::int64_t> Merged(std::span<const std::int64_t> cuts, std::span<const std::int64_t> runs)
{
    std::vector<std::int64_t> merged;
    merged.reserve(cuts.size() + runs.size());
    std::set_union(cuts.begin(), cuts.end(), runs.begin(), runs.end(), std::back_inserter(merged));
    return merged;
}

}  // namespace

HourGrouper::HourGrouper(std::int32_t infoCode, std::span<const std::int64_t> cuts, const HourRuns& runs)
    : m_cuts(cuts), m_pieceCuts(Merged(cuts, runs.Cuts())), m_samples(infoCode, m_pieceCuts)
{
    std::size_t group = 0;
    for (std::size_t i = 0; i + 1 < m_pieceCuts.size(); ++i) {
        while (group + 1 < cuts.size() && cuts[group + 1] <= m_pieceCuts[i]) {
            ++group;
        }
        const std::size_t run = runs.RunAt(m_pieceCuts[i]);
        m_pieces.push_back({group, run < runs.Size() ? runs.HourType(run) : SampleGrouper::kNoGroup});
    }
}

SampleGrouper HourGrouper::Of(std::size_t hourType) const
{
    std::vector<std::size_t> into;
    into.reserve(m_pieces.size());
    for (const Piece& piece : m_pieces) {
        into.push_back(piece.hourType == hourType ? piece.group : SampleGrouper::kNoGroup);
    }
    return m_samples.Merged(m_cuts, into);
}

}  // namespace zr
