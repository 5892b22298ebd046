#include "logger/ExplorerMenus.h"

#include "logger/LoggerPeriod.h"
#include "logger/SuiteKey.h"
#include "logger/TableTexts.h"
#include "siblings/tools/FormatText.h"
#include "siblings/tools/ZRLoadString.h"

#include <algorithm>
#include <utility>

namespace zr::logger {

namespace {

bool IsWhollyVisible(const HorizontalSpan& place, const HorizontalSpan& visible)
{
    return place.left >= visible.left && place.right <= visible.right;
}

template <typename Entries>
auto FindByText(const Entries& entries, const ZRBasicString& text)
{
    return std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return text == entry.registryText; });
}

}  // namespace

ExplorerMenu GroupByMenu(int groupBy)
{
    ExplorerMenu menu;
    for (const GroupUnit& unit : kGroupUnits) {
        ExplorerMenuEntry entry;
        entry.command = static_cast<unsigned>(unit.id);
        ZRLoadString(unit.menuText, entry.text);
        entry.isChecked = unit.id == groupBy;
        menu.push_back(std::move(entry));
    }
    return menu;
}

ExplorerMenu PeriodMenu(const ZRDateTimeSpan& period)
{
    const unsigned inForce = PeriodMenuId(period);
    ExplorerMenu menu;
    for (const PeriodEntry& row : kPeriods) {
        ExplorerMenuEntry entry;
        entry.command = row.id;
        ZRBasicString format;
        entry.text = ColumnText(FormatText(ZRLoadString(row.menuText, format), {row.menuNumber}));
        entry.isChecked = row.id == inForce;
        menu.push_back(std::move(entry));
    }
    return menu;
}

ExplorerMenu ChevronMenu(std::span<const ShownButton> buttons, const HorizontalSpan& visible,
                         const std::function<bool(unsigned command, ExplorerMenu& menu)>& subMenu)
{
    ExplorerMenu menu;
    auto button = std::find_if(buttons.begin(), buttons.end(),
                               [&](const ShownButton& shown) { return !IsWhollyVisible(shown.place, visible); });
    for (; button != buttons.end(); ++button) {
        ExplorerMenuEntry entry;
        entry.command = button->command;
        entry.text = button->text;
        if (button->isDropDown) {
            if (!subMenu(button->command, entry.subMenu)) {
                continue;
            }
        } else {
            entry.isEnabled = button->isEnabled;
        }
        menu.push_back(std::move(entry));
    }
    return menu;
}

LastChoice ReadLastChoice()
{
    LastChoice choice;
    const SuiteKey key;
    ZRBasicString text;
    if (key.ReadText(kLastGroupValue, text)) {
        const auto* const unit = FindByText(kGroupUnits, text);
        choice.groupBy = unit != kGroupUnits.end() ? unit->id : choice.groupBy;
    }
    if (key.ReadText(kLastPeriodValue, text)) {
        const auto* const period = FindByText(kPeriods, text);
        choice.samplePeriod = period != kPeriods.end() ? SpanOf(*period) : choice.samplePeriod;
    }
    if (IsBadCombination(static_cast<unsigned>(choice.groupBy), choice.samplePeriod.seconds)) {
        choice.samplePeriod = AutomaticPeriod();
    }
    return choice;
}

}  // namespace zr::logger
