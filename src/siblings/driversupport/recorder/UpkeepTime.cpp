#include "siblings/driversupport/recorder/UpkeepTime.h"

namespace zr {
namespace {

constexpr std::chrono::hours kDoubtedFor{24};
constexpr std::int64_t kBelieved = 86400 * std::int64_t{1000000};

}  // namespace

std::int64_t UpkeepTime::Take(std::int64_t utc, std::chrono::steady_clock::time_point steady)
{
    if (!m_hasBegun) {
        m_hasBegun = true;
        m_time = utc;
        m_steady = steady;
    }
    const std::int64_t expected =
        m_time + std::chrono::duration_cast<std::chrono::microseconds>(steady - m_steady).count();
    const bool isFarAhead = utc > expected + kBelieved;
    if (isFarAhead && !m_isInDoubt) {
        m_doubtSince = steady;
    }
    m_isInDoubt = isFarAhead && steady - m_doubtSince < kDoubtedFor;
    m_time = m_isInDoubt ? expected : utc;
    m_steady = steady;
    return m_time;
}

}  // namespace zr
