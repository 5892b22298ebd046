#include "hosts/kestrix/ui/LoggedDataPageView.h"

#include "hosts/kestrix/ui/DevicePageView.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/Images.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace zr::desktop {
namespace {

constexpr int kIconSize = 32;
constexpr int kStateSize = 18;
constexpr int kColumnGap = 14;
constexpr int kLeastColumn = 40;

}  // namespace

LoggedDataPageView::LoggedDataPageView(QWidget* parent, Source source)
    : PageView(parent), m_source(std::move(source)), m_shown(m_source())
{
    setAccessibleName(LoadText(kTextLoggedData));
    setAccessibleDescription(ToQt(m_shown.state));
    PlaceAgain();
}

void LoggedDataPageView::UpdateValues()
{
    LoggedDataPage page = m_source();
    if (page == m_shown) {
        return;
    }
    m_shown = std::move(page);
    setAccessibleDescription(ToQt(m_shown.state));
    PlaceAgain();
}

int LoggedDataPageView::Place(int width)
{
    int y = PlaceHeader(width);
    if (!m_shown.stores.empty()) {
        y = PlaceStores(y, width) + 12;
    }
    if (!m_shown.dataSets.empty()) {
        y = PlaceDataSets(y, width) + 12;
    }
    return y;
}

int LoggedDataPageView::PlaceHeader(int width)
{
    AddIcon({kMargin, kMargin, kIconSize, kIconSize}, ui::NamedImage(QStringLiteral("period")));
    const QString state = ToQt(m_shown.state);
    const int stateWidth = WidthOf(state, TextRole::Section);
    const int stateLeft = width - kMargin - stateWidth;
    const int titleHeight = QFontMetrics(FontOf(TextRole::Title)).height();
    AddText({stateLeft, kMargin, stateWidth, titleHeight}, state, TextRole::Section);
    AddIcon({stateLeft - 24, kMargin + (titleHeight - kStateSize) / 2, kStateSize, kStateSize},
            StateIcon(m_shown.badge));
    const int textLeft = kMargin + kIconSize + 12;
    AddText({textLeft, kMargin, stateLeft - 30 - textLeft, titleHeight}, LoadText(kTextLoggedData), TextRole::Title);
    AddText({textLeft, kMargin + titleHeight, width - kMargin - textLeft, RowHeight()}, ToQt(m_shown.place),
            TextRole::Quiet);
    return kMargin + titleHeight + RowHeight() + 8;
}

int LoggedDataPageView::PlaceSection(const QString& title, int top, int width)
{
    AddText({kMargin, top, width - 2 * kMargin, SectionHeight()}, title, TextRole::Section);
    const int bottom = top + SectionHeight();
    AddLine(kMargin, width - kMargin, bottom - 3);
    return bottom + 2;
}

int LoggedDataPageView::PlaceStores(int top, int width)
{
    using Store = LoggedDataPage::Store;
    const std::vector<Column> columns = {
        {LoadText(kTextLoggedStore), {}, Qt::AlignLeft, Cells(&Store::title)},
        {LoadText(kTextHeadingState), {}, Qt::AlignLeft, Cells(&Store::state)},
        {LoadText(kTextLoggedWaiting), LoadText(kTextLoggedSamples), Qt::AlignRight, Cells(&Store::waiting)},
        {LoadText(kTextLoggedOnDisk), QStringLiteral("MiB"), Qt::AlignRight, Cells(&Store::waitingOnDisk)},
    };
    return PlaceTable(columns, Cells(&Store::trouble), PlaceSection(LoadText(kTextLoggedStore), top, width), width);
}

int LoggedDataPageView::PlaceDataSets(int top, int width)
{
    using DataSet = LoggedDataPage::DataSet;
    const QString samples = LoadText(kTextLoggedSamples);
    const std::vector<Column> columns = {
        {LoadText(kTextLoggedDataSet), {}, Qt::AlignLeft, Cells(&DataSet::name)},
        {LoadText(kTextLoggedPeriod), {}, Qt::AlignRight, Cells(&DataSet::period)},
        {LoadText(kTextLoggedKept), {}, Qt::AlignRight, Cells(&DataSet::retention)},
        {LoadText(kTextLoggedVariables), {}, Qt::AlignRight, Cells(&DataSet::variables)},
        {LoadText(kTextLoggedRecorded), samples, Qt::AlignRight, Cells(&DataSet::recorded)},
        {LoadText(kTextLoggedNotRecorded), samples, Qt::AlignRight, Cells(&DataSet::notRecorded)},
        {LoadText(kTextLoggedLast), {}, Qt::AlignRight, Cells(&DataSet::last)},
    };
    Notes notes;
    for (const DataSet& set : m_shown.dataSets) {
        notes.push_back(set.reasons.IsEmpty() ? QString() : FilledText(kTextLoggedReasons, {set.reasons}));
    }
    return PlaceTable(columns, notes, PlaceSection(LoadText(kTextLoggedDataSets), top, width), width);
}

// As wide as their texts ask for; what is missing or left over goes to the first column.
std::vector<int> LoggedDataPageView::WidthsFor(const std::vector<Column>& columns, int room) const
{
    std::vector<int> widths;
    for (const Column& column : columns) {
        int needed = std::max(WidthOf(column.heading, TextRole::Heading), WidthOf(column.unit, TextRole::Unit));
        for (const QString& cell : column.cells) {
            needed = std::max(needed, WidthOf(cell, TextRole::Text));
        }
        widths.push_back(needed);
    }
    const int gaps = kColumnGap * (static_cast<int>(columns.size()) - 1);
    const int others = std::accumulate(widths.begin() + 1, widths.end(), 0);
    widths.front() = std::max(room - gaps - others, kLeastColumn);
    return widths;
}

int LoggedDataPageView::PlaceTable(const std::vector<Column>& columns, const Notes& notes, int top, int width)
{
    const std::vector<int> widths = WidthsFor(columns, width - 2 * kMargin);
    const int line = RowHeight();
    const bool hasUnits =
        std::any_of(columns.begin(), columns.end(), [](const Column& column) { return !column.unit.isEmpty(); });
    std::vector<int> rows;  // tops
    int y = top + (hasUnits ? 2 * line - 6 : line);
    for (const QString& note : notes) {
        rows.push_back(y);
        y += note.isEmpty() ? line : 2 * line - 4;
        AddLine(kMargin, width - kMargin, y - 1);
    }
    int left = kMargin;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        AddText({left, top, widths[i], line}, column.heading, TextRole::Heading, column.alignment);
        AddText({left, top + line - 6, widths[i], line}, column.unit, TextRole::Unit, column.alignment);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            AddText({left, rows[row], widths[i], line - 1}, column.cells[row], TextRole::Text, column.alignment);
        }
        left += widths[i] + kColumnGap;
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        AddText({kMargin + 12, rows[row] + line - 5, width - 2 * kMargin - 12, line - 1}, notes[row], TextRole::Quiet);
    }
    return y;
}

std::vector<QString> LoggedDataPageView::Cells(ZRBasicString LoggedDataPage::DataSet::*field) const
{
    std::vector<QString> cells;
    for (const LoggedDataPage::DataSet& set : m_shown.dataSets) {
        cells.push_back(ToQt(set.*field));
    }
    return cells;
}

std::vector<QString> LoggedDataPageView::Cells(ZRBasicString LoggedDataPage::Store::*field) const
{
    std::vector<QString> cells;
    for (const LoggedDataPage::Store& store : m_shown.stores) {
        cells.push_back(ToQt(store.*field));
    }
    return cells;
}

}  // namespace zr::desktop
