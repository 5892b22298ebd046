// Values that are whole numbers once their decimals are counted, as measured ones mostly are.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zr {

inline constexpr int kMaxDecimalPlaces = 15;
inline constexpr double kMaxWhole = 9007199254740992.0;  // 2^53
// Of ten, by decimals.
inline constexpr std::array<double, kMaxDecimalPlaces + 1> kPowers = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                                      1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// The value of a whole number at so many decimals (0 to 15).
inline double ValueOf(std::int64_t whole, int decimals)
{
    return static_cast<double>(whole) / kPowers[static_cast<std::size_t>(decimals)];
}

// The whole number that stands for a value at so many decimals: ValueOf gives the value from it bit for bit. False when
// there is none up to 2^53.
inline bool WholeOf(double value, int decimals, std::int64_t& whole)
{
    const double scaled = std::nearbyint(value * kPowers[static_cast<std::size_t>(decimals)]);
    if (!(std::fabs(scaled) <= kMaxWhole)) {
        return false;
    }
    whole = static_cast<std::int64_t>(scaled);
    return std::bit_cast<std::uint64_t>(ValueOf(whole, decimals)) == std::bit_cast<std::uint64_t>(value);
}

// The fewest decimals at which every value is a whole number; -1 when there are none.
int DecimalsOf(std::span<const double> values);

}  // namespace zr
