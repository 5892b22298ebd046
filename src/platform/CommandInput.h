// Lines that a person or a program types to a running program.
#pragma once

#include <string>
#include <vector>

namespace zr {

// Reads standard input without ever blocking. One object a program; one thread.
class CommandInput {
public:
    static constexpr std::size_t kMaxLine = 4096;

    // Appends the whole lines that have come, without their ends; longer ones than kMaxLine are dropped. False once the
    // input has ended; on Windows, where waiting for it isn't possible, always.
    bool Take(std::vector<std::string>& lines);

private:
    std::string m_begun;
    bool m_isTooLong = false;
    bool m_hasEnded = false;
};

}  // namespace zr
