// How every bench prints a figure, so that one reader finds them all.
#pragma once

#include <cstdio>

namespace zr::bench {

// One line: name, value, unit.
inline void PrintLine(const char* name, double value, const char* unit)
{
    std::printf("%-36s %14.3f %s\n", name, value, unit);
    std::fflush(stdout);
}

}  // namespace zr::bench
