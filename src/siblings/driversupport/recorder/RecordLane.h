// The way of samples to one node: into its store, or into its spool while the store is away.
#pragma once

#include "siblings/driversupport/recorder/RecordBatch.h"
#include "siblings/driversupport/recorder/RecorderBooks.h"
#include "siblings/driversupport/recorder/RecordNames.h"
#include "siblings/driversupport/recorder/Spool.h"
#include "siblings/driversupport/recorder/StoreWriter.h"
#include "siblings/driversupport/recorder/UpkeepTime.h"
#include "siblings/driversupport/store/LoggerStore.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace zr {

class Clock;

struct RecordLaneOptions {
    std::size_t node = 0;
    std::filesystem::path spoolFolder;  // of this node alone
    std::uint64_t spoolBytes = 0;
    Clock* clock = nullptr;                                            // Not owned; must outlive the lane. Not null.
    std::function<void(const RecorderAcknowledgement&)> acknowledged;  // may be empty
};

// Samples reach the store in the order in which they were pushed. While anything waits in the spool, what is new goes
// to the spool's end. A lane has a thread of its own between Start and Stop, which alone uses the store.
class RecordLane {
public:
    // dataSets: of the whole recorder, so that their numbers are the same on every lane. nodes: how many there are.
    // store, books: Not owned; must outlive this.
    RecordLane(std::span<const LoggerDataSet> dataSets, std::size_t nodes, LoggerStore& store, RecorderBooks& books,
               RecordLaneOptions options);
    RecordLane(const RecordLane&) = delete;
    RecordLane& operator=(const RecordLane&) = delete;
    // As Stop().
    ~RecordLane();

    // The number of a variable of this node that a data set has. Only while the lane isn't started.
    int Variable(const ZRBasicString& name) { return m_names.Variable(name); }
    // Classes by number of the variable, as far as they are known; 0: not. Any thread.
    void SetInfoCodes(std::vector<std::int32_t> infoCodes);

    // Takes batches on; returns at once. False, with nothing taken, when too many wait in memory. Any thread.
    bool Push(std::vector<RecordBatch>&& batches);

    // The spool, while the lane isn't started.
    Spool& OwnSpool() { return m_spool; }
    RecordNames& Names() { return m_names; }

    void Start();
    // What was pushed is in the store or in the spool then, or counted.
    void Stop();

    // One round of the lane's work: what was pushed, what waits in the spool, upkeep. Returns how long there is nothing
    // more to do, if nothing is pushed. For the lane's thread, or a test's while it isn't started.
    std::chrono::milliseconds Step();
    // The last round: what can't be kept is counted. Likewise.
    void Finish();

private:
    void Run();
    void TakePushed();
    void OpenSpool();
    void ServeWaiting();
    bool AppendWaiting();
    bool SpoolWaiting();
    void Resend();
    std::chrono::milliseconds LookAfterStore();

    void StoreFailed();
    void StoreWorks();
    [[nodiscard]] bool IsTimeToTry() const;
    void Acknowledge(const RecordBatch& batch, std::size_t samples, bool isSpooled);
    void DropWaiting(std::size_t batches);
    void TellDamage();
    void SpoolServes(bool does);
    void TellFigures(bool isStopped);
    [[nodiscard]] std::int64_t UtcNow() const;
    void Tell(RecorderNotice::Kind kind, std::uint64_t count, std::string text);

    RecordLaneOptions m_options;
    RecorderBooks& m_books;
    LoggerStore& m_store;
    const std::size_t m_dataSets;  // of the configuration

    std::mutex m_guard;
    std::condition_variable m_pushed;
    std::vector<RecordBatch> m_queue;  // guarded by m_guard, as is all up to m_isStopping
    std::vector<std::int32_t> m_newInfoCodes;
    std::size_t m_load = 0;  // of m_queue and m_waiting, see LoadOf
    bool m_isStopping = false;

    // All below by the lane's thread alone, once it runs.
    RecordNames m_names;
    StoreWriter m_writer;
    Spool m_spool;
    UpkeepTime m_upkeepTime;
    std::vector<RecordBatch> m_waiting;  // taken from the queue, not acknowledged
    std::vector<std::size_t> m_entered;  // kept for its memory
    bool m_isStoreAway = false;
    bool m_isSpoolFailing = false;
    bool m_isBackToBeTold = false;
    std::uint64_t m_resent = 0;  // since the store was away
    std::string m_lastFinding;
    std::chrono::steady_clock::time_point m_nextTry;
    std::chrono::steady_clock::time_point m_nextUpkeep;
    RecorderNodeFigures m_figures;

    std::thread m_thread;
};

}  // namespace zr
