// Reads logged samples from a CSV file into a store.
#pragma once

#include "siblings/driversupport/store/CsvMapping.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/tools/CsvCells.h"
#include "siblings/tools/CsvReader.h"
#include "siblings/tools/TimeZone.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zr {

class CsvSource;
class Progress;

struct CsvImportOptions {
    ZRBasicString dataSet;             // the variables are entered in it; not empty
    std::int32_t period = 0;           // seconds, of a data set that is new; 0: the usual step between rows
    std::int32_t retention = 0;        // days, likewise; 0: for ever
    std::vector<CsvMapping> mappings;  // at least one
    std::string timeColumn;            // empty: the column "time", else the first
    std::vector<std::string> missing;  // cells that are no value, as the empty one isn't
    TimeZone zone;                     // of times without an offset
    CsvFormat format;
    // All rows are moved by the same number of whole periods, so that the last one comes to lie at this time or less
    // than a period before it. UTC, microseconds since 1970.
    std::optional<std::int64_t> end;
    bool isStrict = false;  // the first fault ends the import
};

struct CsvImportFigures {
    std::size_t rows = 0;       // that had a time
    std::size_t values = 0;     // given to the store
    std::size_t missing = 0;    // cells without a value
    std::size_t doubled = 0;    // rows at the time of another one next to them
    std::size_t unordered = 0;  // rows before the one before
    std::size_t badCells = 0;   // cells that are no number
    std::size_t badRows = 0;    // rows without a usable time, or with another number of cells than the header
    std::int64_t first = 0;     // times as stored, UTC in microseconds; of no use without rows
    std::int64_t last = 0;
    std::int32_t period = 0;  // of the data set, seconds
};

// One run an object. Samples go to the store in batches, so that what was read before a failure or a cancel stays.
//
// Of rows at the same time the last counts, value by value. Rows may come in any order, but a row that isn't later than
// the one before adds to no sum. What can't be read is left out and told.
class CsvImport {
public:
    // How many faults are told one by one.
    static constexpr std::size_t kFaultsTold = 10;

    // Not owned; must outlive this.
    CsvImport(CsvImportOptions options, LoggerStore& store);

    enum class Result { Done, Cancelled, Failed };
    // Progress may be null.
    Result Run(CsvSource& source, Progress* progress);

    [[nodiscard]] const CsvImportFigures& Figures() const { return m_figures; }
    // The first faults, each "FILE:LINE: REASON".
    [[nodiscard]] const std::vector<std::string>& Faults() const { return m_faults; }
    // Why it failed.
    [[nodiscard]] const std::string& Error() const { return m_error; }

private:
    struct Column {
        CsvMapping mapping;
        std::size_t cell = 0;
        int series = -1;
        double sum = 0.0;
        bool isSumToBegin = false;  // where the store ends before the first row
        std::vector<std::int64_t> times;
        std::vector<double> values;
    };

    bool Fail(std::string error);
    bool ReadHeader(CsvReader& reader);
    bool FindColumn(const std::string& name, std::size_t& cell);
    // Reads the times alone: how far they are to be moved.
    bool MeasureShift(CsvSource& source, Progress* progress);
    bool FindDataSet(LoggerReader& reader);
    bool OpenSeries(LoggerReader& reader);
    Result ReadRows(CsvReader& reader, CsvSource& source, Progress* progress);
    // False when the import is to end.
    bool TakeRow(const CsvReader& reader);
    void NoteTime(std::int64_t time);
    bool TakeCell(const CsvReader& reader, Column& column, std::int64_t time, bool isLater);
    // Counts a fault and tells it if it is one of the first. False when that is to end the import.
    bool TakeFault(const CsvReader& reader, std::size_t& counter, const std::string& reason);
    bool FlushAtHour(std::int64_t time);
    bool Flush();
    static void Reorder(Column& column);
    bool EnterDataSet();

    CsvImportOptions m_options;
    LoggerStore& m_store;
    CsvImportFigures m_figures;
    std::vector<std::string> m_faults;
    std::string m_error;

    std::vector<std::string> m_names;  // of the header row
    std::size_t m_timeCell = 0;
    std::vector<Column> m_columns;
    CsvTimes m_times;
    std::int64_t m_shift = 0;  // microseconds
    LoggerReader* m_reader = nullptr;
    LoggerDataSet m_set;
    bool m_isNewSet = true;

    std::vector<LoggerAppend> m_batch;
    std::size_t m_held = 0;             // samples of the columns
    bool m_isOutOfOrder = false;        // rows of them
    std::int64_t m_lastTime = 0;        // of the row before
    std::vector<std::int64_t> m_steps;  // between the first rows
};

}  // namespace zr
