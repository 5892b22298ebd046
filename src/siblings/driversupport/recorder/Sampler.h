// Reads live variables when they are due, and hands what it read to the nodes.
#pragma once

#include "siblings/driversupport/recorder/RecordBatch.h"
#include "siblings/driversupport/recorder/RecorderBooks.h"
#include "siblings/driversupport/recorder/SamplePlan.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/tagSVariableValue.h"
#include "siblings/tools/ZRBasicString.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

class ZRDriverVariable;

namespace zr {

class Clock;
class RecordLane;

// Has a thread of its own between Start and Stop. Bind, Unbind, Start and Stop: one thread, the one that changes the
// registry.
class Sampler {
public:
    // lanes: one a node, not started yet. All: Not owned; must outlive this.
    Sampler(std::span<const LoggerDataSet> dataSets, std::vector<RecordLane*> lanes, RecorderBooks& books,
            Clock& clock);
    Sampler(const Sampler&) = delete;
    Sampler& operator=(const Sampler&) = delete;
    // As Stop().
    ~Sampler();

    // Takes hold of the variables that the registry has now.
    void Bind();
    void Unbind();

    void Start();
    // Blocks for at most a tenth of a second.
    void Stop();

    // Begins with what falls due after now. For Start, or a test while it isn't started.
    void Begin();
    // Samples what is due; returns how long nothing will be, at least a millisecond. Likewise.
    std::chrono::milliseconds Step();

private:
    // A variable of the data sets, whether it is there or not.
    struct Place {
        ZRBasicString name;
        std::size_t lane = 0;
        int variable = 0;  // of the lane
    };
    struct DataSet {
        std::vector<std::size_t> places;
        std::vector<std::size_t> samplesOfLanes;  // how many of them each lane has
    };
    struct Binding;

    std::size_t PlaceOf(const ZRBasicString& name);
    [[nodiscard]] SamplePlan::Moment Now() const;
    void TellStep(std::int64_t step);
    RecorderBooks::Pass Sample(const SamplePlan::Due& due, const Binding* binding,
                               std::vector<std::vector<RecordBatch>>& batches);
    // False when there is no such variable or it has no number; isThere tells which.
    bool Read(const Binding* binding, std::size_t place, double& value, bool& isThere);
    void HandOver(std::vector<std::vector<RecordBatch>>& batches);

    std::vector<RecordLane*> m_lanes;
    RecorderBooks& m_books;
    Clock& m_clock;
    std::vector<Place> m_places;
    std::vector<DataSet> m_dataSets;

    std::mutex m_guard;
    std::shared_ptr<const Binding> m_binding;  // guarded by m_guard; what it holds never changes

    SamplePlan m_plan;          // sampling thread only, as is the next
    tagSVariableValue m_value;  // kept for its memory

    std::atomic<bool> m_isStopping{false};
    std::thread m_thread;
};

}  // namespace zr
