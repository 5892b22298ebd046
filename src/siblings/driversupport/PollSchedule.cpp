#include "siblings/driversupport/PollSchedule.h"

#include <algorithm>

namespace zr {

void PollSchedule::Add(std::uint8_t unit)
{
    Member member;
    member.unit = unit;
    member.dueTick = m_tick;
    m_members.push_back(member);
}

PollSchedule::Turn PollSchedule::Next(Time now)
{
    Turn turn;
    for (std::size_t step = 1; step <= m_members.size(); ++step) {
        const std::size_t index = (m_last + step) % m_members.size();
        Time notBefore = Time::max();
        const Task task = TaskOf(m_members[index], now, notBefore);
        turn.notBefore = std::min(turn.notBefore, notBefore);
        if (task == Task::None || (turn.task != Task::None && task != Task::Call)) {
            continue;
        }
        turn.task = task;
        turn.member = index;
        if (task == Task::Call) {
            break;
        }
    }
    if (turn.task != Task::None) {
        m_last = turn.member;
    }
    return turn;
}

PollSchedule::Task PollSchedule::TaskOf(const Member& member, Time now, Time& notBefore) const
{
    Task task = Task::Begin;
    if (member.calls) {
        task = Task::Call;
    } else if (member.parked) {
        task = Task::Probe;
    } else if (member.inCycle) {
        task = Task::Continue;
    }
    const bool isTimed = task == Task::Probe || (task == Task::Begin && !member.byTick);
    if (task == Task::Begin && member.byTick && m_tick < member.dueTick) {
        return Task::None;
    }
    const Time due = isTimed ? std::max(member.dueAt, member.heldUntil) : member.heldUntil;
    if (due <= now) {
        return task;
    }
    notBefore = due;
    return Task::None;
}

void PollSchedule::Begun(std::size_t index, std::chrono::milliseconds period, Time now)
{
    using std::chrono::seconds;
    Member& member = m_members[index];
    member.inCycle = true;
    member.worked = false;
    if (period >= seconds(1)) {
        member.byTick = true;
        member.dueTick = m_tick + static_cast<std::uint64_t>(std::chrono::ceil<seconds>(period).count());
        return;
    }
    const bool wasTimed = !member.byTick && member.dueAt != Time::min();
    member.byTick = false;
    member.dueAt = wasTimed && member.dueAt + period > now ? member.dueAt + period : now + period;
}

void PollSchedule::Over(std::size_t index)
{
    Member& member = m_members[index];
    member.inCycle = false;
    if (!member.worked && !member.byTick) {
        member.byTick = true;
        member.dueTick = m_tick + 1;
    }
}

void PollSchedule::Hold(std::uint8_t unit, Time until)
{
    for (Member& member : m_members) {
        if (member.unit == unit) {
            member.heldUntil = std::max(member.heldUntil, until);
        }
    }
}

void PollSchedule::Park(std::size_t index, Time probeAt)
{
    Member& member = m_members[index];
    member.inCycle = false;
    member.parked = true;
    member.dueAt = probeAt;
}

void PollSchedule::Unpark(std::size_t index)
{
    Member& member = m_members[index];
    member.parked = false;
    member.inCycle = false;
    member.byTick = true;
    member.dueTick = m_tick;
}

void PollSchedule::LineLost()
{
    for (std::size_t i = 0; i < m_members.size(); ++i) {
        Unpark(i);
    }
}

}  // namespace zr
