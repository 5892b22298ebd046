// The table of logged data: all that its window shows and does, without the window.
#pragma once

#include "logger/RecordCursor.h"
#include "logger/TableColumns.h"
#include "logger/TableCopy.h"
#include "logger/TablePrint.h"
#include "logger/TableTexts.h"
#include "profiles/ZRTableProfile.h"
#include "siblings/driversupport/ZRLoggerData.h"
#include "siblings/tools/XmlDocument.h"

#include <functional>
#include <optional>
#include <vector>

namespace zr::logger {

// The registry key of the widths, below the suite's, and the one that is read back.
inline constexpr const wchar* kTablesKey = u"\\Tables";
inline constexpr const wchar* kTimeColumnValue = u"Column1";
// Its width is the default of the time column.
inline constexpr const wchar* kWidestTime = u"30-12-2002 23:58";

// One row a record, the time first and a column for each variable of the profile. Nothing is copied from the records:
// each cell is written when the list asks for it.
//
// Setup, then Update for each load; between SetInvalidData(true) and the next Update there are no rows. OnDestroy last,
// while the list is still there. UI thread only.
class LoggerTable {
public:
    // Not owned; must outlive this.
    explicit LoggerTable(TableList& list) : m_list(list) {}
    LoggerTable(const LoggerTable&) = delete;
    LoggerTable& operator=(const LoggerTable&) = delete;

    // Takes a copy of the variables and locks it; the node is that of the viewer settings, may be null, and must
    // outlive this. Only a profile that is empty is filled, from the variables that can be described and by what the
    // settings say of them; one that isn't stays as it is. Puts the columns into the list.
    void Setup(const ZRLoggerInfo& info, XmlNode* node);

    // New data; the group must live until the next Update or SetInvalidData(true). Puts the number of rows into the
    // list.
    void Update(int groupBy, const ZRLoggerData::CRecordGroup& group);
    // With true the list has no rows until the next Update.
    void SetInvalidData(bool invalid);
    [[nodiscard]] bool InvalidData() const { return m_invalidData; }

    // The text of a cell; empty for one that isn't there. Valid until the next call: the next cell takes its place.
    const ZRBasicString& CellText(int row, int subItem);

    // Empties out and fills it with the names of the variables; it stays unlocked.
    void GetLoggerInfo(ZRLoggerInfo& out) const;

    // The dialog that edits a profile: the copy to edit, the columns as they were at Setup, and the variables, to which
    // it may add and from which it may take. True when it ended with OK.
    using ProfileDialog = std::function<bool(ZRTableProfile& copy, ZRTableProfile& total, ZRLoggerInfo& info)>;
    // Runs the dialog on the columns in the order of the screen. True: the profile is new and the settings are kept,
    // and the explorer has to set up and to load anew. False: nothing has changed, whatever the dialog did.
    bool OnConfig(const ProfileDialog& dialog);

    // Keeps widths and arrangement of the columns; nothing without a Setup before.
    void OnDestroy();

    // The texts of the selected rows, or of all when none is selected.
    [[nodiscard]] TableCopy ClipboardCopy(const CopyRoom::Grant& limit = {}) const;

    // Measures the selected rows, or all; the last page is in what it returns, which lives until OnEndPrinting.
    const TablePrint& OnBeginPrinting(const PrintDevice& device, PrintMeasure& measure);
    // A page, one-based; empty before OnBeginPrinting. caption: what stands above the table.
    [[nodiscard]] PrintedPage Print(int page, const PrintRect& area, const ZRBasicString& caption) const;
    void OnEndPrinting() { m_print.reset(); }
    // The titles of the columns that no page of such a width has room for, separated by commas; of many or
    // long ones the beginning.
    [[nodiscard]] ZRBasicString LeftOutOfPrint(int areaRight) const;

    // Of rows; 0 while the data are invalid.
    [[nodiscard]] int Count() const { return m_cursor.Count(); }
    [[nodiscard]] ZRTableProfile& Profile() { return m_profile; }
    [[nodiscard]] ZRTableProfile& TotalProfile() { return m_totalProfile; }
    [[nodiscard]] const ZRLoggerInfo& LoggerInfo() const { return m_info; }
    // As they were put into the list.
    [[nodiscard]] const std::vector<TableColumn>& Columns() const { return m_columns; }

private:
    void FillProfile();
    void ActualizeList();
    // One for the time and each record; empty for one that has no column.
    [[nodiscard]] std::vector<ZRBasicString> Titles() const;

    TableList& m_list;
    ZRTableProfile m_profile;
    // Of the columns as at the last Setup: the second profile of the dialog.
    ZRTableProfile m_totalProfile;
    XmlNode* m_configNode = nullptr;  // Not owned.
    ZRLoggerInfo m_info;
    std::vector<TableColumn> m_columns;
    std::vector<ValueColumn> m_values;                    // of the screen
    const ZRLoggerData::CRecordGroup* m_group = nullptr;  // Not owned; null while the data are invalid.
    RecordCursor m_cursor;
    ZRBasicString m_cellText;
    int m_groupBy = 0;
    bool m_invalidData = false;
    std::optional<TablePrint> m_print;
};

}  // namespace zr::logger
