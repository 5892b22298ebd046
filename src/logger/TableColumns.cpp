#include "logger/TableColumns.h"

#include "logger/TableTexts.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace zr::logger {

namespace {

using Record = ZRTableProfile::CVariableProfile;

bool HasVariable(const ZRLoggerInfo& info, const ZRBasicString& name)
{
    return std::any_of(info.variables.begin(), info.variables.end(),
                       [&](const ZRDriverVariable* variable) { return variable->fullName == name; });
}

// Takes a column out of its place and puts it in at another, as the header of a list does. Nothing for a column or a
// place that isn't there.
void MoveColumn(std::vector<int>& displayOrder, int column, int place)
{
    const auto at = std::find(displayOrder.begin(), displayOrder.end(), column);
    if (at == displayOrder.end() || place >= static_cast<int>(displayOrder.size())) {
        return;
    }
    displayOrder.erase(at);
    displayOrder.insert(displayOrder.begin() + place, column);
}

// places: of each record the place of its column, 0 for none.
std::vector<int> DisplayOrder(std::size_t columns, const std::vector<int>& places)
{
    std::vector<int> displayOrder(columns);
    std::iota(displayOrder.begin(), displayOrder.end(), 0);
    for (int place = 1; place <= static_cast<int>(places.size()); ++place) {
        const auto found = std::find(places.begin(), places.end(), place);
        if (found != places.end()) {
            MoveColumn(displayOrder, static_cast<int>(found - places.begin()) + 1, place);
        }
    }
    return displayOrder;
}

// Of the records that aren't numbered yet.
Record* Smallest(const std::vector<Record*>& records)
{
    return *std::min_element(records.begin(), records.end(),
                             [](const Record* left, const Record* right) { return left->Index < right->Index; });
}

}  // namespace

int ShownWidth(int width)
{
    return std::clamp(width, 0, kMaxColumnWidth);
}

void CompactOrder(ZRTableProfile& profile)
{
    std::vector<Record*> open(profile.VarsBegin(), profile.VarsEnd());
    for (int index = 0; !open.empty(); ++index) {
        Record* const record = Smallest(open);
        record->Index = index;
        open.erase(std::find(open.begin(), open.end(), record));
    }
}

ColumnPlan PlanColumns(const ZRTableProfile& profile, const ZRLoggerInfo& info, const ZRBasicString& timeTitle,
                       int timeWidth)
{
    const std::vector<Record*> records(profile.VarsBegin(), profile.VarsEnd());
    ColumnPlan plan;
    plan.columns.push_back({timeTitle, ShownWidth(timeWidth)});
    std::vector<int> places(records.size(), 0);
    for (std::size_t r = 0; r < records.size(); ++r) {
        const Record& record = *records[r];
        if (HasVariable(info, record.Name)) {
            const ZRBasicString& title = records[plan.columns.size() - 1]->Title;
            plan.columns.push_back(
                {HeaderText(title, record.MeasureUnits, record.UnitsExponent), ShownWidth(record.Width)});
            // Beyond the last place they are all alike: none.
            places[r] = std::min(record.Index, static_cast<int>(records.size())) + 1;
        }
    }
    plan.displayOrder = DisplayOrder(plan.columns.size(), places);
    return plan;
}

bool GetStrColByOrder(const TableList& list, const std::vector<TableColumn>& columns, int order, int& column,
                      ZRBasicString& text)
{
    for (std::size_t c = 0; c < columns.size(); ++c) {
        if (list.ColumnOrder(static_cast<int>(c)) == order) {
            column = static_cast<int>(c);
            text = ColumnText(columns[c].text);
            return true;
        }
    }
    return false;
}

void ReorderVariables(ZRTableProfile& profile, const TableList& list, const std::vector<TableColumn>& columns,
                      bool swap)
{
    std::vector<ZRBasicString> texts;
    std::transform(profile.VarsBegin(), profile.VarsEnd(), std::back_inserter(texts),
                   [](const Record* record) { return HeaderText(*record); });
    int unmatched = 0;
    const int count = static_cast<int>(profile.NVars());
    for (int order = 0; order <= count; ++order) {
        int column = 0;
        ZRBasicString text;
        const bool isThere = GetStrColByOrder(list, columns, order, column, text);
        const auto found = isThere ? std::find(texts.begin(), texts.end(), text) : texts.end();
        if (found == texts.end()) {
            // So does the time column.
            ++unmatched;
            continue;
        }
        const auto position = static_cast<int>(found - texts.begin());
        Record& record = **std::next(profile.VarsBegin(), position);
        record.Index = order - unmatched;
        record.Width = list.ColumnWidth(column);
        if (swap && profile.Swap(order - unmatched, position)) {
            std::swap(texts[static_cast<std::size_t>(order - unmatched)], *found);
        }
    }
}

}  // namespace zr::logger
