#include "siblings/driversupport/ZRDeviceWorkGroup.h"

#include "siblings/driversupport/IoPool.h"
#include "siblings/driversupport/WorkGroupCore.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace {

// How many memberships there are of each driver name, over all groups.
class MemberNames {
public:
    static MemberNames& Get()
    {
        static MemberNames names;
        return names;
    }

    void Add(const ZRBasicString& name)
    {
        const std::lock_guard lock(m_guard);
        ++m_counts[name];
    }

    void Remove(const ZRBasicString& name)
    {
        const std::lock_guard lock(m_guard);
        const auto found = m_counts.find(name);
        if (found != m_counts.end() && --found->second == 0) {
            m_counts.erase(found);
        }
    }

    bool Has(const ZRBasicString& name)
    {
        const std::lock_guard lock(m_guard);
        return m_counts.contains(name);
    }

private:
    std::mutex m_guard;
    std::unordered_map<ZRBasicString, std::size_t> m_counts;
};

}  // namespace

struct ZRDeviceWorkGroup::State final : zr::DriverKeeper {
    struct Member {
        ZRBasicString name;
        ZRDeviceDriver* driver;  // null once destroyed
    };

    [[nodiscard]] bool IsServing() const { return core != nullptr && !core->Stopped(); }

    void ComeToRest() const
    {
        if (IsServing()) {
            core->RequestStop();
            core->WaitStopped();
        }
    }

    void DriverGone(ZRDeviceDriver* driver) override
    {
        ComeToRest();  // harmless in good order, where the group is stopped by now
        for (Member& member : members) {
            member.driver = member.driver == driver ? nullptr : member.driver;
        }
    }

    std::vector<Member> members;
    std::shared_ptr<zr::IoPool> pool;
    std::shared_ptr<zr::WorkGroupCore> core;
    std::atomic<std::uint64_t> ticks{0};
    std::atomic<std::uint64_t> lastTick{std::uint64_t{ZRDateTime::kNoDate} << 32};
};

ZRDeviceWorkGroup::ZRDeviceWorkGroup(const ZRBasicString& connectionName)
    : name(connectionName), m_state(std::make_unique<State>())
{
}

ZRDeviceWorkGroup::~ZRDeviceWorkGroup()
{
    m_state->ComeToRest();
    for (const State::Member& member : m_state->members) {
        MemberNames::Get().Remove(member.name);
        if (member.driver != nullptr) {
            member.driver->RemoveKeeper(m_state.get());
        }
    }
    m_state->core.reset();  // before the pool it runs on
}

void ZRDeviceWorkGroup::Add(ZRDeviceDriver* driver)
{
    if (driver == nullptr || driver->IsKeptBy(m_state.get())) {
        return;
    }
    m_state->members.push_back({driver->name, driver});
    driver->AddKeeper(m_state.get());
    MemberNames::Get().Add(driver->name);
}

void ZRDeviceWorkGroup::Remove(ZRDeviceDriver* driver)
{
    const auto found = std::find_if(m_state->members.begin(), m_state->members.end(),
                                    [driver](const State::Member& member) { return member.driver == driver; });
    if (driver == nullptr || found == m_state->members.end()) {
        return;
    }
    driver->RemoveKeeper(m_state.get());
    MemberNames::Get().Remove(found->name);
    m_state->members.erase(found);
}

bool ZRDeviceWorkGroup::HasDriver(const ZRBasicString& driverName) const
{
    return std::any_of(m_state->members.begin(), m_state->members.end(),
                       [&](const State::Member& member) { return member.name == driverName; });
}

bool ZRDeviceWorkGroup::AnyHasDriver(const ZRBasicString& driverName)
{
    return MemberNames::Get().Has(driverName);
}

bool ZRDeviceWorkGroup::Start(ZRDeviceConnection* connection)
{
    if (connection == nullptr || connection->context != nullptr || m_state->IsServing()) {
        return false;
    }
    m_state->core.reset();
    if (m_state->pool == nullptr) {
        m_state->pool = zr::IoPool::Acquire();
    }
    if (m_state->pool == nullptr) {
        return false;
    }
    std::vector<ZRDeviceDriver*> drivers;
    for (const State::Member& member : m_state->members) {
        if (member.driver != nullptr) {
            drivers.push_back(member.driver);
        }
    }
    auto core = std::make_shared<zr::WorkGroupCore>(m_state->pool->Deal(), *connection, drivers);
    if (!core->Start()) {
        return false;
    }
    m_state->core = std::move(core);
    return true;
}

void ZRDeviceWorkGroup::OneHzCall(const ZRDateTime& utcNow)
{
    // Only the worker counts, so that this needs no exchange.
    const std::uint64_t ticks = m_state->ticks.load(std::memory_order_relaxed) + 1;
    m_state->lastTick.store(std::uint64_t{utcNow.seconds} << 32 | utcNow.microseconds, std::memory_order_relaxed);
    m_state->ticks.store(ticks, std::memory_order_release);
    if (m_state->IsServing()) {
        zr::WorkGroupCore::Tick(m_state->core, ticks);
    }
}

void ZRDeviceWorkGroup::Stop()
{
    if (m_state->IsServing()) {
        m_state->core->RequestStop();
    }
}

bool ZRDeviceWorkGroup::Stopped() const
{
    return !m_state->IsServing();
}

std::uint64_t ZRDeviceWorkGroup::Ticks() const
{
    return m_state->ticks.load(std::memory_order_acquire);
}

ZRDateTime ZRDeviceWorkGroup::LastTick() const
{
    const std::uint64_t words = m_state->lastTick.load(std::memory_order_relaxed);
    return {static_cast<std::uint32_t>(words >> 32), static_cast<std::uint32_t>(words & 0xFFFFFFFFu)};
}
