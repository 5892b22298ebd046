#include "siblings/driversupport/CounterRise.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zr {

namespace {

constexpr double kNearEnd = 0.01;  // of the range

// Where counters start over, ascending.
const std::vector<double>& Ranges()
{
    static const std::vector<double> ranges = [] {
        std::vector<double> all;
        for (int exponent = 3; exponent <= 18; ++exponent) {
            all.push_back(std::pow(10.0, exponent));
        }
        for (const double words : {65536.0, 2147483648.0, 4294967296.0}) {
            for (int exponent = -6; exponent <= 6; ++exponent) {
                all.push_back(words * std::pow(10.0, exponent));
            }
        }
        std::sort(all.begin(), all.end());
        return all;
    }();
    return ranges;
}

}  // namespace

double CounterRise(double before, double after)
{
    if (after >= before) {
        return after - before;
    }
    if (after < 0.0) {
        return 0.0;
    }
    const auto& ranges = Ranges();
    for (auto range = std::upper_bound(ranges.begin(), ranges.end(), before); range != ranges.end(); ++range) {
        const double rise = *range - before + after;
        if (rise <= *range * kNearEnd) {
            return rise;
        }
    }
    return 0.0;
}

}  // namespace zr
