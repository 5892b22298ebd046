// A double as a whole number of decimal units, exactly rounded.
#pragma once

#include <cstdint>

namespace zr {

// The most decimal places that ScaledDigits() takes.
inline constexpr int kMaxScaledPlaces = 17;

// |value| times ten to the power `places`, rounded to the nearest whole number by the value's exact binary form, a tie
// to the even one. Places are 0 to kMaxScaledPlaces. False, with digits unchanged, for what is not finite or reaches
// 10^19: about what 64 bits hold.
//
// A double is a whole number of 53 bits times a power of two. Times ten to the 17th that whole number has at most 110
// bits, and cutting off the binary places below the point leaves the result and an exact remainder. Any thread.
bool ScaledDigits(double value, int places, std::uint64_t& digits);

}  // namespace zr
