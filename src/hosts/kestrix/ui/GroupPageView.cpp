#include "hosts/kestrix/ui/GroupPageView.h"

#include "hosts/kestrix/ui/DevicePageView.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/Images.h"

#include <algorithm>
#include <QMouseEvent>
#include <QToolButton>

namespace zr::desktop {
namespace {

constexpr int kIconSize = 32;
constexpr int kColumnGap = 10;
constexpr int kStateSize = 14;
constexpr int kButtonSize = 24;

}  // namespace

GroupPageView::GroupPageView(QWidget* parent, const PlantWatch& watch, QString title,
                             const std::vector<ZRBasicString>& devices)
    : PageView(parent), m_watch(watch), m_title(std::move(title)), m_devices(devices)
{
    std::vector<const VariableTable*> variables;
    for (const ZRBasicString& device : m_devices) {
        const DeviceWatch* const known = m_watch.Find(device);
        const auto store = known != nullptr ? known->Driver().Store() : nullptr;
        variables.push_back(store != nullptr ? &store->Table() : nullptr);
    }
    for (GroupTable& table : MakeGroupTables(variables)) {
        ShownTable shown;
        shown.table = std::move(table);
        for (const GroupSection& section : shown.table.sections) {
            for (const GroupRow& row : section.rows) {
                shown.descriptionWidth =
                    std::max(shown.descriptionWidth, WidthOf(ToQt(row.row.description), TextRole::Text));
                shown.unitWidth = std::max(shown.unitWidth, WidthOf(ToQt(row.row.unit), TextRole::Unit));
            }
        }
        m_tables.push_back(std::move(shown));
    }
    for (std::size_t i = 0; i < m_tables.size(); ++i) {
        m_tables[i].previous = new QToolButton(this);
        m_tables[i].next = new QToolButton(this);
        m_tables[i].previous->setArrowType(Qt::LeftArrow);
        m_tables[i].next->setArrowType(Qt::RightArrow);
        m_tables[i].previous->setToolTip(LoadText(kTextPagerPrevious));
        m_tables[i].next->setToolTip(LoadText(kTextPagerNext));
        connect(m_tables[i].previous, &QToolButton::clicked, this, [this, i] { Turn(i, -1); });
        connect(m_tables[i].next, &QToolButton::clicked, this, [this, i] { Turn(i, 1); });
    }
    PlaceAgain();
}

// As wide as the longest number, and as the name of a device where that is not too long.
static int ColumnWidth(const QFontMetrics& metrics, const QFontMetrics& bold, const std::vector<ZRBasicString>& devices)
{
    int width = metrics.horizontalAdvance(QStringLiteral("-888.888,88"));
    for (const ZRBasicString& device : devices) {
        width = std::max(width, std::min(bold.horizontalAdvance(ToQt(device)) + kStateSize + 8, 150));
    }
    return width + kColumnGap;
}

int GroupPageView::LeftOfValues(const ShownTable& table) const
{
    return kMargin + table.descriptionWidth + 12 + table.unitWidth + 8;
}

std::size_t GroupPageView::ColumnsFor(const ShownTable& table, int width) const
{
    const int column = ColumnWidth(fontMetrics(), QFontMetrics(FontOf(TextRole::Heading)), m_devices);
    const int room = width - kMargin - LeftOfValues(table);
    return std::clamp<std::size_t>(static_cast<std::size_t>(std::max(room / column, 1)), 1, table.table.devices.size());
}

void GroupPageView::Turn(std::size_t table, int direction)
{
    ShownTable& turned = m_tables[table];
    const std::size_t step = turned.shown;
    if (direction < 0) {
        turned.first -= std::min(step, turned.first);
    } else if (turned.first + step < turned.table.devices.size()) {
        turned.first += step;
    }
    MakeCells();
    PlaceAgain();
}

// The controls of every column that is shown.
void GroupPageView::MakeCells()
{
    const std::optional<ValueRef> selection = Selection();
    ClearValues();
    for (ShownTable& shown : m_tables) {
        shown.cells.clear();
        shown.shown = ColumnsFor(shown, width());
        const std::size_t end = std::min(shown.first + shown.shown, shown.table.devices.size());
        std::size_t line = 0;
        for (const GroupSection& section : shown.table.sections) {
            for (const GroupRow& row : section.rows) {
                for (std::size_t column = shown.first; column < end; ++column) {
                    if (!row.variables[column]) {
                        continue;
                    }
                    const ValueRef ref{m_devices[shown.table.devices[column]], row.row.name, row.row.description,
                                       *row.variables[column]};
                    shown.cells[{line, column}] = &AddValue(ref, row.row);
                }
                ++line;
            }
        }
    }
    PageView::UpdateValues();
    Select(selection);
}

void GroupPageView::UpdateValues()
{
    PageView::UpdateValues();
    std::vector<DeviceState> states;
    for (const ZRBasicString& device : m_devices) {
        const DeviceWatch* const watch = m_watch.Find(device);
        states.push_back(watch != nullptr ? watch->State() : DeviceState::NotAsked);
    }
    if (states != m_shownStates) {
        m_shownStates = std::move(states);
        PlaceAgain();
    }
}

int GroupPageView::Place(int width)
{
    const bool isStale = std::any_of(m_tables.begin(), m_tables.end(),
                                     [&](const ShownTable& table) { return table.shown != ColumnsFor(table, width); });
    if (isStale) {
        MakeCells();
    }
    m_headings.clear();
    AddIcon({kMargin, kMargin, kIconSize, kIconSize}, ui::NamedImage(QStringLiteral("group")));
    const int titleHeight = QFontMetrics(FontOf(TextRole::Title)).height();
    const int textLeft = kMargin + kIconSize + 12;
    AddText({textLeft, kMargin, width - kMargin - textLeft, titleHeight}, m_title, TextRole::Title);
    const int online = static_cast<int>(std::count_if(m_devices.begin(), m_devices.end(), [this](const auto& device) {
        const DeviceWatch* const watch = m_watch.Find(device);
        return watch != nullptr && (watch->State() == DeviceState::OnLine || watch->State() == DeviceState::Alarm);
    }));
    const QString line = m_devices.size() == 1 ? FilledText(kTextStatusOneDevice, {online})
                                               : FilledText(kTextStatusDevices, {m_devices.size(), online});
    AddText({textLeft, kMargin + titleHeight, width - kMargin - textLeft, RowHeight()},
            m_devices.empty() ? LoadText(kTextPageEmptyGroup) : line, TextRole::Quiet);
    int y = kMargin + titleHeight + RowHeight() + 8;
    for (ShownTable& table : m_tables) {
        y = PlaceTable(table, y, width) + 20;
    }
    return y;
}

int GroupPageView::PlaceHeadings(ShownTable& shown, int top, int width)
{
    const std::size_t count = shown.table.devices.size();
    const std::size_t end = std::min(shown.first + shown.shown, count);
    const bool isPaged = shown.shown < count;
    shown.previous->setVisible(isPaged);
    shown.next->setVisible(isPaged);
    int y = top;
    if (isPaged) {
        shown.next->setGeometry(width - kMargin - kButtonSize, y, kButtonSize, kButtonSize);
        shown.previous->setGeometry(width - kMargin - 2 * kButtonSize - 4, y, kButtonSize, kButtonSize);
        shown.previous->setEnabled(shown.first > 0);
        shown.next->setEnabled(end < count);
        AddText({kMargin, y, width - 2 * kMargin - 2 * kButtonSize - 12, kButtonSize},
                FilledText(kTextPagerRange, {shown.first + 1, end, count}), TextRole::Quiet, Qt::AlignRight);
        y += kButtonSize + 4;
    }
    const int left = LeftOfValues(shown);
    const int column = (width - kMargin - left) / static_cast<int>(shown.shown);
    for (std::size_t i = shown.first; i < end; ++i) {
        const ZRBasicString& device = m_devices[shown.table.devices[i]];
        const DeviceWatch* const watch = m_watch.Find(device);
        const int right = left + static_cast<int>(i - shown.first + 1) * column;
        const int needed = std::min(WidthOf(ToQt(device), TextRole::Heading), column - kColumnGap - kStateSize - 4);
        AddText({right - needed, y, needed, RowHeight()}, ToQt(device), TextRole::Heading, Qt::AlignRight);
        AddIcon({right - needed - kStateSize - 4, y + (RowHeight() - kStateSize) / 2, kStateSize, kStateSize},
                StateIcon(watch->State()));
        m_headings.push_back({{right - column, y, column, RowHeight()}, device});
    }
    return y + RowHeight();
}

int GroupPageView::PlaceTable(ShownTable& shown, int top, int width)
{
    int y = PlaceHeadings(shown, top, width);
    const int left = LeftOfValues(shown);
    const int column = (width - kMargin - left) / static_cast<int>(shown.shown);
    const int height = RowHeight();
    std::size_t line = 0;
    for (const GroupSection& section : shown.table.sections) {
        AddText({kMargin, y, width - 2 * kMargin, SectionHeight()}, TitleOf(section.section), TextRole::Section);
        y += SectionHeight();
        AddLine(kMargin, width - kMargin, y - 3);
        for (const GroupRow& row : section.rows) {
            AddText({kMargin, y, shown.descriptionWidth + 2, height - 1}, ToQt(row.row.description), TextRole::Text);
            AddText({kMargin + shown.descriptionWidth + 12, y, shown.unitWidth + 2, height - 1}, ToQt(row.row.unit),
                    TextRole::Unit);
            for (std::size_t i = 0; i < shown.shown; ++i) {
                const auto cell = shown.cells.find({line, shown.first + i});
                if (cell != shown.cells.end()) {
                    cell->second->setGeometry(left + static_cast<int>(i) * column + kColumnGap, y + 1,
                                              column - kColumnGap, height - 3);
                }
            }
            AddLine(kMargin, width - kMargin, y + height - 1);
            y += height;
            ++line;
        }
    }
    return y;
}

void GroupPageView::mouseReleaseEvent(QMouseEvent* event)
{
    for (const Heading& heading : m_headings) {
        if (event->button() == Qt::LeftButton && heading.rect.contains(event->pos()) && m_deviceListener) {
            const ZRBasicString device = heading.device;
            m_deviceListener(device);  // may take this page away
            return;
        }
    }
    PageView::mouseReleaseEvent(event);
}

}  // namespace zr::desktop
