#include "CodecBench.h"

#include "BenchLine.h"
#include "Median.h"
#include "siblings/driversupport/store/BlockCodec.h"

#include <cstdint>
#include <vector>

namespace zr::bench {

void RunCodecBench(const DemoYear& year)
{
    constexpr std::size_t kBlock = 60;
    constexpr std::size_t kRounds = 9;
    std::vector<std::vector<std::uint8_t>> blocks;
    std::size_t bytes = 0;
    const std::span<const std::int64_t> times(year.times);
    const double samples = static_cast<double>(times.size() * DemoYear::kVariables);
    const double encoding = MedianMs(kRounds, [&] {
        blocks.clear();
        bytes = 0;
        for (const std::vector<double>& values : year.values) {
            for (std::size_t i = 0; i < times.size(); i += kBlock) {
                blocks.push_back(EncodeBlock(times.subspan(i, kBlock), std::span(values).subspan(i, kBlock)));
                bytes += blocks.back().size();
            }
        }
    });
    std::vector<std::int64_t> timesBack;
    std::vector<double> valuesBack;
    const double decoding = MedianMs(kRounds, [&] {
        for (const std::vector<std::uint8_t>& block : blocks) {
            Require(DecodeBlock(block, timesBack, valuesBack), "a block doesn't come back");
        }
    });
    PrintLine("store.payload_bytes_per_sample", static_cast<double>(bytes) / samples, "B");
    PrintLine("store.encode_ns_per_sample", encoding * 1e6 / samples, "ns");
    PrintLine("store.decode_ns_per_sample", decoding * 1e6 / samples, "ns");
}

}  // namespace zr::bench
