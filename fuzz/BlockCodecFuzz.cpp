// Payloads of a damaged store, and any samples: what decodes has as many times as values and comes back bit for bit.
#include "siblings/driversupport/store/BlockCodec.h"

#include <cstdlib>
#include <cstring>

namespace {

void ExpectRoundTrip(const std::vector<std::int64_t>& times, const std::vector<double>& values)
{
    std::vector<std::int64_t> timesBack;
    std::vector<double> valuesBack;
    if (!zr::DecodeBlock(zr::EncodeBlock(times, values), timesBack, valuesBack) || timesBack != times ||
        valuesBack.size() != values.size() ||
        (!values.empty() && std::memcmp(valuesBack.data(), values.data(), values.size() * sizeof(double)) != 0)) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::int64_t> times;
    std::vector<double> values;
    // A few bytes may stand for millions of samples: those are read and not written again.
    constexpr std::size_t kEnough = 4096;
    if (zr::DecodeBlock({data, size}, times, values)) {
        if (times.size() != values.size() || times.size() > zr::kMaxBlockSamples) {
            std::abort();
        }
        if (times.size() <= kEnough) {
            ExpectRoundTrip(times, values);
        }
    }
    const std::size_t count = size / 16;
    times.resize(count);
    values.resize(count);
    if (count > 0) {
        std::memcpy(times.data(), data, count * 8);
        std::memcpy(values.data(), data + count * 8, count * 8);
    }
    ExpectRoundTrip(times, values);
    return 0;
}
