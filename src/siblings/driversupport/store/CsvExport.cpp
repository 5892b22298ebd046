#include "siblings/driversupport/store/CsvExport.h"

#include "siblings/driversupport/MeasureUnits.h"
#include "siblings/driversupport/store/CsvRows.h"
#include "siblings/driversupport/store/LoggerStore.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/Progress.h"
#include "siblings/tools/Utf.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace zr {

namespace {

constexpr std::int64_t kMicros = 1000000;
constexpr std::int64_t kEpoch = 946684800;  // of ZRDateTime, seconds since 1970
constexpr std::uint32_t kDay = 86400;
constexpr std::int32_t kLongMonth = 31 * 86400;
constexpr std::uint32_t kHour = 3600;
constexpr std::uint32_t kLongestWindow = 366 * kDay;
constexpr std::uint32_t kLast = ZRDateTime::kNoDate - 1;
// Records that a window of recorded samples should have at most.
constexpr std::size_t kRecords = 100000;
constexpr std::size_t kBytesAtOnce = 1u << 18;

// The part of a progress that one window is.
class WindowProgress final : public Progress {
public:
    WindowProgress(Progress* whole, std::uint32_t from, std::uint32_t to)
        : m_whole(whole), m_from(from), m_length(static_cast<double>(to) - from)
    {
    }

    void SetWindow(std::uint32_t begin, std::uint32_t end)
    {
        m_begin = static_cast<double>(begin - m_from) / m_length;
        m_share = static_cast<double>(end - begin) / m_length;
    }
    void SetText(const wchar*) override {}
    void SetPos(int percent) override
    {
        const auto pos = static_cast<int>(100.0 * m_begin + m_share * percent);
        if (m_whole != nullptr && pos > m_told) {
            m_told = pos;
            m_whole->SetPos(pos);
        }
    }
    [[nodiscard]] bool IsCancelled() const override { return m_whole != nullptr && m_whole->IsCancelled(); }

private:
    Progress* m_whole;
    std::uint32_t m_from;
    double m_length;
    double m_begin = 0.0;
    double m_share = 0.0;
    int m_told = -1;
};

std::uint32_t LocalSecond(std::int64_t utc)
{
    const std::int64_t local = PlantZone().ToLocal(utc / kMicros) - kEpoch;
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(local, 0, kLast));
}

// The cut at a local second or before it at which groups of a period begin; midnight for as recorded.
std::uint32_t PeriodBegin(std::uint32_t second, std::int32_t period)
{
    using namespace std::chrono;
    const std::uint32_t day = second / kDay;
    if (period < kLongMonth) {
        const std::uint32_t length = std::max(static_cast<std::uint32_t>(period) / kDay, 1U);
        return day / length * length * kDay;
    }
    const year_month_day date(sys_days(2000y / January / 1) + days(day));
    const int length = period / kLongMonth;
    const int month = (static_cast<int>(date.year()) - 2000) * 12 + static_cast<int>(unsigned{date.month()}) - 1;
    const year_month begin = 2000y / January + months(month / length * length);
    return static_cast<std::uint32_t>((sys_days(begin / 1) - sys_days(2000y / January / 1)).count()) * kDay;
}

// Whether a stretch of local time is one at all, and not skipped by the clock.
bool Exists(std::uint32_t begin, std::uint32_t end)
{
    return PlantZone().ToUtc(kEpoch + begin) < PlantZone().ToUtc(kEpoch + end);
}

ZRBasicString PlainReference(const ZRBasicString& reference)
{
    ZRBasicString filter;
    ZRBasicString hour;
    ZRBasicString driver;
    ZRBasicString variable;
    SplitFilterDriverVariable(reference, filter, hour, driver, variable);
    ZRBasicString plain;
    JoinFilterDriverVariable({}, {}, driver, variable, plain);
    return plain;
}

// Writes what one window holds. False when the sink fails.
bool WriteRecords(CsvSink& sink, const ZRLoggerData::CRecordGroup& group, std::size_t columns, CsvRows& rows,
                  std::size_t& values)
{
    std::string text;
    for (const RecordChunk& chunk : group.Chunks()) {
        for (std::size_t i = 0; i < chunk.size; ++i) {
            values += rows.Append(text, chunk.times[i], {chunk.records[i].values, columns});
            if (text.size() < kBytesAtOnce) {
                continue;
            }
            if (!sink.Write(text)) {
                return false;
            }
            text.clear();
        }
    }
    return text.empty() || sink.Write(text);
}

}  // namespace

CsvExport::CsvExport(CsvExportOptions options) : m_options(std::move(options)) {}

// Windows tell the same again and again.
void CsvExport::AddRemarks(const std::vector<std::string>& remarks)
{
    constexpr std::size_t kMostTold = 100;
    for (const std::string& remark : remarks) {
        if (m_remarks.size() < kMostTold && std::find(m_remarks.begin(), m_remarks.end(), remark) == m_remarks.end()) {
            m_remarks.push_back(remark);
        }
    }
}

bool CsvExport::Fail(std::string error)
{
    m_error = std::move(error);
    return false;
}

CsvExport::Result CsvExport::Run(CsvSink& sink, Progress* progress)
{
    ZRLoggerInfo info;
    for (const ZRBasicString& variable : m_options.variables) {
        info.AddVariable(variable);
    }
    if (!FindRange() || !WriteHeader(sink, info)) {
        return Result::Failed;
    }
    ZRLoggerData data;
    data.Setup(info);
    CsvRows rows(m_options.format, PlantZone());
    WindowProgress part(progress, m_from, m_to);
    if (progress != nullptr) {
        progress->SetText(u"Exporting");
    }
    for (std::uint32_t begin = m_from; begin < m_to;) {
        const std::uint32_t end = NextWindow(begin);
        part.SetWindow(begin, end);
        const bool isSelected = data.SelectData(ZRDateTime(begin, 0), ZRDateTime(end, 0), &part);
        const auto& group = data.RecordGroup(ZRDateTimeSpan(m_options.period, 0), &part);
        if (part.IsCancelled()) {
            return Result::Cancelled;
        }
        if ((!isSelected && Exists(begin, end)) || !data.Failure().empty()) {
            Fail(data.Failure().empty() ? "the store can't be read" : data.Failure());
            return Result::Failed;
        }
        if (!WriteRecords(sink, group, m_options.variables.size(), rows, m_values)) {
            Fail(sink.Error());
            return Result::Failed;
        }
        AddRemarks(data.Problems());
        AddRemarks(data.Damage());
        m_rows += static_cast<std::size_t>(group.count);
        part.SetPos(100);
        begin = end;
        AdaptWindow(static_cast<std::size_t>(group.count));
    }
    return Result::Done;
}

bool CsvExport::FindRange()
{
    LoggerStore* const store = CurrentLoggerStore();
    const std::unique_ptr<LoggerReader> reader = store != nullptr ? store->OpenReader() : nullptr;
    if (reader == nullptr) {
        return Fail(store != nullptr && !store->Error().empty() ? store->Error() : "the store can't be read");
    }
    constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max() / 2;
    std::int64_t first = kFar;
    std::int64_t last = -kFar;
    for (const ZRBasicString& reference : m_options.variables) {
        const ZRBasicString variable = PlainReference(reference);
        LoggerSample sample;
        if (reader->FirstFrom(variable, -kFar, sample)) {
            first = std::min(first, sample.time);
        } else if (!reader->Error().empty()) {
            return Fail(reader->Error());
        }
        if (reader->LastBefore(variable, kFar, sample)) {
            last = std::max(last, sample.time);
        }
    }
    if (m_options.from.IsValid()) {
        m_from = m_options.from.seconds;
    } else if (first <= last) {
        m_from = PeriodBegin(LocalSecond(first), m_options.period);
    }
    if (m_options.to.IsValid()) {
        m_to = m_options.to.seconds;
    } else if (first <= last) {
        m_to = static_cast<std::uint32_t>(std::min<std::uint64_t>(LocalSecond(last) / kDay * kDay + kDay, kLast));
    }
    return true;
}

bool CsvExport::WriteHeader(CsvSink& sink, const ZRLoggerInfo& info)
{
    ZRLoggerInfo locked(info);
    locked.Lock();
    std::string text = "time";
    for (const ZRDriverVariable* variable : locked.variables) {
        std::string name = Utf16ToUtf8(variable->fullName);
        ZRDeviceDriver::tagSVariableInfo told;
        ZRBasicString unit;
        if (variable->Info(told)) {
            MeasureUnitsText(unit, told.measureUnits, told.valueExponent);
        }
        name += unit.IsEmpty() ? "" : " [" + Utf16ToUtf8(unit) + "]";
        text += m_options.format.separator;
        AppendCsvCell(text, name, m_options.format.separator);
    }
    return sink.Write(text + '\n') || Fail(sink.Error());
}

// Below a day every midnight is a cut, so that windows of days give the groups that one window would. From a day on
// there are few enough groups for one.
std::uint32_t CsvExport::NextWindow(std::uint32_t begin) const
{
    std::uint64_t end = m_to;
    if (m_options.period == 0) {
        end = std::uint64_t{begin} + m_window;
    } else if (static_cast<std::uint32_t>(m_options.period) < kDay) {
        const std::uint64_t days = kRecords * static_cast<std::uint64_t>(m_options.period) / kDay;
        end = begin / kDay * kDay + std::clamp<std::uint64_t>(days * kDay, kDay, kLongestWindow);
    }
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(end, m_to));
}

void CsvExport::AdaptWindow(std::size_t records)
{
    if (records > kRecords) {
        m_window = std::max(m_window / 4, kHour);
    } else if (records < kRecords / 4) {
        m_window = std::min(m_window * 2, kLongestWindow);
    }
}

}  // namespace zr
