#include "platform/CommandInput.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace zr {
namespace {

// Reading the terminal from the background would stop the program.
bool IsInBackground()
{
    return ::isatty(STDIN_FILENO) == 1 && ::tcgetpgrp(STDIN_FILENO) != ::getpgrp();
}

bool IsReadable()
{
    pollfd waited = {STDIN_FILENO, POLLIN, 0};
    return ::poll(&waited, 1, 0) > 0 && !IsInBackground();
}

}  // namespace

bool CommandInput::Take(std::vector<std::string>& lines)
{
    while (!m_hasEnded && IsReadable()) {
        std::array<char, 1024> bytes{};
        const ssize_t size = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        m_hasEnded = size == 0 || (size < 0 && errno != EINTR && errno != EAGAIN);
        for (ssize_t i = 0; i < size; ++i) {
            const char c = bytes[static_cast<std::size_t>(i)];
            if (c != '\n') {
                m_isTooLong = m_isTooLong || m_begun.size() == kMaxLine;
                if (!m_isTooLong) {
                    m_begun.push_back(c);
                }
                continue;
            }
            if (!m_isTooLong) {
                lines.push_back(m_begun);
            }
            m_begun.clear();
            m_isTooLong = false;
        }
    }
    return !m_hasEnded;
}

}  // namespace zr
