#include "siblings/driversupport/WorkGroupCore.h"

#include <algorithm>
#include <utility>

namespace zr {

using Heard = DeviceHealth::Heard;
using Task = PollSchedule::Task;
using Clock = std::chrono::steady_clock;

WorkGroupCore::WorkGroupCore(IoContext& context, ZRDeviceConnection& connection,
                             const std::vector<ZRDeviceDriver*>& drivers)
    : m_context(context), m_connection(connection)
{
    const ServiceTimes times = CurrentServiceTimes();
    for (ZRDeviceDriver* driver : drivers) {
        if (driver->BeginService(this)) {
            m_members.push_back({driver, DeviceHealth(times)});
            m_schedule.Add(driver->Unit());
        }
    }
}

WorkGroupCore::~WorkGroupCore() = default;

bool WorkGroupCore::Start()
{
    m_connection.context = &m_context;
    m_connection.OnDone = [this](ZRDeviceTransaction& transaction) { Done(transaction); };
    m_connection.OnReady = [this] { Pump(); };
    m_connection.OnLost = [this] { LineLost(); };
    m_timer.emplace(m_context, [this] { Pump(); });
    // From here on things may happen on the I/O thread.
    if (m_connection.Open()) {
        return true;
    }
    m_ended = true;
    ReleaseAll();
    m_stopped.store(true, std::memory_order_release);
    return false;
}

void WorkGroupCore::Tick(const std::shared_ptr<WorkGroupCore>& core, std::uint64_t tick)
{
    core->m_tick.store(tick, std::memory_order_release);
    if (core->ClaimQueue()) {
        core->m_context.Queue(core);
    }
}

void WorkGroupCore::RequestStop()
{
    m_notes.fetch_or(kStop, std::memory_order_acq_rel);
    if (ClaimQueue()) {
        m_context.QueueUrgent(shared_from_this());
    }
}

void WorkGroupCore::WaitStopped()
{
    std::unique_lock lock(m_restGuard);
    m_rest.wait(lock, [this] { return Stopped(); });
}

void WorkGroupCore::DriverCalls()
{
    m_notes.fetch_or(kCalls, std::memory_order_acq_rel);
    if (ClaimQueue()) {
        m_context.QueueUrgent(shared_from_this());
    }
}

void WorkGroupCore::Run()
{
    const std::uint32_t notes = m_notes.exchange(0, std::memory_order_acq_rel);
    if (m_ended) {
        return;
    }
    if ((notes & kStop) != 0) {
        Finish();
        return;
    }
    if ((notes & kCalls) != 0) {
        for (std::size_t i = 0; i < m_members.size(); ++i) {
            if (m_members[i].driver->TakeServiceCall()) {
                m_schedule.Call(i);
            }
        }
    }
    m_schedule.Tick(m_tick.load(std::memory_order_acquire));
    Pump();
}

void WorkGroupCore::Pump()
{
    if (m_ended || m_busy || !m_connection.CanDoTransaction()) {
        return;
    }
    const auto now = Clock::now();
    for (;;) {
        const PollSchedule::Turn turn = m_schedule.Next(now);
        if (turn.task == Task::None) {
            if (turn.notBefore != Clock::time_point::max()) {
                m_timer->Set(turn.notBefore);
            }
            return;
        }
        if (ZRDeviceTransaction* transaction = RequestFor(turn, now)) {
            Send(turn.member, *transaction);
            return;
        }
    }
}

// Each way that ends without a request also takes the member's turn away, so that Pump comes to an end.
ZRDeviceTransaction* WorkGroupCore::RequestFor(const PollSchedule::Turn& turn, DeviceHealth::Time now)
{
    Member& member = m_members[turn.member];
    ZRDeviceTransaction* transaction = nullptr;
    switch (turn.task) {
        case Task::None:
            break;
        case Task::Call:
            transaction = member.driver->NextTransaction();
            // Between cycles the driver gives nothing but what it called for; within one, outputs come first anyhow.
            if (transaction == nullptr || m_schedule.IsInCycle(turn.member)) {
                m_schedule.CallServed(turn.member);
            }
            break;
        case Task::Probe:
            transaction = member.driver->ProbeTransaction();
            if (transaction == nullptr) {
                member.health.TimedOut(now, {}, Heard::Nothing);
                m_schedule.Park(turn.member, member.health.ProbeAt());
            }
            break;
        case Task::Begin:
            member.driver->BeginCycle();
            m_schedule.Begun(turn.member, member.driver->Period(), now);
            [[fallthrough]];
        case Task::Continue:
            transaction = member.driver->NextTransaction();
            if (transaction == nullptr) {
                m_schedule.Over(turn.member);
            } else {
                m_schedule.Worked(turn.member);
            }
            break;
    }
    return transaction;
}

void WorkGroupCore::Send(std::size_t member, ZRDeviceTransaction& transaction)
{
    m_asked = member;
    m_busy = true;
    transaction.unit = m_members[member].driver->Unit();
    m_connection.DoTransaction(transaction);
}

void WorkGroupCore::Done(ZRDeviceTransaction& transaction)
{
    m_busy = false;
    Member& member = m_members[m_asked];
    // After a time-out, and after a reply that took two askings.
    if (const auto freeAt = m_connection.UnitFreeAt(transaction.unit); freeAt > Clock::now()) {
        m_schedule.Hold(transaction.unit, freeAt);
    }
    switch (transaction.outcome) {
        case ZRDeviceTransaction::Outcome::Replied:
            Replied(member);
            member.driver->TransactionDone(transaction);
            break;
        case ZRDeviceTransaction::Outcome::TimedOut:
            member.driver->TransactionDone(transaction);
            TimedOut(member, transaction);
            break;
        case ZRDeviceTransaction::Outcome::Pending:
        case ZRDeviceTransaction::Outcome::NoLine:
        case ZRDeviceTransaction::Outcome::Cancelled:
            member.driver->TransactionDone(transaction);
            break;
    }
    Pump();
}

void WorkGroupCore::Replied(Member& member)
{
    const bool wasSilent = member.health.IsSilent();
    const DeviceHealth::Change change = member.health.Answered();
    if (change == DeviceHealth::Change::None) {
        return;
    }
    if (wasSilent) {
        m_schedule.Unpark(m_asked);
    }
    member.driver->SetOnline(true);
    if (change == DeviceHealth::Change::Back) {
        PostNotice(DeviceWarning::DeviceAnswersAgain, member.driver->name, m_connection.name);
    }
}

void WorkGroupCore::TimedOut(Member& member, const ZRDeviceTransaction& transaction)
{
    const auto cost = HasOthersOnline(member) ? transaction.took : Clock::duration::zero();
    const Heard heard = transaction.droppedFrames > 0 ? Heard::Damage : Heard::Nothing;
    const DeviceHealth::Change change = member.health.TimedOut(Clock::now(), cost, heard);
    if (member.health.IsSilent()) {
        m_schedule.Park(m_asked, member.health.ProbeAt());
        member.driver->SetOnline(false);
    }
    if (change == DeviceHealth::Change::Silent) {
        PostNotice(DeviceWarning::DeviceSilent, member.driver->name, m_connection.name);
    } else if (change == DeviceHealth::Change::Damaged) {
        PostNotice(DeviceWarning::DeviceAnswersDamaged, member.driver->name, m_connection.name);
    }
}

bool WorkGroupCore::HasOthersOnline(const Member& member) const
{
    return std::any_of(m_members.begin(), m_members.end(),
                       [&](const Member& other) { return &other != &member && other.health.IsOnline(); });
}

// One warning for the line, which the connection posts, is enough: the devices go without a word.
void WorkGroupCore::LineLost()
{
    if (m_ended) {
        return;
    }
    m_schedule.LineLost();
    for (Member& member : m_members) {
        member.health.LineLost();
        member.driver->SetOnline(false);
    }
}

void WorkGroupCore::Finish()
{
    m_ended = true;
    m_connection.Close();
    for (Member& member : m_members) {
        member.driver->SetOnline(false);
    }
    ReleaseAll();
    const std::lock_guard lock(m_restGuard);
    m_stopped.store(true, std::memory_order_release);
    m_rest.notify_all();
}

void WorkGroupCore::ReleaseAll()
{
    m_timer.reset();
    m_connection.OnDone = nullptr;
    m_connection.OnReady = nullptr;
    m_connection.OnLost = nullptr;
    m_connection.context = nullptr;
    for (Member& member : m_members) {
        member.driver->EndService(this);
    }
}

}  // namespace zr
