// What keeps logged samples: the edge between logged data and a database.
#pragma once

#include "siblings/tools/ZRBasicString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace zr {

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

// A connection of its own for one load. One thread at a time. Blocks on the store.
class LoggerReader {
public:
    virtual ~LoggerReader() = default;

    // Shows the visitor every block that holds a sample in the range (`to` exclusive), in order of time and without
    // overlap; a block may hold samples outside it. Samples that aren't packed yet come in blocks likewise. True when
    // all were shown, none included; false when the store fails or the visitor ended it.
    virtual bool ReadBlocks(const ZRBasicString& variable, std::int64_t from, std::int64_t to,
                            LoggerBlockVisitor& visitor) = 0;
    // The last sample before a time. False, with sample unchanged, when there is none.
    virtual bool LastBefore(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) = 0;
    // The first sample at a time or after it, likewise.
    virtual bool FirstFrom(const ZRBasicString& variable, std::int64_t time, LoggerSample& sample) = 0;
    // The class that the variable was recorded with; 0 for an unknown one.
    virtual std::int32_t InfoCode(const ZRBasicString& variable) = 0;
};

// A sample on its way in.
struct LoggerAppend {
    int series = 0;  // from OpenSeries
    std::int64_t time = 0;
    double value = 0.0;
};

// One thread writes at a time; readers on any thread.
class LoggerStore {
public:
    virtual ~LoggerStore() = default;

    // The number of a variable (plain reference) in this store, entered with its class if it is new. -1 on failure.
    virtual int OpenSeries(const ZRBasicString& variable, std::int32_t infoCode) = 0;
    // Enters a batch: all of it, durably, or nothing and false. Any order of times. A sample at a time that the series
    // has already takes its place, so that a batch may be sent again.
    virtual bool Append(std::span<const LoggerAppend> batch) = 0;
    // Null when the store can't be read.
    virtual std::unique_ptr<LoggerReader> OpenReader() = 0;
    // Why the last call of the writing thread failed; names the file or the node. Empty otherwise.
    [[nodiscard]] virtual std::string Error() const = 0;
};

// The store in force; null unless a host has set one.
LoggerStore* CurrentLoggerStore();
// Null takes it away. Not owned; must outlive its use. Call it only while no load runs.
void SetLoggerStore(LoggerStore* store);

}  // namespace zr
