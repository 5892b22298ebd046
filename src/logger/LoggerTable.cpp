#include "logger/LoggerTable.h"

#include "logger/SuiteKey.h"
#include "logger/TableSettings.h"
#include "siblings/driversupport/VariableReference.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <utility>

namespace zr::logger {

namespace {

// The stored width of the time column; the default is stored where there is none.
int TimeColumnWidth(int defaultWidth)
{
    SuiteKey key(kTablesKey);
    std::uint32_t width = 0;
    if (!key.ReadNumber(kTimeColumnValue, width)) {
        key.WriteNumber(kTimeColumnValue, static_cast<std::uint32_t>(defaultWidth));
        return defaultWidth;
    }
    return static_cast<int>(std::min<std::uint32_t>(width, kMaxColumnWidth));
}

}  // namespace

void LoggerTable::Setup(const ZRLoggerInfo& info, XmlNode* node)
{
    m_info = info;
    m_info.Lock();
    m_configNode = node;
    if (m_profile.NVars() == 0) {
        FillProfile();
        TableSettings(m_profile, m_info, m_configNode).GetLastConfiguration();
    }
    m_totalProfile = m_profile;
    ActualizeList();
}

void LoggerTable::FillProfile()
{
    int position = 0;
    for (ZRDriverVariable* variable : m_info.variables) {
        ZRDeviceDriver::tagSVariableInfo told;
        if (variable->Info(told)) {
            ZRBasicString title;
            GetTitleVariable(*variable, title, kTitleAmongDevices);
            m_profile.AddVariable(variable->fullName, title, position, told.measureUnits, told.valueExponent,
                                  told.unitsDecimals, kNewColumnWidth, told.unitsExponent);
        }
        ++position;
    }
}

void LoggerTable::ActualizeList()
{
    CompactOrder(m_profile);
    ZRBasicString timeTitle;
    ZRLoadString(kTextTimeColumn, timeTitle);
    const ColumnPlan plan = PlanColumns(m_profile, m_info, timeTitle, TimeColumnWidth(m_list.StringWidth(kWidestTime)));
    m_columns = plan.columns;
    m_values = FindValueColumns(m_profile, m_info, MatchBy::Name);
    m_list.SetColumns(plan.columns, plan.displayOrder);
}

void LoggerTable::Update(int groupBy, const ZRLoggerData::CRecordGroup& group)
{
    m_groupBy = groupBy;
    m_group = &group;
    m_cursor.Reset(m_group);
    m_list.SetItemCount(m_cursor.Count());
}

void LoggerTable::SetInvalidData(bool invalid)
{
    m_invalidData = invalid;
    if (invalid) {
        m_group = nullptr;
        m_cursor.Reset(nullptr);
        m_print.reset();
        m_list.SetItemCount(0);
    }
}

const ZRBasicString& LoggerTable::CellText(int row, int subItem)
{
    m_cellText.Clear();
    const LoggedRecord* const record = m_cursor.MoveTo(row);
    if (record == nullptr || subItem < 0) {
        return m_cellText;
    }
    if (subItem == 0) {
        return FormatTableViewerTime(m_cellText, record->time, m_groupBy);
    }
    if (static_cast<std::size_t>(subItem) <= m_values.size()) {
        m_values[static_cast<std::size_t>(subItem) - 1].Text(*record, m_cellText);
    }
    return m_cellText;
}

void LoggerTable::GetLoggerInfo(ZRLoggerInfo& out) const
{
    out.DeleteAll();
    for (const ZRDriverVariable* variable : m_info.variables) {
        out.AddVariable(variable->fullName);
    }
}

bool LoggerTable::OnConfig(const ProfileDialog& dialog)
{
    ZRTableProfile before;
    before = m_profile;
    const ZRLoggerInfo infoBefore(m_info);
    ReorderVariables(m_profile, m_list, m_columns, true);
    ZRTableProfile copy;
    copy = m_profile;
    if (!dialog(copy, m_totalProfile, m_info)) {
        // As it was: the columns on the screen are those of before, and the records hold a value for each variable of
        // before, by position.
        m_profile = before;
        m_info = infoBefore;
        return false;
    }
    m_profile = copy;
    TableSettings(m_profile, m_info, m_configNode).SetLastConfiguration();
    return true;
}

void LoggerTable::OnDestroy()
{
    if (m_columns.empty()) {
        // Nothing was ever shown whose widths could be kept.
        return;
    }
    SuiteKey key(kTablesKey);
    for (int column = 0; column <= static_cast<int>(m_profile.NVars()); ++column) {
        key.WriteNumber(FormatText(u"Column%d", {column + 1}).CStr(),
                        static_cast<std::uint32_t>(ShownWidth(m_list.ColumnWidth(column))));
    }
    ReorderVariables(m_profile, m_list, m_columns, false);
    TableSettings(m_profile, m_info, m_configNode).SetLastConfiguration();
}

std::vector<ZRBasicString> LoggerTable::Titles() const
{
    std::vector<ZRBasicString> titles;
    for (const TableColumn& column : m_columns) {
        titles.push_back(ColumnText(column.text));
    }
    titles.resize(m_profile.NVars() + 1);
    return titles;
}

TableCopy LoggerTable::ClipboardCopy(const CopyRoom::Grant& limit) const
{
    const std::vector<ZRBasicString> titles = Titles();
    const std::vector<ValueColumn> values = FindValueColumns(m_profile, m_info, MatchBy::Title);
    return TableCopy({titles, values, m_group, m_groupBy, RowSelection(m_list.SelectedRows())}, limit);
}

const TablePrint& LoggerTable::OnBeginPrinting(const PrintDevice& device, PrintMeasure& measure)
{
    m_print.emplace(PrintSource{&m_profile, FindValueColumns(m_profile, m_info, MatchBy::Title), m_group, m_groupBy,
                                RowSelection(m_list.SelectedRows())},
                    device, measure);
    return *m_print;
}

ZRBasicString LoggerTable::LeftOutOfPrint(int areaRight) const
{
    constexpr std::size_t kMost = 5;  // titles, so that the message stays one
    constexpr std::size_t kLongest = 60;
    const std::vector<std::size_t> columns =
        m_print.has_value() ? m_print->LeftOut(areaRight) : std::vector<std::size_t>();
    std::u16string titles;
    for (std::size_t i = 0; i < std::min(columns.size(), kMost); ++i) {
        const auto record = std::next(m_profile.VarsBegin(), static_cast<std::ptrdiff_t>(columns[i]));
        const std::u16string_view title = (*record)->Title.Text();
        titles += titles.empty() ? u"" : u", ";
        titles += title.substr(0, kLongest);
        titles += title.size() > kLongest ? u"..." : u"";
    }
    titles += columns.size() > kMost ? u", ..." : u"";
    return ZRBasicString(titles);
}

PrintedPage LoggerTable::Print(int page, const PrintRect& area, const ZRBasicString& caption) const
{
    return m_print.has_value() ? m_print->Page(page, area, caption) : PrintedPage();
}

}  // namespace zr::logger
