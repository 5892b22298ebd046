#include "siblings/driversupport/DeviceHealth.h"

#include <algorithm>
#include <utility>

namespace zr {

DeviceHealth::Change DeviceHealth::Answered()
{
    m_timeouts = 0;
    m_onlyDamage = true;
    const bool wasOnline = std::exchange(m_state, State::Online) == State::Online;
    if (std::exchange(m_announced, false)) {
        return Change::Back;
    }
    return wasOnline ? Change::None : Change::Online;
}

DeviceHealth::Change DeviceHealth::TimedOut(Time now, Time::duration cost, Heard heard)
{
    if (m_state == State::Silent) {
        m_interval = std::min<Time::duration>(2 * m_interval, m_times.longestProbe);
        PlanProbe(now, cost);
        return Change::None;
    }
    m_onlyDamage = m_onlyDamage && heard == Heard::Damage;
    if (++m_timeouts < m_times.timeoutsToSilence) {
        return Change::None;
    }
    m_state = State::Silent;
    m_interval = m_times.firstProbe;
    PlanProbe(now, cost);
    if (std::exchange(m_announced, true)) {
        return Change::None;
    }
    return m_onlyDamage ? Change::Damaged : Change::Silent;
}

void DeviceHealth::LineLost()
{
    m_state = State::Unknown;
    m_timeouts = 0;
    m_onlyDamage = true;
}

void DeviceHealth::PlanProbe(Time now, Time::duration cost)
{
    m_probeAt = now + std::max(m_interval, m_times.probeCostFactor * cost);
}

}  // namespace zr
