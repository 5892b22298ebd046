// The service of one work group over its connection, from Start to rest.
#pragma once

#include "siblings/driversupport/DeviceHealth.h"
#include "siblings/driversupport/DeviceWarning.h"
#include "siblings/driversupport/IoContext.h"
#include "siblings/driversupport/IoTimer.h"
#include "siblings/driversupport/PollSchedule.h"
#include "siblings/driversupport/ZRDeviceConnection.h"
#include "siblings/driversupport/ZRDeviceDriver.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace zr {

// A state machine on an I/O thread: asks the schedule whose turn it is, has the connection carry out one request, tells
// the driver, and so on until it is asked to stop. Used for one service and then thrown away.
class WorkGroupCore final : public IoTask, public DriverService, public std::enable_shared_from_this<WorkGroupCore> {
public:
    // Drivers that another group serves already are left out. Neither drivers nor connection are owned; both must
    // outlive the service. All operations up to DriverCalls: any thread.
    WorkGroupCore(IoContext& context, ZRDeviceConnection& connection, const std::vector<ZRDeviceDriver*>& drivers);
    ~WorkGroupCore() override;

    // False if the connection can't begin to open; nothing runs then.
    bool Start();
    static void Tick(const std::shared_ptr<WorkGroupCore>& core, std::uint64_t tick);
    void RequestStop();
    [[nodiscard]] bool Stopped() const { return m_stopped.load(std::memory_order_acquire); }
    // Blocks until Stopped, which RequestStop must have been called for.
    void WaitStopped();
    void DriverCalls() override;

    void Run() override;

private:
    struct Member {
        ZRDeviceDriver* driver;
        DeviceHealth health;
    };
    static constexpr std::uint32_t kStop = 1;
    static constexpr std::uint32_t kCalls = 2;

    void Pump();
    ZRDeviceTransaction* RequestFor(const PollSchedule::Turn& turn, DeviceHealth::Time now);
    void Send(std::size_t member, ZRDeviceTransaction& transaction);
    void Done(ZRDeviceTransaction& transaction);
    void Replied(Member& member);
    void TimedOut(Member& member, const ZRDeviceTransaction& transaction);
    void LineLost();
    void Finish();
    void ReleaseAll();
    [[nodiscard]] bool HasOthersOnline(const Member& member) const;

    IoContext& m_context;
    ZRDeviceConnection& m_connection;

    // Notes left by other threads.
    std::atomic<std::uint32_t> m_notes{0};
    std::atomic<std::uint64_t> m_tick{0};
    std::atomic<bool> m_stopped{false};
    // Not the wait of std::atomic: where the system has no futex, the standard library of g++ 12 loses a notification
    // that comes between its last look and its sleep.
    std::mutex m_restGuard;
    std::condition_variable m_rest;

    // I/O thread only.
    std::vector<Member> m_members;
    PollSchedule m_schedule;
    std::optional<IoTimer> m_timer;
    std::size_t m_asked = 0;  // whose request is under way
    bool m_busy = false;
    bool m_ended = false;
};

}  // namespace zr
