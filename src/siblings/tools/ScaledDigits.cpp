#include "siblings/tools/ScaledDigits.h"

#include <array>
#include <bit>

namespace zr {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr int kMantissaBits = 52;
constexpr int kExponentBias = 1075;  // of the mantissa taken as a whole number
constexpr int kNotFinite = 2047;
constexpr int kMaxShift = 11;  // beyond it a number has more than 64 bits
constexpr std::uint64_t kLimit = 10000000000000000000u;

constexpr std::array<std::uint64_t, kMaxScaledPlaces + 1> kPowersOfTen = [] {
    std::array<std::uint64_t, kMaxScaledPlaces + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 10;
    }
    return powers;
}();

// Value without its lowest `cut` bits (1 to 127), a tie to the even result.
Wide RoundedShift(Wide value, int cut)
{
    const Wide quotient = value >> cut;
    const Wide rest = value - (quotient << cut);
    const Wide half = Wide{1} << (cut - 1);
    const bool isUp = rest > half || (rest == half && (quotient & 1) != 0);
    return quotient + (isUp ? 1 : 0);
}

}  // namespace

bool ScaledDigits(double value, int places, std::uint64_t& digits)
{
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const int exponent = static_cast<int>(bits >> kMantissaBits & 0x7FF);
    std::uint64_t mantissa = bits & ((std::uint64_t{1} << kMantissaBits) - 1);
    if (exponent == kNotFinite) {
        return false;
    }
    if (exponent != 0) {
        mantissa |= std::uint64_t{1} << kMantissaBits;
    }
    const int shift = (exponent != 0 ? exponent : 1) - kExponentBias;
    if (mantissa == 0) {
        digits = 0;
        return true;
    }
    if (shift > kMaxShift) {
        return false;
    }
    Wide scaled = Wide{mantissa} * kPowersOfTen[static_cast<std::size_t>(places)];
    if (shift >= 0) {
        scaled <<= shift;
    } else {
        // Below a 128th bit there is less than a half.
        scaled = -shift < 128 ? RoundedShift(scaled, -shift) : 0;
    }
    if (scaled >= kLimit) {
        return false;
    }
    digits = static_cast<std::uint64_t>(scaled);
    return true;
}

}  // namespace zr
