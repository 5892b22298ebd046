// The one place that knows the library for workbooks.
#include "hosts/kestrix/TableExport.h"
#include "hosts/kestrix/XlsxCheck.h"
#include "platform/FileReplace.h"

#include <xlsxwriter.h>
#include <algorithm>
#include <memory>

namespace zr::desktop {
namespace {

constexpr std::int64_t kMostRows = 1048576 - 1;  // of a sheet, without the titles
constexpr double kDaysToEpoch = 36526.0;         // 1 January 2000, as a sheet counts days
constexpr double kSecondsOfDay = 86400.0;
constexpr double kTimeWidth = 20.0;  // characters
constexpr double kValueWidth = 16.0;
constexpr int kWritten = 60;  // percent of the work: the rest is packing, and reading back

class Sheet {
public:
    Sheet(lxw_workbook* book, const ExportedTable& table)
        : m_book(book), m_sheet(workbook_add_worksheet(book, nullptr)), m_table(table)
    {
    }

    // False when the user stopped it.
    bool Write(Progress* progress)
    {
        WriteTitles();
        lxw_format* const time = workbook_add_format(m_book);
        format_set_num_format(time, "yyyy-mm-dd hh:mm:ss");
        const std::vector<lxw_format*> numbers = NumberFormats();
        RecordOffsets offsets(m_table.zone);
        ExportProgress walk(progress, m_table.group->count, kWritten);
        lxw_row_t row = 1;
        for (auto record = m_table.group->first; record != m_table.group->last; ++record, ++row) {
            if (!walk.Next()) {
                return false;
            }
            const ZRDateTime& local = (*record)->time;
            worksheet_write_number(m_sheet, row, 0, kDaysToEpoch + local.seconds / kSecondsOfDay, time);
            worksheet_write_string(m_sheet, row, 1, OffsetText(offsets.Of(local)).c_str(), nullptr);
            for (std::size_t i = 0; i < m_table.values.size(); ++i) {
                double value = 0.0;
                if (m_table.values[i].Read(**record, value)) {
                    worksheet_write_number(m_sheet, row, static_cast<lxw_col_t>(i + 2), value, numbers[i]);
                }
            }
        }
        return true;
    }

private:
    std::vector<lxw_format*> NumberFormats()
    {
        std::vector<lxw_format*> numbers;
        for (const logger::ValueColumn& column : m_table.values) {
            const int decimals = std::clamp(column.decimals, 0, 15);
            const std::string digits = decimals > 0 ? "0." + std::string(static_cast<std::size_t>(decimals), '0') : "0";
            numbers.push_back(workbook_add_format(m_book));
            format_set_num_format(numbers.back(), digits.c_str());
        }
        return numbers;
    }

    void WriteTitles()
    {
        lxw_format* const bold = workbook_add_format(m_book);
        format_set_bold(bold);
        format_set_text_wrap(bold);
        const auto count = static_cast<lxw_col_t>(m_table.titles.size());
        worksheet_set_column(m_sheet, 0, 0, kTimeWidth, nullptr);
        worksheet_set_column(m_sheet, 1, count, kValueWidth, nullptr);
        worksheet_freeze_panes(m_sheet, 1, 0);
        lxw_col_t column = 0;
        for (const std::string& title : m_table.titles) {
            worksheet_write_string(m_sheet, 0, column++, title.c_str(), bold);
            if (column == 1) {
                worksheet_write_string(m_sheet, 0, column++, m_table.offsetTitle.c_str(), bold);
            }
        }
    }

    lxw_workbook* m_book;
    lxw_worksheet* m_sheet;
    const ExportedTable& m_table;
};

// Rows go to the disk as they are written.
bool WriteBook(const ExportedTable& table, const std::filesystem::path& file, Progress* progress, std::string& reason)
{
    // It tells why where the library wouldn't, and is for its user alone, as every file of ours.
    if (!WriteFileReplacing(file, {}, reason)) {
        return false;
    }
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    lxw_workbook* const book = workbook_new_opt(TextOfPath(file).c_str(), &options);
    if (book == nullptr) {
        reason = "not enough memory";
        return false;
    }
    const bool isWritten = Sheet(book, table).Write(progress);
    const lxw_error error = workbook_close(book);
    if (!isWritten) {
        return false;
    }
    if (error != LXW_NO_ERROR) {
        reason = lxw_strerror(error);
        return false;
    }
    if (!HoldsRows(file, std::int64_t{table.group->count} + 1)) {
        reason = "not all of it could be written; the disk may be full, or the folder of temporary files";
        return false;
    }
    return true;
}

}  // namespace

bool WriteXlsx(const ExportedTable& table, const std::filesystem::path& file, Progress* progress, std::string& reason)
{
    if (table.group->count > kMostRows) {
        reason = "a sheet holds 1048575 records at most";
        return false;
    }
    std::error_code failed;
    std::filesystem::path target = std::filesystem::weakly_canonical(file, failed);  // where a link leads
    if (failed) {
        target = file;
    }
    // The whole is put in place at the end.
    std::filesystem::path part = target;
    part += ".part";
    if (WriteBook(table, part, progress, reason) && PutFileInPlace(part, target, reason)) {
        return true;
    }
    std::filesystem::remove(part, failed);
    return false;
}

}  // namespace zr::desktop
