// Records live variables: reads them at the periods of their data sets and enters them in a store, or in a spool on
// disk while the store is away.
#pragma once

#include "siblings/driversupport/recorder/RecorderFigures.h"
#include "siblings/driversupport/store/LoggerStore.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zr {

class Clock;
class RecordLane;
class Sampler;

struct RecorderOptions {
    // Holds a folder a node. Made with mode 0700 when it isn't there. One process at a time.
    std::filesystem::path spoolFolder;
    std::uint64_t spoolBytes = std::uint64_t{1} << 30;  // that the spool of one node may take
    // Null: the clock in force. Not owned; must outlive the recorder.
    Clock* clock = nullptr;
    // Empty: nobody is told. Called on a node's thread, before the next batch: returns soon, calls no recorder.
    std::function<void(const RecorderAcknowledgement&)> acknowledged;
};

// Order of use: construct; Bind and Start, in either order; Unbind and Bind around every change of the registry; Stop.
// One thread constructs, binds, starts, stops and destroys: the one that changes the registry.
//
// One thread samples. It reads values and hands them on, and waits for nothing but its time. Each node has a thread of
// its own, so that a node that is away costs its own variables only.
class Recorder {
public:
    // A sample goes to the node that NodeOfVariable tells. nodes: at least one, in the order of the configuration.
    Recorder(std::vector<LoggerDataSet> dataSets, std::vector<std::unique_ptr<LoggerStore>> nodes,
             RecorderOptions options);
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    // As Stop().
    ~Recorder();

    // Looks up the variables in the registry; what isn't there counts as missing until the next Bind.
    void Bind();
    // Lets go of every variable. Samples that fall due before the next Bind count as missing.
    void Unbind();

    // Begins to record; a node that is away stops nothing. False when another process uses the spool folder, with error
    // naming it; nothing runs then.
    bool Start(std::string& error);
    // Ends recording. What was sampled is in the store or in the spool by then, or counted. Blocks for as long as a
    // store takes for one batch. Harmless when it isn't started; Start may follow.
    void Stop();
    [[nodiscard]] bool IsStarted() const { return m_isStarted; }

    // Since construction. Any thread.
    [[nodiscard]] RecorderFigures Figures() const;
    // What happened since the last call and a person should know, oldest first: each trouble once until it is over. Any
    // thread.
    std::vector<RecorderNotice> TakeNotices();

private:
    RecorderOptions m_options;
    std::vector<LoggerDataSet> m_dataSets;
    std::vector<std::unique_ptr<LoggerStore>> m_nodes;
    std::unique_ptr<RecorderBooks> m_books;
    std::vector<std::unique_ptr<RecordLane>> m_lanes;  // one a node
    std::unique_ptr<Sampler> m_sampler;
    bool m_isStarted = false;
};

}  // namespace zr
