#include "hosts/kestrix/ui/DevicePageView.h"

#include "comm/ZRCommSystem.h"
#include "hosts/kestrix/PageFlow.h"
#include "hosts/kestrix/ui/UiTexts.h"
#include "platform/ui/Images.h"
#include "siblings/tools/DescriptionTable.h"

#include <algorithm>

namespace zr::desktop {
namespace {

constexpr int kLeastBar = 224;
constexpr int kMostBarColumns = 4;
constexpr int kMostRowColumns = 4;
constexpr int kColumnGap = 28;
constexpr int kBarGap = 20;
constexpr int kIconSize = 32;
constexpr int kUnitGap = 6;

}  // namespace

QString StateText(DeviceState state)
{
    switch (state) {
        case DeviceState::OnLine:
            return LoadText(kTextStateOnLine);
        case DeviceState::NotPolled:
            return LoadText(kTextStateUnpolled);
        case DeviceState::NotAsked:
            return LoadText(kTextStateUnasked);
        case DeviceState::Silent:
            return LoadText(kTextStateSilent);
        case DeviceState::Alarm:
            break;
    }
    return LoadText(kTextStateAlarm);
}

QIcon StateIcon(DeviceState state)
{
    switch (state) {
        case DeviceState::OnLine:
            return ui::NamedImage(QStringLiteral("state-online"));
        case DeviceState::NotPolled:
        case DeviceState::NotAsked:
            return ui::NamedImage(QStringLiteral("state-unasked"));
        case DeviceState::Silent:
            return ui::NamedImage(QStringLiteral("state-silent"));
        case DeviceState::Alarm:
            break;
    }
    return ui::NamedImage(QStringLiteral("state-alarm"));
}

DevicePageView::DevicePageView(QWidget* parent, const DeviceWatch& watch) : PageView(parent), m_watch(watch)
{
    m_shownState = watch.State();
    if (const auto store = watch.Driver().Store(); store != nullptr) {
        const DevicePage page = MakeDevicePage(store->Table());
        for (const PageSection& section : page.sections) {
            AddPart(section, page);
        }
    }
    PlaceAgain();
    PageView::UpdateValues();
}

void DevicePageView::AddPart(const PageSection& section, const DevicePage& page)
{
    Part part;
    part.section = section.section;
    const auto refOf = [this](const PageRow& row) {
        return ValueRef{m_watch.Driver().name, row.name, row.description, row.variable};
    };
    for (const PageRow& row : section.rows) {
        const bool hasBar = std::any_of(page.bars.begin(), page.bars.end(),
                                        [&](const PageRow& bar) { return bar.variable == row.variable; });
        if (hasBar) {
            part.bars.push_back(&AddBar(refOf(row), row));
        }
    }
    for (const PageRow& row : section.rows) {
        part.rows.push_back({row, &AddValue(refOf(row), row)});
    }
    m_parts.push_back(std::move(part));
}

void DevicePageView::UpdateValues()
{
    PageView::UpdateValues();
    if (m_watch.State() != m_shownState) {
        m_shownState = m_watch.State();
        PlaceAgain();
    }
}

int DevicePageView::Place(int width)
{
    int y = PlaceHeader(width);
    if (m_parts.empty()) {
        AddText({kMargin, y, width - 2 * kMargin, RowHeight()}, LoadText(kTextPageNoVariables), TextRole::Quiet);
        return y + RowHeight() + kMargin;
    }
    for (const Part& part : m_parts) {
        const bool hasOneUnit = std::all_of(part.rows.begin(), part.rows.end(),
                                            [&](const Row& row) { return row.row.unit == part.rows.front().row.unit; });
        QString title = TitleOf(part.section);
        if (hasOneUnit && !part.rows.front().row.unit.IsEmpty()) {
            title += QStringLiteral(" (%1)").arg(ToQt(part.rows.front().row.unit));
        }
        AddText({kMargin, y, width - 2 * kMargin, SectionHeight()}, title, TextRole::Section);
        y += SectionHeight();
        AddLine(kMargin, width - kMargin, y - 3);
        y = PlaceBars(part, y + 2, width);
        y = PlaceRows(part, y, width) + 12;
    }
    return y;
}

int DevicePageView::PlaceHeader(int width)
{
    const ZRDeviceDriver& driver = m_watch.Driver();
    AddIcon({kMargin, kMargin, kIconSize, kIconSize}, ui::NamedImage(ToQt(driver.ImageName())));
    const QString state = StateText(m_watch.State());
    const int stateWidth = WidthOf(state, TextRole::Section);
    const int stateLeft = width - kMargin - stateWidth;
    const int titleHeight = QFontMetrics(FontOf(TextRole::Title)).height();
    AddText({stateLeft, kMargin, stateWidth, titleHeight}, state, TextRole::Section);
    AddIcon({stateLeft - 24, kMargin + (titleHeight - 18) / 2, 18, 18}, StateIcon(m_watch.State()));
    const int textLeft = kMargin + kIconSize + 12;
    AddText({textLeft, kMargin, stateLeft - 30 - textLeft, titleHeight}, ToQt(driver.name), TextRole::Title);
    const ZRDeviceConnection* const connection = ZRCommSystem::Get().ConnectionOfDriver(driver.name);
    QString line =
        QStringLiteral("%1 \u00b7 %2").arg(ToQt(driver.DriverType()), ToQt(TranslateDescription(driver.Description())));
    if (connection != nullptr) {
        line += QStringLiteral(" \u00b7 ") + ToQt(connection->name);
    }
    AddText({textLeft, kMargin + titleHeight, width - kMargin - textLeft, RowHeight()}, line, TextRole::Quiet);
    return kMargin + titleHeight + RowHeight() + 8;
}

int DevicePageView::PlaceBars(const Part& part, int top, int width)
{
    if (part.bars.empty()) {
        return top;
    }
    // Rows that come out even, as three phases ask for.
    const int room = width - 2 * kMargin;
    const auto count = static_cast<int>(part.bars.size());
    PageFlow flow = PageFlow::Of(room, kLeastBar, kBarGap, kMostBarColumns);
    if (count % 3 == 0 && flow.columns > 3) {
        flow = PageFlow::Of(room, kLeastBar, kBarGap, 3);
    }
    const int height = static_cast<ZRBarValueControl*>(part.bars.front())->IdealHeight();
    for (int i = 0; i < count; ++i) {
        part.bars[static_cast<std::size_t>(i)]->setGeometry(
            kMargin + flow.X(flow.ColumnAcross(i)), top + flow.RowAcross(i) * (height + 4), flow.cellWidth, height);
    }
    return top + flow.Rows(count) * (height + 4) + 4;
}

int DevicePageView::PlaceRows(const Part& part, int top, int width)
{
    int description = 0;
    int unit = 0;
    for (const Row& row : part.rows) {
        description = std::max(description, WidthOf(ToQt(row.row.description), TextRole::Text));
        unit = std::max(unit, WidthOf(ToQt(row.row.unit), TextRole::Unit));
    }
    const bool isText =
        std::any_of(part.rows.begin(), part.rows.end(), [](const Row& row) { return row.row.kind == RowKind::Text; });
    const bool isCount = part.section == Section::Energies || part.section == Section::Counters;
    const QString widest = isText    ? QStringLiteral("8888 8888 8888 88")
                           : isCount ? QStringLiteral("888.888.888,88")
                                     : QStringLiteral("-88.888,888");
    const int value = WidthOf(widest, TextRole::Text);
    const int needed = description + 10 + value + kUnitGap + unit;
    const auto count = static_cast<int>(part.rows.size());
    const PageFlow flow = PageFlow::Of(width - 2 * kMargin, needed, kColumnGap, std::min(kMostRowColumns, count));
    const int height = RowHeight();
    for (int i = 0; i < count; ++i) {
        const Row& row = part.rows[static_cast<std::size_t>(i)];
        const int left = kMargin + flow.X(flow.ColumnDown(i, count));
        const int y = top + flow.RowDown(i, count) * height;
        const int right = left + flow.cellWidth;
        const int valueLeft = right - unit - kUnitGap - value;
        AddText({left, y, valueLeft - 4 - left, height - 1}, ToQt(row.row.description), TextRole::Text);
        row.value->setGeometry(valueLeft, y + 1, value, height - 3);
        AddText({right - unit, y, unit, height - 1}, ToQt(row.row.unit), TextRole::Unit);
        AddLine(left, right, y + height - 1);
    }
    return top + flow.Rows(count) * height;
}

}  // namespace zr::desktop
