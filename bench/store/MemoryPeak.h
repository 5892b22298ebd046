// The most memory that a program had between two moments, as the system counts it.
#pragma once

#include <malloc.h>
#include <cstddef>
#include <fstream>
#include <string>

namespace zr::bench {

// Resident bytes: "VmRSS:" those of now, "VmHWM:" the most since ForgetPeak().
inline double ResidentBytes(const std::string& line)
{
    std::ifstream status("/proc/self/status");
    double kilobytes = 0.0;
    for (std::string word; status >> word;) {
        if (word == line) {
            status >> kilobytes;
        }
    }
    return kilobytes * 1024.0;
}

// Gives back what is free, too, so that it counts when it is used again.
inline void ForgetPeak()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5\n";
}

}  // namespace zr::bench
