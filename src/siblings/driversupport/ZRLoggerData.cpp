#include "siblings/driversupport/ZRLoggerData.h"

#include "siblings/driversupport/hours/HourGrouper.h"
#include "siblings/driversupport/PeriodCuts.h"
#include "siblings/driversupport/RecordWriter.h"
#include "siblings/driversupport/SampleGrouper.h"
#include "siblings/driversupport/VariableReference.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr const char* kNoStore = "there is no store of logged data";
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
        : m_progress(progress),
          m_columns(static_cast<double>(columns)),
          m_from(from),
          m_length(static_cast<double>(to - from)),
          m_begin(from),
          m_end(to)
    {
    }

    // Which part of the range is worked on, column by column; all of it unless told.
    void SetStretch(std::int64_t begin, std::int64_t end)
    {
        m_begin = begin;
        m_end = end;
    }

    // False when the work is to stop.
    bool Tell(std::size_t column, std::int64_t time)
    {
        if (m_progress == nullptr) {
            return true;
        }
        const auto stretch = static_cast<double>(m_end - m_begin);
        const double within = std::clamp(static_cast<double>(time - m_begin) / stretch, 0.0, 1.0);
        const double done =
            static_cast<double>(m_begin - m_from) + stretch * (static_cast<double>(column) + within) / m_columns;
        const auto percent = static_cast<int>(100.0 * done / m_length);
        if (percent != m_percent) {
            m_percent = percent;
            m_progress->SetPos(percent);
        }
        return !m_progress->IsCancelled();
    }

private:
    zr::Progress* m_progress;
    double m_columns;
    std::int64_t m_from;
    double m_length;
    std::int64_t m_begin;
    std::int64_t m_end;
    int m_percent = -1;
};

// A range in stretches that hold so many samples that they stay in the cache, and so few that the store is asked
// rarely. They are cut at days of UTC, where no block is cut.
class Stretches {
public:
    Stretches(std::int64_t from, std::int64_t to) : end(from), m_to(to) {}

    // Moves on. False at the end of the range.
    bool Next()
    {
        begin = end;
        const std::int64_t next = (begin / m_length + 1) * m_length;
        end = std::min(next, m_to);
        return begin < m_to;
    }
    // How many samples the stretch held, for the length of the next.
    void Tell(std::size_t samples)
    {
        if (samples <= kSamples / 2 && m_length < m_to - end) {
            m_length *= 2;
        } else if (samples > 2 * kSamples && m_length > kDay) {
            m_length /= 2;
        }
    }

    std::int64_t begin = 0;
    std::int64_t end;  // Exclusive.

private:
    static constexpr std::int64_t kDay = 86400 * kMicros;
    static constexpr std::size_t kSamples = std::size_t{1} << 18;

    std::int64_t m_to;
    std::int64_t m_length = kDay;
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
    CollectingVisitor(zr::SampleColumn& samples, Steps& steps, std::size_t column, std::int64_t from, std::int64_t to)
        : ColumnVisitor(steps, column, from, to), m_samples(samples)
    {
    }

private:
    bool TakeBlock(zr::LoggerBlock& block) override
    {
        std::span<const std::int64_t> times;
        std::span<const double> values;
        if (!Unpack(block, times, values)) {
            // What is damaged is left out; the checks of the store name it.
            return true;
        }
        m_samples.times.insert(m_samples.times.end(), times.begin(), times.end());
        m_samples.values.insert(m_samples.values.end(), values.begin(), values.end());
        return true;
    }

    zr::SampleColumn& m_samples;
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
            // What is damaged is left out; the checks of the store name it.
            return true;
        }
        m_grouper.AddSamples(times, values, block.summary.isFinite);
        return true;
    }

    zr::SampleGrouper& m_grouper;
};

void AddReading(zr::SampleGrouper& grouper, const zr::LoggerSample& sample)
{
    grouper.AddSamples({&sample.time, 1}, {&sample.value, 1}, std::isfinite(sample.value));
}

// What was damaged on the way, empty for nothing; none when the store fails or the work is to stop.
std::optional<std::string> GroupColumn(zr::LoggerReader& reader, const ZRBasicString& variable,
                                       zr::SampleGrouper& grouper, Steps& steps, std::size_t column, std::int64_t from,
                                       std::int64_t to)
{
    zr::LoggerSample sample;
    if (grouper.IsCounter() && reader.LastBefore(variable, from, sample)) {
        AddReading(grouper, sample);
    }
    GroupingVisitor visitor(grouper, steps, column, from, to);
    if (!reader.ReadBlocks(variable, from, to, zr::LoggerNeed::Summaries, visitor)) {
        return {};
    }
    std::string damage = reader.Error();
    if (grouper.IsCounter() && reader.FirstFrom(variable, to, sample)) {
        AddReading(grouper, sample);
    }
    return damage;
}

}  // namespace

ZRLoggerData::CRecordGroup::CRecordGroup(zr::RecordArena arena, const ZRDateTimeSpan& period, const zr::TimeZone& zone,
                                         Reading reading)
    : m_arena(std::move(arena)), m_reading(std::move(reading)), m_period(period), m_zone(zone)
{
    Select(0, m_arena.Size());
}

void ZRLoggerData::CRecordGroup::SelectData(const ZRDateTime& from, const ZRDateTime& to, bool flag)
{
    if (!from.IsValid() || !to.IsValid()) {
        Select(0, 0);
        return;
    }
    const std::size_t firstIndex = m_arena.LowerBound(UtcOf(from, m_zone));
    const std::size_t lastIndex = m_arena.LowerBound(UtcOf(to, m_zone) + (flag ? 0 : 1));
    Select(firstIndex, std::max(firstIndex, lastIndex));
}

std::int64_t ZRLoggerData::CRecordGroup::EndOfPeriod(std::int64_t time) const
{
    const std::int64_t second = time / kMicros;
    if (m_period.seconds < 1 || second < zr::kFirstZoneSecond || second >= zr::kLastZoneSecond) {
        return time;
    }
    // A period may be longer than its nominal length, by a change of the clock or by days of a month.
    for (std::int64_t length = m_period.seconds; length < zr::kLastZoneSecond; length *= 2) {
        const std::vector<std::int64_t> cuts = zr::PeriodCuts(m_zone, second, second + length + 1, m_period.seconds);
        if (cuts.size() > 2) {
            return cuts[1] * kMicros;
        }
    }
    return time;
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
        column.isSplit = !filter.IsEmpty() || !hour.IsEmpty();
        column.filter = filter;
        column.hour = hour;
        if (column.isSplit) {
            JoinFilterDriverVariable({}, {}, driver, name, column.variable);
        } else {
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
    m_split = {};
    m_reading = {};
    m_isStoreMissing = false;
    m_zone = zr::PlantZone();
    if (!from.IsValid() || !to.IsValid() || from >= to) {
        return false;
    }
    m_from = UtcOf(from, m_zone);
    m_to = UtcOf(to, m_zone);
    if (m_from >= m_to) {
        return false;
    }
    m_split = zr::HourSplit(m_zone, m_from, m_to);
    for (Column& column : m_columns) {
        if (column.isSplit) {
            column.hours = m_split.Find(column.filter, column.hour);
        }
    }
    m_isStoreMissing = !Load(from, to, progress);
    return !m_isStoreMissing;
}

ZRLoggerData::CRecordGroup& ZRLoggerData::RecordGroup(const ZRDateTimeSpan& period, zr::Progress* progress)
{
    std::unique_ptr<CRecordGroup>& group = m_groups[{period.seconds, period.microseconds}];
    if (group == nullptr) {
        zr::RecordArena arena;
        m_reading = {m_isStoreMissing ? kNoStore : "", {}};
        if (m_reader != nullptr) {
            try {
                arena = period.seconds > 0 ? BuildGrouped(period.seconds, progress) : BuildRecorded(progress);
            } catch (const std::bad_alloc&) {
                // On the thread of a loader nobody else would catch it.
                m_reading.failure = "not enough memory for so many records";
            }
        }
        group.reset(new CRecordGroup(std::move(arena), period, m_zone, m_reading));
    }
    m_reading = group->m_reading;
    return *group;
}

bool ZRLoggerData::ReadColumn(const Column& column, std::int64_t from, std::int64_t to, zr::LoggerBlockVisitor& visitor)
{
    if (!column.HasSamples()) {
        return true;
    }
    bool isRead = false;
    if (column.isSplit) {
        zr::HourFilter filter(*column.hours.runs, column.hours.hourType, visitor);
        isRead = m_reader->ReadBlocks(column.variable, from, to, zr::LoggerNeed::Samples, filter);
    } else {
        isRead = m_reader->ReadBlocks(column.variable, from, to, zr::LoggerNeed::Samples, visitor);
    }
    return NoteReading(isRead ? std::optional(m_reader->Error()) : std::nullopt);
}

bool ZRLoggerData::NoteReading(const std::optional<std::string>& damage)
{
    constexpr std::size_t kMostTold = 100;
    if (!damage.has_value()) {
        m_reading.failure = m_reader->Error();
        return false;
    }
    if (!damage->empty() && m_reading.damage.size() < kMostTold) {
        m_reading.damage.push_back(*damage);
    }
    return true;
}

zr::RecordArena ZRLoggerData::BuildRecorded(zr::Progress* progress)
{
    Steps steps(progress, m_columns.size(), m_from, m_to);
    zr::RecordArena arena(m_columns.size());
    zr::RecordWriter writer(arena, m_zone);
    std::vector<zr::SampleColumn> columns(m_columns.size());
    for (Stretches stretch(m_from, m_to); stretch.Next();) {
        steps.SetStretch(stretch.begin, stretch.end);
        std::size_t samples = 0;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            columns[c].times.clear();
            columns[c].values.clear();
            CollectingVisitor visitor(columns[c], steps, c, stretch.begin, stretch.end);
            if (!ReadColumn(m_columns[c], stretch.begin, stretch.end, visitor)) {
                return {};
            }
            samples += columns[c].times.size();
        }
        writer.Append(columns);
        stretch.Tell(samples);
    }
    return arena;
}

bool ZRLoggerData::GroupColumns(std::span<const std::int64_t> cuts, zr::Progress* progress,
                                std::vector<zr::SampleGrouper>& groupers)
{
    Steps steps(progress, m_columns.size(), m_from, m_to);
    // The hour types of a variable are read together.
    std::map<std::pair<ZRBasicString, const zr::HourRuns*>, zr::HourGrouper> split;
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        const Column& column = m_columns[c];
        const zr::HourRuns* const runs = column.hours.runs.get();
        const std::int32_t infoCode = column.infoCode != 0 ? column.infoCode : m_reader->InfoCode(column.variable);
        if (runs == nullptr) {
            groupers.emplace_back(infoCode, cuts);
            if (column.HasSamples() &&
                !NoteReading(GroupColumn(*m_reader, column.variable, groupers.back(), steps, c, m_from, m_to))) {
                return false;
            }
            continue;
        }
        const auto [entry, isNew] = split.try_emplace(std::pair(column.variable, runs), infoCode, cuts, *runs);
        if (isNew &&
            !NoteReading(GroupColumn(*m_reader, column.variable, entry->second.Samples(), steps, c, m_from, m_to))) {
            return false;
        }
        groupers.push_back(entry->second.Of(column.hours.hourType));
    }
    return true;
}

zr::RecordArena ZRLoggerData::BuildGrouped(std::int32_t period, zr::Progress* progress)
{
    std::vector<std::int64_t> cuts = zr::PeriodCuts(m_zone, m_from / kMicros, (m_to + kMicros - 1) / kMicros, period);
    std::for_each(cuts.begin(), cuts.end(), [](std::int64_t& cut) { cut *= kMicros; });
    // The range may begin and end within a second.
    cuts.front() = m_from;
    cuts.back() = m_to;
    std::vector<zr::SampleGrouper> groupers;
    if (!GroupColumns(cuts, progress, groupers)) {
        return {};
    }
    std::vector<std::size_t> held;
    for (std::size_t g = 0; g + 1 < cuts.size(); ++g) {
        if (std::any_of(groupers.begin(), groupers.end(), [g](const auto& grouper) { return grouper.IsValid(g); })) {
            held.push_back(g);
        }
    }
    zr::RecordArena arena(groupers.size());
    const zr::RecordChunk chunk = arena.Append(held.size());
    zr::LoggedValue* value = chunk.values;
    for (std::size_t r = 0; r < held.size(); ++r) {
        chunk.times[r] = cuts[held[r]];
        for (const zr::SampleGrouper& grouper : groupers) {
            const bool isValid = grouper.IsValid(held[r]);
            *value++ = {static_cast<std::uint8_t>(isValid ? 1 : 0), grouper.Value(held[r])};
        }
    }
    zr::RecordWriter(arena, m_zone).WriteTimes(chunk);
    return arena;
}
