// How a CSV file is written, by its first records.
#include "siblings/tools/CsvQuoting.h"
#include "siblings/tools/CsvReader.h"

#include <algorithm>
#include <array>

namespace zr {

namespace {

constexpr std::size_t kRecordsLookedAt = 50;
constexpr std::array kSeparators = {';', '\t', ','};

bool IsDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

struct Look {
    std::vector<std::size_t> widths;  // cells of each record
    std::size_t points = 0;           // numbers with a point
    std::size_t commas = 0;           // numbers with a comma
};

// The mark of a decimal number; 0 for what is none.
char MarkOf(std::string_view cell)
{
    while (!cell.empty() && (cell.front() == ' ' || cell.front() == '"')) {
        cell.remove_prefix(1);
    }
    while (!cell.empty() && (cell.back() == ' ' || cell.back() == '"' || cell.back() == '\r')) {
        cell.remove_suffix(1);
    }
    if (!cell.empty() && (cell.front() == '-' || cell.front() == '+')) {
        cell.remove_prefix(1);
    }
    // Beyond an exponent there is no mark.
    cell = cell.substr(0, cell.find_first_of("eE"));
    const std::size_t mark = cell.find_first_not_of("0123456789");
    if (mark == std::string_view::npos || mark + 1 >= cell.size() || (cell[mark] != '.' && cell[mark] != ',') ||
        !std::all_of(cell.begin() + static_cast<std::ptrdiff_t>(mark) + 1, cell.end(), IsDigit)) {
        return '\0';
    }
    return cell[mark];
}

Look LookAt(std::string_view head, char separator)
{
    Look look;
    CsvQuoting state = CsvQuoting::CellStart;
    std::size_t width = 1;
    std::size_t cell = 0;
    for (std::size_t at = 0; at < head.size() && look.widths.size() < kRecordsLookedAt; ++at) {
        const bool isRecordEnd = head[at] == '\n' && state != CsvQuoting::Quoted;
        state = isRecordEnd ? CsvQuoting::CellStart : NextCsvQuoting(state, head[at], separator);
        if (state != CsvQuoting::CellStart) {
            continue;
        }
        const char mark = MarkOf(head.substr(cell, at - cell));
        look.points += mark == '.' ? 1U : 0U;
        look.commas += mark == ',' ? 1U : 0U;
        cell = at + 1;
        ++width;
        if (isRecordEnd) {
            look.widths.push_back(width - 1);
            width = 1;
        }
    }
    return look;
}

// How many cells all records have; 0 where they differ or have one only.
std::size_t CommonWidth(const Look& look)
{
    if (look.widths.empty() || look.widths.front() < 2) {
        return 0;
    }
    const bool isCommon = std::all_of(look.widths.begin(), look.widths.end(),
                                      [&](std::size_t width) { return width == look.widths.front(); });
    return isCommon ? look.widths.front() : 0;
}

char FindSeparator(std::string_view head)
{
    char best = ',';
    std::size_t bestCommon = 0;
    std::size_t bestFirst = 1;
    for (const char separator : kSeparators) {
        const Look look = LookAt(head, separator);
        const std::size_t common = CommonWidth(look);
        const std::size_t first = look.widths.empty() ? 0 : look.widths.front();
        if (common > bestCommon || (bestCommon == 0 && first > bestFirst)) {
            best = separator;
            bestCommon = common;
            bestFirst = first;
        }
    }
    return best;
}

}  // namespace

CsvFormat DetectCsvFormat(std::string_view head, CsvFormat format)
{
    std::string whole;
    if (const std::size_t lastEnd = head.rfind('\n'); lastEnd != std::string_view::npos) {
        head = head.substr(0, lastEnd + 1);
    } else {
        whole = std::string(head) + '\n';
        head = whole;
    }
    if (format.separator == '\0') {
        format.separator = FindSeparator(head);
    }
    if (format.decimal == '\0') {
        const Look look = LookAt(head, format.separator);
        format.decimal = look.commas > look.points ? ',' : '.';
    }
    return format;
}

}  // namespace zr
