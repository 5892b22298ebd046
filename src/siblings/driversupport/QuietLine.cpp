#include "siblings/driversupport/QuietLine.h"

#include <algorithm>

namespace zr {

QuietLine::QuietLine(Duration timeOut, Duration leastQuiet) : m_timeOut(timeOut), m_leastQuiet(leastQuiet) {}

void QuietLine::Replied(Duration took)
{
    m_slowest = std::max(m_slowest, took);
}

QuietLine::Duration QuietLine::Quiet() const
{
    return std::min(std::max(2 * m_slowest, m_leastQuiet), m_timeOut);
}

void QuietLine::TimedOut(std::uint8_t unit, Time sentAt, Time now)
{
    m_failedSentAt = sentAt;
    m_lineFreeAt = std::max(m_lineFreeAt, now + Quiet());
    std::erase_if(m_rests, [&](const Rest& rest) { return rest.unit == unit || rest.until <= now; });
    m_rests.push_back({unit, sentAt + kUnitRest * m_timeOut});
    m_restsEnd = std::max(m_restsEnd, m_rests.back().until);
}

void QuietLine::Strayed(Time now)
{
    const bool mayBeLate = now < m_restsEnd;
    if (mayBeLate) {
        m_slowest = std::max(m_slowest, now - m_failedSentAt);
    }
    if (now < m_lineFreeAt) {
        m_lineFreeAt = now + Quiet();
    }
}

void QuietLine::Pause(Duration pause, Time now)
{
    m_lineFreeAt = std::max(m_lineFreeAt, now + pause);
}

QuietLine::Time QuietLine::UnitFreeAt(std::uint8_t unit) const
{
    const auto found =
        std::find_if(m_rests.begin(), m_rests.end(), [&](const Rest& rest) { return rest.unit == unit; });
    return found == m_rests.end() ? Time::min() : found->until;
}

}  // namespace zr
