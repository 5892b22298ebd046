// Frames of a hostile peer: what decodes has bounded parts, and is the same when it is written and read again.
#include "platform/ddeml/posix/Wire.h"

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zr::ddeml;
    std::span<const std::uint8_t> rest(data, size);
    Frame frame;
    std::size_t used = 0;
    while (DecodeFrame(rest, kMaxFrameSize, frame, used) == DecodeState::Complete) {
        if (used < kHeaderSize || used > rest.size() || frame.first.size() > 255 || frame.second.size() > 255) {
            std::abort();
        }
        std::vector<std::uint8_t> again;
        EncodeFrame(frame, again);
        if (again.size() != used || !std::equal(again.begin(), again.end(), rest.begin())) {
            std::abort();
        }
        rest = rest.subspan(used);
    }
    return 0;
}
