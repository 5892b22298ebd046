#include "siblings/driversupport/store/CsvImport.h"

#include "siblings/tools/CsvSource.h"
#include "siblings/tools/Progress.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace zr {

namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kHour = 3600 * kMicros;
constexpr std::int64_t kEarliest = 946684800 * kMicros;  // 1 January 2000
// A batch ends with an hour, so that the store packs whole hours; of very many columns also within one.
constexpr std::size_t kBatch = 100000;
constexpr std::size_t kLargestBatch = 4 * kBatch;
constexpr std::size_t kStepsLookedAt = 10000;
constexpr std::size_t kRowsBetweenLooks = 1024;
constexpr std::int32_t kInstantaneous = 1;

// A cell for a message: short, and with nothing that a terminal would act on.
std::string Quoted(std::string_view cell)
{
    constexpr std::size_t kLongest = 40;
    std::string text(cell.substr(0, kLongest));
    std::replace_if(
        text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < ' ' || byte == '\x7F'; },
        '?');
    if (!IsValidUtf8(text)) {
        std::replace_if(
            text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; }, '?');
    }
    return '"' + text + (cell.size() > kLongest ? "...\"" : "\"");
}

// Shows how much of a source is read, and asks whether to stop.
class ReadingProgress {
public:
    ReadingProgress(Progress* progress, const CsvSource& source, const wchar* text)
        : m_progress(progress), m_size(source.Size())
    {
        if (m_progress != nullptr) {
            m_progress->SetText(text);
            m_progress->SetPos(0);
        }
    }

    // False when the work is to stop.
    bool Tell(const CsvReader& reader)
    {
        if (m_progress == nullptr || ++m_rows % kRowsBetweenLooks != 0) {
            return true;
        }
        if (m_size != 0) {
            m_progress->SetPos(static_cast<int>(std::min<std::uint64_t>(100, 100 * reader.BytesTaken() / m_size)));
        }
        return !m_progress->IsCancelled();
    }

private:
    Progress* m_progress;
    std::uint64_t m_size;
    std::size_t m_rows = 0;
};

// The middle one of the steps, in seconds; 0 without steps.
std::int32_t UsualStep(std::vector<std::int64_t> steps)
{
    if (steps.empty()) {
        return 0;
    }
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>((steps.size() - 1) / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    constexpr std::int64_t kLongest = 31 * 86400;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>((*middle + kMicros / 2) / kMicros, 1, kLongest));
}

void NoteStep(std::vector<std::int64_t>& steps, std::int64_t step)
{
    if (step > 0 && steps.size() < kStepsLookedAt) {
        steps.push_back(step);
    }
}

std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor)
{
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

}  // namespace

CsvImport::CsvImport(CsvImportOptions options, LoggerStore& store)
    : m_options(std::move(options)), m_store(store), m_times(m_options.zone)
{
}

bool CsvImport::Fail(std::string error)
{
    m_error = std::move(error);
    return false;
}

CsvImport::Result CsvImport::Run(CsvSource& source, Progress* progress)
{
    CsvReader reader(source);
    const std::unique_ptr<LoggerReader> stored = m_store.OpenReader();
    if (stored == nullptr) {
        Fail(m_store.Error().empty() ? "the store can't be read" : m_store.Error());
        return Result::Failed;
    }
    if (!reader.Open(m_options.format) || !ReadHeader(reader)) {
        if (reader.Failed()) {
            Fail(reader.Error().Message());
        }
        return Result::Failed;
    }
    if (!FindDataSet(*stored)) {
        return Result::Failed;
    }
    if (m_options.end && !MeasureShift(source, progress)) {
        return m_error.empty() ? Result::Cancelled : Result::Failed;
    }
    if (m_options.end && (!source.Rewind() || !reader.Open(m_options.format) || !reader.Next())) {
        Fail(source.Name() + ": can't be read a second time");
        return Result::Failed;
    }
    if (!OpenSeries(*stored)) {
        return Result::Failed;
    }
    const Result result = ReadRows(reader, source, progress);
    return m_figures.values == 0 || EnterDataSet() ? result : Result::Failed;
}

bool CsvImport::ReadHeader(CsvReader& reader)
{
    if (!reader.Next()) {
        return Fail(reader.Error().file + ": is empty");
    }
    m_names.clear();
    for (const std::string_view cell : reader.Cells()) {
        m_names.emplace_back(TrimCsvCell(cell));
    }
    const std::string place = reader.Error().file + ":" + std::to_string(reader.Line()) + ": ";
    if (m_options.timeColumn.empty()) {
        m_timeCell = 0;
        FindCsvColumn(m_names, "time", m_timeCell);
    } else if (!FindColumn(m_options.timeColumn, m_timeCell)) {
        return Fail(place + m_error);
    }
    for (const CsvMapping& mapping : m_options.mappings) {
        Column& column = m_columns.emplace_back();
        column.mapping = mapping;
        column.sum = mapping.start;
        if (!FindColumn(mapping.column, column.cell)) {
            return Fail(place + m_error);
        }
        if (column.cell == m_timeCell) {
            return Fail(place + "the column " + Quoted(mapping.column) + " holds the times");
        }
    }
    return true;
}

bool CsvImport::FindColumn(const std::string& name, std::size_t& cell)
{
    if (FindCsvColumn(m_names, name, cell)) {
        return true;
    }
    constexpr std::size_t kMostNames = 50;
    std::string names;
    for (std::size_t i = 0; i < std::min(m_names.size(), kMostNames); ++i) {
        names += (i > 0 ? ", " : "") + Quoted(m_names[i]);
    }
    return Fail("there is no column " + Quoted(name) + "; there are " + names +
                (m_names.size() > kMostNames ? ", ..." : ""));
}

bool CsvImport::FindDataSet(LoggerReader& reader)
{
    std::vector<LoggerDataSet> sets;
    if (!reader.DataSets(sets)) {
        return Fail(reader.Error());
    }
    const auto found =
        std::find_if(sets.begin(), sets.end(), [&](const auto& set) { return set.name == m_options.dataSet; });
    m_isNewSet = found == sets.end();
    m_set = m_isNewSet ? LoggerDataSet{m_options.dataSet, m_options.period, m_options.retention, {}} : *found;
    return true;
}

bool CsvImport::MeasureShift(CsvSource& source, Progress* progress)
{
    if (!source.Rewind()) {
        return Fail(source.Name() + ": can't be read twice, which moving its times takes");
    }
    CsvReader reader(source);
    CsvTimes times(m_options.zone);
    ReadingProgress told(progress, source, u"Reading the times");
    std::int64_t first = std::numeric_limits<std::int64_t>::max();
    std::int64_t last = 0;
    std::int64_t before = 0;
    reader.Open(m_options.format);
    for (reader.Next(); reader.Next();) {
        std::int64_t time = 0;
        if (m_timeCell >= reader.Cells().size() ||
            times.Read(TrimCsvCell(reader.Cells()[m_timeCell]), time) != nullptr) {
            continue;  // told when it is read again
        }
        NoteStep(m_steps, before != 0 ? time - before : 0);
        before = time;
        first = std::min(first, time);
        last = std::max(last, time);
        if (!told.Tell(reader)) {
            return false;
        }
    }
    if (reader.Failed()) {
        return Fail(reader.Error().Message());
    }
    const std::int32_t period = m_set.period > 0 ? m_set.period : std::max(UsualStep(m_steps), 1);
    m_steps.clear();
    if (last == 0) {
        return true;
    }
    m_shift = FloorDivide(*m_options.end - last, period * kMicros) * period * kMicros;
    return first + m_shift >= kEarliest ||
           Fail(source.Name() + ": moved to that end it would begin before the year 2000");
}

bool CsvImport::OpenSeries(LoggerReader& reader)
{
    for (Column& column : m_columns) {
        const CsvMapping& mapping = column.mapping;
        const std::string name = Utf16ToUtf8(mapping.variable);
        const auto isSame = [&](const Column& other) { return other.mapping.variable == mapping.variable; };
        if (std::count_if(m_columns.begin(), m_columns.end(), isSame) > 1) {
            return Fail(name + " is mapped more than once");
        }
        const std::int32_t kept = reader.InfoCode(mapping.variable);
        if (kept != 0 && mapping.infoCode != 0 && kept != mapping.infoCode) {
            return Fail(name + " is in the store already, with another class");
        }
        column.series = m_store.OpenSeries(mapping.variable, mapping.infoCode != 0 ? mapping.infoCode : kInstantaneous);
        if (column.series < 0) {
            return Fail(m_store.Error());
        }
        column.isSumToBegin = mapping.isSum && !mapping.hasStart;
    }
    m_reader = &reader;
    return true;
}

CsvImport::Result CsvImport::ReadRows(CsvReader& reader, CsvSource& source, Progress* progress)
{
    ReadingProgress told(progress, source, u"Importing");
    while (reader.Next()) {
        if (!TakeRow(reader)) {
            return Result::Failed;
        }
        if (!told.Tell(reader)) {
            return Result::Cancelled;
        }
    }
    // What was read before a damage in the file is good.
    const bool isStored = Flush();
    if (reader.Failed() && isStored) {
        Fail(reader.Error().Message());
    }
    if (progress != nullptr && m_error.empty()) {
        progress->SetPos(100);
    }
    return m_error.empty() ? Result::Done : Result::Failed;
}

bool CsvImport::TakeRow(const CsvReader& reader)
{
    const std::span<const std::string_view> cells = reader.Cells();
    if (std::all_of(cells.begin(), cells.end(), [](std::string_view cell) { return TrimCsvCell(cell).empty(); })) {
        return true;
    }
    const auto isUnnamed = [&](std::string_view cell) { return !TrimCsvCell(cell).empty(); };
    if (cells.size() < m_names.size() ||
        std::any_of(cells.begin() + static_cast<std::ptrdiff_t>(m_names.size()), cells.end(), isUnnamed)) {
        return TakeFault(
            reader, m_figures.badRows,
            std::to_string(cells.size()) + " cells where the header has " + std::to_string(m_names.size()));
    }
    std::int64_t time = 0;
    if (const char* const problem = m_times.Read(TrimCsvCell(cells[m_timeCell]), time); problem != nullptr) {
        return TakeFault(reader, m_figures.badRows,
                         m_names[m_timeCell] + ": " + Quoted(cells[m_timeCell]) + " " + problem);
    }
    time += m_shift;
    if (!FlushAtHour(time)) {
        return false;
    }
    const bool isLater = m_figures.rows == 0 || time > m_figures.last;
    NoteTime(time);
    for (Column& column : m_columns) {
        if (!TakeCell(reader, column, time, isLater)) {
            return false;
        }
    }
    return true;
}

void CsvImport::NoteTime(std::int64_t time)
{
    if (m_figures.rows == 0) {
        m_figures.first = m_figures.last = time;
    } else {
        m_figures.doubled += time == m_lastTime ? 1U : 0U;
        m_figures.unordered += time < m_lastTime ? 1U : 0U;
        m_isOutOfOrder = m_isOutOfOrder || time <= m_lastTime;
        NoteStep(m_steps, time - m_lastTime);
        m_figures.first = std::min(m_figures.first, time);
        m_figures.last = std::max(m_figures.last, time);
    }
    ++m_figures.rows;
    m_lastTime = time;
}

bool CsvImport::TakeCell(const CsvReader& reader, Column& column, std::int64_t time, bool isLater)
{
    const std::string_view cell = TrimCsvCell(reader.Cells()[column.cell]);
    if (cell.empty() ||
        std::find(m_options.missing.begin(), m_options.missing.end(), cell) != m_options.missing.end()) {
        ++m_figures.missing;
        return true;
    }
    double value = 0.0;
    if (!ParseCsvNumber(cell, reader.Format().decimal, value)) {
        return TakeFault(reader, m_figures.badCells, m_names[column.cell] + ": " + Quoted(cell) + " is no number");
    }
    const CsvMapping& mapping = column.mapping;
    value = value * mapping.factor / mapping.divisor;
    if (mapping.isSum) {
        if (!isLater) {
            return TakeFault(reader, m_figures.badCells,
                             m_names[column.cell] + ": adds to no sum, since its time isn't later than all before");
        }
        LoggerSample before;
        if (std::exchange(column.isSumToBegin, false) && m_reader->LastBefore(mapping.variable, time, before)) {
            column.sum = before.value;
        }
        column.sum += value;
        value = column.sum;
    }
    if (!std::isfinite(value)) {
        return TakeFault(reader, m_figures.badCells, m_names[column.cell] + ": " + Quoted(cell) + " becomes too large");
    }
    column.times.push_back(time);
    column.values.push_back(value);
    ++m_held;
    return true;
}

bool CsvImport::TakeFault(const CsvReader& reader, std::size_t& counter, const std::string& reason)
{
    std::string fault = FileError{reader.Error().file, reader.Line(), reason}.Message();
    if (m_options.isStrict) {
        return Fail(std::move(fault));
    }
    ++counter;
    if (m_faults.size() < kFaultsTold) {
        m_faults.push_back(std::move(fault));
    }
    return true;
}

bool CsvImport::FlushAtHour(std::int64_t time)
{
    const bool isOtherHour = FloorDivide(time, kHour) != FloorDivide(m_lastTime, kHour);
    return m_held < kBatch || (!isOtherHour && m_held < kLargestBatch) || Flush();
}

bool CsvImport::Flush()
{
    m_batch.clear();
    for (Column& column : m_columns) {
        if (m_isOutOfOrder) {
            Reorder(column);
        }
        for (std::size_t i = 0; i < column.times.size(); ++i) {
            m_batch.push_back({column.series, column.times[i], column.values[i]});
        }
        column.times.clear();
        column.values.clear();
    }
    m_held = 0;
    m_isOutOfOrder = false;
    if (!m_batch.empty() && !m_store.Append(m_batch)) {
        return Fail(m_store.Error());
    }
    m_figures.values += m_batch.size();
    return true;
}

// In order of time, and of several at one time the last of the file.
void CsvImport::Reorder(Column& column)
{
    std::vector<std::size_t> order(column.times.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t left, std::size_t right) { return column.times[left] < column.times[right]; });
    std::vector<std::int64_t> times;
    std::vector<double> values;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i + 1 < order.size() && column.times[order[i + 1]] == column.times[order[i]]) {
            continue;
        }
        times.push_back(column.times[order[i]]);
        values.push_back(column.values[order[i]]);
    }
    column.times = std::move(times);
    column.values = std::move(values);
}

bool CsvImport::EnterDataSet()
{
    if (m_set.period <= 0) {
        m_set.period = std::max(UsualStep(m_steps), 1);
    }
    m_figures.period = m_set.period;
    bool isChanged = m_isNewSet;
    for (const Column& column : m_columns) {
        std::vector<ZRBasicString>& variables = m_set.variables;
        if (std::find(variables.begin(), variables.end(), column.mapping.variable) == variables.end()) {
            variables.push_back(column.mapping.variable);
            isChanged = true;
        }
    }
    return !isChanged || m_store.SetDataSet(m_set) || Fail(m_store.Error());
}

}  // namespace zr
