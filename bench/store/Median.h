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

// The runs of one kind of work.
class Median {
public:
    template <typename Work>
    void Add(const Work& work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        m_times.push_back(MsSince(start));
    }
    // Milliseconds of the run in the middle.
    [[nodiscard]] double Ms() const
    {
        std::vector<double> times = m_times;
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    }

private:
    std::vector<double> m_times;
};

template <typename Work>
double MedianMs(std::size_t rounds, const Work& work)
{
    Median median;
    for (std::size_t i = 0; i < rounds; ++i) {
        median.Add(work);
    }
    return median.Ms();
}

}  // namespace zr::bench
