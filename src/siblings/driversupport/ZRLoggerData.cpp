#include "siblings/driversupport/ZRLoggerData.h"

#include "siblings/driversupport/PeriodCuts.h"
#include "siblings/driversupport/SampleGrouper.h"
#include "siblings/driversupport/VariableReference.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kEpoch = 946684800;  // of ZRDateTime, seconds since 1970

// UTC in microseconds; the date must be one.
std::int64_t UtcOf(const ZRDateTime& local, const zr::TimeZone& zone)
{
    return zone.ToUtc(kEpoch + local.seconds) * kMicros + local.microseconds;
}

// What a progress is told, if there is one.
class Steps {
public:
    Steps(zr::Progress* progress, std::size_t columns, std::int64_t from, std::int64_t to)
        : m_progress(progress), m_columns(columns), m_from(from), m_length(static_cast<double>(to - from))
    {
    }

    // False when the work is to stop.
    bool Tell(std::size_t column, std::int64_t time)
    {
        if (m_progress == nullptr) {
            return true;
        }
        const double within = std::clamp(static_cast<double>(time - m_from) / m_length, 0.0, 1.0);
        const auto percent =
            static_cast<int>(100.0 * (static_cast<double>(column) + within) / static_cast<double>(m_columns));
        if (percent != m_percent) {
            m_percent = percent;
            m_progress->SetPos(percent);
        }
        return !m_progress->IsCancelled();
    }

private:
    zr::Progress* m_progress;
    std::size_t m_columns;
    std::int64_t m_from;
    double m_length;
    int m_percent = -1;
};

struct Samples {
    std::vector<std::int64_t> times;
    std::vector<double> values;
};

// Looks at the blocks of one column, cut to the range.
class ColumnVisitor : public zr::LoggerBlockVisitor {
public:
    ColumnVisitor(Steps& steps, std::size_t column, std::int64_t from, std::int64_t to)
        : m_from(from), m_to(to), m_steps(steps), m_column(column)
    {
    }

    bool OnBlock(zr::LoggerBlock& block) final
    {
        return TakeBlock(block) && m_steps.Tell(m_column, block.summary.lastTime);
    }

protected:
    ~ColumnVisitor() = default;
    virtual bool TakeBlock(zr::LoggerBlock& block) = 0;

    // The samples of the block within the range. False when it is damaged.
    bool Unpack(zr::LoggerBlock& block, std::span<const std::int64_t>& times, std::span<const double>& values) const
    {
        if (!block.Samples(times, values) || times.size() != values.size()) {
            return false;
        }
        const auto first = std::lower_bound(times.begin(), times.end(), m_from) - times.begin();
        const auto last = std::lower_bound(times.begin(), times.end(), m_to) - times.begin();
        times = times.subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first));
        values = values.subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first));
        return true;
    }

    std::int64_t m_from;
    std::int64_t m_to;

private:
    Steps& m_steps;
    std::size_t m_column;
};

class CollectingVisitor final : public ColumnVisitor {
public:
    CollectingVisitor(Samples& samples, Steps& steps, std::size_t column, std::int64_t from, std::int64_t to)
        : ColumnVisitor(steps, column, from, to), m_samples(samples)
    {
    }

private:
    bool TakeBlock(zr::LoggerBlock& block) override
    {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        if (!Unpack(block, times, values)) {
            return false;
        }
        m_samples.times.insert(m_samples.times.end(), times.begin(), times.end());
        m_samples.values.insert(m_samples.values.end(), values.begin(), values.end());
        return true;
    }

    Samples& m_samples;
};

class GroupingVisitor final : public ColumnVisitor {
public:
    GroupingVisitor(zr::SampleGrouper& grouper, Steps& steps, std::size_t column, std::int64_t from, std::int64_t to)
        : ColumnVisitor(steps, column, from, to), m_grouper(grouper)
    {
    }

private:
    bool TakeBlock(zr::LoggerBlock& block) override
    {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        if (m_grouper.AddSummary(block.summary)) {
            return true;
        }
        if (!Unpack(block, times, values)) {
            return false;
        }
        m_grouper.AddSamples(times, values, block.summary.isFinite);
        return true;
    }

    zr::SampleGrouper& m_grouper;
};

// All times of all columns, each once.
std::vector<std::int64_t> TimesOf(const std::vector<Samples>& columns)
{
    std::vector<std::int64_t> all;
    for (const Samples& column : columns) {
        if (all.empty()) {
            all = column.times;
        } else if (column.times != all) {
            std::vector<std::int64_t> both;
            both.reserve(all.size() + column.times.size());
            std::set_union(all.begin(), all.end(), column.times.begin(), column.times.end(), std::back_inserter(both));
            all = std::move(both);
        }
    }
    return all;
}

// The values of a column in records of those times, which hold all of its own.
class ColumnCursor {
public:
    ColumnCursor(const Samples& samples, std::size_t records)
        : m_samples(samples), m_hasAll(samples.times.size() == records)
    {
    }

    // Of the next record.
    zr::LoggedValue Next(std::int64_t time)
    {
        // A column with as many samples as there are records has one in each.
        if (!m_hasAll && (m_next >= m_samples.times.size() || m_samples.times[m_next] != time)) {
            return {0, 0.0};
        }
        const double value = m_samples.values[m_next++];
        return {static_cast<std::uint8_t>(std::isfinite(value) ? 1 : 0), value};
    }

private:
    const Samples& m_samples;
    bool m_hasAll;
    std::size_t m_next = 0;
};

void AddReading(zr::SampleGrouper& grouper, const zr::LoggerSample& sample)
{
    grouper.AddSamples({&sample.time, 1}, {&sample.value, 1}, std::isfinite(sample.value));
}

// False when the store fails or the work is to stop.
bool GroupColumn(zr::LoggerReader& reader, const ZRBasicString& variable, zr::SampleGrouper& grouper, Steps& steps,
                 std::size_t column, std::int64_t from, std::int64_t to)
{
    zr::LoggerSample sample;
    if (grouper.IsCounter() && reader.LastBefore(variable, from, sample)) {
        AddReading(grouper, sample);
    }
    GroupingVisitor visitor(grouper, steps, column, from, to);
    if (!reader.ReadBlocks(variable, from, to, zr::LoggerNeed::Summaries, visitor)) {
        return false;
    }
    if (grouper.IsCounter() && reader.FirstFrom(variable, to, sample)) {
        AddReading(grouper, sample);
    }
    return true;
}

}  // namespace

ZRLoggerData::CRecordGroup::CRecordGroup(zr::RecordArena arena, const zr::TimeZone& zone)
    : m_arena(std::move(arena)), m_zone(zone)
{
    Select(0, m_arena.Size());
}

void ZRLoggerData::CRecordGroup::SelectData(const ZRDateTime& from, const ZRDateTime& to, bool flag)
{
    if (!from.IsValid() || !to.IsValid()) {
        Select(0, 0);
        return;
    }
    const std::int64_t* const begin = m_arena.Times();
    const std::int64_t* const end = begin + m_arena.Size();
    const std::int64_t* const firstTime = std::lower_bound(begin, end, UtcOf(from, m_zone));
    const std::int64_t utcTo = UtcOf(to, m_zone);
    const std::int64_t* const lastTime =
        flag ? std::lower_bound(firstTime, end, utcTo) : std::upper_bound(firstTime, end, utcTo);
    Select(static_cast<std::size_t>(firstTime - begin), static_cast<std::size_t>(lastTime - begin));
}

void ZRLoggerData::CRecordGroup::Select(std::size_t firstIndex, std::size_t lastIndex)
{
    first = m_arena.At(firstIndex);
    last = m_arena.At(lastIndex);
    count = static_cast<int>(lastIndex - firstIndex);
}

ZRLoggerData::ZRLoggerData() = default;

ZRLoggerData::~ZRLoggerData() = default;

void ZRLoggerData::Setup(const ZRLoggerInfo& info)
{
    loggerInfo = info;
    m_columns.clear();
    m_groups.clear();
    // The list that viewers read is left as it was given.
    ZRLoggerInfo locked(info);
    locked.Lock();
    for (const ZRDriverVariable* variable : locked.variables) {
        ZRBasicString filter;
        ZRBasicString hour;
        ZRBasicString driver;
        ZRBasicString name;
        SplitFilterDriverVariable(variable->fullName, filter, hour, driver, name);
        Column column;
        if (filter.IsEmpty() && hour.IsEmpty()) {
            column.variable = variable->fullName;
        }
        ZRDeviceDriver::tagSVariableInfo told;
        column.infoCode = variable->Info(told) ? told.infoCode : 0;
        m_columns.push_back(column);
    }
}

bool ZRLoggerData::Load(const ZRDateTime&, const ZRDateTime&, zr::Progress*)
{
    zr::LoggerStore* const store = zr::CurrentLoggerStore();
    m_reader = store != nullptr ? store->OpenReader() : nullptr;
    return m_reader != nullptr;
}

bool ZRLoggerData::SelectData(const ZRDateTime& from, const ZRDateTime& to, zr::Progress* progress)
{
    m_groups.clear();
    m_reader.reset();
    m_zone = zr::PlantZone();
    if (!from.IsValid() || !to.IsValid() || from >= to) {
        return false;
    }
    m_from = UtcOf(from, m_zone);
    m_to = UtcOf(to, m_zone);
    return m_from < m_to && Load(from, to, progress);
}

ZRLoggerData::CRecordGroup& ZRLoggerData::RecordGroup(const ZRDateTimeSpan& period, zr::Progress* progress)
{
    std::unique_ptr<CRecordGroup>& group = m_groups[{period.seconds, period.microseconds}];
    if (group == nullptr) {
        zr::RecordArena arena;
        if (m_reader != nullptr) {
            arena = period.seconds > 0 ? BuildGrouped(period.seconds, progress) : BuildRecorded(progress);
            m_failure = m_reader->Error();
        }
        group.reset(new CRecordGroup(std::move(arena), m_zone));
    }
    return *group;
}

zr::RecordArena ZRLoggerData::BuildRecorded(zr::Progress* progress)
{
    Steps steps(progress, m_columns.size(), m_from, m_to);
    std::vector<Samples> columns(m_columns.size());
    for (std::size_t c = 0; c < columns.size(); ++c) {
        if (c > 0) {
            // Mostly recorded together.
            columns[c].times.reserve(columns[c - 1].times.size());
            columns[c].values.reserve(columns[c - 1].values.size());
        }
        CollectingVisitor visitor(columns[c], steps, c, m_from, m_to);
        if (!m_columns[c].variable.IsEmpty() &&
            !m_reader->ReadBlocks(m_columns[c].variable, m_from, m_to, zr::LoggerNeed::Samples, visitor)) {
            return {};
        }
    }
    const std::vector<std::int64_t> times = TimesOf(columns);
    zr::RecordArena arena(times.size(), columns.size());
    std::copy(times.begin(), times.end(), arena.Times());
    std::vector<ColumnCursor> cursors;
    for (const Samples& column : columns) {
        cursors.emplace_back(column, times.size());
    }
    for (std::size_t r = 0; r < times.size(); ++r) {
        zr::LoggedValue* value = arena.Record(r).values;
        for (ColumnCursor& cursor : cursors) {
            *value++ = cursor.Next(times[r]);
        }
    }
    WriteTimes(arena);
    return arena;
}

zr::RecordArena ZRLoggerData::BuildGrouped(std::int32_t period, zr::Progress* progress)
{
    Steps steps(progress, m_columns.size(), m_from, m_to);
    std::vector<std::int64_t> cuts = zr::PeriodCuts(m_zone, m_from / kMicros, (m_to + kMicros - 1) / kMicros, period);
    std::for_each(cuts.begin(), cuts.end(), [](std::int64_t& cut) { cut *= kMicros; });
    std::vector<zr::SampleGrouper> groupers;
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        const Column& column = m_columns[c];
        groupers.emplace_back(column.infoCode != 0 ? column.infoCode : m_reader->InfoCode(column.variable), cuts);
        if (!column.variable.IsEmpty() &&
            !GroupColumn(*m_reader, column.variable, groupers[c], steps, c, m_from, m_to)) {
            return {};
        }
    }
    std::vector<std::size_t> held;
    for (std::size_t g = 0; g + 1 < cuts.size(); ++g) {
        if (std::any_of(groupers.begin(), groupers.end(), [g](const auto& grouper) { return grouper.IsValid(g); })) {
            held.push_back(g);
        }
    }
    zr::RecordArena arena(held.size(), groupers.size());
    for (std::size_t r = 0; r < held.size(); ++r) {
        arena.Times()[r] = cuts[held[r]];
        for (std::size_t c = 0; c < groupers.size(); ++c) {
            const bool isValid = groupers[c].IsValid(held[r]);
            arena.Record(r).values[c] = {static_cast<std::uint8_t>(isValid ? 1 : 0), groupers[c].Value(held[r])};
        }
    }
    WriteTimes(arena);
    return arena;
}

void ZRLoggerData::WriteTimes(zr::RecordArena& arena) const
{
    zr::TimeZone::Span span;
    span.end = std::numeric_limits<std::int64_t>::min();
    for (std::size_t r = 0; r < arena.Size(); ++r) {
        const std::int64_t utc = arena.Times()[r];
        const std::int64_t seconds = utc / kMicros;
        if (seconds >= span.end) {
            span = m_zone.SpanAt(seconds);
        }
        arena.Record(r).time = {static_cast<std::uint32_t>(seconds + span.offset - kEpoch),
                                static_cast<std::uint32_t>(utc % kMicros)};
    }
}
