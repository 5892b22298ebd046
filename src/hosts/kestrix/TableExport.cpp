#include "hosts/kestrix/TableExport.h"

#include "platform/FileReplace.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/tools/Utf.h"
#include "siblings/tools/ZRLoadString.h"

#include <fmt/format.h>
#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace zr::desktop {
namespace {

constexpr std::int64_t kEpoch = 946684800;            // of ZRDateTime, seconds since 1970
constexpr std::size_t kPiece = std::size_t{1} << 20;  // bytes that are written at a time

struct KindExtension {
    ExportKind kind;
    const char* extension;
};
constexpr KindExtension kExtensions[] = {
    {ExportKind::Csv, ".csv"}, {ExportKind::Workbook, ".xlsx"}, {ExportKind::Pdf, ".pdf"}};

std::string Quoted(const std::string& cell)
{
    if (cell.find_first_of(",\"\r\n") == std::string::npos) {
        return cell;
    }
    std::string quoted = "\"";
    for (const char character : cell) {
        quoted += character == '"' ? "\"\"" : std::string(1, character);
    }
    return quoted + '"';
}

std::string TitleLine(const ExportedTable& table)
{
    std::string line;
    for (std::size_t i = 0; i < table.titles.size(); ++i) {
        line += (i > 0 ? "," : "") + Quoted(table.titles[i]);
    }
    return line + "\r\n";
}

void AppendRow(const LoggedRecord& record, const ExportedTable& table, RecordOffsets& offsets, std::string& text)
{
    const ZRDateTime& time = record.time;
    int year = 0;
    int month = 0;
    int day = 0;
    ZRDateTime::DateTime2DMY(time.seconds, day, month, year, true);
    const unsigned clock = time.seconds % 86400;
    fmt::format_to(std::back_inserter(text), "{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}", year + 1999, month, day,
                   clock / 3600, clock / 60 % 60, clock % 60, OffsetText(offsets.Of(time)));
    for (const logger::ValueColumn& column : table.values) {
        text += ',';
        double value = 0.0;
        if (column.Read(record, value)) {
            fmt::format_to(std::back_inserter(text), "{:.{}f}", value, std::max(column.decimals, 0));
        }
    }
    text += "\r\n";
}

}  // namespace

std::optional<ExportKind> ExportKindOf(const std::filesystem::path& file)
{
    std::string extension = TextOfPath(file.extension());
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    for (const auto& [kind, known] : kExtensions) {
        if (extension == known) {
            return kind;
        }
    }
    return std::nullopt;
}

const char* ExtensionOf(ExportKind kind)
{
    return std::find_if(std::begin(kExtensions), std::end(kExtensions),
                        [&](const auto& row) { return row.kind == kind; })
        ->extension;
}

ZRBasicString FileTitleOf(const ZRBasicString& name)
{
    constexpr std::u16string_view kNotInNames = u"/\\:*?\"<>|";
    std::u16string title(name.Text());
    std::replace_if(
        title.begin(), title.end(),
        [&](char16_t c) { return c < u' ' || kNotInNames.find(c) != std::u16string_view::npos; }, u'_');
    return ZRBasicString(title);
}

void SetColumns(ExportedTable& table, const ZRTableProfile& profile, const ZRLoggerInfo& info)
{
    ZRBasicString time;
    table.titles = {Utf16ToUtf8(ZRLoadString(logger::kTextTimeColumn, time))};
    table.values.clear();
    auto record = profile.VarsBegin();
    for (const logger::ValueColumn& value : FindValueColumns(profile, info, logger::MatchBy::Name)) {
        if (value.position >= 0) {
            table.titles.push_back(Utf16ToUtf8(logger::HeaderText(**record)));
            table.values.push_back(value);
        }
        ++record;
    }
}

void SetColumns(ExportedTable& table, const ZRGraphProfile& profile, const ZRLoggerInfo& info)
{
    ZRTableProfile columns;
    for (auto at = profile.VarsBegin(); at != profile.VarsEnd(); ++at) {
        const ZRGraphProfile::CVariableProfile& curve = **at;
        for (ZRDriverVariable* variable : info.variables) {
            if (variable->fullName == curve.Name) {
                ZRBasicString title;
                GetTitleVariable(*variable, title, logger::kTitleAmongDevices);
                columns.AddVariable(curve.Name, title, curve.Index, curve.MeasureUnits, curve.ValueExponent,
                                    curve.Decimals, 0, curve.UnitsExponent);
                break;
            }
        }
    }
    SetColumns(table, columns, info);
}

std::int32_t RecordOffsets::Of(const ZRDateTime& local)
{
    const std::int64_t time = kEpoch + local.seconds;
    std::int64_t utc = m_zone.ToUtc(time);
    const TimeZone::Span span = m_zone.SpanAt(utc);
    if (utc <= m_lastUtc && span.end != TimeZone::Span().end) {
        const std::int64_t second = time - m_zone.SpanAt(span.end).offset;
        utc = second >= span.end && m_zone.ToLocal(second) == time ? second : utc;
    }
    m_lastUtc = utc;
    return m_zone.SpanAt(utc).offset;
}

std::string OffsetText(std::int32_t seconds)
{
    const int minutes = std::abs(seconds) / 60;
    return fmt::format("{}{:02}:{:02}", seconds < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

bool ExportProgress::Next()
{
    if (m_progress != nullptr && m_done % kStep == 0) {
        m_progress->SetPos(static_cast<int>(std::int64_t{m_done} * m_percent / std::max(m_records, 1)));
        if (m_progress->IsCancelled()) {
            return false;
        }
    }
    ++m_done;
    return true;
}

bool WriteCsv(const ExportedTable& table, const std::filesystem::path& file, Progress* progress, std::string& reason)
{
    ReplacingFile target;
    if (!target.Open(file, reason)) {
        return false;
    }
    std::string text = TitleLine(table);
    RecordOffsets offsets(table.zone);
    ExportProgress walk(progress, table.group->count, 100);
    for (auto record = table.group->first; record != table.group->last; ++record) {
        if (!walk.Next()) {
            return false;
        }
        AppendRow(**record, table, offsets, text);
        if (text.size() >= kPiece) {
            if (!target.Write(text, reason)) {
                return false;
            }
            text.clear();
        }
    }
    return target.Write(text, reason) && target.Commit(reason);
}

}  // namespace zr::desktop
