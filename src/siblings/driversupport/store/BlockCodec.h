// The payload of a block of logged samples: compact bytes, from which every time and every double comes back bit for
// bit. docs/formats/logger-block.md tells the format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zr {

// The number of this format, for whoever keeps the payload.
inline constexpr int kBlockCodec = 1;
// The most samples that a payload may hold.
inline constexpr std::size_t kMaxBlockSamples = 1u << 22;

// As many times as values, at most kMaxBlockSamples; in any order, any doubles. Any thread.
std::vector<std::uint8_t> EncodeBlock(std::span<const std::int64_t> times, std::span<const double> values);

// False for bytes that EncodeBlock can't have written: cut short, followed by others, of another format. The outputs
// are then of no use. Reads and allocates no more than the bytes account for, whatever they say: 16 bytes of memory a
// sample and never more than kMaxBlockSamples. Any thread.
//
// A time t of the bytes is given as start + t * unit, which wraps: for times that were written in a unit of their own.
bool DecodeBlock(std::span<const std::uint8_t> bytes, std::vector<std::int64_t>& times, std::vector<double>& values,
                 std::int64_t start = 0, std::int64_t unit = 1);

}  // namespace zr
