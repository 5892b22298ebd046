// What a zoom is undone to.
#pragma once

#include <cstdint>

namespace zr::graph {

// The part of a graph in view.
struct Zoom {
    std::int64_t from = 0;  // UTC, microseconds since 1970
    std::int64_t to = 0;    // Exclusive.
};

}  // namespace zr::graph
