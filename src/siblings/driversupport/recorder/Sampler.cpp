#include "siblings/driversupport/recorder/Sampler.h"

#include "platform/Clock.h"
#include "siblings/driversupport/recorder/RecordLane.h"
#include "siblings/driversupport/store/LoggerNodes.h"
#include "siblings/driversupport/ZRDriverVariable.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <unordered_map>
#include <utility>

namespace zr {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

// A sleep can't be ended: it is cut into pieces, after each of which the clock and the wish to stop are looked at.
constexpr milliseconds kLongestSleep{100};

std::vector<std::int32_t> PeriodsOf(std::span<const LoggerDataSet> dataSets)
{
    std::vector<std::int32_t> periods;
    for (const LoggerDataSet& set : dataSets) {
        periods.push_back(set.period);
    }
    return periods;
}

}  // namespace

// Locked variables keep the values of their device in memory, so that the sampling thread may read them while the
// device goes.
struct Sampler::Binding {
    std::vector<ZRDriverVariable> variables;  // by place
    std::vector<const LiveValue*> values;     // likewise; null: there is none
};

Sampler::Sampler(std::span<const LoggerDataSet> dataSets, std::vector<RecordLane*> lanes, RecorderBooks& books,
                 Clock& clock)
    : m_lanes(std::move(lanes)), m_books(books), m_clock(clock), m_plan(PeriodsOf(dataSets))
{
    std::unordered_map<ZRBasicString, std::size_t> known;
    for (const LoggerDataSet& set : dataSets) {
        DataSet& own = m_dataSets.emplace_back();
        own.samplesOfLanes.resize(m_lanes.size());
        for (const ZRBasicString& name : set.variables) {
            const auto [entry, isNew] = known.try_emplace(name, m_places.size());
            if (isNew) {
                const std::size_t lane = NodeOfVariable(name, m_lanes.size());
                m_places.push_back({name, lane, m_lanes[lane]->Variable(name)});
            }
            own.places.push_back(entry->second);
            ++own.samplesOfLanes[m_places[entry->second].lane];
        }
    }
}

Sampler::~Sampler()
{
    Stop();
}

void Sampler::Bind()
{
    auto binding = std::make_shared<Binding>();
    std::vector<std::vector<std::int32_t>> infoCodes(m_lanes.size());
    binding->variables.resize(m_places.size());
    for (std::size_t i = 0; i < m_places.size(); ++i) {
        const Place& place = m_places[i];
        ZRDriverVariable& variable = binding->variables[i];
        ZRDeviceDriver::tagSVariableInfo info;
        variable.Setup(place.name);
        if (variable.Lock()) {
            variable.Info(info);
        }
        binding->values.push_back(variable.Live());
        std::vector<std::int32_t>& codes = infoCodes[place.lane];
        codes.resize(std::max(codes.size(), static_cast<std::size_t>(place.variable) + 1));
        codes[static_cast<std::size_t>(place.variable)] = info.infoCode;
    }
    for (std::size_t i = 0; i < m_lanes.size(); ++i) {
        m_lanes[i]->SetInfoCodes(std::move(infoCodes[i]));
    }
    const std::lock_guard lock(m_guard);
    m_binding = std::move(binding);
}

void Sampler::Unbind()
{
    const std::lock_guard lock(m_guard);
    m_binding.reset();
}

void Sampler::Start()
{
    m_isStopping = false;
    Begin();
    m_thread = std::thread([this] {
        while (!m_isStopping) {
            m_clock.Sleep(std::min(Step(), kLongestSleep));
        }
    });
}

void Sampler::Stop()
{
    if (m_thread.joinable()) {
        m_isStopping = true;
        m_thread.join();
    }
}

SamplePlan::Moment Sampler::Now() const
{
    return {std::chrono::duration_cast<microseconds>(m_clock.Utc().time_since_epoch()).count(), m_clock.Steady()};
}

void Sampler::Begin()
{
    m_plan.Begin(Now());
}

milliseconds Sampler::Step()
{
    const std::span<const SamplePlan::Due> dues = m_plan.Take(Now());
    TellStep(m_plan.Step());
    if (!dues.empty()) {
        std::shared_ptr<const Binding> binding;
        {
            const std::lock_guard lock(m_guard);
            binding = m_binding;
        }
        std::vector<std::vector<RecordBatch>> batches(m_lanes.size());
        for (const SamplePlan::Due& due : dues) {
            m_books.Passed(static_cast<int>(due.index), Sample(due, binding.get(), batches));
        }
        HandOver(batches);
    }
    return std::max(std::chrono::ceil<milliseconds>(m_plan.UntilNext(Now())), milliseconds(1));
}

void Sampler::TellStep(std::int64_t step)
{
    if (step == 0) {
        return;
    }
    RecorderNotice notice;
    notice.kind = step > 0 ? RecorderNotice::Kind::ClockJumped : RecorderNotice::Kind::ClockWentBack;
    notice.count = static_cast<std::uint64_t>(std::abs(step)) / 1000000;
    m_books.AddNotice(std::move(notice));
}

RecorderBooks::Pass Sampler::Sample(const SamplePlan::Due& due, const Binding* binding,
                                    std::vector<std::vector<RecordBatch>>& batches)
{
    const DataSet& set = m_dataSets[due.index];
    RecorderBooks::Pass pass;
    pass.isSampled = due.isDue;
    pass.late = due.late * set.places.size();
    pass.clockSetBack = due.clockSetBack * set.places.size();
    if (!due.isDue) {
        return pass;
    }
    for (std::size_t i = 0; i < batches.size(); ++i) {
        RecordBatch& batch = batches[i].emplace_back();
        batch.time = due.time;
        batch.dataSet = static_cast<int>(due.index);
        batch.values.reserve(set.samplesOfLanes[i]);
    }
    for (const std::size_t index : set.places) {
        double value = 0.0;
        bool isThere = false;
        if (Read(binding, index, value, isThere)) {
            const Place& place = m_places[index];
            batches[place.lane].back().values.push_back({place.variable, value});
        } else {
            ++(isThere ? pass.invalid : pass.missing);
        }
    }
    return pass;
}

bool Sampler::Read(const Binding* binding, std::size_t place, double& value, bool& isThere)
{
    const LiveValue* const live = binding != nullptr ? binding->values[place] : nullptr;
    isThere = live != nullptr;
    if (live == nullptr || !live->IsValid()) {
        return false;
    }
    live->Read(m_value);
    if (m_value.type == tagSVariableValue::kBoolean) {
        value = m_value.boolean;
        return true;
    }
    value = m_value.number;
    return m_value.type == tagSVariableValue::kNumber && std::isfinite(value);
}

void Sampler::HandOver(std::vector<std::vector<RecordBatch>>& batches)
{
    for (std::size_t i = 0; i < batches.size(); ++i) {
        std::vector<RecordBatch>& own = batches[i];
        std::erase_if(own, [](const RecordBatch& batch) { return batch.values.empty(); });
        if (own.empty() || m_lanes[i]->Push(std::move(own))) {
            continue;
        }
        for (const RecordBatch& batch : own) {
            m_books.NotRecorded(batch.dataSet, UnrecordedReason::NoRoom, batch.values.size());
        }
    }
}

}  // namespace zr
