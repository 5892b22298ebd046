// The samples of one variable, made one value a period and hour type.
#pragma once

#include "siblings/driversupport/hours/HourRuns.h"
#include "siblings/driversupport/SampleGrouper.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zr {

// Groups by the cuts of the period and of the hour types together, once for all hour types; each is then put together
// from its pieces. So the consumption of a counter is split at every boundary, and its hour types add up to the whole.
class HourGrouper {
public:
    // Group i goes from cuts[i] to cuts[i + 1], exclusive. Ascending. Both must outlive what Of() gives.
    HourGrouper(std::int32_t infoCode, std::span<const std::int64_t> cuts, const HourRuns& runs);
    HourGrouper(const HourGrouper&) = delete;
    HourGrouper& operator=(const HourGrouper&) = delete;

    // Takes the samples, those next to the range included (see SampleGrouper).
    SampleGrouper& Samples() { return m_samples; }
    // What the samples of one hour type give in each period.
    [[nodiscard]] SampleGrouper Of(std::size_t hourType) const;

private:
    struct Piece {
        std::size_t group = 0;
        std::size_t hourType = 0;
    };

    std::span<const std::int64_t> m_cuts;
    std::vector<std::int64_t> m_pieceCuts;
    std::vector<Piece> m_pieces;
    SampleGrouper m_samples;  // by m_pieceCuts
};

}  // namespace zr
