// A store as a recorder writes to it: by names, and without overwriting what is there.
#pragma once

#include "siblings/driversupport/recorder/RecordBatch.h"
#include "siblings/driversupport/recorder/RecordNames.h"
#include "siblings/driversupport/recorder/TakenTimes.h"
#include "siblings/driversupport/store/LoggerStore.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace zr {

// One thread at a time. Blocks on the store.
class StoreWriter {
public:
    // dataSets: with the variables of this store only. store, names: Not owned; must outlive this.
    StoreWriter(LoggerStore& store, RecordNames& names, std::vector<LoggerDataSet> dataSets);

    // Enters the batches: durably, or not at all and false. Samples for whose time the store has one from before this
    // program are left out, except those of batches that are marked as earlier; entered: how many of each batch were
    // not.
    bool Append(std::span<const RecordBatch> batches, std::vector<std::size_t>& entered);
    // Tells the store of the data sets if that is due, each with the variables that are known to it. False, to be tried
    // again, when it doesn't take one.
    bool SetDataSets();
    [[nodiscard]] bool AreSetsDue() const { return m_areSetsDue; }
    // The store was away: it may be another one now.
    void Forget() { m_areSetsDue = true; }
    // Why the last call failed. Empty otherwise.
    [[nodiscard]] const std::string& Error() const { return m_error; }

private:
    bool EnterSeries(int variable, std::int32_t infoCode);
    bool EnterAll(std::span<const RecordBatch> batches);
    bool KnowTaken(std::span<const RecordBatch> batches);
    void EnterThoseOfTheStore();
    bool Fail();

    LoggerStore& m_store;
    RecordNames& m_names;
    std::vector<LoggerDataSet> m_dataSets;
    bool m_areSetsDue = true;
    TakenTimes m_taken;
    std::vector<int> m_series;           // by variable; -1: not entered yet
    std::vector<LoggerAppend> m_append;  // kept for its memory
    std::string m_error;
};

}  // namespace zr
