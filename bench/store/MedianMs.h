// Times work as the benches do: so often, and the run in the middle counts.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace zr::bench {

inline double MsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// Milliseconds of the run in the middle.
template <typename Work>
double MedianMs(std::size_t rounds, const Work& work)
{
    std::vector<double> times;
    for (std::size_t i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(MsSince(start));
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(rounds / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

}  // namespace zr::bench
