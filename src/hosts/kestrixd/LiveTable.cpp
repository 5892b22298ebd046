#include "hosts/kestrixd/LiveTable.h"

#include "comm/ZRCommSystem.h"
#include "hosts/supervision/ValueText.h"
#include "siblings/tools/Utf.h"

#include <fmt/format.h>
#include <algorithm>

namespace zr::service {
namespace {

constexpr int kNameColumns = 14;
constexpr int kTypeColumns = 6;
constexpr int kRowsOfMessages = 4;

// Whole characters of UTF-8.
std::string CutTo(const std::string& text, std::size_t columns)
{
    return Utf16ToUtf8(ZRBasicString(Utf8ToUtf16(text).Text().substr(0, columns)));
}

// Cut to a number of code points, padded with blanks.
std::string Fit(const ZRBasicString& text, int columns)
{
    const auto width = static_cast<std::size_t>(columns);
    ZRBasicString cut(text.Text().substr(0, width));
    while (cut.Length() < width) {
        cut += u' ';
    }
    return Utf16ToUtf8(cut);
}

}  // namespace

LiveTable::LiveTable()
{
    ZRCommSystem& system = ZRCommSystem::Get();
    for (auto driver = system.DriversBegin(); driver != system.DriversEnd(); ++driver) {
        Row& row = m_rows.emplace_back(Row{*driver, {}});
        ZRDriverVariableNameIterator name;
        for ((*driver)->VariableNameBegin(name); !(name == ZRDeviceDriver::variableNameIteratorEnd); name++) {
            ZRDriverVariable variable;
            variable.Setup((*driver)->name + u"." + name.Name());
            if (variable.Lock()) {
                row.variables.push_back(variable);
            }
        }
    }
}

std::string LiveTable::RenderRow(const Row& row, int columns)
{
    std::string line = Fit(row.driver->name, kNameColumns) + ' ' + Fit(row.driver->DriverType(), kTypeColumns) + ' ' +
                       (row.driver->Online() ? "on line" : "silent ");
    int used = kNameColumns + 1 + kTypeColumns + 1 + 7;
    for (ZRDriverVariable& variable : row.variables) {
        ZRDeviceDriver::tagSVariableInfo info;
        if (!variable.Info(info)) {
            continue;
        }
        const std::string value = supervision::ValueText(variable);
        const std::string cell = fmt::format("  {} {}", Utf16ToUtf8(info.name), value);
        const int width = static_cast<int>(Utf16Length(cell));
        if (used + width > columns) {
            break;
        }
        line += cell;
        used += width;
    }
    return line;
}

std::string LiveTable::Render(int columns, int rows, const supervision::Summary& summary, const std::string& recording,
                              const std::deque<std::string>& messages) const
{
    const std::string head =
        fmt::format("{} of {} devices on line, {} of {} values valid, {} requests, {} time-outs", summary.online,
                    summary.devices, summary.valid, summary.variables, summary.transactions, summary.timeouts);
    const auto width = static_cast<std::size_t>(std::max(columns, 0));
    std::string text = head.substr(0, width) + "\n";
    if (!recording.empty()) {
        text += CutTo(recording, width) + "\n";
    }
    int room =
        rows - 2 - (recording.empty() ? 0 : 1) - std::min<int>(kRowsOfMessages, static_cast<int>(messages.size()));
    std::size_t shown = 0;
    for (const Row& row : m_rows) {
        if (room-- <= 0) {
            break;
        }
        text += RenderRow(row, columns) + '\n';
        ++shown;
    }
    if (shown < m_rows.size()) {
        text += fmt::format("... and {} more devices\n", m_rows.size() - shown);
    }
    const std::size_t first = messages.size() > kRowsOfMessages ? messages.size() - kRowsOfMessages : 0;
    for (std::size_t i = first; i < messages.size(); ++i) {
        text += CutTo(messages[i], width) + '\n';
    }
    return text;
}

}  // namespace zr::service
