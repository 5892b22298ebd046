// What keeps logged samples: the edge between logged data and a database.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zr {

class Progress;

// Times are microseconds since 1 January 1970 UTC; a variable has one sample a time.
struct LoggerSample {
    std::int64_t time = 0;
    double value = 0.0;  // in the scale of the variable's valueExponent
};

// What can be told of samples in a row without looking at them. Of values that are not finite only the flag tells.
struct LoggerSummary {
    std::int64_t firstTime = 0;
    std::int64_t lastTime = 0;
    std::size_t count = 0;
    double minimum = 0.0;
    double maximum = 0.0;
    double sum = 0.0;
    double first = 0.0;
    double last = 0.0;
    bool isRising = false;  // no value is below the one before
    bool isFinite = false;  // every value is a finite number
};

// Of samples in order of time, at least one.
LoggerSummary Summarise(std::span<const std::int64_t> times, std::span<const double> values);

// The samples of one variable within one hour of UTC. Lives while the visitor looks at it.
class LoggerBlock {
public:
    LoggerSummary summary;
    // Unpacks. False when the block is damaged. What it gives lives as long as the block.
    virtual bool Samples(std::span<const std::int64_t>& times, std::span<const double>& values) = 0;

protected:
    ~LoggerBlock() = default;
};

class LoggerBlockVisitor {
public:
    // False ends the reading.
    virtual bool OnBlock(LoggerBlock& block) = 0;

protected:
    ~LoggerBlockVisitor() = default;
};

// Variables that are recorded together. A variable may belong to several; its samples are kept as long as the set that
// keeps them longest says.
struct LoggerDataSet {
    ZRBasicString name;
    std::int32_t period = 60;              // seconds from sample to sample, at least 1
    std::int32_t retention = 0;            // days that a sample is kept; 0: for ever
    std::vector<ZRBasicString> variables;  // plain references

    friend bool operator==(const LoggerDataSet&, const LoggerDataSet&) = default;
};

// What the visitor of blocks will mostly look at. A hint, for speed only.
enum class LoggerNeed { Summaries, Samples };

// What a check of a whole store found.
struct LoggerCheck {
    std::size_t series = 0;
    std::size_t blocks = 0;
    std::size_t packed = 0;             // samples in blocks
    std::size_t unpacked = 0;           // samples that wait to be packed
    std::vector<std::string> findings;  // what is wrong, one line each, naming file or node; empty: nothing is
};

// A connection of its own for one load. One thread at a time. Blocks on the store.
class LoggerReader {
public:
    virtual ~LoggerReader() = default;

    // Shows the visitor every block that holds a sample in the range (`to` exclusive), in order of time and without
    // overlap; a block may hold samples outside it. Samples that aren't packed yet come in blocks likewise. True when
    // all were shown, none included, but for what is too damaged to show; false when the store fails or the visitor
    // ended it.
    virtual bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to, LoggerNeed need,
                            LoggerBlockVisitor& visitor) = 0;
    // The last sample before a time. False, with sample unchanged, when there is none.
    virtual bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) = 0;
    // The first sample at a time or after it, likewise.
    virtual bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) = 0;
    // The class that the variable was recorded with; 0 for an unknown one.
    virtual std::int32_t InfoCode(const ZRBasicString& variable) = 0;
    // All data sets, in order of their names. False when the store fails.
    virtual bool DataSets(std::vector<LoggerDataSet>& sets) = 0;
    // Reads all there is and compares what blocks tell with what they hold. False when it was cancelled. Progress may
    // be null.
    virtual bool Check(LoggerCheck& check, Progress* progress) = 0;
    // Why the last call failed, or which block was damaged on its way; names the file or the node. Empty otherwise.
    [[nodiscard]] virtual std::string Error() const = 0;
};

// A sample on its way in.
struct LoggerAppend {
    int series = 0;  // from OpenSeries
    std::int64_t time = 0;
    double value = 0.0;
};

// One thread writes at a time; readers on any thread, also while it writes. Several programs may have a store open at
// once. A call that fails leaves the store fit for the next: what was away is looked for again.
class LoggerStore {
public:
    virtual ~LoggerStore() = default;

    // The number of a variable (plain reference), entered with its class if it is new. Holds as long as this object,
    // even if the file or the server behind it was replaced by an empty one. -1 on failure.
    virtual int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) = 0;
    // Enters a batch: all of it, durably, or nothing and false. Any order of times. A sample at a time that the series
    // has already takes its place, so that a batch may be sent again.
    virtual bool Append(std::span<const LoggerAppend> batch) = 0;
    // Enters a data set, or replaces the one of its name; false when a variable of it isn't entered yet.
    virtual bool SetDataSet(const LoggerDataSet& set) = 0;
    // A slice of the upkeep, of some 50 ms: packs samples of hours that are over, drops what no data set keeps at the
    // time `now`, checks a few blocks. A kill at any point loses nothing. Call it while there is nothing to append.
    enum class Upkeep { Done, More, Failed };
    virtual Upkeep Maintain(std::int64_t now) = 0;
    // What the upkeep found wrong since the last call, one line each.
    virtual std::vector<std::string> TakeFindings() = 0;
    // Of a store that can't be read each call fails and tells why; null where nobody can tell.
    virtual std::unique_ptr<LoggerReader> OpenReader() = 0;
    // Why the last call of the writing thread failed; names the file or the node. Empty otherwise.
    [[nodiscard]] virtual std::string Error() const = 0;
};

// The store in force; null unless a host has set one.
LoggerStore* CurrentLoggerStore();
// Null takes it away. Not owned; must outlive its use. Call it only while no load runs.
void SetLoggerStore(LoggerStore* store);

}  // namespace zr
