// What a recorder has counted, and what it has to tell.
#pragma once

#include "siblings/driversupport/recorder/RecorderFigures.h"
#include "siblings/driversupport/store/LoggerStore.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace zr {

// Any thread. A data set is given by its number; one beyond those of the configuration counts in the total only.
class RecorderBooks {
public:
    RecorderBooks(std::span<const LoggerDataSet> dataSets, std::size_t nodes);

    // What the sampling thread found when a data set was due, in samples.
    struct Pass {
        bool isSampled = false;  // values were read; otherwise nothing is known of the first two
        std::uint64_t invalid = 0;
        std::uint64_t missing = 0;
        std::uint64_t late = 0;
        std::uint64_t clockSetBack = 0;
    };
    void Passed(int dataSet, const Pass& pass);

    // Samples of a time are in the store, or in the spool; those of the spool are counted by SetNode.
    void Recorded(int dataSet, std::uint64_t samples, std::int64_t time);
    void Spooled(int dataSet, std::int64_t time);
    // Samples that were due are nowhere. Gives a notice, unless this reason of this data set had one since it was fine.
    void NotRecorded(int dataSet, UnrecordedReason reason, std::uint64_t samples);
    // This reason no longer holds for the data set.
    void Fine(int dataSet, UnrecordedReason reason);

    // spooledOfSets: samples that wait in the node's spool, by data set of the configuration.
    void SetNode(std::size_t node, const RecorderNodeFigures& figures, std::vector<std::uint64_t> spooledOfSets);
    void AddNotice(RecorderNotice notice);

    [[nodiscard]] RecorderFigures Figures() const;
    std::vector<RecorderNotice> TakeNotices();

private:
    // So that a host that never looks costs no memory.
    static constexpr std::size_t kMostNotices = 10000;

    struct Entry {
        RecorderDataSetFigures figures;
        std::array<bool, kUnrecordedReasons> isTold = {};  // there was a notice since it was fine
    };
    // All of these under the lock.
    Entry* Find(int dataSet);
    void Count(int dataSet, UnrecordedReason reason, std::uint64_t samples);
    void Acknowledge(int dataSet, std::int64_t time);
    void Enter(RecorderNotice notice);

    mutable std::mutex m_guard;
    RecorderCounts m_total;  // guarded by m_guard, as is all below
    std::vector<Entry> m_dataSets;
    struct Node {
        RecorderNodeFigures figures;
        std::vector<std::uint64_t> spooledOfSets;
    };
    std::vector<Node> m_nodes;
    std::vector<RecorderNotice> m_notices;
};

}  // namespace zr
