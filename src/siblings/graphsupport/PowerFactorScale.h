// The folded scale of power factors, which runs 0, 1, 2: below 0 it continues as -1 to 0 behind 1.
#pragma once

namespace zr::graph {

inline constexpr double kFoldedEnd = 2.0;

constexpr double Unfold(double folded)
{
    return folded > 1.0 ? folded - kFoldedEnd : folded;
}

}  // namespace zr::graph
